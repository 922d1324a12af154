// The numbers that every container works out alike.

#include "platform/AudioToolbox/src/file/FactArithmetic.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace
{

using audiotoolbox::DurationOfFrames;

TEST(Duration, IsTheSmallestThatGivesTheFrames)
{
    std::mt19937_64 random(1);
    for (int i = 0; i < 20000; ++i)
    {
        const UInt64 frames = random() >> (14 + random() % 48);
        const double rates[] = {8000.0, 11025.0, 44100.0, 48000.0, 96000.0, 44099.9912, 22050.25};
        const double rate = rates[random() % 7];
        const double duration = DurationOfFrames(frames, rate);
        ASSERT_EQ(static_cast<UInt64>(duration * rate), frames) << frames << " at " << rate;
        if (frames > 0)
        {
            const double smaller = std::nextafter(duration, 0.0);
            ASSERT_LT(static_cast<UInt64>(smaller * rate), frames) << frames << " at " << rate;
        }
    }
}

TEST(Duration, IsZeroWhereThereIsNone)
{
    EXPECT_EQ(DurationOfFrames(0, 44100.0), 0.0);
    EXPECT_EQ(DurationOfFrames(100, 0.0), 0.0);
    EXPECT_EQ(DurationOfFrames(100, -1.0), 0.0);
    EXPECT_EQ(DurationOfFrames(100, std::numeric_limits<double>::quiet_NaN()), 0.0);
    EXPECT_EQ(DurationOfFrames(100, 1e-320), 0.0);
    EXPECT_EQ(DurationOfFrames(44100, 44100.0), 1.0);
}

TEST(PacketTable, KeepsWithinTheFramesThatThereAre)
{
    const auto table = audiotoolbox::MakePacketTable(1000, 100, 800);
    EXPECT_EQ(table.mPrimingFrames, 100);
    EXPECT_EQ(table.mNumberValidFrames, 800);
    EXPECT_EQ(table.mRemainderFrames, 100);
    const auto lying = audiotoolbox::MakePacketTable(1000, 2000, 800);
    EXPECT_EQ(lying.mPrimingFrames, 1000);
    EXPECT_EQ(lying.mNumberValidFrames, 0);
    EXPECT_EQ(lying.mRemainderFrames, 0);
    const auto long_ = audiotoolbox::MakePacketTable(~UInt64{0}, -5, 10);
    EXPECT_EQ(long_.mPrimingFrames, 0);
    EXPECT_EQ(long_.mNumberValidFrames, 10);
    EXPECT_EQ(long_.mRemainderFrames, 0x7FFFFFFF);
}

TEST(PacketTable, CountsFramesWithoutWrappingAround)
{
    EXPECT_EQ(audiotoolbox::FramesOfPackets(10, 64), 640u);
    EXPECT_EQ(audiotoolbox::FramesOfPackets(~UInt64{0}, 64), 0x7FFFFFFFFFFFFFFFu);
    EXPECT_EQ(audiotoolbox::FramesOfPackets(~UInt64{0} >> 1, 0), 0u);
}

}  // namespace
