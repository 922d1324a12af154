// What opening asks of the platform, in which order and with which sizes, and what it makes of the
// answers.
#include "tests/appleaudiotoolbox/ReaderFixture.h"

namespace
{

using namespace testing_support;
using appleaudiotoolbox::ReadCallbacks;

class ReaderOpening : public ReaderTest
{
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
