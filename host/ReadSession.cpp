#include "host/ReadSession.h"

#include "TarvoSDK/TarvoOpenInterface.h"
#include "TarvoSDK/TarvoReadSamplesInterface.h"
#include "TarvoSDK/TarvoSDK.h"
#include "host/FormatObject.h"

#include "host/Failure.h"

#include <utility>

namespace host
{

namespace
{

class OpenObject : public TarvoOpenInterface
{
public:
    OpenObject(const std::string& inPath, AudioInfo& outInfo) : mPath(inPath), mInfo(outInfo) {}

    TarvoErrorInterface* GetErrorInterface() const override { return &mError; }
    const char* GetFilePath() const override { return mPath.c_str(); }
    void SetFileHandle(void* inReader) override { mHandle = inReader; }
    void SetOpenStatus(std::int32_t) override {}
    void SetFormatDescription(const uint16* inText) override
    {
        mInfo.mDescription = FromPlugIn(inText);
    }
    void SetBitrate(std::uint32_t inBitsPerSecond) override { mInfo.mBitrate = inBitsPerSecond; }

    mutable ErrorObject mError;
    void* mHandle = nullptr;

private:
    const std::string& mPath;
    AudioInfo& mInfo;
};

class ReadObject : public TarvoReadSamplesInterface
{
public:
    ReadObject(std::int64_t inStart, std::int64_t inCount, std::size_t inBytesPerSample,
               char* const* inChannels)
        : mStart(inStart),
          mCount(inCount),
          mBytes(inCount * static_cast<std::int64_t>(inBytesPerSample)),
          mChannels(inChannels)
    {
    }

    std::int64_t GetStartSample() const override { return mStart; }
    std::int64_t GetSampleCount() const override { return mCount; }
    char* GetChannelBuffer(std::int32_t inChannel) const override { return mChannels[inChannel]; }
    std::int64_t GetBufferSize() const override { return mBytes; }
    void SetSamplesRead(std::int64_t inCount) override { mRead = inCount; }
    void SetTotalSampleCount(std::int64_t) override { mAtEnd = true; }

    std::int64_t mRead = 0;
    bool mAtEnd = false;

private:
    const std::int64_t mStart;
    const std::int64_t mCount;
    const std::int64_t mBytes;
    char* const* const mChannels;
};

// The plug-in tells no text for some failures; then its result has to do.
Failure InputFailure(std::string inText, std::int32_t inResult, const char* inWhat)
{
    if (inText.empty())
        inText = std::string(inWhat) + " (result " + std::to_string(inResult) + ")";
    return Failure(kExitInput, inResult, inText);
}

}  // namespace

double AudioInfo::Seconds() const
{
    return mSampleRate > 0 ? static_cast<double>(mFrameCount) / mSampleRate : 0.0;
}

ReadSession::ReadSession(const PlugIn& inPlugIn, const std::string& inPath)
    : mPlugIn(inPlugIn), mPath(inPath)
{
    Open();
    try
    {
        AskFormat();
    }
    catch (...)
    {
        mPlugIn.Call(kTarvoSelectorCloseForRead, mHandle, nullptr);
        throw;
    }
}

ReadSession::~ReadSession()
{
    mPlugIn.Call(kTarvoSelectorCloseForRead, mHandle, nullptr);
}

void ReadSession::Open()
{
    OpenObject open(mPath, mInfo);
    const std::int32_t result = mPlugIn.Call(kTarvoSelectorOpenForRead, nullptr, &open);
    // A quiet failure has a result of 0, but no handle.
    if (result != kTarvoResultSuccess || !open.mHandle)
        throw InputFailure(std::move(open.mError.mText), result,
                           "The plug-in cannot open the file.");
    mHandle = open.mHandle;
}

void ReadSession::AskFormat()
{
    ErrorObject error;
    FormatObject format(&error);
    const std::int32_t result = mPlugIn.Call(kTarvoSelectorGetFormat, mHandle, &format);
    if (result != kTarvoResultSuccess)
        throw InputFailure(std::move(error.mText), result,
                           "The plug-in cannot tell the file's format.");

    mInfo.mSettings = FromPlugIn(format.GetPrivateSettings());
    mInfo.mSampleRate = format.mSampleRate;
    mInfo.mSampleType = format.mSampleType;
    mInfo.mFrameCount = format.mSampleCount;
    mInfo.mLabels = std::move(format.mLabels);
}

std::int64_t ReadSession::Read(char* const* outChannels, std::int64_t inFrameCount)
{
    ReadObject read(mPosition, inFrameCount, mInfo.BytesPerSample(), outChannels);
    const std::int32_t result = mPlugIn.Call(kTarvoSelectorReadSamples, mHandle, &read);
    if (result != kTarvoResultSuccess)
        throw InputFailure({}, result, "The plug-in cannot read on in the file.");
    mPosition += read.mRead;
    mAtEnd = read.mAtEnd;
    return read.mRead;
}

}  // namespace host
