// Depths and formats of a settings record.
#include "tests/Tarvo_PlugIns/TarvoAT/SettingsNegotiationFixture.h"

#include <limits>

namespace
{

using namespace testing_support;
using tarvo::TarvoATPrivateSettings;
using Calls = std::vector<std::string>;

constexpr UInt32 kNeXT = 0x4E655854;
constexpr UInt32 kSd2f = 0x53643266;
constexpr auto kFormatInfo = kAudioFormatProperty_FormatInfo;

// Depth.

TEST_F(SettingsNegotiation, ADepthBringsRateAndChannelsAlong)
{
    mWave.SetSampleRate(44100.5);
    EXPECT_TRUE(mWave.TryBitsPerChannel(24));
    const CAStreamBasicDescription format = mWave.GetStreamBasicDescription();
    EXPECT_EQ(format.mSampleRate, 44100.0);
    EXPECT_EQ(format.mFormatID, kPCM);
    EXPECT_EQ(format.mFormatFlags, 12u);
    EXPECT_EQ(format.mBitsPerChannel, 24u);
    EXPECT_EQ(format.mChannelsPerFrame, 2u);
    EXPECT_EQ(format.mFramesPerPacket, 1u);
    EXPECT_EQ(format.mBytesPerFrame, 6u);
    EXPECT_EQ(format.mBytesPerPacket, 6u);
}

TEST_F(SettingsNegotiation, ADepthWithSeveralVariantsTakesTheFirst)
{
    EXPECT_TRUE(mWave.TryBitsPerChannel(32));
    EXPECT_EQ(mWave.GetFormatFlags(), 12u);  // integer stands before float

    EmptyCatalogues();
    mScript.mFileTypes[kWAVE].mFormats = {{kPCM, {Variant(kPCM, 9, 32), Variant(kPCM, 12, 32)}}};
    mWave.SetBitsPerChannel(16);
    EXPECT_TRUE(mWave.TryBitsPerChannel(32));
    EXPECT_EQ(mWave.GetFormatFlags(), 9u);
}

TEST_F(SettingsNegotiation, TheStoredDepthKeepsTheFormatAndGetsTheRest)
{
    mWave.SetFormatFlags(14);  // unlike the variant's
    mWave.SetBytesPerFrame(1);
    mWave.SetBytesPerPacket(1);
    mWave.SetFramesPerPacket(3);
    mWave.SetSampleRate(8000.9);
    EXPECT_TRUE(mWave.TryBitsPerChannel(16));
    EXPECT_EQ(mWave.GetFormatFlags(), 14u);
    EXPECT_EQ(mWave.GetFramesPerPacket(), 3u);
    EXPECT_EQ(mWave.GetSampleRate(), 8000.0);
    EXPECT_EQ(mWave.GetBytesPerFrame(), 4u);
    EXPECT_EQ(mWave.GetBytesPerPacket(), 4u);
}

TEST_F(SettingsNegotiation, ADepthThatNoVariantHasWritesTheByteCountsAlone)
{
    EXPECT_TRUE(mWave.TryBitsPerChannel(20));
    EXPECT_EQ(mWave.GetBitsPerChannel(), 16u);
    EXPECT_EQ(mWave.GetFormatFlags(), 12u);
    EXPECT_EQ(mWave.GetBytesPerFrame(), 4u);  // 2 whole bytes of 20 bits
    EXPECT_TRUE(mWave.TryBitsPerChannel(64));
    EXPECT_EQ(mWave.GetBitsPerChannel(), 16u);
    EXPECT_EQ(mWave.GetBytesPerFrame(), 16u);
    EXPECT_EQ(mWave.GetBytesPerPacket(), 16u);
    EXPECT_TRUE(mWave.TryBitsPerChannel(0));
    EXPECT_EQ(mWave.GetBytesPerFrame(), 0u);
    EXPECT_TRUE(mWave.TryBitsPerChannel(0xFFFFFFFF));
    EXPECT_EQ(mWave.GetBytesPerFrame(), 0x3FFFFFFEu);
}

TEST_F(SettingsNegotiation, ADepthAsksRatesThenChannels)
{
    BuildCatalogue();
    EXPECT_TRUE(mWave.TryBitsPerChannel(24));
    EXPECT_EQ(mPlatform.Calls(),
              (Calls{"AudioFormatGetPropertyInfo 'aesr' specifier 4 'lpcm' size 16",
                     "AudioFormatGetProperty 'aesr' specifier 4 'lpcm' size 16",
                     "AudioFormatGetPropertyInfo 'avnc' specifier 40 size 0",
                     "AudioFormatGetProperty 'avnc' specifier 40 size 4"}));
}

TEST_F(SettingsNegotiation, ADepthChangesNothingOfOtherFormats)
{
    mAAC.SetSampleRate(44100.5);
    mAAC.SetBytesPerFrame(3);
    BuildCatalogue();
    EXPECT_TRUE(mAAC.TryBitsPerChannel(24));
    EXPECT_EQ(mAAC.GetSampleRate(), 44100.5);
    EXPECT_EQ(mAAC.GetBitsPerChannel(), 0u);
    EXPECT_EQ(mAAC.GetBytesPerFrame(), 3u);
    EXPECT_EQ(mPlatform.Calls(), Calls());
}

TEST_F(SettingsNegotiation, ADepthChangesNothingOutsideTheCatalogue)
{
    for (const UInt32 type : {kUnknown, kM4A})  // no such type; no such format in the type
    {
        mWave.SetAudioFileTypeID(type);
        EXPECT_TRUE(mWave.TryBitsPerChannel(24));
        EXPECT_EQ(mWave.GetBitsPerChannel(), 16u);
        EXPECT_EQ(mWave.GetBytesPerFrame(), 4u);
    }
}

TEST_F(SettingsNegotiation, ADepthIsRefusedForARateBelowOneWithTheVariantInPlace)
{
    mWave.SetSampleRate(0.9);
    EXPECT_FALSE(mWave.TryBitsPerChannel(24));
    EXPECT_EQ(mWave.GetBitsPerChannel(), 24u);
    EXPECT_EQ(mWave.GetSampleRate(), 0.0);  // the variant's
    EXPECT_EQ(mWave.GetChannelsPerFrame(), 0u);
    EXPECT_EQ(mWave.GetBytesPerFrame(), 0u);
}

TEST_F(SettingsNegotiation, ADepthIsRefusedWithoutChannelsWithTheRateInPlace)
{
    BuildCatalogue();
    AnswerChannels(PropertyAnswer::Missing(-50));
    EXPECT_FALSE(mWave.TryBitsPerChannel(24));
    EXPECT_EQ(mWave.GetBitsPerChannel(), 24u);
    EXPECT_EQ(mWave.GetSampleRate(), 44100.0);
    EXPECT_EQ(mWave.GetBytesPerFrame(), 0u);
}

TEST_F(SettingsNegotiation, ADepthCountsTheBytesOfTheChannelsThatAreLeft)
{
    BuildCatalogue();
    AnswerChannels(PropertyAnswer::List(Codes{1, 2}));
    mWave.SetChannelsPerFrame(6);
    EXPECT_TRUE(mWave.TryBitsPerChannel(24));
    EXPECT_EQ(mWave.GetChannelsPerFrame(), 2u);
    EXPECT_EQ(mWave.GetBytesPerFrame(), 6u);
}

TEST_F(SettingsNegotiation, ADepthSurvivesRatesThatAreNone)
{
    for (const double rate : {std::numeric_limits<double>::quiet_NaN(),
                              -std::numeric_limits<double>::infinity(), -8000.0})
    {
        mWave.SetSampleRate(rate);
        EXPECT_FALSE(mWave.TryBitsPerChannel(16)) << rate;
    }
    mWave.SetSampleRate(1e300);
    EXPECT_TRUE(mWave.TryBitsPerChannel(16));
    EXPECT_EQ(mWave.GetSampleRate(), 1e300);
}

// Formats.

TEST_F(SettingsNegotiation, PCMTakesTheByteOrderOfTheFileType)
{
    struct Row
    {
        UInt32 mFileType;
        UInt32 mBits;
        UInt32 mFlags;
    };
    const Row rows[] = {{kAIFF, 16, 0}, {kNeXT, 24, 0},  {kSd2f, 8, 0},
                        {kCAF, 32, 0},  {kWAVE, 16, 12}, {kWAVE, 8, 8}};
    for (const Row& row : rows)
    {
        mAAC.SetAudioFileTypeID(row.mFileType);
        mAAC.SetFormatID(kAAC);
        mAAC.SetSampleRate(44100.5);
        mAAC.SetBitsPerChannel(row.mBits);
        EXPECT_TRUE(mAAC.TryFormatID(kPCM));
        const CAStreamBasicDescription format = mAAC.GetStreamBasicDescription();
        EXPECT_EQ(format.mFormatID, kPCM);
        EXPECT_EQ(format.mFormatFlags, row.mFlags) << row.mFileType;
        EXPECT_EQ(format.mBitsPerChannel, row.mBits);
        EXPECT_EQ(format.mBytesPerFrame, row.mBits / 4);
        EXPECT_EQ(format.mBytesPerPacket, row.mBits / 4);
        EXPECT_EQ(format.mFramesPerPacket, 1u);
        EXPECT_EQ(format.mChannelsPerFrame, 2u);
        EXPECT_EQ(format.mSampleRate, 44100.5);
    }
    EXPECT_EQ(mPlatform.Calls(), Calls());
}

TEST_F(SettingsNegotiation, PCMWithoutAStoredDepthHasSixteenBits)
{
    mAAC.SetAudioFileTypeID(kWAVE);
    EXPECT_TRUE(mAAC.TryFormatID(kPCM));
    EXPECT_EQ(mAAC.GetBitsPerChannel(), 16u);
    EXPECT_EQ(mAAC.GetFormatFlags(), 12u);
    EXPECT_EQ(mAAC.GetBytesPerFrame(), 4u);
}

TEST_F(SettingsNegotiation, PCMIsRefusedInOtherFileTypes)
{
    for (const UInt32 type : {kM4A, kAIFC, kUnknown, 0u})
    {
        mAAC.SetAudioFileTypeID(type);
        EXPECT_FALSE(mAAC.TryFormatID(kPCM));
        EXPECT_EQ(mAAC.GetFormatID(), kAAC);
        EXPECT_EQ(mAAC.GetFramesPerPacket(), 1024u);
    }
}

// A platform that fills formats in where the predicate holds, and notes what it is asked.
class FormatNegotiation : public SettingsNegotiation
{
protected:
    void FillIn(int inFailures)
    {
        mPlatform.AnswerWith(Family::Format, kFormatInfo,
                             [inFailures](const Question& question)
                             {
            if (question.mTurn < inFailures)
                return PropertyAnswer::Missing(-50);
            return PropertyAnswer::Value(
                AudioStreamBasicDescription{22050.0, kAAC, 7, 0, 1024, 0, 1, 0, 0});
        });
    }
    static constexpr char kAsk[] = "AudioFormatGetProperty 'fmti' specifier none size 40";
};

TEST_F(FormatNegotiation, AFormatIsFilledInByThePlatform)
{
    FillIn(0);
    EXPECT_TRUE(mWave.TryFormatID(kAAC));
    EXPECT_EQ(mPlatform.Calls(), Calls{kAsk});
    const CAStreamBasicDescription format = mWave.GetStreamBasicDescription();
    EXPECT_EQ(format.mSampleRate, 22050.0);
    EXPECT_EQ(format.mFormatID, kAAC);
    EXPECT_EQ(format.mFormatFlags, 7u);
    EXPECT_EQ(format.mFramesPerPacket, 1024u);
    EXPECT_EQ(format.mChannelsPerFrame, 1u);
    EXPECT_EQ(format.mBitsPerChannel, 0u);
    EXPECT_EQ(mWave.GetAudioFileTypeID(), kWAVE);
}

TEST_F(FormatNegotiation, AFormatStartsFromRateAndChannelsAlone)
{
    // Nothing is filled in, so the rest has to be empty.
    mPlatform.Answer(Family::Format, kFormatInfo, PropertyAnswer());
    EXPECT_TRUE(mWave.TryFormatID(kAAC));
    const CAStreamBasicDescription format = mWave.GetStreamBasicDescription();
    EXPECT_EQ(format.mSampleRate, 44100.0);
    EXPECT_EQ(format.mFormatID, kAAC);
    EXPECT_EQ(format.mChannelsPerFrame, 2u);
    EXPECT_EQ(format.mFormatFlags, 0u);
    EXPECT_EQ(format.mBytesPerFrame, 0u);
    EXPECT_EQ(format.mBitsPerChannel, 0u);
}

TEST_F(FormatNegotiation, AFailureIsTriedAgainInARateOfTheEncoder)
{
    FillIn(1);
    EXPECT_TRUE(mWave.TryFormatID(kAAC));
    EXPECT_EQ(mPlatform.Calls(),
              (Calls{kAsk, "AudioFormatGetPropertyInfo 'aesr' specifier 4 'aac ' size 16",
                     "AudioFormatGetProperty 'aesr' specifier 4 'aac ' size 16", kAsk}));
}

TEST_F(FormatNegotiation, ASecondFailureIsTriedAgainInChannelsOfTheEncoder)
{
    mScript.mEncoders[kAAC].mChannelCounts = {1};
    mPlatform.AnswerWith(Family::Format, kFormatInfo,
                         [](const Question& question) {
        return question.mTurn < 2 ? PropertyAnswer::Missing(-50) : PropertyAnswer();
    });
    EXPECT_TRUE(mWave.TryFormatID(kAAC));
    EXPECT_EQ(mWave.GetChannelsPerFrame(), 1u);
    EXPECT_EQ(mWave.GetSampleRate(), 44100.0);
    EXPECT_EQ(mPlatform.CallsOf(kAsk).size(), 3u);
    EXPECT_EQ(mPlatform.Calls().back(), kAsk);
}

TEST_F(FormatNegotiation, RefusedRateAndChannelsStayForTheNextQuestion)
{
    mWave.SetSampleRate(0.5);  // no rate to try
    mPlatform.AnswerWith(Family::Format, kFormatInfo,
                         [](const Question& question) {
        return question.mTurn < 2 ? PropertyAnswer::Missing(-50) : PropertyAnswer();
    });
    EXPECT_TRUE(mWave.TryFormatID(kAAC));  // no channels either
    EXPECT_EQ(mWave.GetSampleRate(), 0.5);
    EXPECT_EQ(mWave.GetChannelsPerFrame(), 2u);
    EXPECT_EQ(mPlatform.Calls(),
              (Calls{kAsk, kAsk, "AudioFormatGetPropertyInfo 'avnc' specifier 40 size 0", kAsk}));
}

TEST_F(FormatNegotiation, AThirdFailureIsARefusal)
{
    mScript.mEncoders[kAAC].mChannelCounts = {1};
    FillIn(3);
    EXPECT_FALSE(mWave.TryFormatID(kAAC));
    EXPECT_EQ(mPlatform.CallsOf(kAsk).size(), 3u);
    const CAStreamBasicDescription format = mWave.GetStreamBasicDescription();
    EXPECT_EQ(format.mSampleRate, 44100.0);
    EXPECT_EQ(format.mFormatID, kPCM);
    EXPECT_EQ(format.mFormatFlags, 12u);
    EXPECT_EQ(format.mBytesPerFrame, 4u);
    EXPECT_EQ(format.mChannelsPerFrame, 2u);
    EXPECT_EQ(format.mBitsPerChannel, 16u);
}

}  // namespace
