// What opening asks of the platform, in which order and with which sizes, and what it makes of the
// answers.
#include "tests/appleaudiotoolbox/ReaderFixture.h"

#include <cmath>
#include <limits>

namespace
{

using namespace testing_support;
using appleaudiotoolbox::ReadCallbacks;

class ReaderOpening : public ReaderTest
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

OSStatus NoRead(void*, SInt64, UInt32, void*, UInt32*)
{
    return kAudio_IOError;
}

SInt64 NoSize(void*)
{
    return 0;
}

TEST_F(ReaderOpening, AsksForAPlainFileInOneOrder)
{
    mPlatform.HoldFile(kAudioFileWAVEType, kStereo16);
    ASSERT_TRUE(Open());
    EXPECT_EQ(mPlatform.Calls(),
              (Lines{
                  "AudioFileOpenURL \"/music/a.wav\" permissions 1 hint 0",
                  "AudioFileGetPropertyInfo 'flst' size 0 writable null",
                  "AudioFileGetProperty 'flst' size 48",
                  "AudioConverterNew 44100 'lpcm' 12 4/1/4/2/16 to 44100 'lpcm' 12 4/1/4/2/16",
                  "AudioFileGetPropertyInfo 'mgic' size 0 writable null",
                  "AudioConverterGetPropertyInfo 'acid' size 0 writable null",
                  "AudioConverterGetProperty 'acid' size 40",
                  "AudioConverterGetPropertyInfo 'acod' size 0 writable null",
                  "AudioConverterGetProperty 'acod' size 40",
                  "AudioFileGetPropertyInfo 'dfmt' size 0 writable null",
                  "AudioFileGetProperty 'dfmt' size 40",
              }));
    EXPECT_EQ(mInfo.mSite, appleaudiotoolbox::kATError_None);
}

TEST_F(ReaderOpening, AsksForACompressedFileWithCookieAndPacketTableInOneOrder)
{
    mPlatform.HoldFile(kAudioFileM4AType, kAAC);
    mPlatform.Answer(Family::File, kAudioFilePropertyMagicCookieData,
                     PropertyAnswer::Raw({0x12, 0x10}));
    mPlatform.Answer(Family::Converter, kAudioConverterDecompressionMagicCookie, PropertyAnswer());
    HoldPacketTable(441000, 2112);
    ASSERT_TRUE(Open());
    EXPECT_EQ(mPlatform.Calls(),
              (Lines{
                  "AudioFileOpenURL \"/music/a.wav\" permissions 1 hint 0",
                  "AudioFileGetPropertyInfo 'flst' size 0 writable null",
                  "AudioFileGetProperty 'flst' size 48",
                  "AudioConverterNew 44100 'aac ' 0 0/1024/0/2/0 to 44100 'lpcm' 9 8/1/8/2/32",
                  "AudioFileGetPropertyInfo 'mgic' size 0 writable null",
                  "AudioFileGetProperty 'mgic' size 2",
                  "AudioConverterSetProperty 'dmgc' size 2: 12 10",
                  "AudioConverterGetPropertyInfo 'acid' size 0 writable null",
                  "AudioConverterGetProperty 'acid' size 40",
                  "AudioConverterGetPropertyInfo 'acod' size 0 writable null",
                  "AudioConverterGetProperty 'acod' size 40",
                  "AudioFileGetPropertyInfo 'dfmt' size 0 writable null",
                  "AudioFileGetProperty 'dfmt' size 40",
                  "AudioFileGetPropertyInfo 'pnfo' size 0 writable null",
                  "AudioFileGetProperty 'pnfo' size 16",
                  "AudioConverterGetPropertyInfo 'prim' size 0 writable 0",
                  "AudioConverterSetProperty 'prim' size 8: 40 08 00 00 00 00 00 00",
                  "AudioFileGetPropertyInfo 'pkub' size 0 writable null",
                  "AudioFileGetProperty 'pkub' size 4",
              }));
}

TEST_F(ReaderOpening, AsksForALayeredFileInOneOrder)
{
    HoldLayeredFile();
    HoldPacketTable(1000, 1024);
    ASSERT_TRUE(Open());
    EXPECT_EQ(mPlatform.Calls(),
              (Lines{
                  "AudioFileOpenURL \"/music/a.wav\" permissions 1 hint 0",
                  "AudioFileGetPropertyInfo 'flst' size 0 writable null",
                  "AudioFileGetProperty 'flst' size 96",
                  "AudioFormatGetPropertyInfo 'acif' specifier none size 0",
                  "AudioFormatGetProperty 'acif' specifier none size 8",
                  "AudioConverterNew 44100 'aach' 0 0/2048/0/2/0 to 44100 'lpcm' 9 8/1/8/2/32",
                  "AudioFileGetPropertyInfo 'mgic' size 0 writable null",
                  "AudioConverterGetPropertyInfo 'acid' size 0 writable null",
                  "AudioConverterGetProperty 'acid' size 40",
                  "AudioConverterGetPropertyInfo 'acod' size 0 writable null",
                  "AudioConverterGetProperty 'acod' size 40",
                  "AudioFileGetPropertyInfo 'dfmt' size 0 writable null",
                  "AudioFileGetProperty 'dfmt' size 40",
                  "AudioFileGetPropertyInfo 'pnfo' size 0 writable null",
                  "AudioFileGetProperty 'pnfo' size 16",
                  "AudioConverterGetPropertyInfo 'prim' size 0 writable 0",
                  // 1024 frames of the core are 2048 of the layer.
                  "AudioConverterSetProperty 'prim' size 8: 00 08 00 00 00 00 00 00",
                  "AudioFileGetPropertyInfo 'pkub' size 0 writable null",
                  "AudioFileGetProperty 'pkub' size 4",
              }));
}

TEST_F(ReaderOpening, ClosesTheFileBeforeItDisposesOfTheConverter)
{
    mPlatform.HoldFile(kAudioFileWAVEType, kStereo16);
    ASSERT_TRUE(Open());
    mPlatform.ForgetCalls();
    mReader.reset();
    EXPECT_EQ(mPlatform.Calls(), (Lines{"AudioFileClose", "AudioConverterDispose"}));
}

TEST_F(ReaderOpening, PassesThePathOnByteForByte)
{
    mPlatform.HoldFile(kAudioFileWAVEType, kStereo16);
    ASSERT_TRUE(mReader->Initialize("/m/100% \xC3\xA4.wav", mInfo, false));
    EXPECT_EQ(mPlatform.OpenedPath(), "/m/100% \xC3\xA4.wav");
}

TEST_F(ReaderOpening, ByCallbacksHandsOverReadingSizeAndHint)
{
    mPlatform.HoldFile(kAudioFileWAVEType, kStereo16);
    int data = 0;
    const ReadCallbacks callbacks = {&NoRead, &NoSize};
    ASSERT_TRUE(mReader->Initialize(&data, callbacks, kAudioFileWAVEType, mInfo, false));
    EXPECT_EQ(mPlatform.Calls().at(0),
              "AudioFileOpenWithCallbacks read given write null size given setsize null hint "
              "'WAVE'");
    EXPECT_EQ(mPlatform.OpenedClientData(), &data);
    EXPECT_EQ(mReader->GetChannelsPerFrame(), 2u);
}

TEST_F(ReaderOpening, ByCallbacksNeedsAllThreeAndNotesNothing)
{
    int data = 0;
    EXPECT_FALSE(mReader->Initialize(nullptr, ReadCallbacks{&NoRead, &NoSize}, 0, mInfo, false));
    EXPECT_FALSE(mReader->Initialize(&data, ReadCallbacks{nullptr, &NoSize}, 0, mInfo, false));
    EXPECT_FALSE(mReader->Initialize(&data, ReadCallbacks{&NoRead, nullptr}, 0, mInfo, false));
    EXPECT_EQ(mInfo.mSite, appleaudiotoolbox::kATError_None);
    EXPECT_EQ(mPlatform.Calls(), Lines());
}

TEST_F(ReaderOpening, WithoutAFileNotesNothing)
{
    EXPECT_FALSE(mReader->InitializeImpl(false, mInfo));
    EXPECT_EQ(mInfo.mSite, appleaudiotoolbox::kATError_None);
    EXPECT_EQ(mPlatform.Calls(), Lines());
}

TEST_F(ReaderOpening, ForcesFloatOnRequest)
{
    mPlatform.HoldFile(kAudioFileWAVEType, kStereo16);
    ASSERT_TRUE(Open(true));
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterNew").at(0),
              "AudioConverterNew 44100 'lpcm' 12 4/1/4/2/16 to 44100 'lpcm' 9 8/1/8/2/32");
    EXPECT_EQ(mReader->GetNumReadBytesPerFrame(), 4u);
}

TEST_F(ReaderOpening, TellsTheInputFormat)
{
    mPlatform.HoldFile(kAudioFileWAVEType, kStereo16);
    ASSERT_TRUE(Open());
    EXPECT_EQ(mReader->GetSampleRate(), 44100.0);
    EXPECT_EQ(mReader->GetFormatID(), 0x6C70636Du);
    EXPECT_EQ(mReader->GetFormatFlags(), 12u);
    EXPECT_EQ(mReader->GetBytesPerPacket(), 4u);
    EXPECT_EQ(mReader->GetFramesPerPacket(), 1u);
    EXPECT_EQ(mReader->GetBytesPerFrame(), 4u);
    EXPECT_EQ(mReader->GetChannelsPerFrame(), 2u);
    EXPECT_EQ(mReader->GetBitsPerChannel(), 16u);
    EXPECT_EQ(mReader->GetNumReadBytesPerFrame(), 2u);
    EXPECT_EQ(mReader->GetFileTypeID(), 0x57415645u);
    EXPECT_EQ(mReader->GetStreamBasicDescription().mBytesPerFrame, 4u);
    EXPECT_FALSE(mReader->IsAtEndOfFile());
    EXPECT_EQ(mReader->GetTotalSampleCount(), 0);
    EXPECT_FALSE(mReader->SupportsSeek());
}

TEST_F(ReaderOpening, TakesOverWhatTheConverterSaysOfBothFormats)
{
    mPlatform.HoldFile(kAudioFileWAVEType, kStereo16);
    AudioStreamBasicDescription input = kStereo16;
    input.mSampleRate = 48000.0;
    AudioStreamBasicDescription output = kStereo16;
    output.mBytesPerFrame = 6;
    mPlatform.Answer(Family::Converter, kAudioConverterCurrentInputStreamDescription,
                     PropertyAnswer::Value(input));
    mPlatform.Answer(Family::Converter, kAudioConverterCurrentOutputStreamDescription,
                     PropertyAnswer::Value(output));
    ASSERT_TRUE(Open());
    EXPECT_EQ(mReader->GetSampleRate(), 48000.0);
    EXPECT_EQ(mReader->GetNumReadBytesPerFrame(), 3u);
}

TEST_F(ReaderOpening, TakesASingleFormatWithoutLookingForItsDecoder)
{
    mPlatform.HoldFile(kAudioFileM4AType, kAAC);
    ASSERT_TRUE(Open());
    EXPECT_EQ(mPlatform.CallsOf("AudioFormat"), Lines());
}

TEST_F(ReaderOpening, TakesADeliveryOfLessThanTwoItemsAsOneFormat)
{
    HoldLayeredFile();
    mPlatform.Answer(
        Family::File, kAudioFilePropertyFormatList,
        PropertyAnswer::List<AudioFormatListItem>({{kCore, 0}, {kHighEfficiency, 0}}).Delivers(95));
    ASSERT_TRUE(Open());
    EXPECT_EQ(mReader->GetFormatID(), UInt32{kAudioFormatMPEG4AAC});
    EXPECT_EQ(mPlatform.CallsOf("AudioFormat"), Lines());
}

TEST_F(ReaderOpening, TakesTheFirstLayerThatHasADecoder)
{
    HoldLayeredFile();
    mPlatform.Answer(Family::Format, kAudioFormatProperty_DecodeFormatIDs,
                     PropertyAnswer::List<UInt32>({kAudioFormatFLAC, kAudioFormatMPEG4AAC}));
    ASSERT_TRUE(Open());
    EXPECT_EQ(mReader->GetFormatID(), UInt32{kAudioFormatMPEG4AAC});
    EXPECT_EQ(mReader->GetSampleRate(), 22050.0);
}

TEST_F(ReaderOpening, TakesTheDataFormatIfTheListDeliversNothing)
{
    mPlatform.HoldFile(kAudioFileM4AType, kAAC);
    mPlatform.Answer(Family::File, kAudioFilePropertyFormatList,
                     PropertyAnswer::Value(AudioFormatListItem{kCore, 0}).Delivers(0));
    ASSERT_TRUE(Open());
    EXPECT_EQ(mReader->GetSampleRate(), 44100.0);
    EXPECT_EQ(mPlatform.Calls().at(2), "AudioFileGetProperty 'flst' size 48");
    EXPECT_EQ(mPlatform.Calls().at(3), "AudioFileGetPropertyInfo 'dfmt' size 0 writable null");
    EXPECT_EQ(mPlatform.Calls().at(4), "AudioFileGetProperty 'dfmt' size 40");
}

TEST_F(ReaderOpening, AsksForWholeItemsOnly)
{
    HoldLayeredFile();
    mPlatform.Answer(Family::File, kAudioFilePropertyFormatList,
                     PropertyAnswer::List<AudioFormatListItem>({{kCore, 0}, {kCore, 0}}).Size(143));
    ASSERT_TRUE(Open());
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetProperty 'flst'"),
              (Lines{"AudioFileGetProperty 'flst' size 96"}));
}

TEST_F(ReaderOpening, DoesNotSetTheCookieOfLinearPCM)
{
    mPlatform.HoldFile(kAudioFileWAVEType, kStereo16);
    mPlatform.Answer(Family::File, kAudioFilePropertyMagicCookieData, PropertyAnswer::Raw({1, 2}));
    ASSERT_TRUE(Open());
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetProperty 'mgic'").size(), 1u);
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterSetProperty"), Lines());
}

TEST_F(ReaderOpening, TakesAnEmptyCookieAsNone)
{
    mPlatform.HoldFile(kAudioFileM4AType, kAAC);
    mPlatform.Answer(Family::File, kAudioFilePropertyMagicCookieData, PropertyAnswer());
    ASSERT_TRUE(Open());
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetProperty 'mgic'"), Lines());
}

struct LawCookieRow
{
    const char* mName;
    PropertyAnswer mConverterAnswer;
    bool mIsSet;
};

TEST_F(ReaderOpening, SetsTheCookieOfALawFileOnlyIfTheQueryFailsOddly)
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

TEST_F(ReaderOpening, WithoutAPacketTableGoesOnWithTheFailureNoted)
{
    mPlatform.HoldFile(kAudioFileM4AType, kAAC);
    ASSERT_TRUE(Open());
    EXPECT_EQ(mInfo.mSite, appleaudiotoolbox::kATError_General);
    EXPECT_EQ(mInfo.mStatus, kAudioFileUnsupportedPropertyError);
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterSetProperty"), Lines());
}

TEST_F(ReaderOpening, GoesOnWithoutAPacketTableThatCannotBeRead)
{
    mPlatform.HoldFile(kAudioFileM4AType, kAAC);
    mPlatform.Answer(Family::File, kAudioFilePropertyPacketTableInfo,
                     PropertyAnswer().Size(16).GetFails(-36));
    ASSERT_TRUE(Open());
    EXPECT_EQ(mInfo.mSite, appleaudiotoolbox::kATError_General);
    EXPECT_EQ(mInfo.mStatus, -36);
}

TEST_F(ReaderOpening, GoesOnWithoutAPacketTableThatIsTooLargeAndNotesNothing)
{
    mPlatform.HoldFile(kAudioFileM4AType, kAAC);
    mPlatform.Answer(Family::File, kAudioFilePropertyPacketTableInfo, PropertyAnswer().Size(17));
    ASSERT_TRUE(Open());
    EXPECT_EQ(mInfo.mSite, appleaudiotoolbox::kATError_None);
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetProperty 'pnfo'"), Lines());
}

TEST_F(ReaderOpening, DoesNotAskLinearPCMForAPacketTable)
{
    mPlatform.HoldFile(kAudioFileWAVEType, kStereo16);
    HoldPacketTable(10, 10);
    ASSERT_TRUE(Open());
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetPropertyInfo 'pnfo'"), Lines());
}

TEST_F(ReaderOpening, PrimesWithTheFilesOwnFrames)
{
    EXPECT_EQ(LeadingFrames(2112, kAAC), 2112u);
}

TEST_F(ReaderOpening, ScalesPrimingFromTheFilesRate)
{
    AudioStreamBasicDescription file = kAAC;
    file.mSampleRate = 22050.0;
    EXPECT_EQ(LeadingFrames(481, file), 962u);
}

TEST_F(ReaderOpening, RoundsScaledPrimingHalfUp)
{
    AudioStreamBasicDescription file = kAAC;
    file.mSampleRate = 88200.0;
    EXPECT_EQ(LeadingFrames(3, file), 2u);
}

TEST_F(ReaderOpening, DoesNotScalePrimingFromAnUnknownRate)
{
    AudioStreamBasicDescription file = kAAC;
    file.mSampleRate = 0.0;
    EXPECT_EQ(LeadingFrames(1024, file), 1024u);
}

TEST_F(ReaderOpening, SurvivesPrimingBeyondAllBounds)
{
    AudioStreamBasicDescription file = kAAC;
    file.mSampleRate = 1e-300;
    EXPECT_EQ(LeadingFrames(1, file), 0x7FFFFFFFu);
    mReader = std::make_unique<appleaudiotoolbox::ATReader>();
    file.mSampleRate = std::nan("");
    EXPECT_EQ(LeadingFrames(1, file), 0u);
}

TEST_F(ReaderOpening, ReadsAsManyPacketsAsFitByTheUpperBound)
{
    EXPECT_EQ(FirstRead(1000),
              "AudioFileReadPacketData cache 0 bytes 65536 descriptions given start 0 packets 65");
}

TEST_F(ReaderOpening, ReadsOnePacketIfTheUpperBoundIsTheBuffer)
{
    EXPECT_EQ(FirstRead(65536),
              "AudioFileReadPacketData cache 0 bytes 65536 descriptions given start 0 packets 1");
}

TEST_F(ReaderOpening, ReadsOnePacketIfTheUpperBoundIsLargerThanTheBuffer)
{
    EXPECT_EQ(FirstRead(65537),
              "AudioFileReadPacketData cache 0 bytes 65536 descriptions given start 0 packets 1");
}

TEST_F(ReaderOpening, LeavesNothingOpenWhicheverPlatformCallFails)
{
    HoldLayeredFile();
    HoldPacketTable(1000, 1024);
    mPlatform.Answer(Family::File, kAudioFilePropertyMagicCookieData, PropertyAnswer::Raw({1}));
    mPlatform.Answer(Family::Converter, kAudioConverterDecompressionMagicCookie, PropertyAnswer());
    for (int failing = 1; failing < 100; ++failing)
    {
        ScriptedPlatform& platform = mPlatform;
        platform.FailCall(failing, -36);
        mReader = std::make_unique<appleaudiotoolbox::ATReader>();
        Open();
        mReader.reset();
        EXPECT_EQ(platform.OpenHandles(), 0) << "call " << failing << " failed";
        if (!platform.ReachedFailingCall())
        {
            EXPECT_GT(failing, 20);
            return;  // one run without a fault: every call has had its turn
        }
    }
    FAIL() << "opening never ran through without a fault";
}

}  // namespace
