// Stream formats as records: making, filling, normalising, judging them.
#include "CoreAudio/PublicUtility/CAStreamBasicDescription.h"

#include <cmath>
#include <cstring>
#include <limits>

#include <gtest/gtest.h>

namespace
{

constexpr UInt32 kPCM = 0x6C70636D;

// 16-bit stereo, packed, 44.1 kHz.
CAStreamBasicDescription Stereo16()
{
    return {44100.0, kPCM, 4, 1, 4, 2, 16, 0xC};
}

bool IsAllZero(const AudioStreamBasicDescription& inFormat)
{
    const char zeros[sizeof(inFormat)] = {};
    return std::memcmp(&inFormat, zeros, sizeof(inFormat)) == 0;
}

TEST(FormatRecord, StartsWithAllFieldsZero)
{
    // Placed into a block of ones, so that every byte has to be written.
    alignas(CAStreamBasicDescription) unsigned char block[sizeof(CAStreamBasicDescription)];
    std::memset(block, 0xFF, sizeof(block));
    EXPECT_TRUE(IsAllZero(*new (block) CAStreamBasicDescription()));
    EXPECT_TRUE(IsAllZero(CAStreamBasicDescription::sEmpty));
}

TEST(FormatRecord, TakesTheFlagsAsItsLastArgument)
{
    const CAStreamBasicDescription format(48000.0, 0x61616320, 2, 3, 4, 5, 6, 7);
    EXPECT_EQ(format.mSampleRate, 48000.0);
    EXPECT_EQ(format.mFormatID, 0x61616320U);
    EXPECT_EQ(format.mBytesPerPacket, 2U);
    EXPECT_EQ(format.mFramesPerPacket, 3U);
    EXPECT_EQ(format.mBytesPerFrame, 4U);
    EXPECT_EQ(format.mChannelsPerFrame, 5U);
    EXPECT_EQ(format.mBitsPerChannel, 6U);
    EXPECT_EQ(format.mFormatFlags, 7U);
    EXPECT_EQ(format.mReserved, 0U);
}

TEST(FormatRecord, CopiesEveryFieldOfABareRecord)
{
    const AudioStreamBasicDescription bare = {1.0, 2, 3, 4, 5, 6, 7, 8, 9};
    const CAStreamBasicDescription format(bare);
    EXPECT_EQ(std::memcmp(&format, &bare, 40), 0);
    EXPECT_EQ(format.mReserved, 9U);
}

TEST(FormatRecord, ResetClearsTheReservedFieldToo)
{
    AudioStreamBasicDescription format = {1.0, 2, 3, 4, 5, 6, 7, 8, 9};
    CAStreamBasicDescription::ResetFormat(format);
    EXPECT_TRUE(IsAllZero(format));
}

TEST(FormatNormalizing, MakesMixablePCMNativeFloat)
{
    CAStreamBasicDescription format = Stereo16();
    format.mReserved = 5;
    CAStreamBasicDescription::NormalizeLinearPCMFormat(format);
    EXPECT_EQ(format.mFormatFlags, 9U);
    EXPECT_EQ(format.mBytesPerPacket, 8U);
    EXPECT_EQ(format.mBytesPerFrame, 8U);
    EXPECT_EQ(format.mFramesPerPacket, 1U);
    EXPECT_EQ(format.mBitsPerChannel, 32U);
    EXPECT_EQ(format.mSampleRate, 44100.0);
    EXPECT_EQ(format.mChannelsPerFrame, 2U);
    EXPECT_EQ(format.mReserved, 5U);
}

TEST(FormatNormalizing, ChoosesTheByteOrder)
{
    CAStreamBasicDescription native = Stereo16();
    CAStreamBasicDescription other = Stereo16();
    CAStreamBasicDescription::NormalizeLinearPCMFormat(true, native);
    CAStreamBasicDescription::NormalizeLinearPCMFormat(false, other);
    EXPECT_EQ(native.mFormatFlags, 9U);
    EXPECT_EQ(other.mFormatFlags, 11U);
    EXPECT_EQ(other.mBytesPerFrame, 8U);
    EXPECT_EQ(other.mBitsPerChannel, 32U);
}

TEST(FormatNormalizing, VirtualizingDoesTheSame)
{
    CAStreamBasicDescription plain = Stereo16();
    CAStreamBasicDescription native = Stereo16();
    CAStreamBasicDescription other = Stereo16();
    CAStreamBasicDescription::VirtualizeLinearPCMFormat(plain);
    CAStreamBasicDescription::VirtualizeLinearPCMFormat(true, native);
    CAStreamBasicDescription::VirtualizeLinearPCMFormat(false, other);
    EXPECT_EQ(plain.mFormatFlags, 9U);
    EXPECT_EQ(native.mFormatFlags, 9U);
    EXPECT_EQ(other.mFormatFlags, 11U);
    EXPECT_EQ(other.mBytesPerPacket, 8U);
}

TEST(FormatNormalizing, InterleavesAndForgetsEveryOtherFlag)
{
    CAStreamBasicDescription format(96000.0, kPCM, 4, 4, 4, 6, 24, 0x80000F34);
    CAStreamBasicDescription::NormalizeLinearPCMFormat(format);
    EXPECT_EQ(format.mFormatFlags, 9U);
    EXPECT_EQ(format.mBytesPerFrame, 24U);
    EXPECT_EQ(format.mFramesPerPacket, 1U);
}

TEST(FormatNormalizing, LeavesNonMixablePCMAndOtherFormatsAlone)
{
    const CAStreamBasicDescription nonMixable(44100.0, kPCM, 4, 1, 4, 2, 16, 0x4C);
    const CAStreamBasicDescription compressed(44100.0, 0x61616320, 0, 1024, 0, 2, 0, 0);
    for (const CAStreamBasicDescription& format : {nonMixable, compressed})
    {
        CAStreamBasicDescription changed = format;
        CAStreamBasicDescription::NormalizeLinearPCMFormat(changed);
        CAStreamBasicDescription::NormalizeLinearPCMFormat(false, changed);
        CAStreamBasicDescription::VirtualizeLinearPCMFormat(changed);
        CAStreamBasicDescription::VirtualizeLinearPCMFormat(false, changed);
        EXPECT_EQ(std::memcmp(&changed, &format, sizeof(format)), 0)
            << "format " << format.mFormatID;
    }
}

TEST(FormatFilling, TakesWhatIsMissing)
{
    AudioStreamBasicDescription format = {};
    format.mReserved = 1;
    const AudioStreamBasicDescription source = {1.0, 2, 3, 4, 5, 6, 7, 8, 9};
    CAStreamBasicDescription::FillOutFormat(format, source);
    const AudioStreamBasicDescription expected = {1.0, 2, 3, 4, 5, 6, 7, 8, 1};
    EXPECT_EQ(std::memcmp(&format, &expected, sizeof(format)), 0);
}

TEST(FormatFilling, KeepsWhatIsThere)
{
    AudioStreamBasicDescription format = {-1.0, 12, 13, 14, 15, 16, 17, 18, 19};
    const AudioStreamBasicDescription expected = format;
    const AudioStreamBasicDescription source = {1.0, 2, 3, 4, 5, 6, 7, 8, 9};
    CAStreamBasicDescription::FillOutFormat(format, source);
    EXPECT_EQ(std::memcmp(&format, &expected, sizeof(format)), 0);
}

TEST(FormatFilling, CountsARateThatIsNoNumberAsMissing)
{
    AudioStreamBasicDescription format = {};
    format.mSampleRate = std::numeric_limits<double>::quiet_NaN();
    CAStreamBasicDescription::FillOutFormat(format, Stereo16());
    EXPECT_EQ(format.mSampleRate, 44100.0);
}

TEST(FormatFacts, TellsTheSampleWord)
{
    const CAStreamBasicDescription interleaved(44100.0, kPCM, 6, 1, 6, 2, 24, 0xC);
    EXPECT_EQ(interleaved.SampleWordSize(), 3U);
    EXPECT_TRUE(interleaved.IsInterleaved());
    const CAStreamBasicDescription planar(44100.0, kPCM, 4, 1, 4, 2, 24, 0x24);
    EXPECT_EQ(planar.SampleWordSize(), 4U);
    EXPECT_FALSE(planar.IsInterleaved());
    // Whole division, nothing known of the frame, nothing known of the channels.
    EXPECT_EQ(CAStreamBasicDescription(0, kPCM, 7, 1, 7, 2, 16, 0xC).SampleWordSize(), 3U);
    EXPECT_EQ(CAStreamBasicDescription(0, kPCM, 0, 1, 0, 2, 16, 0xC).SampleWordSize(), 0U);
    EXPECT_EQ(CAStreamBasicDescription(0, kPCM, 4, 1, 4, 0, 16, 0xC).SampleWordSize(), 0U);
}

TEST(FormatFacts, TellsWhetherPackingAndAlignmentMatter)
{
    struct Row
    {
        UInt32 mBytesPerFrame;
        UInt32 mBits;
        bool mPackedness;
        bool mAlignment;
    };
    for (const Row& row : {Row{2, 16, false, false}, Row{4, 24, true, true}, Row{3, 20, true, true},
                           Row{0, 0, false, false}})
    {
        const CAStreamBasicDescription format(0, kPCM, 0, 1, row.mBytesPerFrame, 1, row.mBits, 4);
        EXPECT_EQ(format.PackednessIsSignificant(), row.mPackedness) << row.mBits << " bits";
        EXPECT_EQ(format.AlignmentIsSignificant(), row.mAlignment) << row.mBits << " bits";
    }
}

TEST(FormatFacts, KnowsLinearPCMByItsCode)
{
    EXPECT_TRUE(Stereo16().IsPCM());
    EXPECT_FALSE(CAStreamBasicDescription().IsPCM());
}

TEST(FormatPlausibility, AcceptsLinearPCMAndCompressedFormats)
{
    EXPECT_TRUE(SanityCheck(Stereo16()));
    EXPECT_TRUE(SanityCheck(CAStreamBasicDescription(44100.0, 0x61616320, 0, 1024, 0, 2, 0, 0)));
}

TEST(FormatPlausibility, JudgesTheRate)
{
    CAStreamBasicDescription format = Stereo16();
    for (const double rate : {0.0, -0.0, 2999999.9, std::nan("")})
    {
        format.mSampleRate = rate;
        EXPECT_TRUE(SanityCheck(format)) << rate;
    }
    for (const double rate : {-0.1, 3000000.0, std::numeric_limits<double>::infinity(),
                              -std::numeric_limits<double>::infinity()})
    {
        format.mSampleRate = rate;
        EXPECT_FALSE(SanityCheck(format)) << rate;
    }
}

TEST(FormatPlausibility, JudgesPacketsFramesChannelsAndDepth)
{
    struct Row
    {
        UInt32 AudioStreamBasicDescription::*mField;
        UInt32 mMost;
    };
    // Compressed, so that the counts need not agree with each other.
    const CAStreamBasicDescription plausible(44100.0, 0x61616320, 10, 1024, 10, 2, 16, 0);
    for (const Row& row : {Row{&AudioStreamBasicDescription::mBytesPerPacket, 999999},
                           Row{&AudioStreamBasicDescription::mFramesPerPacket, 999999},
                           Row{&AudioStreamBasicDescription::mBytesPerFrame, 999999},
                           Row{&AudioStreamBasicDescription::mChannelsPerFrame, 1024},
                           Row{&AudioStreamBasicDescription::mBitsPerChannel, 1024}})
    {
        CAStreamBasicDescription format = plausible;
        format.*row.mField = row.mMost;
        EXPECT_TRUE(SanityCheck(format)) << row.mMost;
        format.*row.mField = row.mMost + 1;
        EXPECT_FALSE(SanityCheck(format)) << row.mMost + 1;
        format.*row.mField = 0xFFFFFFFF;
        EXPECT_FALSE(SanityCheck(format));
    }
}

TEST(FormatPlausibility, WantsChannelsAndACode)
{
    CAStreamBasicDescription silent(44100.0, 0x61616320, 0, 1024, 0, 0, 0, 0);
    EXPECT_FALSE(SanityCheck(silent));
    CAStreamBasicDescription nameless(44100.0, 0, 0, 1024, 0, 2, 0, 0);
    EXPECT_FALSE(SanityCheck(nameless));
}

TEST(FormatPlausibility, WantsOneFrameInAPacketOfLinearPCM)
{
    CAStreamBasicDescription format = Stereo16();
    format.mFramesPerPacket = 2;
    EXPECT_FALSE(SanityCheck(format));
    format = Stereo16();
    format.mFramesPerPacket = 0;
    EXPECT_FALSE(SanityCheck(format));
    format = Stereo16();
    format.mBytesPerPacket = 8;
    EXPECT_FALSE(SanityCheck(format));
}

}  // namespace
