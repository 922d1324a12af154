#include "host/export/ExportPlan.h"

#include "host/Failure.h"
#include "host/StoredSettings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace host
{

namespace
{

using Targets = std::vector<std::pair<std::int32_t, std::size_t>>;

// A plug-in that accepts some rates and channel counts, and takes everything else as it comes.
class Judge
{
public:
    std::vector<std::int32_t> mRates;    // empty: all
    std::vector<std::size_t> mChannels;  // empty: all
    std::size_t mMostChannels = 0;       // to which a fit narrows; 0: it does not
    std::int64_t mBytesPerFrame = 4;     // of the estimate
    mutable std::vector<ExportRequest> mAsked;

    ExportAnswer operator()(const ExportRequest& inRequest) const
    {
        mAsked.push_back(inRequest);
        ExportAnswer answer;
        answer.mAudio = inRequest.mAudio;
        answer.mSettings = inRequest.mSettings;
        answer.mDescription = "Description";
        answer.mMimeType = "audio/test";
        answer.mExtensions = {"one", "two"};
        const std::size_t channels = answer.mAudio.ChannelCount();
        if (inRequest.mRepair == RepairMode::kFit && mMostChannels && channels > mMostChannels)
            answer.mAudio.mLabels.resize(mMostChannels);
        answer.mEstimatedBits = inRequest.mAudio.mFrameCount * mBytesPerFrame * 8 + 2048;
        answer.mResult =
            Has(mRates, answer.mAudio.mSampleRate) && Has(mChannels, answer.mAudio.ChannelCount())
                ? 0
                : -8;
        return answer;
    }

    Targets Asked() const
    {
        Targets targets;
        for (const ExportRequest& request : mAsked)
            targets.emplace_back(request.mAudio.mSampleRate, request.mAudio.ChannelCount());
        return targets;
    }

private:
    template <typename Number>
    static bool Has(const std::vector<Number>& inList, Number inNumber)
    {
        return inList.empty() || std::find(inList.begin(), inList.end(), inNumber) != inList.end();
    }
};

ExportSource Source(std::int32_t inRate, std::size_t inChannels, std::int64_t inFrames = 1000)
{
    ExportSource source;
    source.mShape.mSampleRate = inRate;
    source.mShape.mSampleType = 20;
    source.mShape.mFrameCount = inFrames;
    source.mShape.mLabels.assign(inChannels, 0);
    return source;
}

ExportPlan Plan(const Judge& inJudge, const ExportWish& inWish, const ExportSource& inSource,
                const std::string& inPath = "a.mp3")
{
    return PlanExport(std::ref(inJudge), inWish, inSource, inPath);
}

Failure RefusalOf(const Judge& inJudge, const ExportWish& inWish, const ExportSource& inSource,
                  const std::string& inPath = "a.mp3")
{
    try
    {
        (void)Plan(inJudge, inWish, inSource, inPath);
        return Failure(kExitDone, 0, "");
    }
    catch (const Failure& failure)
    {
        return failure;
    }
}

TEST(ExportPlanTest, TakesWhatThePlugInTells)
{
    const Judge judge;
    const ExportPlan plan = Plan(judge, {}, Source(44100, 2));
    EXPECT_EQ(judge.mAsked.size(), 1u);
    EXPECT_EQ(judge.mAsked[0].mRepair, RepairMode::kFit);
    EXPECT_EQ(plan.mDescription, "Description");
    EXPECT_EQ(plan.mMimeType, "audio/test");
    EXPECT_EQ(plan.mExtensions, (std::vector<std::string>{"one", "two"}));
    EXPECT_EQ(plan.mEstimatedBytes, 4256);
    EXPECT_EQ(CodeText(plan.mFileType), "MPG3");
    EXPECT_EQ(CodeText(plan.mFormat), ".mp3");
    EXPECT_TRUE(plan.mChanges.empty());
}

TEST(ExportPlanTest, AsksForTheNextRatesNearestFirst)
{
    Judge judge;
    judge.mRates = {8000};
    const ExportPlan plan = Plan(judge, {}, Source(20000, 2));
    EXPECT_EQ(judge.Asked(), (Targets{{20000, 2},
                                      {22050, 2},
                                      {24000, 2},
                                      {16000, 2},
                                      {12000, 2},
                                      {11025, 2},
                                      {32000, 2},
                                      {8000, 2}}));
    EXPECT_EQ(plan.mAudio.mSampleRate, 8000);
    EXPECT_EQ(plan.mAudio.mFrameCount, 400);
    EXPECT_EQ(plan.mChanges,
              std::vector<std::string>{"sample rate 20000 Hz is not available: 8000 Hz"});
}

TEST(ExportPlanTest, TellsA96kHzSourceThatItBecomes48)
{
    Judge judge;
    judge.mRates = {48000, 44100};
    EXPECT_EQ(Plan(judge, {}, Source(96000, 2)).mChanges,
              std::vector<std::string>{"sample rate 96000 Hz is not available: 48000 Hz"});
}

TEST(ExportPlanTest, ARateThatTheUserGaveIsNotReplaced)
{
    Judge judge;
    judge.mRates = {48000};
    const Failure failure = RefusalOf(judge, {.mRate = 96000}, Source(48000, 2));
    EXPECT_EQ(failure.mExitCode, 5);
    EXPECT_EQ(failure.mResult, -8);
    EXPECT_STREQ(failure.what(),
                 "96000 Hz and 2 channels are not possible for MPEG Layer 3 in MPEG Layer 3 files; "
                 "possible rates: 8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000; "
                 "channels: 1, 2");
    EXPECT_EQ(judge.Asked(), (Targets{{96000, 2}, {96000, 1}}));
}

TEST(ExportPlanTest, WithoutRepairThePlugInIsAskedOnce)
{
    Judge judge;
    judge.mRates = {48000};
    for (const RepairMode repair : {RepairMode::kNone, RepairMode::kStored})
    {
        judge.mAsked.clear();
        EXPECT_EQ(RefusalOf(judge, {.mRepair = repair}, Source(96000, 2)).mExitCode, 5);
        ASSERT_EQ(judge.mAsked.size(), 1u);
        EXPECT_EQ(judge.mAsked[0].mRepair, repair);
    }
}

TEST(ExportPlanTest, AChannelCountBetweenTwoAllowedOnesBecomesTheLargerNeighbour)
{
    Judge judge;
    judge.mChannels = {1, 2, 3, 4, 5, 6, 8};
    const ExportPlan plan = Plan(judge, {}, Source(48000, 7), "a.m4a");
    EXPECT_EQ(plan.mAudio.ChannelCount(), 8u);
    EXPECT_EQ(plan.mChanges, std::vector<std::string>{"7 channels are not available: 8"});
}

TEST(ExportPlanTest, AChannelCountThatTheUserGaveIsNotReplacedByTheHost)
{
    Judge judge;
    judge.mChannels = {8};
    EXPECT_EQ(
        RefusalOf(judge, {.mRate = 48000, .mChannels = 7}, Source(48000, 2), "a.m4a").mExitCode, 5);
    EXPECT_EQ(judge.Asked(), (Targets{{48000, 7}}));
}

TEST(ExportPlanTest, WhatThePlugInFitsIsToldAndItsBitRateSettledAnew)
{
    Judge judge;
    judge.mMostChannels = 2;
    judge.mRates = {48000};
    const ExportPlan plan = Plan(judge, {}, Source(96000, 6));
    EXPECT_EQ(plan.mAudio.ChannelCount(), 2u);
    EXPECT_EQ(plan.mAudio.mSampleRate, 48000);
    EXPECT_EQ(SettingsNumber(plan.mSettings, "Bitrate"), 128000);
    EXPECT_EQ(judge.mAsked.back().mRepair, RepairMode::kNone);
    EXPECT_EQ(plan.mChanges,
              (std::vector<std::string>{"sample rate 96000 Hz is not available: 48000 Hz",
                                        "6 channels are not available: 2"}));
}

TEST(ExportPlanTest, TheUsersRateAndChannelsAreTheAudios)
{
    const Judge judge;
    const ExportPlan plan = Plan(judge, {.mRate = 22050, .mChannels = 1}, Source(44100, 2));
    EXPECT_EQ(plan.mAudio.mSampleRate, 22050);
    EXPECT_EQ(plan.mAudio.ChannelCount(), 1u);
    EXPECT_EQ(plan.mAudio.mFrameCount, 500);
    EXPECT_TRUE(plan.mChanges.empty());
}

// 2^30 frames of 4 bytes and the allowance of 256 bytes: above 4 GiB.
constexpr std::int64_t kTooLong = 1LL << 30;

TEST(ExportSize, BeyondFourGiBTheExtensionWavMeansRF64)
{
    const ExportPlan plan = Plan({}, {}, Source(44100, 2, kTooLong), "a.wav");
    EXPECT_EQ(CodeText(plan.mFileType), "RF64");
    EXPECT_EQ(plan.mChanges, std::vector<std::string>{"WAVE files end at 4 GiB: RF64"});
}

TEST(ExportSize, AtFourGiBLessOneByteTheTypeStays)
{
    Judge judge;
    judge.mBytesPerFrame = 1;
    EXPECT_EQ(CodeText(Plan(judge, {}, Source(44100, 2, 0xFFFFFFFF - 256), "a.wav").mFileType),
              "WAVE");
    EXPECT_EQ(CodeText(Plan(judge, {}, Source(44100, 2, 0xFFFFFFFF - 255), "a.wav").mFileType),
              "RF64");
}

TEST(ExportSize, AnExplicitTypeIsRefusedWithThoseThatGoBeyond)
{
    const Failure failure = RefusalOf({}, {.mType = "WAVE"}, Source(44100, 2, kTooLong), "a.wav");
    EXPECT_EQ(failure.mExitCode, 5);
    EXPECT_STREQ(failure.what(),
                 "the file would have 4.0 GiB, and WAVE files end at 4 GiB; "
                 "possible: --type RF64, --type caff (.caf), --type W64f (.w64)");
}

TEST(ExportSize, OtherTypesThatEndAreRefusedToo)
{
    for (const char* path : {"a.aiff", "a.aifc", "a.au", "a.wave"})
        EXPECT_EQ(RefusalOf({}, {}, Source(44100, 2, kTooLong), path).mExitCode, 5) << path;
    for (const char* path : {"a.caf", "a.w64", "a.rf64"})
        EXPECT_EQ(RefusalOf({}, {}, Source(44100, 2, kTooLong), path).mExitCode, 0) << path;
}

TEST(ExportSize, CompandedAudioCountsEightBitsASample)
{
    // Half of what the plug-in estimates would let 4 GiB and a little pass.
    Judge judge;
    judge.mBytesPerFrame = 1;
    const ExportWish wish{.mType = "WAVE", .mFormat = "alaw"};
    EXPECT_EQ(RefusalOf(judge, wish, Source(44100, 2, 0x7FFFFFFF), "a.wav").mExitCode, 5);
    EXPECT_EQ(RefusalOf(judge, wish, Source(44100, 2, 0x7FFFFF00), "a.wav").mExitCode, 0);
}

TEST(ExportSize, BlocksOfADPCMCountAQuarterOfPCM)
{
    const ExportWish wish{.mType = "WAVE", .mFormat = "ms-adpcm"};
    EXPECT_EQ(RefusalOf({}, wish, Source(44100, 2, kTooLong), "a.wav").mExitCode, 0);
    EXPECT_EQ(RefusalOf({}, wish, Source(44100, 2, kTooLong * 4), "a.wav").mExitCode, 5);
}

TEST(ExportType, IsThePlugInsDefaultWithoutAFileOrSettings)
{
    const ExportPlan plan = Plan({}, {}, Source(44100, 2), "");
    EXPECT_EQ(CodeText(plan.mFileType), "caff");
    EXPECT_EQ(plan.mSettings,
              "AudioFileTypeID:0:1667327590;Bitrate:0:1411200;BitrateMode:0:0;BitsPerChannel:0:16;"
              "BytesPerFrame:0:4;BytesPerPacket:0:4;ChannelsPerFrame:0:2;FormatFlags:0:14;"
              "FormatID:0:1819304813;FramesPerPacket:0:1;SampleRateHigh:0:1088784512;"
              "SampleRateLow:0:0;VBRQuality:0:96;");
}

TEST(ExportType, OfTheSettingsWinsOverTheExtensionAndSaysSo)
{
    const std::string settings = Plan({}, {}, Source(44100, 2), "a.mp3").mSettings;
    const ExportPlan plan = Plan({}, {.mSettings = settings}, Source(44100, 2), "a.wav");
    EXPECT_EQ(CodeText(plan.mFileType), "MPG3");
    EXPECT_EQ(plan.mChanges,
              std::vector<std::string>{"a.wav: is a MPEG Layer 3 file, whose extension is .mp3"});
}

TEST(ExportType, OfNoCatalogueIsImpossibleWhateverThePlugInSays)
{
    const Failure failure =
        RefusalOf({}, {.mSettings = "AudioFileTypeID:0:305419896;"}, Source(44100, 2), "");
    EXPECT_EQ(failure.mExitCode, 5);
    EXPECT_NE(std::string(failure.what()).find("cannot be written"), std::string::npos)
        << failure.what();
}

}  // namespace

}  // namespace host
