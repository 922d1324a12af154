// RecordingHost: host objects that write down every call in one shared list, in order.
//
// A line is the operation's name, then its arguments: numbers in decimal, texts (ASCII here) in
// quotes. Answers are public members.
#ifndef TESTS_TARVOSDK_RECORDINGHOST_H
#define TESTS_TARVOSDK_RECORDINGHOST_H

#include "TarvoSDK/TarvoSDK.h"

#include <string>
#include <vector>

namespace testing_support
{

using CallLog = std::vector<std::string>;

inline std::string Quoted(const uint16* inText)
{
    std::string text = "\"";
    for (; *inText != 0; ++inText)
        text += *inText < 0x80 ? static_cast<char>(*inText) : '?';
    return text + "\"";
}

/// Part of every host object of this kind.
class Recorder
{
public:
    explicit Recorder(CallLog& outLog) : mLog(outLog) {}

protected:
    void Note(const std::string& inLine) const { mLog.push_back(inLine); }
    void Note(const std::string& inName, long long inNumber) const
    {
        Note(inName + " " + std::to_string(inNumber));
    }

private:
    CallLog& mLog;
};

class RecordingErrors : public TarvoErrorInterface, Recorder
{
public:
    using Recorder::Recorder;
    void SetErrorText(const uint16* inText) override
    {
        mText = inText;
        Note("SetErrorText " + Quoted(inText));
    }

    std::u16string mText;
};

class RecordingFormat : public TarvoFormatInterface, Recorder
{
public:
    using Recorder::Recorder;
    TarvoErrorInterface* GetErrorInterface() const override
    {
        Note("GetErrorInterface");
        return mErrors;
    }
    std::int32_t GetSampleRate() const override
    {
        Note("GetSampleRate");
        return mSampleRate;
    }
    void SetSampleRate(std::int32_t inRate) override { Note("SetSampleRate", inRate); }
    std::int32_t GetSampleType() const override
    {
        Note("GetSampleType");
        return mSampleType;
    }
    void SetSampleType(std::int32_t inType) override { Note("SetSampleType", inType); }
    std::int64_t GetChannelCount() const override
    {
        Note("GetChannelCount");
        return mChannelCount;
    }
    void SetChannelCount(std::int32_t inCount) override { Note("SetChannelCount", inCount); }
    tarvo::AudioChannelLabel GetChannelLabel(std::int64_t inChannel) const override
    {
        Note("GetChannelLabel", inChannel);
        return static_cast<tarvo::AudioChannelLabel>(
            mLabels.at(static_cast<std::size_t>(inChannel)));
    }
    void SetChannelLabel(std::int64_t inChannel, tarvo::AudioChannelLabel inLabel) override
    {
        Note("SetChannelLabel " + std::to_string(inChannel) + " " +
             std::to_string(static_cast<std::uint32_t>(inLabel)));
    }
    const uint16* GetFilterId() const override
    {
        Note("GetFilterId");
        return u"";
    }
    const uint16* GetPrivateSettings() const override
    {
        Note("GetPrivateSettings");
        return mPrivateSettings.c_str();
    }
    void SetPrivateSettings(const uint16* inText) override
    {
        Note("SetPrivateSettings " + Quoted(inText));
    }
    void SetMimeType(const char* inType) override { Note("SetMimeType " + std::string(inType)); }
    void SetXmpType(std::uint32_t inType) override { Note("SetXmpType", inType); }
    void SetFormatFlags(std::int32_t inFlags) override { Note("SetFormatFlags", inFlags); }
    std::int32_t GetFormatFlags() const override
    {
        Note("GetFormatFlags");
        return mFormatFlags;
    }
    void SetSampleCount(std::int64_t inCount) override { Note("SetSampleCount", inCount); }
    std::int64_t GetSampleCount() const override
    {
        Note("GetSampleCount");
        return mSampleCount;
    }
    void SetFileExtensions(TarvoExtensionList*) override { Note("SetFileExtensions"); }

    TarvoErrorInterface* mErrors = nullptr;
    std::int32_t mSampleRate = 0;
    std::int32_t mSampleType = 0;
    std::int64_t mChannelCount = 0;
    std::vector<std::uint32_t> mLabels;
    std::u16string mPrivateSettings;
    std::int32_t mFormatFlags = 0;
    std::int64_t mSampleCount = 0;
};

class RecordingInfo : public TarvoGetTarvoInfoInterface, Recorder
{
public:
    using Recorder::Recorder;
    void SetPluginInterfaceVersion(std::int32_t inMajor, std::int32_t inMinor) override
    {
        Note("SetPluginInterfaceVersion " + std::to_string(inMajor) + " " +
             std::to_string(inMinor));
    }
    void GetHostInterfaceVersion(std::int32_t* outMajor, std::int32_t* outMinor) const override
    {
        Note("GetHostInterfaceVersion");
        *outMajor = mMajor;
        *outMinor = mMinor;
    }
    void SetPluginIdentity(const char* inGUID, const uint16* inName) override
    {
        Note("SetPluginIdentity " + std::string(inGUID) + " " + Quoted(inName));
    }
    void AddImportFilter(const uint16* inName, const uint16* inFilterId,
                         TarvoExtensionList* inExtensions, void* inReserved) override
    {
        NoteFilter("AddImportFilter ", inName, inFilterId, inExtensions, inReserved);
    }
    void AddExportFilter(const uint16* inName, const uint16* inFilterId,
                         TarvoExtensionList* inExtensions, void* inReserved) override
    {
        NoteFilter("AddExportFilter ", inName, inFilterId, inExtensions, inReserved);
    }

    std::int32_t mMajor = 1;
    std::int32_t mMinor = 0;

private:
    // AddImportFilter "Name" id null extensions wav wave reserved null
    void NoteFilter(const std::string& inOperation, const uint16* inName, const uint16* inFilterId,
                    const TarvoExtensionList* inExtensions, const void* inReserved) const
    {
        std::string line = inOperation + Quoted(inName) + " id " +
                           (inFilterId ? Quoted(inFilterId) : "null") + " extensions";
        for (const TarvoExtensionLink* link = inExtensions->mNext; link != inExtensions;
             link = link->mNext)
            line += std::string(" ") + static_cast<const TarvoExtensionNode*>(link)->mText;
        Note(line + " reserved " + (inReserved ? "given" : "null"));
    }
};

class RecordingPreOpen : public TarvoPreOpenInterface, Recorder
{
public:
    using Recorder::Recorder;
    TarvoErrorInterface* GetErrorInterface() const override
    {
        Note("GetErrorInterface");
        return mErrors;
    }

    TarvoErrorInterface* mErrors = nullptr;
};

class RecordingImportDialog : public TarvoRunImportSettingsDialogInterface, Recorder
{
public:
    using Recorder::Recorder;
    TarvoErrorInterface* GetErrorInterface() const override
    {
        Note("GetErrorInterface");
        return mErrors;
    }
    void SetDialogResult(std::int32_t inResult) override { Note("SetDialogResult", inResult); }

    TarvoErrorInterface* mErrors = nullptr;
};

class RecordingOpen : public TarvoOpenInterface, Recorder
{
public:
    using Recorder::Recorder;
    TarvoErrorInterface* GetErrorInterface() const override
    {
        Note("GetErrorInterface");
        return mErrors;
    }
    const char* GetFilePath() const override
    {
        Note("GetFilePath");
        return mPath.c_str();
    }
    void SetFileHandle(void* inReader) override
    {
        mHandle = inReader;
        Note("SetFileHandle");
    }
    void SetOpenStatus(std::int32_t inStatus) override { Note("SetOpenStatus", inStatus); }
    void SetFormatDescription(const uint16* inText) override
    {
        Note("SetFormatDescription " + Quoted(inText));
    }
    void SetBitrate(std::uint32_t inBitsPerSecond) override { Note("SetBitrate", inBitsPerSecond); }

    TarvoErrorInterface* mErrors = nullptr;
    std::string mPath = "/a/b.wav";
    void* mHandle = nullptr;
};

class RecordingReadSamples : public TarvoReadSamplesInterface, Recorder
{
public:
    using Recorder::Recorder;
    std::int64_t GetStartSample() const override
    {
        Note("GetStartSample");
        return mStart;
    }
    std::int64_t GetSampleCount() const override
    {
        Note("GetSampleCount");
        return mCount;
    }
    char* GetChannelBuffer(std::int32_t inChannel) const override
    {
        Note("GetChannelBuffer", inChannel);
        return mBuffers.at(static_cast<std::size_t>(inChannel));
    }
    std::int64_t GetBufferSize() const override
    {
        Note("GetBufferSize");
        return mBufferSize;
    }
    void SetSamplesRead(std::int64_t inCount) override { Note("SetSamplesRead", inCount); }
    void SetTotalSampleCount(std::int64_t inCount) override
    {
        Note("SetTotalSampleCount", inCount);
    }

    std::int64_t mStart = 0;
    std::int64_t mCount = 0;
    std::int64_t mBufferSize = 0;
    std::vector<char*> mBuffers;
};

class RecordingReadSamplesRaw : public TarvoReadSamplesRawInterface, Recorder
{
public:
    using Recorder::Recorder;
    long long GetRawFirst() const override
    {
        Note("GetRawFirst");
        return 0x100000001;
    }
    long long GetRawSecond() const override
    {
        Note("GetRawSecond");
        return 0x200000002;
    }
    void* GetRawBuffer() const override
    {
        Note("GetRawBuffer");
        return mBuffer;
    }

    void* mBuffer = nullptr;
};

class RecordingReadVideoFrame : public TarvoReadVideoFrameInterface
{
};

class RecordingReadMetadata : public TarvoReadMetadataInterface, Recorder
{
public:
    using Recorder::Recorder;
    long long GetRawFirst() const override
    {
        Note("GetRawFirst");
        return 0x100000001;
    }
    long long GetRawSecond() const override
    {
        Note("GetRawSecond");
        return 0x200000002;
    }
    long long GetRawThird() const override
    {
        Note("GetRawThird");
        return 0x300000003;
    }
    void* GetRawBuffer() const override
    {
        Note("GetRawBuffer");
        return mBuffer;
    }

    void* mBuffer = nullptr;
};

class RecordingExportInfo : public TarvoGetExportSettingsInfoInterface, Recorder
{
public:
    using Recorder::Recorder;
    TarvoErrorInterface* GetErrorInterface() const override
    {
        Note("GetErrorInterface");
        return mErrors;
    }
    TarvoFormatInterface* GetFormatInterface() const override
    {
        Note("GetFormatInterface");
        return mFormat;
    }
    std::int32_t GetRepairMode() const override
    {
        Note("GetRepairMode");
        return 0;
    }
    void SetEstimatedBits(std::int64_t inBits) override { Note("SetEstimatedBits", inBits); }
    void SetHasSettings(bool inHasSettings) override { Note("SetHasSettings", inHasSettings); }
    void SetLossy(bool inLossy) override { Note("SetLossy", inLossy); }
    void SetFormatDescription(const uint16* inText) override
    {
        Note("SetFormatDescription " + Quoted(inText));
    }

    TarvoErrorInterface* mErrors = nullptr;
    TarvoFormatInterface* mFormat = nullptr;
};

class RecordingExportDialog : public TarvoRunExportSettingsDialogInterface, Recorder
{
public:
    using Recorder::Recorder;
    TarvoErrorInterface* GetErrorInterface() const override
    {
        Note("GetErrorInterface");
        return mErrors;
    }
    TarvoFormatInterface* GetFormatInterface() const override
    {
        Note("GetFormatInterface");
        return mFormat;
    }
    void* GetParentWindow() const override
    {
        Note("GetParentWindow");
        return mWindow;
    }
    void SetCancelled(bool inCancelled) override { Note("SetCancelled", inCancelled); }
    long long GetDialogOption() const override
    {
        Note("GetDialogOption");
        return 0x400000004;
    }

    TarvoErrorInterface* mErrors = nullptr;
    TarvoFormatInterface* mFormat = nullptr;
    void* mWindow = nullptr;
};

class RecordingWriteStart : public TarvoWriteStartInterface, Recorder
{
public:
    using Recorder::Recorder;
    TarvoErrorInterface* GetErrorInterface() const override
    {
        Note("GetErrorInterface");
        return mErrors;
    }
    const uint16* GetFilePath() const override
    {
        Note("GetFilePath");
        return mPath.c_str();
    }
    TarvoFormatInterface* GetFormatInterface() const override
    {
        Note("GetFormatInterface");
        return mFormat;
    }
    void SetFormatDescription(const uint16* inText) override
    {
        Note("SetFormatDescription " + Quoted(inText));
    }
    void SetWriterHandle(void* inWriter) override
    {
        mHandle = inWriter;
        Note("SetWriterHandle");
    }

    TarvoErrorInterface* mErrors = nullptr;
    std::u16string mPath = u"/a/b.caf";
    TarvoFormatInterface* mFormat = nullptr;
    void* mHandle = nullptr;
};

class RecordingWriteSamples : public TarvoWriteSamplesInterface, Recorder
{
public:
    using Recorder::Recorder;
    TarvoErrorInterface* GetErrorInterface() const override
    {
        Note("GetErrorInterface");
        return mErrors;
    }
    std::int64_t GetStartSample() const override
    {
        Note("GetStartSample");
        return mStart;
    }
    std::int64_t GetSampleCount() const override
    {
        Note("GetSampleCount");
        return mCount;
    }
    const char* GetChannelBuffer(std::int64_t inChannel) const override
    {
        Note("GetChannelBuffer", inChannel);
        return mBuffers.at(static_cast<std::size_t>(inChannel));
    }

    TarvoErrorInterface* mErrors = nullptr;
    std::int64_t mStart = 0;
    std::int64_t mCount = 0;
    std::vector<const char*> mBuffers;
};

class RecordingFinishWrite : public TarvoFinishWriteInterface, Recorder
{
public:
    using Recorder::Recorder;
    TarvoErrorInterface* GetErrorInterface() const override
    {
        Note("GetErrorInterface");
        return mErrors;
    }
    std::int32_t GetFinishFlag() const override
    {
        Note("GetFinishFlag");
        return mFlag;
    }
    const TarvoFormatInterface* GetFormatInterface() const override
    {
        Note("GetFormatInterface");
        return mFormat;
    }

    TarvoErrorInterface* mErrors = nullptr;
    TarvoFormatInterface* mFormat = nullptr;
    std::int32_t mFlag = 0;
};

}  // namespace testing_support

#endif
