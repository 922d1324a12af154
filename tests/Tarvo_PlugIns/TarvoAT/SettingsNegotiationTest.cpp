// The negotiation of the settings record on a scripted platform.
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATPrivateSettings.h"

#include "tests/support/CatalogueScript.h"

#include <limits>

namespace
{

using namespace testing_support;
using tarvo::TarvoATPrivateSettings;
using Calls = std::vector<std::string>;

constexpr UInt32 kNeXT = 0x4E655854;
constexpr UInt32 kSd2f = 0x53643266;
constexpr UInt32 kUnknown = 0x3F3F3F3F;
constexpr UInt32 kAnyCount = 0xFFFFFFFF;
constexpr auto kSampleRates = kAudioFormatProperty_AvailableEncodeSampleRates;
constexpr auto kChannels = kAudioFormatProperty_AvailableEncodeNumberChannels;
constexpr auto kFormatInfo = kAudioFormatProperty_FormatInfo;

// A writable WAVE with PCM of several depths, and M4A with AAC; PCM takes any number of channels.
class SettingsNegotiation : public CatalogueTest
{
protected:
    SettingsNegotiation()
    {
        mScript.mEncodable = {kPCM, kAAC};
        mScript.AddFileType(kM4A, {"MPEG-4", {"m4a"}, {{kAAC, {Variant(kAAC)}}}});
        mScript.AddFileType(kWAVE,
                            {"WAVE",
                             {"wav"},
                             {{kPCM,
                               {Variant(kPCM, 8, 8), Variant(kPCM, 12, 16), Variant(kPCM, 12, 24),
                                Variant(kPCM, 12, 32), Variant(kPCM, 9, 32)}}}});
        mScript.mEncoders[kPCM].mChannelCounts = {kAnyCount};
    }

    void AnswerRates(const std::vector<AudioValueRange>& inRanges)
    {
        mPlatform.Answer(Family::Format, kSampleRates, PropertyAnswer::List(inRanges));
    }
    void AnswerChannels(const PropertyAnswer& inAnswer)
    {
        mPlatform.Answer(Family::Format, kChannels, inAnswer);
    }
    // The calls of an operation, without those that build the catalogue.
    void BuildCatalogue()
    {
        (void)mWave.IsValidForEncode();
        mPlatform.ForgetCalls();
    }

    TarvoATPrivateSettings mWave{kWAVE,
                                 CAStreamBasicDescription(44100.0, kPCM, 4, 1, 4, 2, 16, 12)};
    TarvoATPrivateSettings mAAC{kM4A, CAStreamBasicDescription(44100.0, kAAC, 0, 1024, 0, 2, 0, 0)};
};

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
