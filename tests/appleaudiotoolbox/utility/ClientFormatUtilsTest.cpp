// The cost of compressed samples, and the linear PCM formats on this side of a conversion.
#include "appleaudiotoolbox/utility/ATUtils.h"

#include <cmath>
#include <cstring>
#include <limits>

#include <gtest/gtest.h>

using namespace appleaudiotoolbox;

namespace
{

constexpr UInt32 kPCM = 0x6C70636D;

void ExpectSame(const CAStreamBasicDescription& inActual,
                const CAStreamBasicDescription& inExpected)
{
    EXPECT_EQ(std::memcmp(&inActual, &inExpected, sizeof(inActual)), 0)
        << inActual.mBitsPerChannel << " bits, flags " << inActual.mFormatFlags << ", "
        << inActual.mBytesPerFrame << " bytes, rate " << inActual.mSampleRate;
}

CAStreamBasicDescription Input(double inRate, UInt32 inBits, UInt32 inChannels = 2,
                               UInt32 inFlags = 0xC)
{
    // Byte counts and packet length of the input do not matter.
    CAStreamBasicDescription format(inRate, 0x66616B65, 77, 78, 79, inChannels, inBits, inFlags);
    format.mReserved = 80;
    return format;
}

TEST(SampleCost, IsKnownForTheFormatsWithoutADepth)
{
    EXPECT_EQ(GetEstimatedBitDepthFromCompressedFormat(0x616C6163), 7.71);
    EXPECT_EQ(GetEstimatedBitDepthFromCompressedFormat(0x616C6177), 4.0);
    EXPECT_EQ(GetEstimatedBitDepthFromCompressedFormat(0x756C6177), 4.0);
    EXPECT_EQ(GetEstimatedBitDepthFromCompressedFormat(0x696C6263), 1.78312);
    EXPECT_EQ(GetEstimatedBitDepthFromCompressedFormat(0x696D6134), 2.0);
    EXPECT_EQ(GetEstimatedBitDepthFromCompressedFormat(0x4D414333), 2.66667);
    EXPECT_EQ(GetEstimatedBitDepthFromCompressedFormat(0x4D414336), 1.33333);
    EXPECT_EQ(GetEstimatedBitDepthFromCompressedFormat(0x51444D32), 5.71428);
    EXPECT_EQ(GetEstimatedBitDepthFromCompressedFormat(0x51444D43), 2.90249);
}

TEST(SampleCost, IsZeroForAllOthers)
{
    for (const UInt32 formatID : {0x61616320U, kPCM, 0U, 0xFFFFFFFFU})
        EXPECT_EQ(GetEstimatedBitDepthFromCompressedFormat(formatID), 0.0) << formatID;
}

TEST(ClientFormat, HoldsEveryDepthWithoutLoss)
{
    struct Row
    {
        UInt32 mBits;
        UInt32 mClientBits;
        UInt32 mClientFlags;
        UInt32 mBytesPerFrame;
    };
    for (const Row& row :
         {Row{0, 32, 9, 8}, Row{1, 8, 8, 2}, Row{8, 8, 8, 2}, Row{9, 16, 12, 4}, Row{12, 16, 12, 4},
          Row{16, 16, 12, 4}, Row{17, 24, 12, 6}, Row{20, 24, 12, 6}, Row{24, 24, 12, 6},
          Row{25, 32, 9, 8}, Row{32, 32, 9, 8}, Row{64, 32, 9, 8}, Row{0xFFFFFFFF, 32, 9, 8}})
        ExpectSame(GetClientFormatFromInputFormat(Input(48000.0, row.mBits), false),
                   {48000.0, kPCM, row.mBytesPerFrame, 1, row.mBytesPerFrame, 2, row.mClientBits,
                    row.mClientFlags});
}

TEST(ClientFormat, LooksAtTheDepthAndNotAtTheFlags)
{
    for (const UInt32 flags : {0x9U, 0xCU, 0xEU, 0x0U})
        ExpectSame(GetClientFormatFromInputFormat(Input(48000.0, 32, 1, flags), false),
                   {48000.0, kPCM, 4, 1, 4, 1, 32, 9});
}

TEST(ClientFormat, IsFloatForAnyDepthIfAsked)
{
    for (const UInt32 bits : {0U, 8U, 16U, 24U, 32U})
        ExpectSame(GetClientFormatFromInputFormat(Input(48000.0, bits, 6), true),
                   {48000.0, kPCM, 24, 1, 24, 6, 32, 9});
}

TEST(ClientFormat, HasTheRateInWholeHertz)
{
    struct Row
    {
        double mRate;
        double mClientRate;
    };
    for (const Row& row : {Row{44100.4, 44100.0}, Row{44100.5, 44101.0}, Row{44100.0, 44100.0},
                           Row{0.0, 0.0}, Row{0.49, 0.0}, Row{4294967295.0, 4294967295.0},
                           Row{4294967296.0, 0.0}, Row{-1.0, 0.0}, Row{-2.0, 4294967295.0}})
        EXPECT_EQ(GetClientFormatFromInputFormat(Input(row.mRate, 16), false).mSampleRate,
                  row.mClientRate)
            << row.mRate;
}

TEST(ClientFormat, SurvivesRatesThatMeanNothing)
{
    for (const double rate : {std::nan(""), std::numeric_limits<double>::infinity(), -1e300, 1e300})
        EXPECT_EQ(GetClientFormatFromInputFormat(Input(rate, 16), false).mSampleRate, 0.0) << rate;
}

TEST(ClientFormat, KeepsTheChannelsWhateverTheyAre)
{
    const CAStreamBasicDescription silent =
        GetClientFormatFromInputFormat(Input(48000.0, 16, 0), false);
    EXPECT_EQ(silent.mChannelsPerFrame, 0U);
    EXPECT_EQ(silent.mBytesPerFrame, 0U);
    EXPECT_EQ(GetClientFormatFromInputFormat(Input(48000.0, 24, 64), false).mBytesPerFrame, 192U);
}

TEST(FormatFromNumbers, TakesThemAtFaceValue)
{
    struct Row
    {
        UInt32 mBits;
        UInt32 mRecordBits;
        UInt32 mFlags;
        UInt32 mBytesPerFrame;
    };
    for (const Row& row : {Row{8, 8, 8, 2}, Row{16, 16, 12, 4}, Row{24, 24, 12, 6},
                           Row{32, 32, 9, 8}, Row{64, 32, 9, 8}, Row{20, 20, 9, 4},
                           Row{12, 12, 9, 2}, Row{0, 0, 9, 0}, Row{7, 7, 9, 0}})
        ExpectSame(ConstructClientFormatFromArgs(48000.0, row.mBits, 2),
                   {48000.0, kPCM, row.mBytesPerFrame, 1, row.mBytesPerFrame, 2, row.mRecordBits,
                    row.mFlags});
}

TEST(FormatFromNumbers, DoesNotRoundTheRate)
{
    EXPECT_EQ(ConstructClientFormatFromArgs(44100.4, 16, 2).mSampleRate, 44100.4);
    EXPECT_EQ(ConstructClientFormatFromArgs(0.0, 16, 0).mBytesPerFrame, 0U);
}

}  // namespace
