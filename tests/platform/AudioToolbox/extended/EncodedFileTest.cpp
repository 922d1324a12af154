// Files of compressed formats: what the container is told, and how encoders start and end.

#include "ExtendedUse.h"

#include "../convert/EncoderUse.h"

#include <AudioToolbox/ExtendedAudioFile.h>

namespace
{

using namespace audiotoolbox;
using namespace extended_test;

Description AAC(UInt32 inChannels = 2)
{
    return {44100.0, kAudioFormatMPEG4AAC, 0, 0, 0, 0, inChannels, 0, 0};
}

Description Words16(UInt32 inChannels = 2, double inRate = 44100.0)
{
    return Linear(inRate, kSigned, 16, inChannels);
}

// Encodes frames of a tone, in pieces of inPiece frames.
void Encode(AudioFileTypeID inType, const Description& inFormat, std::size_t inFrames,
            std::size_t inPiece)
{
    const UInt32 channels = inFormat.mChannelsPerFrame;
    const auto file = NewFile(inType, inFormat);
    ASSERT_EQ(file->SetClientFormat(Words16(channels, inFormat.mSampleRate)), noErr);
    const std::vector<SInt16> samples = Tone(inFrames, channels);
    for (std::size_t at = 0; at < inFrames; at += inPiece)
    {
        const std::size_t count = std::min(inPiece, inFrames - at);
        const SInt16* first = samples.data() + at * channels;
        ASSERT_EQ(Write(*file, std::vector<SInt16>(first, first + count * channels), channels),
                  noErr);
    }
    EXPECT_EQ(file->FrameCount(), static_cast<SInt64>(inFrames));
    ASSERT_EQ(file->Close(), noErr);
}

struct LengthRow
{
    std::size_t mFrames;
    std::size_t mPackets;
    UInt32 mRemainder;
};

TEST(EncodedFiles, TellPacketsPrimingAndRemainderOfEveryLength)
{
    // 1024 frames of delay stand before the audio.
    for (const LengthRow& row :
         {LengthRow{0, 0, 0}, LengthRow{1, 2, 1023}, LengthRow{1023, 2, 1}, LengthRow{1024, 2, 0},
          LengthRow{1025, 3, 1023}, LengthRow{44100, 45, 956}})
    {
        RecordInUse record;
        Encode(kAudioFileM4AType, AAC(), row.mFrames, 4096);
        EXPECT_EQ(record->mPacketBytes.size(), row.mPackets) << row.mFrames;
        EXPECT_EQ(record->mEnd.mValidFrames, static_cast<SInt64>(row.mFrames));
        EXPECT_EQ(record->mEnd.mPrimingFrames, 1024u);
        EXPECT_EQ(record->mEnd.mRemainderFrames, row.mRemainder) << row.mFrames;
        EXPECT_FALSE(record->mStart.mCookie.empty());
        EXPECT_EQ(record->mStart.mPrimingFrames, 1024u);
        EXPECT_EQ(record->mCalls.front(), 'S');
        EXPECT_EQ(record->mCalls.substr(record->mCalls.size() - 2), "FC");
    }
}

TEST(EncodedFiles, AreTheSameHoweverTheirFramesAreCut)
{
    ByteVector whole;
    for (const std::size_t piece : {10000u, 1024u, 1000u, 37u})
    {
        RecordInUse record;
        Encode(kAudioFileM4AType, AAC(), 10000, piece);
        if (whole.empty())
            whole = record->mBytes;
        EXPECT_FALSE(whole.empty());
        EXPECT_TRUE(record->mBytes == whole) << "pieces of " << piece;
    }
}

TEST(EncodedFiles, TellAShortLastPacketOfALosslessFormat)
{
    RecordInUse record;
    Encode(kAudioFileM4AType, {44100.0, kAudioFormatAppleLossless, 0, 0, 0, 0, 2, 0, 0}, 5000,
           5000);
    EXPECT_EQ(record->mPacketFrames, (std::vector<UInt32>{0, 904}));
    EXPECT_EQ(record->mEnd.mValidFrames, 5000);
    EXPECT_EQ(record->mEnd.mRemainderFrames, 0u);
}

TEST(EncodedFiles, ReadTheCookieOfFLACAgainAtTheEnd)
{
    RecordInUse record;
    Encode(kAudioFileFLACType, {44100.0, kAudioFormatFLAC, 0, 0, 0, 0, 2, 0, 0}, 5000, 5000);
    ASSERT_EQ(record->mStart.mCookie.size(), record->mEnd.mCookie.size());
    EXPECT_NE(record->mStart.mCookie, record->mEnd.mCookie) << "the length and the checksum";
}

TEST(EncodedFiles, OfConstantPacketsDescribeNone)
{
    RecordInUse record;
    Encode(kAudioFileAIFCType, {44100.0, kAudioFormatAppleIMA4, 0, 0, 0, 0, 1, 0, 0}, 130, 130);
    EXPECT_EQ(record->mBytes.size(), 3u * 34u);
    EXPECT_TRUE(record->mPacketBytes.empty());
    EXPECT_EQ(record->mRequest.mFormat.mBytesPerPacket, 34u);
    EXPECT_EQ(record->mRequest.mFormat.mFramesPerPacket, 64u);
    EXPECT_EQ(record->mEnd.mRemainderFrames, 62u);
}

TEST(EncodedFiles, OfOneByteASampleTakeAnyCountOfFrames)
{
    RecordInUse record;
    Encode(kAudioFileNextType, {8000.0, kAudioFormatULaw, 0, 0, 0, 0, 2, 0, 0}, 200001, 100000);
    EXPECT_EQ(record->mBytes.size(), 2u * 200001u);
}

TEST(LosslessFiles, TakeTheirDepthFromTheClientWhereTheFlagsLeaveItOpen)
{
    const Description open = {44100.0, kAudioFormatFLAC, 0, 0, 0, 0, 2, 0, 0};
    RecordInUse record;
    const auto file = NewFile(kAudioFileFLACType, open);
    ASSERT_EQ(file->SetClientFormat(Words16()), noErr);
    EXPECT_EQ(record->mRequest.mFormat.mFormatFlags, 1u);
    ASSERT_EQ(file->SetClientFormat(Linear(44100, kSigned, 24, 2)), noErr);
    EXPECT_EQ(record->mRequest.mFormat.mFormatFlags, 3u);
    EXPECT_EQ(file->Close(), noErr);
}

UInt32 BitRateOf(AudioConverterRef inConverter)
{
    return encoder_use::Get<UInt32>(inConverter, kAudioConverterEncodeBitRate).value_or(0);
}

TEST(TakingSettingsOver, OpensTheEncoderWithThemAndLaterOnesHaveNoEffect)
{
    RecordInUse record;
    const auto file = NewFile(kAudioFileM4AType, AAC());
    ASSERT_EQ(file->SetClientFormat(Words16()), noErr);
    AudioConverterRef converter = file->Converter();
    ASSERT_NE(converter, nullptr);
    ASSERT_EQ(encoder_use::Set(converter, kAudioCodecPropertyBitRateControlMode, 0), noErr);
    ASSERT_EQ(encoder_use::Set(converter, kAudioConverterEncodeBitRate, 96000), noErr);
    ASSERT_EQ(file->TakeSettings(), noErr);
    EXPECT_NE(encoder_use::Set(converter, kAudioConverterEncodeBitRate, 64000), noErr);
    EXPECT_NE(encoder_use::Set(converter, kAudioCodecPropertyBitRateControlMode, 1), noErr);
    EXPECT_EQ(BitRateOf(converter), 96000u);
    EXPECT_EQ(file->TakeSettings(), noErr) << "nothing can have changed";
    ASSERT_EQ(Write(*file, Tone(44100 * 4, 2), 2), noErr);
    ASSERT_EQ(file->Close(), noErr);
    EXPECT_EQ(record->mStart.mBitRate, 96000u);
    EXPECT_TRUE(record->mStart.mIsConstantBitRate);
    EXPECT_NEAR(static_cast<double>(record->mBytes.size()), 4 * 96000 / 8, 600);
}

TEST(TakingSettingsOver, WorksForEncodersWithoutACookieToo)
{
    RecordInUse record;
    const auto file =
        NewFile(kAudioFileMP3Type, {44100.0, kAudioFormatMPEGLayer3, 0, 0, 0, 0, 2, 0, 0});
    ASSERT_EQ(file->SetClientFormat(Words16()), noErr);
    ASSERT_EQ(file->TakeSettings(), noErr);
    EXPECT_NE(encoder_use::Set(file->Converter(), kAudioConverterEncodeBitRate, 64000), noErr);
    EXPECT_EQ(file->Close(), noErr);
    EXPECT_EQ(record->mStart.mBitRate, 128000u);
    EXPECT_EQ(record->mStart.mPrimingFrames, 1105u);
}

TEST(TakingSettingsOver, IsNotNeeded)
{
    RecordInUse record;
    const auto file = NewFile(kAudioFileM4AType, AAC());
    ASSERT_EQ(file->SetClientFormat(Words16()), noErr);
    const UInt32 byDefault = BitRateOf(file->Converter());
    ASSERT_EQ(Write(*file, Tone(5000, 2), 2), noErr);
    ASSERT_EQ(file->Close(), noErr);
    EXPECT_EQ(record->mStart.mBitRate, byDefault);
    EXPECT_GT(byDefault, 0u);
    EXPECT_GT(record->mStart.mMaximumPacketBytes, 0u);
}

TEST(AVariableBitRate, IsNotToldAsAFigure)
{
    RecordInUse record;
    const auto file = NewFile(kAudioFileM4AType, AAC());
    ASSERT_EQ(file->SetClientFormat(Words16()), noErr);
    ASSERT_EQ(encoder_use::Set(file->Converter(), kAudioCodecPropertyBitRateControlMode, 3), noErr);
    ASSERT_EQ(file->TakeSettings(), noErr);
    ASSERT_EQ(file->Close(), noErr);
    EXPECT_EQ(record->mStart.mBitRate, 0u);
    EXPECT_FALSE(record->mStart.mIsConstantBitRate);
}

TEST(EncodedFiles, PutChannelsIntoTheEncodersOrder)
{
    // The only channel that sounds is the client's first, the centre.
    const auto bytes = [](const Labels& inLabels, UInt32 inSounding)
    {
        RecordInUse record;
        const auto file = NewFile(
            kAudioFileM4AType, {44100.0, kAudioFormatAppleLossless, 1, 0, 0, 0, 3, 0, 0}, inLabels);
        EXPECT_EQ(file->SetClientFormat(Words16(3)), noErr);
        std::vector<SInt16> samples(3 * 1000);
        for (std::size_t frame = 0; frame < 1000; ++frame)
            samples[3 * frame + inSounding] = static_cast<SInt16>(frame * 17);
        EXPECT_EQ(Write(*file, samples, 3), noErr);
        EXPECT_EQ(file->Close(), noErr);
        return record->mBytes;
    };
    EXPECT_EQ(bytes({3, 1, 2}, 0), bytes({1, 2, 3}, 2));
    EXPECT_EQ(bytes({3, 1, 2}, 1), bytes({1, 2, 3}, 0));
    EXPECT_NE(bytes({3, 1, 2}, 0), bytes({1, 2, 3}, 0));
}

TEST(NoiseBeyondAllBounds, NeverStopsAnEncoder)
{
    RecordInUse record;
    const auto file = NewFile(kAudioFileM4AType, AAC(1));
    ASSERT_EQ(file->SetClientFormat(Floats(44100, 1)), noErr);
    std::vector<Float32> samples;
    for (int i = 0; i < 8192; ++i)
        samples.push_back(i % 3 == 0   ? std::numeric_limits<Float32>::quiet_NaN()
                          : i % 3 == 1 ? std::numeric_limits<Float32>::infinity()
                                       : -1e30f);
    EXPECT_EQ(Write(*file, samples, 1), noErr);
    EXPECT_EQ(file->Close(), noErr);
    EXPECT_EQ(record->mPacketBytes.size(), 9u);
}

}  // namespace
