// ReadSession: one imported file, from opening to closing.
#ifndef HOST_READSESSION_H
#define HOST_READSESSION_H

#include "host/PlugIn.h"

#include <cstdint>
#include <string>
#include <vector>

namespace host
{

/// What the plug-in told about a file. Texts are UTF-8.
struct AudioInfo
{
    std::string mDescription;
    std::string mSettings;
    std::uint32_t mBitrate = 0;          // bits per second
    std::int32_t mSampleRate = 0;        // Hz
    std::int32_t mSampleType = 0;        // 10, 20, 30, 40: 8, 16, 24, 32 bits per sample
    std::int64_t mFrameCount = 0;        // as told before reading; an estimate for some streams
    std::vector<std::uint32_t> mLabels;  // one a channel, the host's numbers

    std::size_t ChannelCount() const { return mLabels.size(); }
    std::size_t BytesPerSample() const { return static_cast<std::size_t>(mSampleType) / 10; }
    /// mFrameCount in seconds; 0 without a rate.
    double Seconds() const;
};

class ReadSession
{
public:
    /// Opens the file and asks for its format. Throws Failure (kExitInput) with the plug-in's text.
    ReadSession(const PlugIn& inPlugIn, const std::string& inPath);
    ~ReadSession();
    ReadSession(const ReadSession&) = delete;
    ReadSession& operator=(const ReadSession&) = delete;

    const AudioInfo& Info() const { return mInfo; }

    /// Reads the next frames into one buffer a channel, each inFrameCount samples long, at least
    /// one. Returns the frames delivered, 0 at the end. Throws Failure (kExitInput).
    std::int64_t Read(char* const* outChannels, std::int64_t inFrameCount);

    /// The plug-in has told the total length: nothing more will come.
    bool IsAtEnd() const { return mAtEnd; }

private:
    void Open();
    void AskFormat();

    const PlugIn& mPlugIn;
    const std::string mPath;
    void* mHandle = nullptr;
    AudioInfo mInfo;
    std::int64_t mPosition = 0;
    bool mAtEnd = false;
};

}  // namespace host

#endif
