// The packet index: places, sizes, and the memory that they take.
#include "file/mpeg4/PacketIndex.h"

#include <gtest/gtest.h>

namespace audiotoolbox::mpeg4
{
namespace
{

SInt64 OffsetOf(const PacketIndex& inIndex, UInt32 inPacket)
{
    PacketIndex::Cursor cursor(inIndex);
    cursor.Seek(inPacket);
    return cursor.Offset();
}

// Packets of 1, 2, 3, ... bytes, one behind the other.
PacketIndex Growing(UInt32 inPackets)
{
    PacketIndex index(1 << 30);
    for (UInt32 packet = 0; packet < inPackets; ++packet)
        index.AppendSize(packet + 1);
    EXPECT_TRUE(index.Place(1000, inPackets));
    index.Finish();
    return index;
}

TEST(PacketIndex, SeeksToEveryPacket)
{
    const PacketIndex index = Growing(500);
    SInt64 offset = 1000;
    for (UInt32 packet = 0; packet < 500; ++packet)
    {
        EXPECT_EQ(OffsetOf(index, packet), offset) << packet;
        EXPECT_EQ(index.SizeOf(packet), packet + 1);
        offset += packet + 1;
    }
    EXPECT_EQ(index.TotalBytes(), 125250);
    EXPECT_EQ(index.LargestSize(), 500u);
}

TEST(PacketIndex, StretchGoesOnAcrossNeighbouringChunks)
{
    PacketIndex index(1000);
    for (const UInt32 size : {10u, 20u, 30u, 40u})
        index.AppendSize(size);
    EXPECT_TRUE(index.Place(100, 1));
    EXPECT_TRUE(index.Place(110, 1));
    EXPECT_TRUE(index.Place(500, 2));
    index.Finish();
    PacketIndex::Cursor cursor(index);
    cursor.Seek(0);
    SInt64 offset = 0;
    UInt32 bytes = 0;
    const auto take = [&](UInt32 inSize)
    {
        bytes += inSize;
        return true;
    };
    cursor.TakeStretch(offset, take);
    EXPECT_EQ(offset, 100);
    EXPECT_EQ(bytes, 30u);
    cursor.TakeStretch(offset, take);
    EXPECT_EQ(offset, 500);
    EXPECT_EQ(bytes, 100u);
    EXPECT_EQ(cursor.Packet(), 4u);
}

TEST(PacketIndex, WidensForAPacketAbove65535Bytes)
{
    PacketIndex index(1 << 20);
    for (const UInt32 size : {7u, 65535u, 65536u, 9u})
        index.AppendSize(size);
    EXPECT_TRUE(index.Place(0, 4));
    index.Finish();
    EXPECT_EQ(index.SizeOf(0), 7u);
    EXPECT_EQ(index.SizeOf(1), 65535u);
    EXPECT_EQ(index.SizeOf(2), 65536u);
    EXPECT_EQ(OffsetOf(index, 3), 131078);
    EXPECT_EQ(index.LargestSize(), 65536u);
}

TEST(PacketIndex, EndsAtThePacketThatTheFileDoesNotHold)
{
    PacketIndex index(100);
    for (const UInt32 size : {30u, 30u, 30u, 30u})
        index.AppendSize(size);
    EXPECT_FALSE(index.Place(20, 4));
    index.Finish();
    EXPECT_EQ(index.Count(), 2u);
    EXPECT_EQ(index.TotalBytes(), 60);
    EXPECT_FALSE(index.Place(-1, 1));
    EXPECT_FALSE(index.Place(101, 1));
}

TEST(PacketIndex, ConstantSizesTakeNoMemoryAPacket)
{
    PacketIndex index(SInt64{1} << 40);
    index.SetConstantSize(4);
    EXPECT_TRUE(index.Place(44, 1000000));
    EXPECT_TRUE(index.Place(44 + 4000000, 1000000));
    EXPECT_TRUE(index.Place(9000000, 10));
    index.Finish();
    EXPECT_EQ(index.Count(), 2000010u);
    EXPECT_EQ(OffsetOf(index, 1999999), 44 + 1999999 * 4);
    EXPECT_EQ(OffsetOf(index, 2000009), 9000036);
    EXPECT_LT(index.MemoryBytes(), 100u);
}

TEST(PacketIndex, ConstantSizesEndAtTheFilesEnd)
{
    PacketIndex index(103);
    index.SetConstantSize(10);
    EXPECT_FALSE(index.Place(50, 100));
    index.Finish();
    EXPECT_EQ(index.Count(), 5u);
}

TEST(PacketIndex, AnHourTakesLittleMemory)
{
    constexpr UInt32 kHour = 155040;  // packets of 1024 frames at 44100 Hz
    PacketIndex alone(SInt64{1} << 40);
    alone.Reserve(kHour, kHour / 64 + 1);
    PacketIndex scattered(SInt64{1} << 40);
    scattered.Reserve(kHour, kHour);
    for (UInt32 packet = 0; packet < kHour; ++packet)
    {
        alone.AppendSize(300);
        scattered.AppendSize(300);
    }
    EXPECT_TRUE(alone.Place(0, kHour));
    for (UInt32 packet = 0; packet < kHour; ++packet)
        EXPECT_TRUE(scattered.Place(SInt64{packet} * 5000, 1));
    alone.Finish();
    scattered.Finish();
    EXPECT_LE(alone.MemoryBytes(), kHour * 9 / 4 + 16);
    EXPECT_LE(scattered.MemoryBytes(), std::size_t{kHour} * 18);
    EXPECT_LE(scattered.MemoryBytes(), std::size_t{4} << 20);
}

}  // namespace
}  // namespace audiotoolbox::mpeg4
