#include "Tarvo_PlugIns/TarvoAT/private/TarvoATPrivateSettings.h"

#include "tests/support/ScriptedPlatform.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

using namespace testing_support;
using tarvo::TarvoATPrivateSettings;

constexpr char16_t kDefaultText[] =
    u"AudioFileTypeID:0:1667327590;Bitrate:0:64000;BitrateMode:0:0;BitsPerChannel:0:16;"
    u"BytesPerFrame:0:4;BytesPerPacket:0:4;ChannelsPerFrame:0:2;FormatFlags:0:14;"
    u"FormatID:0:1819304813;FramesPerPacket:0:1;SampleRateHigh:0:1088784512;SampleRateLow:0:0;"
    u"VBRQuality:0:96;";

void ExpectDefaults(const TarvoATPrivateSettings& inSettings)
{
    EXPECT_EQ(inSettings.GetAudioFileTypeID(), 0x63616666u);
    EXPECT_EQ(inSettings.GetSampleRate(), 44100.0);
    EXPECT_EQ(inSettings.GetFormatID(), 0x6C70636Du);
    EXPECT_EQ(inSettings.GetFormatFlags(), 0xEu);
    EXPECT_EQ(inSettings.GetBytesPerPacket(), 4u);
    EXPECT_EQ(inSettings.GetFramesPerPacket(), 1u);
    EXPECT_EQ(inSettings.GetBytesPerFrame(), 4u);
    EXPECT_EQ(inSettings.GetChannelsPerFrame(), 2u);
    EXPECT_EQ(inSettings.GetBitsPerChannel(), 16u);
    EXPECT_EQ(inSettings.GetBitrateMode(), 0u);
    EXPECT_EQ(inSettings.GetBitrate(), 64000u);
    EXPECT_EQ(inSettings.GetVBRQuality(), 96u);
}

TarvoATPrivateSettings OddSettings()
{
    TarvoATPrivateSettings settings(
        0x6D346166, CAStreamBasicDescription(48000.5, 0x61616320, 1, 1024, 3, 6, 5, 0x80000007));
    settings.SetBitrateMode(3);
    settings.SetBitrate(0xFFFFFFFF);
    settings.SetVBRQuality(127);
    return settings;
}

TEST(SettingsRecord, StartsWithTheDefaults)
{
    ExpectDefaults(TarvoATPrivateSettings());
    EXPECT_EQ(TarvoATPrivateSettings().GetStreamBasicDescription().mReserved, 0u);
}

TEST(SettingsRecord, TakesFileTypeAndFormatAndKeepsTheEncoderDefaults)
{
    const TarvoATPrivateSettings settings(
        0x57415645, CAStreamBasicDescription(8000, 0x6C70636D, 2, 1, 2, 1, 16, 12));
    EXPECT_EQ(settings.GetAudioFileTypeID(), 0x57415645u);
    EXPECT_EQ(settings.GetSampleRate(), 8000.0);
    EXPECT_EQ(settings.GetChannelsPerFrame(), 1u);
    EXPECT_EQ(settings.GetFormatFlags(), 12u);
    EXPECT_EQ(settings.GetBitrateMode(), 0u);
    EXPECT_EQ(settings.GetBitrate(), 64000u);
    EXPECT_EQ(settings.GetVBRQuality(), 96u);
}

TEST(SettingsRecord, SetDefaultsLeavesTheReservedFieldAlone)
{
    TarvoATPrivateSettings settings = OddSettings();
    CAStreamBasicDescription format = settings.GetStreamBasicDescription();
    format.mReserved = 7;
    settings.SetStreamBasicDescription(format);
    settings.SetDefaults();
    ExpectDefaults(settings);
    EXPECT_EQ(settings.GetStreamBasicDescription().mReserved, 7u);
}

TEST(SettingsRecord, EachSetterChangesItsOwnField)
{
    TarvoATPrivateSettings settings;
    settings.SetAudioFileTypeID(1);
    settings.SetSampleRate(2.5);
    settings.SetFormatID(3);
    settings.SetChannelsPerFrame(4);
    settings.SetBytesPerPacket(5);
    settings.SetFramesPerPacket(6);
    settings.SetBytesPerFrame(7);
    settings.SetBitsPerChannel(8);
    settings.SetFormatFlags(9);
    settings.SetBitrateMode(10);
    settings.SetBitrate(11);
    settings.SetVBRQuality(12);

    const CAStreamBasicDescription format = settings.GetStreamBasicDescription();
    EXPECT_EQ(settings.GetAudioFileTypeID(), 1u);
    EXPECT_EQ(format.mSampleRate, 2.5);
    EXPECT_EQ(format.mFormatID, 3u);
    EXPECT_EQ(format.mChannelsPerFrame, 4u);
    EXPECT_EQ(format.mBytesPerPacket, 5u);
    EXPECT_EQ(format.mFramesPerPacket, 6u);
    EXPECT_EQ(format.mBytesPerFrame, 7u);
    EXPECT_EQ(format.mBitsPerChannel, 8u);
    EXPECT_EQ(format.mFormatFlags, 9u);
    EXPECT_EQ(settings.GetBitrateMode(), 10u);
    EXPECT_EQ(settings.GetBitrate(), 11u);
    EXPECT_EQ(settings.GetVBRQuality(), 12u);
}

TEST(SettingsRecord, TheDefaultsHaveTheirText)
{
    EXPECT_EQ(TarvoATPrivateSettings().GetSerialized(), kDefaultText);
}

TEST(SettingsRecord, ValuesStandInTheTextAsSignedBitPatterns)
{
    EXPECT_EQ(OddSettings().GetSerialized(),
              u"AudioFileTypeID:0:1832149350;Bitrate:0:-1;BitrateMode:0:3;BitsPerChannel:0:5;"
              u"BytesPerFrame:0:3;BytesPerPacket:0:1;ChannelsPerFrame:0:6;"
              u"FormatFlags:0:-2147483641;FormatID:0:1633772320;FramesPerPacket:0:1024;"
              u"SampleRateHigh:0:1088909328;SampleRateLow:0:0;VBRQuality:0:127;");
}

TEST(SettingsRecord, ComesBackFromItsText)
{
    for (const double rate : {0.0, 1.0 / 3.0, 44100.0, 48000.5, 384000.0, 2822400.1})
    {
        TarvoATPrivateSettings written = OddSettings();
        written.SetSampleRate(rate);
        TarvoATPrivateSettings read;
        EXPECT_TRUE(read.InitializeFromSerialized(written.GetSerialized())) << rate;
        EXPECT_EQ(read.GetSampleRate(), rate);
        EXPECT_EQ(read.GetSerialized(), written.GetSerialized()) << rate;
    }
}

TEST(SettingsRecord, AnEmptyTextGivesTheDefaults)
{
    TarvoATPrivateSettings settings = OddSettings();
    EXPECT_TRUE(settings.InitializeFromSerialized(u""));
    ExpectDefaults(settings);
}

TEST(SettingsRecord, ATextWithoutKnownKeysGivesTheDefaults)
{
    TarvoATPrivateSettings settings = OddSettings();
    EXPECT_TRUE(settings.InitializeFromSerialized(u"audiofiletypeid:0:1;Rate:0:8000;Bitrate:1:5;"));
    ExpectDefaults(settings);
}

TEST(SettingsRecord, WhatATextLacksStaysAtItsDefault)
{
    TarvoATPrivateSettings settings = OddSettings();
    EXPECT_TRUE(settings.InitializeFromSerialized(u"Bitrate:0:128000;ChannelsPerFrame:0:1;"));
    EXPECT_EQ(settings.GetBitrate(), 128000u);
    EXPECT_EQ(settings.GetChannelsPerFrame(), 1u);
    EXPECT_EQ(settings.GetBytesPerFrame(), 4u);
    EXPECT_EQ(settings.GetAudioFileTypeID(), 0x63616666u);
}

TEST(SettingsRecord, HalfARateLeaves44100)
{
    TarvoATPrivateSettings settings;
    EXPECT_TRUE(settings.InitializeFromSerialized(u"SampleRateHigh:0:1088909328;"));
    EXPECT_EQ(settings.GetSampleRate(), 44100.0);
    EXPECT_TRUE(settings.InitializeFromSerialized(u"SampleRateLow:0:5;"));
    EXPECT_EQ(settings.GetSampleRate(), 44100.0);
    EXPECT_TRUE(settings.InitializeFromSerialized(
        u"SampleRateHigh:0:1070945621;SampleRateLow:0:1431655765;"));
    EXPECT_EQ(settings.GetSampleRate(), 1.0 / 3.0);
    EXPECT_TRUE(settings.InitializeFromSerialized(
        u"SampleRateHigh:0:1088784512;SampleRateLow:0:-2147483648;"));
    EXPECT_EQ(settings.GetSampleRate(), 44100.0 + std::ldexp(1.0, -6));
}

TEST(SettingsRecord, AnImplausibleFormatIsToldAndKept)
{
    TarvoATPrivateSettings settings;
    EXPECT_FALSE(settings.InitializeFromSerialized(u"Bitrate:0:1;ChannelsPerFrame:0:0;"));
    EXPECT_EQ(settings.GetChannelsPerFrame(), 0u);
    EXPECT_EQ(settings.GetBitrate(), 1u);
}

TEST(SettingsRecord, OnlyLinearPCMAndAppleLosslessLoseNothing)
{
    struct Row
    {
        UInt32 mFormat;
        bool mLossy;
    };
    for (const Row& row : {Row{0x6C70636D, false}, Row{0x616C6163, false}, Row{0x61616320, true},
                           Row{0x666C6163, true}, Row{0x756C6177, true}, Row{0, true}})
    {
        TarvoATPrivateSettings settings;
        settings.SetFormatID(row.mFormat);
        EXPECT_EQ(settings.IsFormatLossy(), row.mLossy) << std::hex << row.mFormat;
    }
}

struct SettingsDescriptionTest : testing::Test
{
    SettingsDescriptionTest()
    {
        mPlatform.Answer(Family::Global, kAudioFileGlobalInfo_FileTypeName,
                         PropertyAnswer::Name("MPEG-4 Audio"));
        mPlatform.Answer(Family::Format, kAudioFormatProperty_FormatName,
                         PropertyAnswer::Name("AAC"));
        mSettings = TarvoATPrivateSettings(
            kAudioFileM4AType, CAStreamBasicDescription(44100, 0x61616320, 0, 1024, 0, 2, 0, 0));
    }

    ScriptedPlatform mPlatform;
    TarvoATPrivateSettings mSettings;
};

TEST_F(SettingsDescriptionTest, TellsFileTypeAndFormat)
{
    EXPECT_EQ(mSettings.GetFormatDescription(), u"MPEG-4 Audio\nAAC");
}

TEST_F(SettingsDescriptionTest, ExtendedTellsTheBitRateToo)
{
    mSettings.SetBitrate(128000);
    EXPECT_EQ(mSettings.GetExtendedFormatDescription(), u"MPEG-4 Audio\nAAC\nCBR: 128 kbps");
}

TEST_F(SettingsDescriptionTest, ExtendedTellsTheQualityOfVariableMode)
{
    mSettings.SetBitrateMode(3);
    EXPECT_EQ(mSettings.GetExtendedFormatDescription(), u"MPEG-4 Audio\nAAC\nVBR Quality: High");
}

TEST_F(SettingsDescriptionTest, ExtendedWidensItsNumbersWithoutSign)
{
    mSettings.SetBitrateMode(0xFFFFFFFF);
    EXPECT_EQ(mSettings.GetExtendedFormatDescription(), u"MPEG-4 Audio\nAAC");
    mSettings.SetBitrateMode(0);
    mSettings.SetBitrate(0xFFFFFFFF);
    EXPECT_EQ(mSettings.GetExtendedFormatDescription(), u"MPEG-4 Audio\nAAC\nCBR: 4294967295 bps");
}

}  // namespace
