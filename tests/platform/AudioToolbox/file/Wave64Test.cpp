// W64 files as the parser sees them.

#include "ContainerBuilders.h"
#include "Opened.h"

#include <gtest/gtest.h>

using namespace testing_support;

namespace
{

TEST(Wave64, ReadsSamplesBehindPaddedChunks)
{
    const Opened file = Open(
        Wave64File({Wave64Chunk("junk", CountingBytes(3)), Wave64Chunk("fmt ", WaveRecord().Get()),
                    Wave64Chunk("data", CountingBytes(404)), Wave64Chunk("levl", Bytes(9))}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mFileType, kAudioFileWave64Type);
    EXPECT_EQ(file.Format().mFormatFlags, 12u);  // signed, packed
    EXPECT_EQ(file.Facts().mDataOffset, 40 + 32 + 40 + 24);
    EXPECT_EQ(file.Facts().mPacketCount, 101u);
    EXPECT_EQ(Drain(*file.mReader).mBytes, CountingBytes(404));
}

TEST(Wave64, TakesTheLengthOfBlocksFromTheFact)
{
    WaveRecord record = {0x11, 1, 44100, 256, 4, {0xF9, 0x01}};
    const Opened file =
        Open(Wave64File({Wave64Chunk("fmt ", record.Get()), Wave64Chunk("data", Bytes(2560)),
                         Wave64Chunk("fact", ByteBuilder().Little(5000, 8).Get())}));
    ASSERT_TRUE(file.Facts().mPacketTable.has_value());
    EXPECT_EQ(file.Facts().mPacketTable->mNumberValidFrames, 5000);
    EXPECT_EQ(file.Facts().mPacketTable->mRemainderFrames, 50);
}

TEST(Wave64, ReadsAStreamWhoseSizeWasNeverFilledIn)
{
    for (const UInt64 size : {UInt64{0}, UInt64{24}, ~UInt64{0}, UInt64{1} << 62})
    {
        Bytes data = Wave64Chunk("data", CountingBytes(400));
        const Bytes told = ByteBuilder().Little(size, 8).Get();
        std::copy(told.begin(), told.end(), data.begin() + 16);
        const Opened file = Open(Wave64File({Wave64Chunk("fmt ", WaveRecord().Get()), data}));
        ASSERT_EQ(file.mStatus, noErr) << size;
        EXPECT_EQ(file.Facts().mDataByteCount, 400) << size;
    }
}

TEST(Wave64, RefusesAFileWithoutItsParts)
{
    EXPECT_EQ(Open(Wave64File({})).mStatus, kAudioFileInvalidFileError);
    EXPECT_EQ(Open(Wave64File({Wave64Chunk("data", Bytes(40))})).mStatus,
              kAudioFileInvalidFileError);
    Bytes file = Wave64File({Wave64Chunk("fmt ", WaveRecord().Get())});
    file[24] = 'x';  // not of the kind `wave`
    EXPECT_EQ(Open(file).mStatus, kAudioFileInvalidFileError);
}

}  // namespace
