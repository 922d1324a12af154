// RecordingInterface: a plug-in whose operations note that they were called and what with, and give
// one answer that no operation gives by itself.
#ifndef TESTS_TARVOSDK_RECORDINGINTERFACE_H
#define TESTS_TARVOSDK_RECORDINGINTERFACE_H

#include "TarvoSDK/TarvoInterfaceTemplate.h"
#include "tests/TarvoSDK/RecordingHost.h"

namespace testing_support
{

struct FakeReader
{
    virtual ~FakeReader()
    {
        if (mDeleted)
            *mDeleted = true;
    }
    bool* mDeleted = nullptr;
};

struct FakeWriter
{
};

using FakeTemplate = tarvo::TarvoInterfaceTemplate<FakeReader, FakeWriter>;

/// The operations without a default are there; the others keep theirs.
class MinimalInterface : public FakeTemplate
{
public:
    std::int32_t GetTarvoInfo(TarvoGetTarvoInfoInterface&) override { return 0; }
    std::int32_t Initialize() override { return 0; }
    std::int32_t OpenForRead(TarvoOpenInterface&) override { return 0; }
    std::int32_t GetFormat(FakeReader&, TarvoFormatInterface&) override { return 0; }
    std::int32_t ReadSamples(FakeReader&, TarvoReadSamplesInterface&) override { return 0; }
    std::int32_t GetDefaultExportSettings(TarvoFormatInterface&) override { return 0; }
    std::int32_t GetExportSettingsInfo(TarvoGetExportSettingsInfoInterface&) override { return 0; }
    std::int32_t RunExportSettingsDialog(TarvoFormatInterface&, void*, long long, bool&) override
    {
        return 0;
    }
    std::int32_t WriteStart(TarvoWriteStartInterface&, FakeWriter*&) override { return 0; }
    std::int32_t WriteSamples(FakeWriter&, TarvoWriteSamplesInterface&) override { return 0; }
    std::int32_t FinishWrite(FakeWriter&, bool, const TarvoFormatInterface&) override { return 0; }
};

class RecordingInterface : public FakeTemplate
{
public:
    explicit RecordingInterface(CallLog& outLog) : mLog(outLog) {}

    std::int32_t GetTarvoInfo(TarvoGetTarvoInfoInterface& inInfo) override
    {
        return Noted("GetTarvoInfo", nullptr, &inInfo);
    }
    std::int32_t Initialize() override { return Noted("Initialize"); }
    std::int32_t Terminate() override { return Noted("Terminate"); }
    std::int32_t PreOpenForRead(TarvoPreOpenInterface& inPreOpen) override
    {
        return Noted("PreOpenForRead", nullptr, &inPreOpen);
    }
    std::int32_t RunImportSettingsDialog(TarvoRunImportSettingsDialogInterface& inRun) override
    {
        return Noted("RunImportSettingsDialog", nullptr, &inRun);
    }
    std::int32_t OpenForRead(TarvoOpenInterface& inOpen) override
    {
        return Noted("OpenForRead", nullptr, &inOpen);
    }
    std::int32_t GetFormat(FakeReader& inReader, TarvoFormatInterface& inFormat) override
    {
        return Noted("GetFormat", &inReader, &inFormat);
    }
    std::int32_t ReadSamples(FakeReader& inReader, TarvoReadSamplesInterface& inRequest) override
    {
        return Noted("ReadSamples", &inReader, &inRequest);
    }
    std::int32_t ReadSamplesRaw(FakeReader& inReader, long long inFirst, long long inSecond,
                                void* inBuffer) override
    {
        mNumbers = {inFirst, inSecond};
        mPointer = inBuffer;
        return Noted("ReadSamplesRaw", &inReader);
    }
    std::int32_t ReadVideoFrame(FakeReader& inReader,
                                TarvoReadVideoFrameInterface& inFrame) override
    {
        return Noted("ReadVideoFrame", &inReader, &inFrame);
    }
    std::int32_t ReadMetadata(FakeReader& inReader, long long inFirst, long long inSecond,
                              long long inThird, void* inBuffer) override
    {
        mNumbers = {inFirst, inSecond, inThird};
        mPointer = inBuffer;
        return Noted("ReadMetadata", &inReader);
    }
    std::int32_t DoneWithAudioRead(FakeReader& inReader) override
    {
        return Noted("DoneWithAudioRead", &inReader);
    }
    std::int32_t CloseForRead(FakeReader* inReader) override
    {
        return Noted("CloseForRead", inReader);
    }
    std::int32_t GetDefaultExportSettings(TarvoFormatInterface& inFormat) override
    {
        return Noted("GetDefaultExportSettings", nullptr, &inFormat);
    }
    std::int32_t GetExportSettingsInfo(TarvoGetExportSettingsInfoInterface& inInfo) override
    {
        return Noted("GetExportSettingsInfo", nullptr, &inInfo);
    }
    std::int32_t RunExportSettingsDialog(TarvoFormatInterface& inFormat, void* inParentWindow,
                                         long long inOption, bool& outCancelled) override
    {
        mNumbers = {inOption};
        mPointer = inParentWindow;
        mFlag = outCancelled;
        outCancelled = mCancels;
        return Noted("RunExportSettingsDialog", nullptr, &inFormat);
    }
    std::int32_t WriteStart(TarvoWriteStartInterface& inStart, FakeWriter*& outWriter) override
    {
        mPointer = outWriter;
        outWriter = mWriter;
        return Noted("WriteStart", nullptr, &inStart);
    }
    std::int32_t WriteSamples(FakeWriter& inWriter, TarvoWriteSamplesInterface& inBlock) override
    {
        return Noted("WriteSamples", &inWriter, &inBlock);
    }
    std::int32_t FinishWrite(FakeWriter& inWriter, bool inFlag,
                             const TarvoFormatInterface& inFormat) override
    {
        mFlag = inFlag;
        return Noted("FinishWrite", &inWriter, &inFormat);
    }

    // What operations answer, and give back through their arguments.
    std::int32_t mResult = -77;
    bool mCancels = false;
    FakeWriter* mWriter = nullptr;

    // What the last operation was called with.
    const void* mHandle = nullptr;
    const void* mHostObject = nullptr;
    const TarvoErrorInterface* mErrors = nullptr;
    std::vector<long long> mNumbers;
    const void* mPointer = nullptr;
    bool mFlag = false;

private:
    std::int32_t Noted(const char* inName, const void* inHandle = nullptr,
                       const void* inHostObject = nullptr)
    {
        mLog.emplace_back(inName);
        mHandle = inHandle;
        mHostObject = inHostObject;
        mErrors = mErrorInterface;
        return mResult;
    }

    CallLog& mLog;
};

}  // namespace testing_support

#endif
