// What the converter is told before the first frame: cookie, priming, packets per read.
#include "tests/appleaudiotoolbox/ReaderFixture.h"

#include <cmath>

namespace
{

using namespace testing_support;

class ReaderSetUp : public ReaderTest
{
protected:
    UInt32 LeadingFrames(SInt32 inPriming, const AudioStreamBasicDescription& inFileFormat)
    {
        mPlatform.HoldFile(kAudioFileM4AType, kAAC);
        mPlatform.Answer(Family::File, kAudioFilePropertyDataFormat,
                         PropertyAnswer::Value(inFileFormat));
        HoldPacketTable(1000, inPriming);
        AudioConverterPrimeInfo prime = {0xFFFFFFFF, 0xFFFFFFFF};
        mPlatform.AnswerWith(Family::Converter, kAudioConverterPrimeInfo,
                             [&](const Question& question)
                             {
            if (question.mKind == Question::Kind::Set)
                std::memcpy(&prime, question.mData.data(), sizeof(prime));
            return PropertyAnswer::Value(prime).Writable();
        });
        EXPECT_TRUE(Open());
        EXPECT_EQ(prime.trailingFrames, 0u);
        return prime.leadingFrames;
    }

    // The upper bound decides how many packets a read takes.
    std::string FirstRead(UInt32 inUpperBound)
    {
        mPlatform.HoldFile(kAudioFileM4AType, kAAC);
        mPlatform.Answer(Family::File, kAudioFilePropertyPacketSizeUpperBound,
                         PropertyAnswer::Value(inUpperBound));
        EXPECT_TRUE(Open());
        mPlatform.Fill({FillStep::Pull(1000000)});
        char frames[8] = {};
        int count = 1;
        EXPECT_TRUE(mReader->ReadSamplesInterleaved(0, &count, frames, 4, mInfo));
        return mPlatform.CallsOf("AudioFileReadPacketData").at(0);
    }
};

TEST_F(ReaderSetUp, DoesNotSetTheCookieOfLinearPCM)
{
    mPlatform.HoldFile(kAudioFileWAVEType, kStereo16);
    mPlatform.Answer(Family::File, kAudioFilePropertyMagicCookieData, PropertyAnswer::Raw({1, 2}));
    ASSERT_TRUE(Open());
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetProperty 'mgic'").size(), 1u);
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterSetProperty"), Lines());
}

TEST_F(ReaderSetUp, TakesAnEmptyCookieAsNone)
{
    mPlatform.HoldFile(kAudioFileM4AType, kAAC);
    mPlatform.Answer(Family::File, kAudioFilePropertyMagicCookieData, PropertyAnswer());
    ASSERT_TRUE(Open());
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetProperty 'mgic'"), Lines());
}

TEST_F(ReaderSetUp, SetsNoMoreOfACookieThanThereWasRoomFor)
{
    mPlatform.HoldFile(kAudioFileM4AType, kAAC);
    mPlatform.Answer(Family::File, kAudioFilePropertyMagicCookieData,
                     PropertyAnswer::Raw({1, 2}).Delivers(100000));
    mPlatform.Answer(Family::Converter, kAudioConverterDecompressionMagicCookie, PropertyAnswer());
    ASSERT_TRUE(Open());
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterSetProperty"),
              (Lines{"AudioConverterSetProperty 'dmgc' size 2: 01 02"}));
}

struct LawCookieRow
{
    const char* mName;
    PropertyAnswer mConverterAnswer;
    bool mIsSet;
};

TEST_F(ReaderSetUp, SetsTheCookieOfALawFileOnlyIfTheQueryFailsOddly)
{
    const LawCookieRow rows[] = {
        {"query succeeds", PropertyAnswer().Size(100).Writable(), false},
        {"property unknown",
         PropertyAnswer().InfoFails(kAudioConverterErr_PropertyNotSupported).Size(100).Writable(),
         false},
        {"fails, writable, larger", PropertyAnswer().InfoFails(-50).Size(5).Writable(), true},
        {"fails, writable, as large", PropertyAnswer().InfoFails(-50).Size(4).Writable(), false},
        {"fails, not writable", PropertyAnswer().InfoFails(-50).Size(5).Writable(false), false},
        {"fails, untouched", PropertyAnswer().InfoFails(-50), false},
    };
    for (const AudioFormatID law : {kAudioFormatALaw, kAudioFormatULaw})
        for (const LawCookieRow& row : rows)
        {
            const AudioStreamBasicDescription format = {8000.0, law, 0, 1, 1, 1, 1, 8, 0};
            mPlatform.HoldFile(kAudioFileWAVEType, format);
            mPlatform.Answer(Family::File, kAudioFilePropertyMagicCookieData,
                             PropertyAnswer::Raw({9, 8, 7, 6}));
            mPlatform.Answer(Family::Converter, kAudioConverterDecompressionMagicCookie,
                             row.mConverterAnswer);
            mPlatform.ForgetCalls();
            mReader = std::make_unique<appleaudiotoolbox::ATReader>();
            EXPECT_TRUE(Open()) << row.mName;
            EXPECT_EQ(mPlatform.CallsOf("AudioConverterGetPropertyInfo 'dmgc'"),
                      (Lines{"AudioConverterGetPropertyInfo 'dmgc' size 0 writable 0"}))
                << row.mName;
            const Lines expected =
                row.mIsSet ? Lines{"AudioConverterSetProperty 'dmgc' size 4: 09 08 07 06"}
                           : Lines();
            EXPECT_EQ(mPlatform.CallsOf("AudioConverterSetProperty"), expected) << row.mName;
        }
}

TEST_F(ReaderSetUp, WithoutAPacketTableGoesOnWithTheFailureNoted)
{
    mPlatform.HoldFile(kAudioFileM4AType, kAAC);
    ASSERT_TRUE(Open());
    EXPECT_EQ(mInfo.mSite, appleaudiotoolbox::kATError_General);
    EXPECT_EQ(mInfo.mStatus, kAudioFileUnsupportedPropertyError);
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterSetProperty"), Lines());
}

TEST_F(ReaderSetUp, GoesOnWithoutAPacketTableThatCannotBeRead)
{
    mPlatform.HoldFile(kAudioFileM4AType, kAAC);
    mPlatform.Answer(Family::File, kAudioFilePropertyPacketTableInfo,
                     PropertyAnswer().Size(16).GetFails(-36));
    ASSERT_TRUE(Open());
    EXPECT_EQ(mInfo.mSite, appleaudiotoolbox::kATError_General);
    EXPECT_EQ(mInfo.mStatus, -36);
}

TEST_F(ReaderSetUp, GoesOnWithoutAPacketTableThatIsTooLargeAndNotesNothing)
{
    mPlatform.HoldFile(kAudioFileM4AType, kAAC);
    mPlatform.Answer(Family::File, kAudioFilePropertyPacketTableInfo, PropertyAnswer().Size(17));
    ASSERT_TRUE(Open());
    EXPECT_EQ(mInfo.mSite, appleaudiotoolbox::kATError_None);
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetProperty 'pnfo'"), Lines());
}

TEST_F(ReaderSetUp, DoesNotAskLinearPCMForAPacketTable)
{
    mPlatform.HoldFile(kAudioFileWAVEType, kStereo16);
    HoldPacketTable(10, 10);
    ASSERT_TRUE(Open());
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetPropertyInfo 'pnfo'"), Lines());
}

TEST_F(ReaderSetUp, PrimesWithTheFilesOwnFrames)
{
    EXPECT_EQ(LeadingFrames(2112, kAAC), 2112u);
}

TEST_F(ReaderSetUp, ScalesPrimingFromTheFilesRate)
{
    AudioStreamBasicDescription file = kAAC;
    file.mSampleRate = 22050.0;
    EXPECT_EQ(LeadingFrames(481, file), 962u);
}

TEST_F(ReaderSetUp, RoundsScaledPrimingHalfUp)
{
    AudioStreamBasicDescription file = kAAC;
    file.mSampleRate = 88200.0;
    EXPECT_EQ(LeadingFrames(3, file), 2u);
}

TEST_F(ReaderSetUp, DoesNotScalePrimingFromAnUnknownRate)
{
    AudioStreamBasicDescription file = kAAC;
    file.mSampleRate = 0.0;
    EXPECT_EQ(LeadingFrames(1024, file), 1024u);
}

TEST_F(ReaderSetUp, DoesNotScalePrimingToAnUnknownRate)
{
    AudioStreamBasicDescription input = kAAC;
    input.mSampleRate = 0.0;
    mPlatform.Answer(Family::Converter, kAudioConverterCurrentInputStreamDescription,
                     PropertyAnswer::Value(input));
    EXPECT_EQ(LeadingFrames(1024, kAAC), 1024u);
}

TEST_F(ReaderSetUp, SurvivesPrimingBeyondAllBounds)
{
    AudioStreamBasicDescription file = kAAC;
    file.mSampleRate = 1e-300;
    EXPECT_EQ(LeadingFrames(1, file), 0x7FFFFFFFu);
    mReader = std::make_unique<appleaudiotoolbox::ATReader>();
    file.mSampleRate = std::nan("");
    EXPECT_EQ(LeadingFrames(1, file), 0u);
}

TEST_F(ReaderSetUp, ReadsAsManyPacketsAsFitByTheUpperBound)
{
    EXPECT_EQ(FirstRead(1000),
              "AudioFileReadPacketData cache 0 bytes 65536 descriptions given start 0 packets 65");
}

TEST_F(ReaderSetUp, ReadsOnePacketIfTheUpperBoundIsTheBuffer)
{
    EXPECT_EQ(FirstRead(65536),
              "AudioFileReadPacketData cache 0 bytes 65536 descriptions given start 0 packets 1");
}

TEST_F(ReaderSetUp, ReadsOnePacketIfTheUpperBoundIsLargerThanTheBuffer)
{
    EXPECT_EQ(FirstRead(65537),
              "AudioFileReadPacketData cache 0 bytes 65536 descriptions given start 0 packets 1");
}

}  // namespace
