// OutputFile: a file that appears whole or not at all.
//
// Bytes go to the temporary file of a TargetFile. A target that is no regular file (a pipe, a
// device) is written straight.
#ifndef HOST_OUTPUTFILE_H
#define HOST_OUTPUTFILE_H

#include "host/TargetFile.h"

#include <cstddef>
#include <optional>
#include <string>

namespace host
{

class OutputFile
{
public:
    /// inPath         the target; "-" is standard output
    /// inMayReplace   whether a regular file that is there already may be replaced
    /// inSource       the file that is being read; writing onto it is refused; may be empty
    /// Throws Failure (kExitOutput), and Interrupted while it waits for a pipe's reader.
    OutputFile(const std::string& inPath, bool inMayReplace, const std::string& inSource);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// All inCount bytes, or throws Failure or Interrupted.
    void Write(const void* inBytes, std::size_t inCount);

    /// Makes the file appear under its name, synced to disk. Throws Failure; nothing is left then.
    void Commit();

private:
    [[noreturn]] void Fail(const char* inWhat, int inError) const;

    const std::string mPath;
    std::optional<TargetFile> mTarget;  // none when written straight
    int mDescriptor = -1;
};

}  // namespace host

#endif
