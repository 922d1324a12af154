#include "host/export/SettingsChooser.h"

#include "TarvoSDK/TarvoGetExportSettingsInfoInterface.h"
#include "TarvoSDK/TarvoRunExportSettingsDialogInterface.h"
#include "TarvoSDK/TarvoSDK.h"
#include "host/Failure.h"
#include "host/HostText.h"
#include "host/StoredSettings.h"

#include <AudioToolbox/AudioToolbox.h>

#include <gtest/gtest.h>

namespace host
{

namespace
{

// A variable bit rate with a stray constant one, which no option would compose.
constexpr const char* kMP3 =
    "AudioFileTypeID:0:1297106739;Bitrate:0:77;BitrateMode:0:3;BitsPerChannel:0:0;"
    "BytesPerFrame:0:0;BytesPerPacket:0:0;ChannelsPerFrame:0:2;FormatFlags:0:0;"
    "FormatID:0:778924083;FramesPerPacket:0:1152;SampleRateHigh:0:1088909312;SampleRateLow:0:0;"
    "VBRQuality:0:32;";
constexpr const char* kFLAC =
    "AudioFileTypeID:0:1718378851;Bitrate:0:0;BitrateMode:0:0;BitsPerChannel:0:0;"
    "BytesPerFrame:0:0;BytesPerPacket:0:0;ChannelsPerFrame:0:6;FormatFlags:0:0;"
    "FormatID:0:1718378851;FramesPerPacket:0:4608;SampleRateHigh:0:1089957888;SampleRateLow:0:0;"
    "VBRQuality:0:96;";

Registration WithAACFilter()
{
    Registration registration;
    registration.mExportFilters = {{"All", "", {"wav"}}, {"AAC", "1633973363", {"aac"}}};
    return registration;
}

ExportSource Source(std::int32_t inRate, std::size_t inChannels, std::int32_t inType)
{
    ExportSource source;
    source.mShape.mSampleRate = inRate;
    source.mShape.mSampleType = inType;
    source.mShape.mFrameCount = 1000;
    source.mShape.mLabels.assign(inChannels, 0);
    return source;
}

ExportPlan PlanOf(std::uint32_t inFileType)
{
    ExportPlan plan;
    plan.mSettings = "Start:0:1;";
    plan.mFileType = inFileType;
    return plan;
}

TEST(DialogRequestTest, IsForTheSourcesAudio)
{
    const DialogRequest request =
        RequestDialog(WithAACFilter(), {}, Source(96000, 6, 30), PlanOf(kAudioFileWAVEType));
    EXPECT_EQ(request.mAudio.mSampleRate, 96000);
    EXPECT_EQ(request.mAudio.ChannelCount(), 6u);
    EXPECT_EQ(request.mAudio.mSampleType, 30);
    EXPECT_EQ(request.mSettings, "Start:0:1;");
    EXPECT_EQ(request.mFilterId, "");
    EXPECT_EQ(request.mParentWindow, nullptr);
}

TEST(DialogRequestTest, IsForTheWishedRateChannelsAndDepth)
{
    ExportWish wish;
    wish.mRate = 44100;
    wish.mChannels = 2;
    wish.mDepth = SampleDepth{24, std::nullopt};
    const DialogRequest request =
        RequestDialog(WithAACFilter(), wish, Source(96000, 6, 20), PlanOf(kAudioFileWAVEType));
    EXPECT_EQ(request.mAudio.mSampleRate, 44100);
    EXPECT_EQ(request.mAudio.ChannelCount(), 2u);
    EXPECT_EQ(request.mAudio.mSampleType, 30);
}

TEST(DialogRequestTest, HasTheDepthThatALossySourceIsWorth)
{
    ExportSource source = Source(44100, 2, 40);
    source.mSettings = kMP3;
    EXPECT_EQ(RequestDialog({}, {}, source, PlanOf(kAudioFileWAVEType)).mAudio.mSampleType, 30);
    source.mSettings.clear();
    EXPECT_EQ(RequestDialog({}, {}, source, PlanOf(kAudioFileWAVEType)).mAudio.mSampleType, 40);
}

TEST(DialogRequestTest, FixesTheTypeThatHasAFilterUnlessItIsFromASettingsText)
{
    const auto filter = [](const ExportWish& inWish, std::uint32_t inType) {
        return RequestDialog(WithAACFilter(), inWish, Source(44100, 2, 20), PlanOf(inType))
            .mFilterId;
    };
    EXPECT_EQ(filter({}, kAudioFileAAC_ADTSType), "1633973363");
    EXPECT_EQ(filter({}, kAudioFileM4AType), "");
    ExportWish wish;
    wish.mSettings = "AudioFileTypeID:0:1633973363;";
    EXPECT_EQ(filter(wish, kAudioFileAAC_ADTSType), "");
    wish.mType = "aac";
    EXPECT_EQ(filter(wish, kAudioFileAAC_ADTSType), "1633973363");
}

// The plug-in: its dialog chooses a text, and every text is possible for any audio.
struct Script
{
    std::string mChosen;  // empty: cancelled
    bool mIsPossible = true;
    std::int32_t mDialogRate = 0;
    std::int32_t mRate = 0;
    std::int64_t mChannels = 0;
    std::int32_t mType = 0;
    std::int32_t mRepair = -1;
    int mJudged = 0;
};

Script* sScript = nullptr;

std::int32_t RunDialog(TarvoRunExportSettingsDialogInterface& ioRun)
{
    TarvoFormatInterface& format = *ioRun.GetFormatInterface();
    sScript->mDialogRate = format.GetSampleRate();
    if (!sScript->mChosen.empty())
        format.SetPrivateSettings(ToPlugIn(sScript->mChosen).c_str());
    ioRun.SetCancelled(sScript->mChosen.empty());
    return kTarvoResultSuccess;
}

std::int32_t Judge(TarvoGetExportSettingsInfoInterface& ioInfo)
{
    ++sScript->mJudged;
    const TarvoFormatInterface& format = *ioInfo.GetFormatInterface();
    sScript->mRate = format.GetSampleRate();
    sScript->mChannels = format.GetChannelCount();
    sScript->mType = format.GetSampleType();
    sScript->mRepair = ioInfo.GetRepairMode();
    return sScript->mIsPossible ? kTarvoResultSuccess : kTarvoResultUnsupportedFormat;
}

std::int32_t Entry(int inSelector, void*, void* inHostObject)
{
    if (inSelector == kTarvoSelectorRunExportSettingsDialog)
        return RunDialog(*static_cast<TarvoRunExportSettingsDialogInterface*>(inHostObject));
    EXPECT_EQ(inSelector, kTarvoSelectorGetExportSettingsInfo);
    return Judge(*static_cast<TarvoGetExportSettingsInfoInterface*>(inHostObject));
}

class SettingsChooserTest : public testing::Test
{
protected:
    SettingsChooserTest() { sScript = &mScript; }
    ~SettingsChooserTest() override { sScript = nullptr; }

    std::optional<ExportPlan> Choose(const std::string& inText, const ExportSource& inSource,
                                     const ExportWish& inWish = {})
    {
        mScript.mChosen = inText;
        return SettingsChooser(mPlugIn, {})
            .Choose(inWish, inSource, PlanOf(kAudioFileWAVEType), "a.wav");
    }

    Script mScript;
    const PlugIn mPlugIn{&Entry};
};

TEST_F(SettingsChooserTest, PlansExactlyTheChosenSettings)
{
    const auto plan = Choose(kMP3, Source(48000, 2, 20));
    ASSERT_TRUE(plan);
    EXPECT_EQ(plan->mSettings, kMP3);
    EXPECT_EQ(CodeText(plan->mFileType), "MPG3");
    EXPECT_EQ(CodeText(plan->mFormat), ".mp3");
    EXPECT_EQ(plan->mAudio.mSampleRate, 48000);
    EXPECT_EQ(plan->mAudio.ChannelCount(), 2u);
    EXPECT_EQ(plan->mAudio.mSampleType, 20);
    EXPECT_EQ(mScript.mRepair, 0);
    EXPECT_EQ(plan->mChanges,
              std::vector<std::string>{"a.wav: is a MPEG Layer 3 file, whose extension is .mp3"});
}

TEST_F(SettingsChooserTest, FollowsTheRateAndChannelsThatTheDialogCameTo)
{
    const auto plan = Choose(kMP3, Source(96000, 6, 30));
    ASSERT_TRUE(plan);
    EXPECT_EQ(mScript.mDialogRate, 96000);
    EXPECT_EQ(mScript.mRate, 48000);
    EXPECT_EQ(mScript.mChannels, 2);
    EXPECT_EQ(plan->mAudio.mSampleRate, 48000);
    EXPECT_EQ(plan->mAudio.mFrameCount, 500);
    EXPECT_EQ(plan->mChanges,
              (std::vector<std::string>{"sample rate 96000 Hz is not available: 48000 Hz",
                                        "6 channels are not available: 2",
                                        "a.wav: is a MPEG Layer 3 file, whose extension is .mp3"}));
}

TEST_F(SettingsChooserTest, HandsOverTheWishedDepthWhereTheFormatLeavesIt)
{
    ExportWish wish;
    wish.mDepth = SampleDepth{24, std::nullopt};
    EXPECT_EQ(Choose(kFLAC, Source(96000, 6, 20), wish)->mAudio.mSampleType, 30);
    EXPECT_EQ(Choose(kFLAC, Source(96000, 6, 20))->mAudio.mSampleType, 20);
    EXPECT_EQ(Choose(kFLAC, Source(96000, 6, 40))->mAudio.mSampleType, 30);
}

TEST_F(SettingsChooserTest, PlansNothingWhenCancelled)
{
    EXPECT_FALSE(Choose("", Source(48000, 2, 20)));
    EXPECT_EQ(mScript.mJudged, 0);
}

TEST_F(SettingsChooserTest, LooksForNothingElseWhenTheChoiceIsRefused)
{
    mScript.mIsPossible = false;
    try
    {
        (void)Choose(kMP3, Source(96000, 6, 30));
        FAIL();
    }
    catch (const Failure& failure)
    {
        EXPECT_EQ(failure.mExitCode, kExitSettings);
    }
    EXPECT_EQ(mScript.mJudged, 1);
}

}  // namespace

}  // namespace host
