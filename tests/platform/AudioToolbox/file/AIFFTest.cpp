// AIFF and AIFF-C files as the parser sees them.

#include "ContainerBuilders.h"
#include "Opened.h"
#include "platform/AudioToolbox/src/file/aiff/AIFFFormat.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace testing_support;

namespace
{

struct SampleRow
{
    const char* mWhat;
    Bytes mFile;
    UInt32 mFlags;
    UInt32 mBits;
    UInt32 mBytesPerFrame;
};

constexpr UInt32 kPackedBig =
    kAudioFormatFlagIsSignedInteger | kAudioFormatFlagIsBigEndian | kAudioFormatFlagIsPacked;
constexpr UInt32 kPackedLittle = kAudioFormatFlagIsSignedInteger | kAudioFormatFlagIsPacked;
constexpr UInt32 kHighBig =
    kAudioFormatFlagIsSignedInteger | kAudioFormatFlagIsBigEndian | kAudioFormatFlagIsAlignedHigh;
constexpr UInt32 kFloatBig =
    kAudioFormatFlagIsFloat | kAudioFormatFlagIsBigEndian | kAudioFormatFlagIsPacked;

TEST(AIFF, DescribesEveryKindOfSample)
{
    const Bytes data = Bytes(480);
    const SampleRow rows[] = {
        {"8 bits", AIFFFile(2, 0, 8, data), kPackedBig, 8, 2},
        {"16 bits", AIFFFile(2, 0, 16, data), kPackedBig, 16, 4},
        {"24 bits", AIFFFile(2, 0, 24, data), kPackedBig, 24, 6},
        {"32 bits", AIFFFile(2, 0, 32, data), kPackedBig, 32, 8},
        {"1 bit", AIFFFile(2, 0, 1, data), kHighBig, 1, 2},
        {"12 bits", AIFFFile(2, 0, 12, data), kHighBig, 12, 4},
        {"20 bits", AIFFFile(2, 0, 20, data), kHighBig, 20, 6},
        {"NONE", AIFCFile("NONE", 2, 0, 16, data), kPackedBig, 16, 4},
        {"twos", AIFCFile("twos", 2, 0, 24, data), kPackedBig, 24, 6},
        {"sowt", AIFCFile("sowt", 2, 0, 16, data), kPackedLittle, 16, 4},
        {"in24", AIFCFile("in24", 2, 0, 24, data), kPackedBig, 24, 6},
        {"ni24", AIFCFile("ni24", 2, 0, 24, data), kPackedLittle, 24, 6},
        {"42ni", AIFCFile("42ni", 2, 0, 24, data), kPackedLittle, 24, 6},
        {"in32", AIFCFile("in32", 2, 0, 32, data), kPackedBig, 32, 8},
        {"ni32", AIFCFile("ni32", 2, 0, 32, data), kPackedLittle, 32, 8},
        {"23ni", AIFCFile("23ni", 2, 0, 32, data), kPackedLittle, 32, 8},
        {"fl32", AIFCFile("fl32", 2, 0, 32, data), kFloatBig, 32, 8},
        {"FL32", AIFCFile("FL32", 2, 0, 32, data), kFloatBig, 32, 8},
        {"fl64", AIFCFile("fl64", 2, 0, 64, data), kFloatBig, 64, 16},
        {"FL64", AIFCFile("FL64", 2, 0, 64, data), kFloatBig, 64, 16},
        {"raw", AIFCFile("raw ", 2, 0, 8, data), kAudioFormatFlagIsPacked, 8, 2},
    };
    for (const SampleRow& row : rows)
    {
        const Opened file = Open(row.mFile);
        ASSERT_EQ(file.mStatus, noErr) << row.mWhat;
        EXPECT_EQ(file.Format().mFormatID, kAudioFormatLinearPCM) << row.mWhat;
        EXPECT_EQ(file.Format().mSampleRate, 44100.0) << row.mWhat;
        EXPECT_EQ(file.Format().mFormatFlags, row.mFlags) << row.mWhat;
        EXPECT_EQ(file.Format().mBitsPerChannel, row.mBits) << row.mWhat;
        EXPECT_EQ(file.Format().mBytesPerFrame, row.mBytesPerFrame) << row.mWhat;
        EXPECT_EQ(file.Facts().mPacketCount, 480 / row.mBytesPerFrame) << row.mWhat;
    }
}

TEST(AIFF, TellsItsTypeByItsForm)
{
    EXPECT_EQ(Open(AIFFFile(2, 10, 16, Bytes(40))).Facts().mFileType, kAudioFileAIFFType);
    EXPECT_EQ(Open(AIFCFile("NONE", 2, 10, 16, Bytes(40))).Facts().mFileType, kAudioFileAIFCType);
}

struct ExtendedRow
{
    Bytes mBytes;
    double mValue;
};

TEST(AIFF, ReadsRatesOfEightyBits)
{
    const ExtendedRow rows[] = {
        {{0x40, 0x0E, 0xAC, 0x44, 0, 0, 0, 0, 0, 0}, 44100.0},
        {{0x40, 0x0E, 0xBB, 0x80, 0, 0, 0, 0, 0, 0}, 48000.0},
        {{0x40, 0x0D, 0xAC, 0x44, 0x80, 0, 0, 0, 0, 0}, 22050.25},
        {{0x3F, 0xFF, 0x80, 0, 0, 0, 0, 0, 0, 0}, 1.0},
        {{0xBF, 0xFF, 0x80, 0, 0, 0, 0, 0, 0, 0}, -1.0},
        {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 0.0},
    };
    for (const ExtendedRow& row : rows)
        EXPECT_EQ(audiotoolbox::ReadExtended(row.mBytes.data()), row.mValue);
    const Bytes infinite = {0x7F, 0xFF, 0x80, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_TRUE(std::isinf(audiotoolbox::ReadExtended(infinite.data())));
}

TEST(AIFF, BeginsBehindTheOffsetOfItsSound)
{
    const Opened file = Open(FormFile(
        "AIFF", {AIFFChunk("SSND", SoundBody(CountingBytes(40), 6)),
                 AIFFChunk("NAME", CountingBytes(5)), AIFFChunk("COMM", CommonBody(2, 10, 16))}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(Drain(*file.mReader).mBytes, CountingBytes(40));
}

TEST(AIFF, IgnoresAnOffsetThatLeadsOutOfTheSound)
{
    const Bytes sound = ByteBuilder().Big(1000, 4).Big(0, 4).Raw(CountingBytes(40)).Get();
    const Opened file = Open(
        FormFile("AIFF", {AIFFChunk("COMM", CommonBody(2, 10, 16)), AIFFChunk("SSND", sound)}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(Drain(*file.mReader).mBytes, CountingBytes(40));
}

TEST(AIFF, HasNoMoreFramesThanToldAndNoMoreThanThere)
{
    EXPECT_EQ(Open(AIFFFile(2, 7, 16, Bytes(40))).Facts().mPacketCount, 7u);
    EXPECT_EQ(Open(AIFFFile(2, 4000000000, 16, Bytes(40))).Facts().mPacketCount, 10u);
    EXPECT_EQ(Open(AIFFFile(2, 0, 16, Bytes(40))).Facts().mPacketCount, 10u);
}

TEST(AIFF, MayLeaveTheSoundOutWithoutFrames)
{
    const Opened file = Open(FormFile("AIFF", {AIFFChunk("COMM", CommonBody(2, 0, 16))}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mPacketCount, 0u);
}

TEST(AIFF, ReadsAStreamWhoseSizeWasNeverFilledIn)
{
    for (const UInt32 size : {0u, 0xFFFFFFFFu})
    {
        ByteBuilder sound;
        sound.Text("SSND").Big(size, 4).Raw(SoundBody(CountingBytes(40)));
        const Opened file =
            Open(FormFile("AIFF", {AIFFChunk("COMM", CommonBody(2, 0, 16)), sound.Get()}));
        ASSERT_EQ(file.mStatus, noErr) << size;
        EXPECT_EQ(Drain(*file.mReader).mBytes, CountingBytes(40)) << size;
    }
}

TEST(AIFF, TakesTheLengthOfBlocksInBlocksOrInFrames)
{
    const Bytes data = Bytes(10 * 68);
    const Opened blocks = Open(AIFCFile("ima4", 2, 10, 16, data));
    ASSERT_EQ(blocks.mStatus, noErr);
    EXPECT_EQ(blocks.Format().mFormatID, kAudioFormatAppleIMA4);
    EXPECT_EQ(blocks.Format().mBytesPerPacket, 68u);
    EXPECT_EQ(blocks.Format().mFramesPerPacket, 64u);
    EXPECT_EQ(blocks.Facts().mPacketTable->mNumberValidFrames, 640);
    EXPECT_EQ(blocks.Facts().mPacketTable->mPrimingFrames, 0);
    const Opened frames = Open(AIFCFile("ima4", 2, 600, 16, data));
    EXPECT_EQ(frames.Facts().mPacketTable->mNumberValidFrames, 600);
    EXPECT_EQ(frames.Facts().mPacketTable->mRemainderFrames, 40);
    const Opened halved = Open(AIFCFile("ima4", 2, 5, 16, data));
    EXPECT_EQ(halved.Facts().mPacketTable->mNumberValidFrames, 640);
    const Opened lying = Open(AIFCFile("ima4", 2, 70000, 16, data));
    EXPECT_EQ(lying.Facts().mPacketTable->mNumberValidFrames, 640);
}

TEST(AIFF, DescribesTheLaws)
{
    for (const auto& [code, format] :
         {std::pair{"alaw", kAudioFormatALaw}, std::pair{"ALAW", kAudioFormatALaw},
          std::pair{"ulaw", kAudioFormatULaw}, std::pair{"ULAW", kAudioFormatULaw}})
    {
        const Opened file = Open(AIFCFile(code, 2, 20, 16, Bytes(40)));
        ASSERT_EQ(file.mStatus, noErr) << code;
        EXPECT_EQ(file.Format().mFormatID, format) << code;
        EXPECT_EQ(file.Format().mBytesPerPacket, 2u) << code;
        EXPECT_EQ(file.Format().mBitsPerChannel, 0u) << code;
        EXPECT_EQ(file.Facts().mPacketCount, 20u) << code;
    }
}

TEST(AIFF, PassesItsLayoutOn)
{
    ByteBuilder layout;
    layout.Big(0, 4).Big(0, 4).Big(2, 4);
    for (const UInt32 label : {3u, 4u})
        layout.Big(label, 4).Big(0, 4).Raw(Bytes(12));
    const Opened file = Open(
        FormFile("AIFF", {AIFFChunk("COMM", CommonBody(2, 10, 16)), AIFFChunk("CHAN", layout.Get()),
                          AIFFChunk("SSND", SoundBody(Bytes(40)))}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(LayoutWords(file.Facts().mChannelLayout), (std::vector<UInt32>{0, 0, 2, 3, 4}));
}

TEST(AIFF, DropsALayoutThatIsShorterThanItClaims)
{
    const Bytes layout = ByteBuilder().Big(0, 4).Big(0, 4).Big(0x10000000, 4).Get();
    const Opened file =
        Open(FormFile("AIFF", {AIFFChunk("COMM", CommonBody(2, 10, 16)), AIFFChunk("CHAN", layout),
                               AIFFChunk("SSND", SoundBody(Bytes(40)))}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_TRUE(file.Facts().mChannelLayout.empty());
}

struct RefusedRow
{
    const char* mWhat;
    Bytes mFile;
    OSStatus mStatus;
};

TEST(AIFF, RefusesWhatCannotBeTrueOrRead)
{
    const OSStatus damaged = kAudioFileInvalidFileError;
    const Bytes nan = {0x7F, 0xFF, 0xC0, 0, 0, 0, 0, 0, 0, 0};
    const Bytes sound = AIFFChunk("SSND", SoundBody(Bytes(40)));
    const RefusedRow rows[] = {
        {"no common", FormFile("AIFF", {sound}), damaged},
        {"no sound", FormFile("AIFF", {AIFFChunk("COMM", CommonBody(2, 10, 16))}), damaged},
        {"short common", FormFile("AIFF", {AIFFChunk("COMM", Bytes(17)), sound}), damaged},
        {"plain common in AIFC",
         FormFile("AIFC", {AIFFChunk("COMM", CommonBody(2, 10, 16)), sound}), damaged},
        {"no channels", AIFFFile(0, 10, 16, Bytes(40)), damaged},
        {"no bits", AIFFFile(2, 10, 0, Bytes(40)), damaged},
        {"no rate",
         FormFile("AIFF", {AIFFChunk("COMM", CommonBody(2, 10, 16, {}, Bytes(10))), sound}),
         damaged},
        {"NaN for a rate",
         FormFile("AIFF", {AIFFChunk("COMM", CommonBody(2, 10, 16, {}, nan)), sound}), damaged},
        {"33 bits", AIFFFile(2, 10, 33, Bytes(40)), kAudioFileUnsupportedDataFormatError},
        {"unknown codec", AIFCFile("Qclp", 2, 10, 16, Bytes(40)),
         kAudioFileUnsupportedDataFormatError},
        {"another form", FormFile("8SVX", {}), kAudioFileUnsupportedFileTypeError},
    };
    for (const RefusedRow& row : rows)
        EXPECT_EQ(Open(row.mFile).mStatus, row.mStatus) << row.mWhat;
}

}  // namespace
