#include "host/ExportSettings.h"

#include "TarvoSDK/TarvoGetExportSettingsInfoInterface.h"
#include "TarvoSDK/TarvoSDK.h"
#include "host/Failure.h"
#include "kelpcore/utility/NumberText.h"

#include <gtest/gtest.h>

namespace
{

using host::AskExportSettings;
using host::ExportAnswer;
using host::ExportRequest;
using host::RepairMode;

// What the plug-in was told, and what it answers.
struct Script
{
    std::int32_t mResult = kTarvoResultSuccess;
    bool mTakesOffence = false;  // at the filter id
    std::int32_t mNewRate = 0;
    std::int32_t mNewChannels = 0;

    std::u16string mSettings;
    std::u16string mFilterId;
    std::int32_t mRate = 0;
    std::int32_t mType = 0;
    std::int64_t mFrames = 0;
    std::vector<std::uint32_t> mLabels;
    std::int32_t mRepair = -1;
};

Script* sScript = nullptr;

void Look(const TarvoGetExportSettingsInfoInterface& inInfo, const TarvoFormatInterface& inFormat)
{
    sScript->mRepair = inInfo.GetRepairMode();
    sScript->mSettings = inFormat.GetPrivateSettings();
    sScript->mFilterId = inFormat.GetFilterId();
    sScript->mRate = inFormat.GetSampleRate();
    sScript->mType = inFormat.GetSampleType();
    sScript->mFrames = inFormat.GetSampleCount();
    for (std::int64_t channel = 0; channel < inFormat.GetChannelCount(); ++channel)
        sScript->mLabels.push_back(inFormat.GetChannelLabel(channel));
}

void Answer(TarvoGetExportSettingsInfoInterface& outInfo, TarvoFormatInterface& outFormat)
{
    outInfo.SetHasSettings(true);
    if (sScript->mNewRate > 0)
        outFormat.SetSampleRate(sScript->mNewRate);
    if (sScript->mNewChannels > 0)
        outFormat.SetChannelCount(sScript->mNewChannels);
    outInfo.SetLossy(true);
    outInfo.SetEstimatedBits(640000 + 2048);
    outFormat.SetMimeType("audio/test");
    outFormat.SetXmpType(0x57415620);
    outFormat.SetFormatFlags(0);
    outInfo.SetFormatDescription(u"A description \u00E9");
    outFormat.SetPrivateSettings(u"New:0:2;");
    TarvoExtensionNode second;
    TarvoExtensionNode first;
    first.mText = "one";
    second.mText = "two";
    TarvoExtensionList list;
    list.mNext = &first;
    list.mPrevious = &second;
    first.mNext = &second;
    first.mPrevious = &list;
    second.mNext = &list;
    second.mPrevious = &first;
    outFormat.SetFileExtensions(&list);
    list.mNext = list.mPrevious = &list;
}

std::int32_t Entry(int inSelector, void* inHandle, void* inHostObject)
{
    EXPECT_EQ(inHandle, nullptr);
    if (inSelector == kTarvoSelectorGetDefaultExportSettings)
    {
        auto& format = *static_cast<TarvoFormatInterface*>(inHostObject);
        format.SetChannelCount(2);
        format.SetSampleRate(44100);
        format.SetSampleType(20);
        return sScript->mResult;
    }
    EXPECT_EQ(inSelector, kTarvoSelectorGetExportSettingsInfo);
    auto& info = *static_cast<TarvoGetExportSettingsInfoInterface*>(inHostObject);
    Look(info, *info.GetFormatInterface());
    if (sScript->mTakesOffence)
        throw kelpcore::utility::NumberFormatError("not wholly a number");
    if (sScript->mResult == kTarvoResultFailed)
        info.GetErrorInterface()->SetErrorText(u"Something broke");
    Answer(info, *info.GetFormatInterface());
    return sScript->mResult;
}

class ExportSettingsTest : public testing::Test
{
protected:
    ExportSettingsTest() { sScript = &mScript; }
    ~ExportSettingsTest() override { sScript = nullptr; }

    Script mScript;
    host::PlugIn mPlugIn{&Entry};
    ExportRequest mRequest{{96000, 30, 441000, {100, 101, 102}}, "Old:0:1;", "", RepairMode::kFit};
};

TEST_F(ExportSettingsTest, TellTheAudioAndTheStoredSettings)
{
    (void)AskExportSettings(mPlugIn, mRequest);
    EXPECT_EQ(mScript.mSettings, u"Old:0:1;");
    EXPECT_EQ(mScript.mFilterId, u"");
    EXPECT_EQ(mScript.mRate, 96000);
    EXPECT_EQ(mScript.mType, 30);
    EXPECT_EQ(mScript.mFrames, 441000);
    EXPECT_EQ(mScript.mLabels, (std::vector<std::uint32_t>{100, 101, 102}));
    EXPECT_EQ(mScript.mRepair, 1);
}

TEST_F(ExportSettingsTest, TellTheFilterAndTheRepairMode)
{
    mRequest.mSettings.clear();
    mRequest.mFilterId = "1633973363";
    mRequest.mRepair = RepairMode::kStored;
    (void)AskExportSettings(mPlugIn, mRequest);
    EXPECT_EQ(mScript.mSettings, u"");
    EXPECT_EQ(mScript.mFilterId, u"1633973363");
    EXPECT_EQ(mScript.mRepair, 2);

    mRequest.mRepair = RepairMode::kNone;
    (void)AskExportSettings(mPlugIn, mRequest);
    EXPECT_EQ(mScript.mRepair, 0);
}

TEST_F(ExportSettingsTest, AnswerAllThatThePlugInSays)
{
    const ExportAnswer answer = AskExportSettings(mPlugIn, mRequest);
    EXPECT_TRUE(answer.IsPossible());
    EXPECT_EQ(answer.mAudio, mRequest.mAudio);
    EXPECT_EQ(answer.mSettings, "New:0:2;");
    EXPECT_EQ(answer.mDescription, "A description \xC3\xA9");
    EXPECT_EQ(answer.mMimeType, "audio/test");
    EXPECT_EQ(answer.mXmpType, 0x57415620u);
    EXPECT_EQ(answer.mEstimatedBits, 642048);
    EXPECT_EQ(answer.EstimatedBytes(), 80256);
    EXPECT_TRUE(answer.mHasSettings);
    EXPECT_TRUE(answer.mIsLossy);
    EXPECT_EQ(answer.mExtensions, (std::vector<std::string>{"one", "two"}));
}

TEST_F(ExportSettingsTest, AnswerTheRepairedRateAndChannels)
{
    mScript.mNewRate = 48000;
    mScript.mNewChannels = 2;
    const ExportAnswer answer = AskExportSettings(mPlugIn, mRequest);
    EXPECT_EQ(answer.mAudio.mSampleRate, 48000);
    EXPECT_EQ(answer.mAudio.mLabels, (std::vector<std::uint32_t>{100, 101}));

    mScript.mNewChannels = 4;
    EXPECT_EQ(AskExportSettings(mPlugIn, mRequest).mAudio.mLabels,
              (std::vector<std::uint32_t>{100, 101, 102, 0}));
}

TEST_F(ExportSettingsTest, AnswerImpossibleSettingsWithoutAFailure)
{
    mScript.mResult = kTarvoResultUnsupportedFormat;
    const ExportAnswer answer = AskExportSettings(mPlugIn, mRequest);
    EXPECT_EQ(answer.mResult, -8);
    EXPECT_FALSE(answer.IsPossible());
    EXPECT_EQ(answer.mSettings, "New:0:2;");
    EXPECT_EQ(answer.mEstimatedBits, 642048);
}

TEST_F(ExportSettingsTest, FailForAnyOtherResult)
{
    mScript.mResult = kTarvoResultFailed;
    try
    {
        (void)AskExportSettings(mPlugIn, mRequest);
        FAIL();
    }
    catch (const host::Failure& failure)
    {
        EXPECT_STREQ(failure.what(), "Something broke");
        EXPECT_EQ(failure.mResult, -1);
        EXPECT_EQ(failure.mExitCode, host::kExitSettings);
    }
}

TEST_F(ExportSettingsTest, FailForAFilterThatIsNoNumber)
{
    mScript.mTakesOffence = true;
    mRequest.mFilterId = "aac";
    try
    {
        (void)AskExportSettings(mPlugIn, mRequest);
        FAIL();
    }
    catch (const host::Failure& failure)
    {
        EXPECT_STREQ(failure.what(), "The filter id is no number: aac");
        EXPECT_EQ(failure.mExitCode, host::kExitSettings);
    }
}

TEST_F(ExportSettingsTest, AnswerTheDefaultFormat)
{
    const host::AudioShape shape = host::AskDefaultExportFormat(mPlugIn);
    EXPECT_EQ(shape, (host::AudioShape{44100, 20, 0, {0, 0}}));

    mScript.mResult = kTarvoResultNotImplemented;
    EXPECT_THROW((void)host::AskDefaultExportFormat(mPlugIn), host::Failure);
}

}  // namespace
