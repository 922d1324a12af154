#include "host/WriteSession.h"

#include "TarvoSDK/TarvoFinishWriteInterface.h"
#include "TarvoSDK/TarvoSDK.h"
#include "TarvoSDK/TarvoWriteSamplesInterface.h"
#include "TarvoSDK/TarvoWriteStartInterface.h"
#include "host/Failure.h"

#include <utility>

namespace host
{

namespace
{

class StartObject : public TarvoWriteStartInterface
{
public:
    StartObject(const uint16* inPath, FormatObject& inFormat) : mPath(inPath), mFormat(inFormat) {}

    TarvoErrorInterface* GetErrorInterface() const override { return &mError; }
    const uint16* GetFilePath() const override { return mPath; }
    TarvoFormatInterface* GetFormatInterface() const override { return &mFormat; }
    void SetFormatDescription(const uint16* inText) override { mDescription = FromPlugIn(inText); }
    void SetWriterHandle(void* inWriter) override { mHandle = inWriter; }

    mutable ErrorObject mError;
    std::string mDescription;
    void* mHandle = nullptr;

private:
    const uint16* mPath;
    FormatObject& mFormat;
};

class BlockObject : public TarvoWriteSamplesInterface
{
public:
    BlockObject(std::int64_t inStart, std::int64_t inCount, const char* const* inChannels)
        : mStart(inStart), mCount(inCount), mChannels(inChannels)
    {
    }

    TarvoErrorInterface* GetErrorInterface() const override { return &mError; }
    std::int64_t GetStartSample() const override { return mStart; }
    std::int64_t GetSampleCount() const override { return mCount; }
    const char* GetChannelBuffer(std::int64_t inChannel) const override
    {
        return mChannels[inChannel];
    }

    mutable ErrorObject mError;

private:
    const std::int64_t mStart;
    const std::int64_t mCount;
    const char* const* mChannels;
};

class FinishObject : public TarvoFinishWriteInterface
{
public:
    explicit FinishObject(const FormatObject& inFormat) : mFormat(inFormat) {}

    TarvoErrorInterface* GetErrorInterface() const override { return &mError; }
    std::int32_t GetFinishFlag() const override { return 1; }
    const TarvoFormatInterface* GetFormatInterface() const override { return &mFormat; }

    mutable ErrorObject mError;

private:
    const FormatObject& mFormat;
};

void ReplaceAll(std::string& ioText, const std::string& inOld, const std::string& inNew)
{
    if (inOld.empty())
        return;
    for (std::size_t place = ioText.find(inOld); place != std::string::npos;
         place = ioText.find(inOld, place + inNew.size()))
        ioText.replace(place, inOld.size(), inNew);
}

}  // namespace

WriteSession::WriteSession(const PlugIn& inPlugIn, const WriteTarget& inTarget,
                           const AudioShape& inAudio, const std::string& inSettings)
    : mPlugIn(inPlugIn), mTarget(inTarget)
{
    const std::u16string path = ToPlugIn(mTarget.mPath);
    if (FromPlugIn(path.c_str()) != mTarget.mPath)
        throw Failure(kExitOutput, 0, mTarget.mName + ": the name of its folder is no UTF-8");
    SetShape(mFormat, inAudio);
    mFormat.mSettings = ToPlugIn(inSettings);

    StartObject start(path.c_str(), mFormat);
    const std::int32_t result = mPlugIn.Call(kTarvoSelectorWriteStart, nullptr, &start);
    // A quiet failure has a result of 0, but no handle.
    if (result != kTarvoResultSuccess || !start.mHandle)
        Fail(std::move(start.mError.mText), result, "The plug-in cannot create the file.");
    mHandle = start.mHandle;
    mDescription = std::move(start.mDescription);
}

WriteSession::~WriteSession()
{
    if (!mHandle)
        return;
    try
    {
        std::string text;
        (void)Close(text);  // the file is given up
    }
    catch (...)
    {
        // Nobody is left who could act on it.
    }
}

void WriteSession::Write(const char* const* inChannels, std::int64_t inFrameCount)
{
    BlockObject block(mPosition, inFrameCount, inChannels);
    const std::int32_t result = mPlugIn.Call(kTarvoSelectorWriteSamples, mHandle, &block);
    if (result != kTarvoResultSuccess)
        Fail(std::move(block.mError.mText), result, "The plug-in cannot write on in the file.");
    mPosition += inFrameCount;
}

void WriteSession::Finish()
{
    std::string text;
    if (const std::int32_t result = Close(text); result != kTarvoResultSuccess)
        Fail(std::move(text), result, "The plug-in cannot close the file.");
}

// A close that fails leaves the handle, and a second one frees it.
std::int32_t WriteSession::Close(std::string& outText)
{
    FinishObject finish(mFormat);
    const std::int32_t result = mPlugIn.Call(kTarvoSelectorFinishWrite, mHandle, &finish);
    outText = std::move(finish.mError.mText);
    if (result != kTarvoResultSuccess)
    {
        FinishObject again(mFormat);
        (void)mPlugIn.Call(kTarvoSelectorFinishWrite, mHandle, &again);
    }
    mHandle = nullptr;
    return result;
}

void WriteSession::Fail(std::string inText, std::int32_t inResult, const char* inWhat) const
{
    ReplaceAll(inText, mTarget.mPath, mTarget.mName);
    if (inText.empty())
        inText = mTarget.mName + ": " + inWhat + " (result " + std::to_string(inResult) + ")";
    const bool isUnsupported = inResult == kTarvoResultUnsupportedFormat;
    throw Failure(isUnsupported ? kExitSettings : kExitOutput, inResult, inText);
}

}  // namespace host
