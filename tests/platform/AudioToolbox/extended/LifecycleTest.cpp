// In which order a file may be used, what is refused, and where failures show.

#include "ExtendedUse.h"

#include <AudioToolbox/ExtendedAudioFile.h>

namespace
{

using namespace audiotoolbox;
using namespace extended_test;

const Description kWords16 = Linear(44100, kSigned, 16, 2);
const std::vector<SInt16> kFourFrames = {1, 2, 3, 4, 5, 6, 7, 8};

Description AAC(double inRate = 44100.0, UInt32 inChannels = 2)
{
    return {inRate, kAudioFormatMPEG4AAC, 0, 0, 0, 0, inChannels, 0, 0};
}

OSStatus StatusOfCheck(AudioFileTypeID inType, const Description& inFormat)
{
    RecordInUse record;
    return ExtendedFile({inType, inFormat, {}, &MakeRecordingWriter}).Check();
}

struct RefusalRow
{
    const char* mName;
    AudioFileTypeID mType;
    Description mFormat;
};

TEST(Checking, RefusesFormatsThatCannotBeMade)
{
    Description packed = Linear(44100, kSigned, 16, 2);
    packed.mBitsPerChannel = 12;
    Description wide = Linear(44100, kSigned, 16, 2);
    wide.mBytesPerFrame = wide.mBytesPerPacket = 5;
    Description zero = Linear(44100, kSigned, 16, 2);
    zero.mBytesPerFrame = zero.mBytesPerPacket = 0;
    Description planes = Linear(44100, kSigned | kAudioFormatFlagIsNonInterleaved, 16, 2);
    planes.mBytesPerFrame = planes.mBytesPerPacket = 2;
    const double nan = std::nan("");
    const RefusalRow rows[] = {
        {"bits that do not fill a packed word", kAudioFileWAVEType, packed},
        {"a frame that is no number of words", kAudioFileWAVEType, wide},
        {"a frame without bytes", kAudioFileWAVEType, zero},
        {"a buffer a channel", kAudioFileWAVEType, planes},
        {"no channels", kAudioFileWAVEType, Linear(44100, kSigned, 16, 0)},
        {"65 channels", kAudioFileWAVEType, Linear(44100, kSigned, 16, 65)},
        {"channels beyond reason", kAudioFileWAVEType, Linear(44100, kSigned, 16, 0xFFFFFFFF)},
        {"no rate", kAudioFileWAVEType, Linear(0, kSigned, 16, 2)},
        {"a negative rate", kAudioFileWAVEType, Linear(-44100, kSigned, 16, 2)},
        {"a rate that is no number", kAudioFileWAVEType, Linear(nan, kSigned, 16, 2)},
        {"an infinite rate", kAudioFileWAVEType, Linear(HUGE_VAL, kSigned, 16, 2)},
        {"AAC in WAVE", kAudioFileWAVEType, AAC()},
        {"linear PCM in M4A", kAudioFileM4AType, kWords16},
        {"a rate that the encoder has not", kAudioFileM4AType, AAC(44101)},
        {"a count that the encoder has not", kAudioFileM4AType, AAC(44100, 7)},
        {"an encoder without channels", kAudioFileM4AType, AAC(44100, 0)},
        {"an encoder without a rate", kAudioFileM4AType, AAC(0)},
        {"channels that overflow", kAudioFileM4AType, AAC(44100, 0x80000000)},
        {"20 bits of ALAC",
         kAudioFileM4AType,
         {44100, kAudioFormatAppleLossless, 2, 0, 0, 0, 2, 0, 0}},
        {"flags of AAC", kAudioFileM4AType, {44100, kAudioFormatMPEG4AAC, 4, 0, 0, 0, 2, 0, 0}},
        {"a format of nobody", kAudioFileWAVEType, {44100, 0, 0, 0, 0, 0, 2, 0, 0}},
    };
    for (const RefusalRow& row : rows)
        EXPECT_EQ(StatusOfCheck(row.mType, row.mFormat), kAudioFileUnsupportedDataFormatError)
            << row.mName;
}

TEST(Checking, RefusesTypesThatAreNotWritten)
{
    for (const AudioFileTypeID type : {UInt32{0}, UInt32{kAudioFileAMRType},
                                       UInt32{kAudioFileSoundDesigner2Type}, UInt32{0x78787878}})
        EXPECT_EQ(StatusOfCheck(type, kWords16), kAudioFileUnsupportedFileTypeError) << type;
}

TEST(Checking, AsksTheContainer)
{
    RecordInUse record;
    record->mMakeStatus = kAudioFileUnsupportedDataFormatError;
    ExtendedFile file({kAudioFileWAVEType, kWords16, {}, &MakeRecordingWriter});
    EXPECT_EQ(file.Check(), kAudioFileUnsupportedDataFormatError);
}

TEST(Checking, TakesWhatIsLeftOfACompressedFormat)
{
    Description format = AAC();
    format.mBytesPerPacket = 77;  // nobody looks at byte counts
    format.mBytesPerFrame = 12345;
    RecordInUse record;
    ExtendedFile file({kAudioFileM4AType, format, {}, &MakeRecordingWriter});
    EXPECT_EQ(file.Check(), noErr);
    EXPECT_EQ(file.Format().mFramesPerPacket, 1024u);
    EXPECT_EQ(file.Format().mBytesPerPacket, 0u);
}

TEST(TheClientFormat, IsLinearPCMOnly)
{
    RecordInUse record;
    const auto file = NewFile(kAudioFileWAVEType, kWords16);
    EXPECT_EQ(file->SetClientFormat(AAC()), kExtAudioFileError_NonPCMClientFormat);
    EXPECT_EQ(file->SetClientFormat({}), kExtAudioFileError_NonPCMClientFormat);
}

TEST(TheClientFormat, IsRefusedWhereItCannotBeConverted)
{
    RecordInUse record;
    const auto file = NewFile(kAudioFileM4AType, AAC());
    Description planes = Linear(44100, kSigned | kAudioFormatFlagIsNonInterleaved, 16, 2);
    planes.mBytesPerFrame = planes.mBytesPerPacket = 2;
    EXPECT_EQ(file->SetClientFormat(planes), kAudioFileUnsupportedDataFormatError);
    EXPECT_EQ(file->SetClientFormat(Linear(44100, kSigned, 16, 0)),
              kAudioFileUnsupportedDataFormatError);
    EXPECT_EQ(file->SetClientFormat(Linear(0, kSigned, 16, 2)),
              kAudioFileUnsupportedDataFormatError);
    EXPECT_EQ(file->ClientFormat(), nullptr);
    EXPECT_EQ(file->SetClientFormat(kWords16), noErr) << "the file is as good as before";
    EXPECT_EQ(file->Close(), noErr);
}

TEST(TheClientFormat, MayChangeUntilFramesAreWritten)
{
    RecordInUse record;
    const auto file = NewFile(kAudioFileWAVEType, kWords16);
    EXPECT_EQ(file->SetClientFormat(Floats(44100, 2)), noErr);
    EXPECT_EQ(file->TakeSettings(), noErr);
    EXPECT_EQ(file->SetClientFormat(kWords16), noErr);
    EXPECT_EQ(file->Write(nullptr, 0, 0), noErr);
    EXPECT_EQ(file->SetClientFormat(kWords16), noErr) << "no frames are no write";
    ASSERT_EQ(Write(*file, kFourFrames, 2), noErr);
    EXPECT_EQ(file->SetClientFormat(kWords16), kExtAudioFileError_InvalidOperationOrder);
    EXPECT_EQ(file->TakeSettings(), kExtAudioFileError_InvalidOperationOrder);
    EXPECT_EQ(file->Close(), noErr);
}

TEST(Writing, NeedsTheClientFormatOfACompressedFile)
{
    RecordInUse record;
    const auto file = NewFile(kAudioFileM4AType, AAC());
    EXPECT_EQ(file->TakeSettings(), kExtAudioFileError_InvalidOperationOrder);
    EXPECT_EQ(Write(*file, kFourFrames, 2), kExtAudioFileError_InvalidOperationOrder);
    EXPECT_EQ(file->Close(), noErr) << "nothing went wrong with the file";
    EXPECT_EQ(record->mCalls, "SFC");
}

TEST(Writing, NeverReadsBehindTheBuffer)
{
    RecordInUse record;
    const auto file = NewFile(kAudioFileWAVEType, kWords16);
    const UInt8 frames[16] = {};
    EXPECT_EQ(file->Write(frames, 5, 16), kAudio_ParamError);
    EXPECT_EQ(file->Write(frames, 0xFFFFFFFF, 16), kAudio_ParamError);
    EXPECT_EQ(file->Write(frames, 0x40000001, 4), kAudio_ParamError) << "as 32 bits it would fit";
    EXPECT_EQ(file->Write(frames, 4, 19), noErr) << "what is too much is left alone";
    EXPECT_EQ(file->Close(), noErr);
    EXPECT_EQ(record->mBytes.size(), 16u);
}

TEST(AFileThatIsNeverWritten, IsStartedAndFinished)
{
    const Description lossless = {44100, kAudioFormatFLAC, 3, 0, 0, 0, 2, 0, 0};
    const std::pair<AudioFileTypeID, Description> files[] = {
        {kAudioFileWAVEType, kWords16}, {kAudioFileM4AType, AAC()}, {kAudioFileFLACType, lossless}};
    for (const auto& [type, format] : files)
    {
        RecordInUse record;
        const auto file = NewFile(type, format);
        EXPECT_EQ(file->Close(), noErr);
        EXPECT_EQ(record->mCalls, "SFC");
        EXPECT_EQ(record->mEnd.mValidFrames, 0);
        EXPECT_EQ(record->mEnd.mRemainderFrames, 0u);
        EXPECT_EQ(record->mStart.mCookie.empty(), format.mFormatID == kAudioFormatLinearPCM);
    }
}

constexpr OSStatus kFirst = -1001;
constexpr OSStatus kSecond = -1002;

TEST(Failures, OfTheHeaderComeFromTheFirstWriteAndEveryLaterCall)
{
    RecordInUse record;
    record->mStartStatus = kFirst;
    const auto file = NewFile(kAudioFileWAVEType, kWords16);
    EXPECT_EQ(Write(*file, kFourFrames, 2), kFirst);
    EXPECT_EQ(Write(*file, kFourFrames, 2), kFirst);
    EXPECT_EQ(file->Close(), kFirst);
    EXPECT_EQ(record->mCalls, "SC") << "what has no header is not finished";
}

TEST(Failures, OfAWriteLeaveAFileThatIsFinished)
{
    for (const Description& client : {kWords16, Floats(44100, 2)})
    {
        RecordInUse record;
        record->mFailingWrite = 2;
        record->mWriteStatus = kFirst;
        const auto file = NewFile(kAudioFileWAVEType, kWords16);
        ASSERT_EQ(file->SetClientFormat(client), noErr);
        constexpr UInt32 kFrames = 8192;  // in the file, a write of the size that is handed on
        const std::vector<UInt8> frames(kFrames * client.mBytesPerFrame);
        const auto write = [&]
        { return file->Write(frames.data(), kFrames, static_cast<UInt32>(frames.size())); };
        EXPECT_EQ(write(), noErr);
        EXPECT_EQ(write(), kFirst);
        EXPECT_EQ(write(), kFirst);
        record->mFinishStatus = kSecond;
        EXPECT_EQ(file->Close(), kFirst);
        EXPECT_EQ(record->mCalls, "SWWFC");
        EXPECT_EQ(record->mBytes.size(), 8192u * 4u);
    }
}

TEST(Failures, EndTheWorkOfTheEncoder)
{
    RecordInUse record;
    record->mFailingWrite = 1;
    record->mWriteStatus = kFirst;
    const auto file = NewFile(kAudioFileM4AType, AAC());
    ASSERT_EQ(file->SetClientFormat(kWords16), noErr);
    const std::vector<SInt16> samples = Tone(44100, 2);
    OSStatus status = noErr;
    for (int i = 0; i < 20 && status == noErr; ++i)
        status = Write(*file, samples, 2);
    EXPECT_EQ(status, kFirst);
    EXPECT_EQ(file->Close(), kFirst);
    EXPECT_EQ(record->mCalls, "SWFC") << "no packet follows one that is missing";
}

TEST(Failures, AtTheEndComeFromTheCloseTheFirstOfThem)
{
    {
        RecordInUse record;
        record->mFinishStatus = kFirst;
        record->mCloseStatus = kSecond;
        const auto file = NewFile(kAudioFileWAVEType, kWords16);
        EXPECT_EQ(Write(*file, kFourFrames, 2), noErr);
        EXPECT_EQ(file->Close(), kFirst);
        EXPECT_EQ(record->mCalls, "SWFC");
    }
    RecordInUse record;
    record->mCloseStatus = kSecond;
    const auto file = NewFile(kAudioFileWAVEType, kWords16);
    EXPECT_EQ(file->Close(), kSecond);
}

TEST(Failures, OfThePacketsThatTheEncoderHeldComeFromTheClose)
{
    RecordInUse record;
    record->mFailingWrite = 1;
    record->mWriteStatus = kFirst;
    const auto file = NewFile(kAudioFileM4AType, AAC());
    ASSERT_EQ(file->SetClientFormat(kWords16), noErr);
    EXPECT_EQ(Write(*file, kFourFrames, 2), noErr);
    EXPECT_EQ(file->Close(), kFirst);
    EXPECT_EQ(record->mCalls, "SWFC");
}

}  // namespace
