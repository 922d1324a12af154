// ExportHost: a host that means to save audio: its format remembers what it is told.
#ifndef TESTS_TARVO_PLUGINS_TARVOAT_EXPORTHOST_H
#define TESTS_TARVO_PLUGINS_TARVOAT_EXPORTHOST_H

#include "tests/TarvoSDK/RecordingHost.h"

namespace testing_support
{

/// Notes like every recording host object. Rate, channels and settings text are what was set last.
class ExportFormat : public RecordingFormat
{
public:
    explicit ExportFormat(CallLog& outLog) : RecordingFormat(outLog), mLog(outLog)
    {
        mSampleRate = 44100;
        mSampleType = 20;
        mChannelCount = 2;
    }
    void SetSampleRate(std::int32_t inRate) override
    {
        mSampleRate = inRate;
        RecordingFormat::SetSampleRate(inRate);
    }
    void SetChannelCount(std::int32_t inCount) override
    {
        mChannelCount = inCount;
        RecordingFormat::SetChannelCount(inCount);
    }
    const uint16* GetFilterId() const override
    {
        (void)RecordingFormat::GetFilterId();
        return mFilterId.c_str();
    }
    const uint16* GetPrivateSettings() const override
    {
        (void)RecordingFormat::GetPrivateSettings();
        return mSettings.c_str();
    }
    void SetPrivateSettings(const uint16* inText) override
    {
        mSettings = inText;
        RecordingFormat::SetPrivateSettings(inText);
    }
    std::int64_t GetSampleCount() const override
    {
        (void)RecordingFormat::GetSampleCount();
        return mSampleCount;
    }
    void SetFileExtensions(TarvoExtensionList* inExtensions) override
    {
        std::string line = "SetFileExtensions";
        for (const TarvoExtensionLink* link = inExtensions->mNext; link != inExtensions;
             link = link->mNext)
            line += std::string(" ") + static_cast<const TarvoExtensionNode*>(link)->mText;
        mLog.push_back(line);
    }

    std::u16string mFilterId;
    std::u16string mSettings;
    std::int64_t mSampleCount = 0;

private:
    CallLog& mLog;
};

class ExportInfo : public RecordingExportInfo
{
public:
    ExportInfo(CallLog& outLog, TarvoFormatInterface& inFormat) : RecordingExportInfo(outLog)
    {
        mFormat = &inFormat;
    }
    std::int32_t GetRepairMode() const override
    {
        (void)RecordingExportInfo::GetRepairMode();
        return mRepairMode;
    }
    void SetEstimatedBits(std::int64_t inBits) override
    {
        mEstimatedBits = inBits;
        RecordingExportInfo::SetEstimatedBits(inBits);
    }

    std::int32_t mRepairMode = 0;
    std::int64_t mEstimatedBits = -1;
};

}  // namespace testing_support

#endif
