// Small writes on their way to a container.

#include "RecordingWriter.h"

#include "platform/AudioToolbox/src/extended/GatheringWriter.h"

#include <gtest/gtest.h>

namespace
{

using namespace audiotoolbox;
using namespace extended_test;

GatheringWriter Started(RecordInUse&)
{
    GatheringWriter writer(std::make_unique<RecordingWriter>());
    static RecordingSink sink;  // outlives the writer
    EXPECT_EQ(writer.Start(sink, {}), noErr);
    return writer;
}

TEST(GatheringWriter, HandsSmallWritesOnTogether)
{
    RecordInUse record;
    GatheringWriter writer = Started(record);
    for (UInt8 i = 0; i < 100; ++i)
        ASSERT_EQ(writer.Write(ByteVector(1000, i), {}), noErr);
    EXPECT_EQ(record->mCalls, "SW") << "65 of them fit";
    EXPECT_EQ(record->mBytes.size(), 65000u);
    EXPECT_EQ(writer.Finish({}), noErr);
    EXPECT_EQ(record->mCalls, "SWWF");
    ASSERT_EQ(record->mBytes.size(), 100000u);
    for (std::size_t i = 0; i < 100; ++i)
        EXPECT_EQ(record->mBytes[1000 * i + 999], i);
}

TEST(GatheringWriter, HandsLargeWritesOnAsTheyAreBehindWhatIsHeld)
{
    RecordInUse record;
    GatheringWriter writer = Started(record);
    const ByteVector large(40000, 7);
    ASSERT_EQ(writer.Write(ByteVector{1, 2}, {}), noErr);
    ASSERT_EQ(writer.Write(large, {}), noErr);
    EXPECT_EQ(record->mCalls, "SWW");
    EXPECT_EQ(record->mPlaces.back(), large.data());
    EXPECT_EQ(record->mBytes.front(), 1);
    EXPECT_EQ(record->mBytes.size(), 40002u);
}

TEST(GatheringWriter, MovesThePlacesOfPackets)
{
    RecordInUse record;
    GatheringWriter writer = Started(record);
    const AudioStreamPacketDescription packets[] = {{0, 0, 3}, {3, 5, 2}};
    ASSERT_EQ(writer.Write(ByteVector{1, 2, 3, 4, 5}, packets), noErr);
    ASSERT_EQ(writer.Write(ByteVector{6, 7, 8, 9, 10}, packets), noErr);
    EXPECT_EQ(writer.Finish({}), noErr);
    EXPECT_EQ(record->mPacketStarts, (std::vector<SInt64>{0, 3, 5, 8}));
    EXPECT_EQ(record->mPacketBytes, (std::vector<UInt32>{3, 2, 3, 2}));
    EXPECT_EQ(record->mPacketFrames, (std::vector<UInt32>{0, 5, 0, 5}));
}

TEST(GatheringWriter, HandsOnMorePacketsThanItHolds)
{
    RecordInUse record;
    GatheringWriter writer = Started(record);
    std::vector<AudioStreamPacketDescription> packets;
    for (SInt64 i = 0; i < 1000; ++i)
        packets.push_back({i, 0, 1});
    ASSERT_EQ(writer.Write(ByteVector(1000), packets), noErr);
    ASSERT_EQ(writer.Write(ByteVector(1000), packets), noErr);
    EXPECT_EQ(record->mPacketBytes.size(), 1000u);
    packets.insert(packets.end(), packets.begin(), packets.end());
    ASSERT_EQ(writer.Write(ByteVector(1000), packets), noErr);
    EXPECT_EQ(record->mPacketBytes.size(), 4000u);
}

TEST(GatheringWriter, TellsTheFailureOfWhatItHeldAndForgetsIt)
{
    RecordInUse record;
    record->mFailingWrite = 1;
    record->mWriteStatus = -1001;
    record->mFinishStatus = -1002;
    GatheringWriter writer = Started(record);
    ASSERT_EQ(writer.Write(ByteVector(100), {}), noErr);
    EXPECT_EQ(writer.Finish({}), -1001);
    EXPECT_EQ(record->mCalls, "SWF") << "the container is finished all the same";

    RecordInUse second;
    second->mFailingWrite = 1;
    second->mWriteStatus = -1001;
    GatheringWriter other = Started(second);
    ASSERT_EQ(other.Write(ByteVector(100), {}), noErr);
    EXPECT_EQ(other.Write(ByteVector(40000), {}), -1001);
    EXPECT_EQ(other.Finish({}), noErr);
    EXPECT_TRUE(second->mBytes.empty());
}

}  // namespace
