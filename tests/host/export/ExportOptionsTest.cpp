#include "host/export/ExportOptions.h"

#include "host/Failure.h"

#include <gtest/gtest.h>

#include <string>

namespace host
{

namespace
{

int ExitCodeOf(const ExportOptions& inOptions)
{
    try
    {
        (void)ReadWish(inOptions);
        return kExitDone;
    }
    catch (const Failure& failure)
    {
        return failure.mExitCode;
    }
}

TEST(ExportOptionsText, BitRatesComeInBitsThousandsAndMillions)
{
    EXPECT_EQ(ReadBitrate("192k"), 192000u);
    EXPECT_EQ(ReadBitrate("192K"), 192000u);
    EXPECT_EQ(ReadBitrate("192000"), 192000u);
    EXPECT_EQ(ReadBitrate("1.5M"), 1500000u);
    EXPECT_EQ(ReadBitrate("12.2k"), 12200u);
}

TEST(ExportOptionsText, WhatIsNoBitRateIsRefused)
{
    for (const char* text : {"", "k", "0", "-1", "192kk", "192 k", "nan", "inf", "1e99", "0x10",
                             "192k\n", "100.1M", "0.4"})
        EXPECT_FALSE(ReadBitrate(text)) << text;
}

TEST(ExportOptionsText, RatesComeInHertzAndKilohertz)
{
    EXPECT_EQ(ReadRate("48000"), 48000);
    EXPECT_EQ(ReadRate("44.1k"), 44100);
    EXPECT_EQ(ReadRate("1000000"), 1000000);
    for (const char* text : {"0", "1000001", "-44100", "fast", "2M"})
        EXPECT_FALSE(ReadRate(text)) << text;
}

TEST(ExportOptionsText, DepthsHaveAKindWhereOneIsSaid)
{
    EXPECT_EQ(ReadDepth("16"), (SampleDepth{16, {}}));
    EXPECT_EQ(ReadDepth("20"), (SampleDepth{20, {}}));
    EXPECT_EQ(ReadDepth("32f"), (SampleDepth{32, true}));
    EXPECT_EQ(ReadDepth("32i"), (SampleDepth{32, false}));
    EXPECT_EQ(ReadDepth("float"), (SampleDepth{32, true}));
    for (const char* text : {"", "f", "0", "12", "64", "16f", "-8", "32ff"})
        EXPECT_FALSE(ReadDepth(text)) << text;
}

TEST(ExportOptionsText, QualitiesAndModesHaveNames)
{
    EXPECT_EQ(ReadQuality("max"), 127u);
    EXPECT_EQ(ReadQuality("high"), 96u);
    EXPECT_EQ(ReadQuality("medium"), 64u);
    EXPECT_EQ(ReadQuality("low"), 32u);
    EXPECT_EQ(ReadQuality("min"), 0u);
    EXPECT_EQ(ReadQuality("100"), 100u);
    EXPECT_FALSE(ReadQuality("128"));
    EXPECT_FALSE(ReadQuality("-1"));
    EXPECT_EQ(ReadMode("cbr"), 0u);
    EXPECT_EQ(ReadMode("abr"), 1u);
    EXPECT_EQ(ReadMode("cvbr"), 2u);
    EXPECT_EQ(ReadMode("vbr"), 3u);
    EXPECT_FALSE(ReadMode("CBR"));
}

TEST(ExportOptionsText, ChannelCountsEndAtSixtyFour)
{
    EXPECT_EQ(ReadChannelCount("1"), 1u);
    EXPECT_EQ(ReadChannelCount("64"), 64u);
    for (const char* text : {"0", "65", "-2", "2.0", "4294967298"})
        EXPECT_FALSE(ReadChannelCount(text)) << text;
}

TEST(ExportOptionsTest, NothingGivenAsksForNothing)
{
    const ExportWish wish = ReadWish({});
    EXPECT_FALSE(wish.mDepth || wish.mBitrate || wish.mMode || wish.mQuality || wish.mRate ||
                 wish.mChannels || wish.mSettings);
    EXPECT_EQ(wish.mRepair, RepairMode::kFit);
}

TEST(ExportOptionsTest, UnreadableValuesAreWrongUse)
{
    EXPECT_EQ(ExitCodeOf({.mDepth = "7"}), 2);
    EXPECT_EQ(ExitCodeOf({.mBitrate = "fast"}), 2);
    EXPECT_EQ(ExitCodeOf({.mMode = "xbr"}), 2);
    EXPECT_EQ(ExitCodeOf({.mQuality = "best"}), 2);
    EXPECT_EQ(ExitCodeOf({.mRate = "-1"}), 2);
    EXPECT_EQ(ExitCodeOf({.mChannels = "0"}), 2);
    EXPECT_EQ(ExitCodeOf({.mRepair = "all"}), 2);
}

TEST(ExportOptionsTest, OptionsThatExcludeEachOtherAreWrongUse)
{
    EXPECT_EQ(ExitCodeOf({.mBitrate = "192k", .mQuality = "high"}), 2);
    EXPECT_EQ(ExitCodeOf({.mBitrate = "192k", .mMode = "vbr"}), 2);
    EXPECT_EQ(ExitCodeOf({.mMode = "cbr", .mQuality = "high"}), 2);
    EXPECT_EQ(ExitCodeOf({.mMode = "vbr", .mQuality = "high"}), 0);
    EXPECT_EQ(ExitCodeOf({.mBitrate = "192k", .mMode = "abr"}), 0);
}

TEST(ExportOptionsTest, TheRepairModesHaveTheInterfacesNumbers)
{
    EXPECT_EQ(static_cast<int>(ReadWish({.mRepair = "none"}).mRepair), 0);
    EXPECT_EQ(static_cast<int>(ReadWish({.mRepair = "fit"}).mRepair), 1);
    EXPECT_EQ(static_cast<int>(ReadWish({.mRepair = "stored"}).mRepair), 2);
}

TEST(ExportOptionsTest, ASettingsTextIsTakenAsItIs)
{
    EXPECT_EQ(ReadWish({.mSettings = "AB:0:1;"}).mSettings, "AB:0:1;");
    EXPECT_EQ(ReadWish({.mSettings = ""}).mSettings, "");
}

}  // namespace

}  // namespace host
