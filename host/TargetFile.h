// TargetFile: a file that somebody else writes by its name, and that appears whole or not at all.
//
// The writer gets the name of an empty temporary file beside the target, which takes the target's
// place at Commit. Anything else that ends the object's life removes the temporary file and leaves
// an old target untouched. A symbolic link stays one: the file that it leads to is replaced; one
// that leads nowhere is refused.
#ifndef HOST_TARGETFILE_H
#define HOST_TARGETFILE_H

#include <string>

namespace host
{

class TargetFile
{
public:
    /// inPath         the target, by any name
    /// inMayReplace   whether a file that is there already may be replaced
    /// inSource       the file that is being read; replacing it is refused, by whatever name or
    ///                link; may be empty
    /// Throws Failure (kExitOutput) for those, for a folder that is missing or cannot be written,
    /// for a link that leads nowhere and for anything that is no regular file. A new file gets the
    /// permissions that the user's mask leaves, a replaced one keeps those of the old.
    TargetFile(const std::string& inPath, bool inMayReplace, const std::string& inSource);
    ~TargetFile();
    TargetFile(const TargetFile&) = delete;
    TargetFile& operator=(const TargetFile&) = delete;

    /// As the user gave it.
    const std::string& Name() const { return mName; }
    /// Where to write.
    const std::string& TemporaryPath() const { return mTemporary; }

    /// Makes the file appear under its name, synced to disk. Throws Failure; nothing is left then.
    void Commit();

private:
    [[noreturn]] void Fail(int inError) const;
    void MakeTemporary(unsigned int inMode);

    const std::string mName;
    std::string mPath;       // without links
    std::string mTemporary;  // empty: nothing to remove
    unsigned int mMode = 0;  // permissions that the file gets
};

}  // namespace host

#endif
