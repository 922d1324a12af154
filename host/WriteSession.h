// WriteSession: one exported file, from its creation to its close.
//
// The plug-in creates the file under the name that it gets and leaves it there, whatever happens;
// TargetFile makes it appear under the user's name, or removes it.
#ifndef HOST_WRITESESSION_H
#define HOST_WRITESESSION_H

#include "host/AudioShape.h"
#include "host/BlockSink.h"
#include "host/PlugIn.h"

#include <cstdint>
#include <string>

namespace host
{

/// The file's names, UTF-8.
struct WriteTarget
{
    std::string mPath;  // that the plug-in writes to
    std::string mName;  // by which the user knows it; stands in failure texts instead of mPath
};

class WriteSession : public BlockSink
{
public:
    /// Creates the file.
    ///
    /// inAudio     how the blocks will come; rate and channel count are those of the settings
    /// inSettings  settings text, UTF-8, as AskExportSettings answered it
    /// Throws Failure with the plug-in's text: kExitSettings for what cannot be encoded,
    /// kExitOutput for everything else.
    WriteSession(const PlugIn& inPlugIn, const WriteTarget& inTarget, const AudioShape& inAudio,
                 const std::string& inSettings);
    /// Closes the file when Finish was not called; it is not of use then.
    ~WriteSession() override;
    WriteSession(const WriteSession&) = delete;
    WriteSession& operator=(const WriteSession&) = delete;

    /// One block of at least one frame. Throws Failure (kExitOutput); only closing makes sense
    /// then.
    void Write(const char* const* inChannels, std::int64_t inFrameCount) override;

    /// Closes the file, once. Throws Failure (kExitOutput): the file is not of use then.
    void Finish();

    /// What the plug-in says was written, UTF-8.
    const std::string& Description() const { return mDescription; }

    /// Frames that Write has handed over.
    std::int64_t FramesWritten() const { return mPosition; }

private:
    std::int32_t Close(std::string& outText);
    [[noreturn]] void Fail(std::string inText, std::int32_t inResult, const char* inWhat) const;

    const PlugIn& mPlugIn;
    const WriteTarget mTarget;
    FormatObject mFormat{nullptr};
    std::string mDescription;
    void* mHandle = nullptr;
    std::int64_t mPosition = 0;
};

}  // namespace host

#endif
