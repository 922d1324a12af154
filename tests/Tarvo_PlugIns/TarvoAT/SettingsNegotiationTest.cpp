// Rates, channels and the validity of a settings record.
#include "tests/Tarvo_PlugIns/TarvoAT/SettingsNegotiationFixture.h"

#include <limits>

namespace
{

using namespace testing_support;
using tarvo::TarvoATPrivateSettings;
using Calls = std::vector<std::string>;

constexpr auto kSampleRates = kAudioFormatProperty_AvailableEncodeSampleRates;
constexpr auto kChannels = kAudioFormatProperty_AvailableEncodeNumberChannels;

// Rates.

TEST_F(SettingsNegotiation, RatesBelowOneAreRefusedWithoutAQuestion)
{
    for (const double rate :
         {0.5, 0.0, -1.0, -44100.0, 0.9999999, std::numeric_limits<double>::quiet_NaN(),
          -std::numeric_limits<double>::infinity()})
    {
        EXPECT_FALSE(mWave.TrySampleRate(rate)) << rate;
        EXPECT_EQ(mWave.GetSampleRate(), 44100.0) << rate;
    }
    EXPECT_EQ(mPlatform.Calls(), Calls());
}

TEST_F(SettingsNegotiation, ARateOfOneIsEnough)
{
    EXPECT_TRUE(mWave.TrySampleRate(1.0));
    EXPECT_EQ(mWave.GetSampleRate(), 1.0);
}

TEST_F(SettingsNegotiation, RatesAreAskedByFormatWithRoomForOneRange)
{
    EXPECT_TRUE(mAAC.TrySampleRate(48000.0));
    EXPECT_EQ(mPlatform.Calls(),
              (Calls{"AudioFormatGetPropertyInfo 'aesr' specifier 4 'aac ' size 16",
                     "AudioFormatGetProperty 'aesr' specifier 4 'aac ' size 16"}));
}

TEST_F(SettingsNegotiation, TheReportedSizeIsHandedToTheReading)
{
    AnswerRates({{8000.0, 8000.0}, {16000.0, 16000.0}, {32000.0, 48000.0}});
    EXPECT_TRUE(mAAC.TrySampleRate(48000.0));
    ASSERT_EQ(mPlatform.Calls().size(), 2u);
    EXPECT_EQ(mPlatform.Calls()[1], "AudioFormatGetProperty 'aesr' specifier 4 'aac ' size 48");
}

TEST_F(SettingsNegotiation, AFormatWithoutRatesTakesAny)
{
    EXPECT_TRUE(mAAC.TrySampleRate(1234567.5));
    EXPECT_EQ(mAAC.GetSampleRate(), 1234567.5);
}

TEST_F(SettingsNegotiation, ARateIsKeptWhereverItLies)
{
    AnswerRates({{8000.0, 12000.0}, {16000.0, 16000.0}, {22050.0, 48000.0}});
    for (const double rate : {1.0, 8000.0, 12000.0, 12000.5, 16000.0, 22049.0, 44100.0, 48000.0,
                              96000.0, 1e300, std::numeric_limits<double>::infinity()})
    {
        EXPECT_TRUE(mAAC.TrySampleRate(rate)) << rate;
        EXPECT_EQ(mAAC.GetSampleRate(), rate);
    }
}

TEST_F(SettingsNegotiation, ARangeFromZeroMeansAnyRate)
{
    for (const AudioValueRange range :
         {AudioValueRange{0.0, 0.0}, AudioValueRange{0.0, 100.0}, AudioValueRange{-1.0, 100.0},
          AudioValueRange{5.0, 0.0}, AudioValueRange{5.0, -1.0}})
    {
        AnswerRates({range});
        EXPECT_TRUE(mAAC.TrySampleRate(96000.0));
        EXPECT_EQ(mAAC.GetSampleRate(), 96000.0);
        mAAC.SetSampleRate(44100.0);
    }
}

TEST_F(SettingsNegotiation, ASizeOfZeroKeepsTheStoredRate)
{
    mPlatform.Answer(Family::Format, kSampleRates, PropertyAnswer());
    EXPECT_TRUE(mAAC.TrySampleRate(96000.0));
    EXPECT_EQ(mAAC.GetSampleRate(), 44100.0);
    EXPECT_EQ(mPlatform.Calls().size(), 2u);
}

TEST_F(SettingsNegotiation, FailuresOfTheRateQuestionsDoNotShow)
{
    const PropertyAnswer ranges = PropertyAnswer::Value(AudioValueRange{8000.0, 48000.0});
    for (const PropertyAnswer& answer :
         {ranges.InfoFails(-50), ranges.GetFails(-50), ranges.InfoFails(-50).GetFails(-50),
          ranges.InfoFails(-50).Size(64), ranges.Size(1), ranges.Size(160)})
    {
        mPlatform.Answer(Family::Format, kSampleRates, answer);
        EXPECT_TRUE(mAAC.TrySampleRate(96000.0));
        EXPECT_EQ(mAAC.GetSampleRate(), 96000.0);
        mAAC.SetSampleRate(44100.0);
    }
}

TEST_F(SettingsNegotiation, AFailingQueryThatTellsASizeIsBelieved)
{
    mPlatform.Answer(Family::Format, kSampleRates, PropertyAnswer().InfoFails(-50).Size(0));
    EXPECT_TRUE(mAAC.TrySampleRate(96000.0));
    EXPECT_EQ(mAAC.GetSampleRate(), 44100.0);
}

// Channels.

TEST_F(SettingsNegotiation, ChannelsAreAskedByTheWholeFormat)
{
    mScript.mEncoders[kAAC].mChannelCounts = {1, 2};
    EXPECT_TRUE(mAAC.TryChannelsPerFrame(1));
    EXPECT_EQ(mPlatform.Calls(), (Calls{"AudioFormatGetPropertyInfo 'avnc' specifier 40 size 0",
                                        "AudioFormatGetProperty 'avnc' specifier 40 size 8"}));
    EXPECT_EQ(mAAC.GetChannelsPerFrame(), 1u);
}

TEST_F(SettingsNegotiation, ChannelsAreAskedWithTheFormatAsItStands)
{
    CAStreamBasicDescription asked;
    mPlatform.AnswerWith(Family::Format, kChannels,
                         [&asked](const Question& question)
                         {
        std::memcpy(&asked, question.mSpecifier.data(), question.mSpecifier.size());
        return PropertyAnswer::Value<UInt32>(2);
    });
    EXPECT_TRUE(mAAC.TryChannelsPerFrame(1));
    EXPECT_EQ(asked.mSampleRate, 44100.0);
    EXPECT_EQ(asked.mFormatID, kAAC);
    EXPECT_EQ(asked.mFramesPerPacket, 1024u);
    EXPECT_EQ(asked.mChannelsPerFrame, 2u);
}

TEST_F(SettingsNegotiation, ChannelsAreMovedIntoTheEncodersRange)
{
    struct Row
    {
        Codes mCounts;
        UInt32 mWish;
        UInt32 mStored;
    };
    const Row rows[] = {
        {{1, 2}, 6, 2},
        {{1, 2}, 0, 1},
        {{1, 2, 6}, 4, 4},
        {{6, 1, 2}, 9, 6},
        {{6, 1, 2}, 0, 1},
        {{2}, 1, 2},
        {{1, 2}, 0xFFFFFFFE, 2},
        {{0, 8}, 0, 0},
        {{2, kAnyCount}, 1000, 1000},
        {{2, kAnyCount}, 1, 2},
        {{kAnyCount}, 77, 77},
        {{kAnyCount, 2}, 0, 0},
        {{kAnyCount}, 0xFFFFFFFE, 0xFFFFFFFE},
    };
    for (const Row& row : rows)
    {
        mScript.mEncoders[kAAC].mChannelCounts = row.mCounts;
        EXPECT_TRUE(mAAC.TryChannelsPerFrame(row.mWish));
        EXPECT_EQ(mAAC.GetChannelsPerFrame(), row.mStored) << "wish " << row.mWish;
    }
}

TEST_F(SettingsNegotiation, ChannelsLeaveTheByteCounts)
{
    EXPECT_TRUE(mWave.TryChannelsPerFrame(6));
    EXPECT_EQ(mWave.GetChannelsPerFrame(), 6u);
    EXPECT_EQ(mWave.GetBytesPerFrame(), 4u);
    EXPECT_EQ(mWave.GetBytesPerPacket(), 4u);
}

TEST_F(SettingsNegotiation, ChannelsAreRefusedWhereThePlatformFails)
{
    const PropertyAnswer counts = PropertyAnswer::List(Codes{1, 6});
    AnswerChannels(counts.InfoFails(-50));
    EXPECT_FALSE(mAAC.TryChannelsPerFrame(1));
    EXPECT_EQ(mPlatform.Calls().size(), 1u);
    AnswerChannels(counts.GetFails(-50));
    EXPECT_FALSE(mAAC.TryChannelsPerFrame(1));
    EXPECT_EQ(mAAC.GetChannelsPerFrame(), 2u);
}

TEST_F(SettingsNegotiation, AnEmptyListOfChannelsChangesNothing)
{
    AnswerChannels(PropertyAnswer());
    EXPECT_TRUE(mAAC.TryChannelsPerFrame(6));
    EXPECT_EQ(mAAC.GetChannelsPerFrame(), 2u);

    AnswerChannels(PropertyAnswer::Raw({1, 0, 0}));  // less than one count
    EXPECT_TRUE(mAAC.TryChannelsPerFrame(6));
    EXPECT_EQ(mAAC.GetChannelsPerFrame(), 2u);
}

// Validity.

TEST_F(SettingsNegotiation, ARecordIsValidWhereThePlatformMakesTheConverter)
{
    EXPECT_TRUE(mWave.IsValidForEncode());
    mPlatform.ForgetCalls();
    EXPECT_TRUE(mWave.IsValidForEncode());
    EXPECT_EQ(mPlatform.Calls(), (Calls{"AudioConverterNew 44100 'lpcm' 14 4/1/4/2/16 to 44100 "
                                        "'lpcm' 12 4/1/4/2/16",
                                        "AudioConverterDispose"}));
    mPlatform.FailConverters(-50);
    EXPECT_FALSE(mWave.IsValidForEncode());
}

TEST_F(SettingsNegotiation, ARecordIsInvalidOutsideTheCatalogueAndIfImplausible)
{
    mWave.SetAudioFileTypeID(kUnknown);
    EXPECT_FALSE(mWave.IsValidForEncode());
    mWave.SetAudioFileTypeID(kWAVE);
    mWave.SetChannelsPerFrame(0);
    EXPECT_FALSE(mWave.IsValidForEncode());
}

}  // namespace
