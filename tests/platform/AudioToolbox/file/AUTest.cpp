// AU files as the parser sees them.

#include "ContainerBuilders.h"
#include "Opened.h"

#include <gtest/gtest.h>

using namespace testing_support;

namespace
{

constexpr UInt32 kInteger =
    kAudioFormatFlagIsSignedInteger | kAudioFormatFlagIsBigEndian | kAudioFormatFlagIsPacked;
constexpr UInt32 kFloat =
    kAudioFormatFlagIsFloat | kAudioFormatFlagIsBigEndian | kAudioFormatFlagIsPacked;

struct EncodingRow
{
    UInt32 mEncoding;
    AudioFormatID mFormat;
    UInt32 mFlags;
    UInt32 mBits;
    UInt32 mBytesPerFrame;
};

TEST(AU, DescribesEveryEncoding)
{
    const EncodingRow rows[] = {
        {1, kAudioFormatULaw, 0, 0, 2},
        {2, kAudioFormatLinearPCM, kInteger, 8, 2},
        {3, kAudioFormatLinearPCM, kInteger, 16, 4},
        {4, kAudioFormatLinearPCM, kInteger, 24, 6},
        {5, kAudioFormatLinearPCM, kInteger, 32, 8},
        {6, kAudioFormatLinearPCM, kFloat, 32, 8},
        {7, kAudioFormatLinearPCM, kFloat, 64, 16},
        {27, kAudioFormatALaw, 0, 0, 2},
    };
    for (const EncodingRow& row : rows)
    {
        const Opened file = Open(AUFile(row.mEncoding, 480, 8000, 2, CountingBytes(480)));
        ASSERT_EQ(file.mStatus, noErr) << row.mEncoding;
        EXPECT_EQ(file.Facts().mFileType, kAudioFileNextType) << row.mEncoding;
        EXPECT_EQ(file.Format().mFormatID, row.mFormat) << row.mEncoding;
        EXPECT_EQ(file.Format().mFormatFlags, row.mFlags) << row.mEncoding;
        EXPECT_EQ(file.Format().mBitsPerChannel, row.mBits) << row.mEncoding;
        EXPECT_EQ(file.Format().mBytesPerPacket, row.mBytesPerFrame) << row.mEncoding;
        EXPECT_EQ(Drain(*file.mReader).mBytes, CountingBytes(480)) << row.mEncoding;
    }
}

TEST(AU, ReadsToTheEndWhereItsSizeIsUnknown)
{
    for (const UInt32 size : {0xFFFFFFFFu, 0u, 4000u})
        EXPECT_EQ(Open(AUFile(3, size, 8000, 1, Bytes(100))).Facts().mPacketCount, 50u) << size;
    EXPECT_EQ(Open(AUFile(3, 60, 8000, 1, Bytes(100))).Facts().mPacketCount, 30u);
}

TEST(AU, RefusesWhatCannotBeTrueOrRead)
{
    EXPECT_EQ(Open(AUFile(3, 40, 0, 2, Bytes(40))).mStatus, kAudioFileInvalidFileError);
    EXPECT_EQ(Open(AUFile(3, 40, 8000, 0, Bytes(40))).mStatus, kAudioFileInvalidFileError);
    EXPECT_EQ(Open(AUFile(3, 40, 8000, 1025, Bytes(40))).mStatus, kAudioFileInvalidFileError);
    EXPECT_EQ(Open(AUFile(23, 40, 8000, 2, Bytes(40))).mStatus,
              kAudioFileUnsupportedDataFormatError);
    Bytes early = AUFile(3, 40, 8000, 2, Bytes(40));
    early[7] = 23;  // the samples would begin within the header
    EXPECT_EQ(Open(early).mStatus, kAudioFileInvalidFileError);
}

TEST(AU, HasNoPacketsWhereItsOffsetLeadsOutOfTheFile)
{
    Bytes file = AUFile(3, 40, 8000, 2, Bytes(40));
    file[5] = 0x10;
    const Opened opened = Open(file);
    ASSERT_EQ(opened.mStatus, noErr);
    EXPECT_EQ(opened.Facts().mPacketCount, 0u);
    EXPECT_TRUE(Drain(*opened.mReader).mPackets.empty());
}

}  // namespace
