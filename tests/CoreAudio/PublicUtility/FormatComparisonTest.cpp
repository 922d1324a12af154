// How stream formats compare: exactly, equivalently, by their regularised flags, and in order.
#include "CoreAudio/PublicUtility/CAStreamBasicDescription.h"

#include <cmath>

#include <gtest/gtest.h>

namespace
{

using Format = CAStreamBasicDescription;
using Field = UInt32 AudioStreamBasicDescription::*;

constexpr UInt32 kPCM = 0x6C70636D;
constexpr UInt32 kAAC = 0x61616320;

Format Stereo16()
{
    return {44100.0, kPCM, 4, 1, 4, 2, 16, 0xC};
}
Format AAC()
{
    return {44100.0, kAAC, 8, 1024, 16, 2, 24, 2};
}

// One channel of linear PCM.
UInt32 Regularized(UInt32 inFlags, UInt32 inBytesPerFrame, UInt32 inBits, bool inKeep = true)
{
    return Format(44100.0, kPCM, inBytesPerFrame, 1, inBytesPerFrame, 1, inBits, inFlags)
        .GetRegularizedFormatFlags(inKeep);
}

TEST(RegularizedFlags, StayAsTheyAreForOtherFormats)
{
    const Format format(44100.0, kAAC, 0, 1024, 0, 1, 0, 0x80000075);
    EXPECT_EQ(format.GetRegularizedFormatFlags(false), 0x80000075U);
    EXPECT_EQ(Format(0, kAAC, 0, 0, 0, 0, 0, 0).GetRegularizedFormatFlags(false), 0U);
}

TEST(RegularizedFlags, DropTheAllClearBitBesideAnyOther)
{
    EXPECT_EQ(Regularized(0x80000004, 4, 24), 0x4U);
    EXPECT_EQ(Regularized(0x80000000, 4, 24), 0x80000000U);
}

TEST(RegularizedFlags, KeepTheNonMixableBitOnlyIfAsked)
{
    EXPECT_EQ(Regularized(0x4C, 2, 16, true), 0x4CU);
    EXPECT_EQ(Regularized(0x4C, 2, 16, false), 0xCU);
}

TEST(RegularizedFlags, CountAFullWordAsPacked)
{
    EXPECT_EQ(Regularized(0x4, 2, 16), 0xCU);
    EXPECT_EQ(Regularized(0x4, 4, 24), 0x4U);
    EXPECT_EQ(Regularized(0xC, 4, 24), 0xCU);  // not cleared either
}

TEST(RegularizedFlags, TakeTheWordFromOneChannelWhenNotInterleaved)
{
    const Format planar(44100.0, kPCM, 2, 1, 2, 2, 16, 0x24);
    EXPECT_EQ(planar.GetRegularizedFormatFlags(true), 0x2CU);
    const Format interleaved(44100.0, kPCM, 2, 1, 2, 2, 16, 0x4);
    EXPECT_EQ(interleaved.GetRegularizedFormatFlags(true), 0x4U);
}

TEST(RegularizedFlags, CountARecordWithoutSizesAsPacked)
{
    // No bits at all also means at most 8, so only the byte order is left.
    EXPECT_EQ(Regularized(0x6, 0, 0), 0x2U);
    const Format noChannels(44100.0, kPCM, 4, 1, 4, 0, 0, 0x4);
    EXPECT_EQ(noChannels.GetRegularizedFormatFlags(true), 0x80000000U);
}

TEST(RegularizedFlags, ForgetTheAlignmentInAFullWordOfWholeBytes)
{
    EXPECT_EQ(Regularized(0x1C, 2, 16), 0xCU);
    EXPECT_EQ(Regularized(0x14, 4, 24), 0x14U);
    EXPECT_EQ(Regularized(0x14, 3, 20), 0x14U);
}

TEST(RegularizedFlags, NeverCallAFloatSigned)
{
    EXPECT_EQ(Regularized(0xD, 4, 32), 0x9U);
    EXPECT_EQ(Regularized(0x5, 4, 32), 0x9U);
}

TEST(RegularizedFlags, KeepOnlyTheByteOrderOfPackedBytes)
{
    EXPECT_EQ(Regularized(0xC, 1, 8), 0x80000000U);
    EXPECT_EQ(Regularized(0x8, 1, 8), 0x80000000U);
    EXPECT_EQ(Regularized(0x9, 1, 8), 0x80000000U);
    EXPECT_EQ(Regularized(0x4F, 1, 8), 0x2U);
    EXPECT_EQ(Regularized(0x4, 2, 8), 0x4U);  // 8 bits in a wider word, not packed
    EXPECT_EQ(Regularized(0xC, 2, 9), 0xCU);
}

TEST(RegularizedFlags, ForgetTheInterleavingOfOneChannel)
{
    EXPECT_EQ(Regularized(0x2C, 2, 16), 0xCU);
    const Format stereo(44100.0, kPCM, 2, 1, 2, 2, 16, 0x2C);
    EXPECT_EQ(stereo.GetRegularizedFormatFlags(true), 0x2CU);
}

TEST(RegularizedFlags, SayAllClearForNone)
{
    EXPECT_EQ(Regularized(0, 4, 24), 0x80000000U);
    EXPECT_EQ(Regularized(0x20, 4, 24), 0x80000000U);
}

TEST(FlagEquivalence, HoldsForEveryWildcard)
{
    const Format signed16 = Stereo16();
    Format float32(44100.0, kPCM, 8, 1, 8, 2, 32, 9);
    EXPECT_FALSE(Format::EquivalentFormatFlags(signed16, float32, true, true));
    for (const Field field :
         {&AudioStreamBasicDescription::mFormatID, &AudioStreamBasicDescription::mFormatFlags})
    {
        Format wild = float32;
        wild.*field = 0;
        EXPECT_TRUE(Format::EquivalentFormatFlags(signed16, wild, true, true));
        EXPECT_TRUE(Format::EquivalentFormatFlags(wild, signed16, true, true));
        EXPECT_FALSE(Format::EquivalentFormatFlags(signed16, wild, true, false));
        EXPECT_FALSE(Format::EquivalentFormatFlags(wild, signed16, true, false));
    }
}

TEST(FlagEquivalence, AsksOnlyTheFirstFormatForItsCode)
{
    // A fixed 0xC equals the regularised 0x4 of a full word, although the second is no PCM.
    const Format pcm(44100.0, kPCM, 2, 1, 2, 1, 16, 0x4);
    const Format other(44100.0, kAAC, 2, 1, 2, 1, 16, 0xC);
    EXPECT_TRUE(Format::EquivalentFormatFlags(pcm, other, true, true));
    EXPECT_FALSE(Format::EquivalentFormatFlags(other, pcm, true, true));
}

TEST(FlagEquivalence, LooksAtMixingOnlyIfAsked)
{
    Format nonMixable = Stereo16();
    nonMixable.mFormatFlags |= 0x40;
    EXPECT_FALSE(Format::EquivalentFormatFlags(Stereo16(), nonMixable, true, true));
    EXPECT_TRUE(Format::EquivalentFormatFlags(Stereo16(), nonMixable, false, true));
}

TEST(ExactEquality, LooksAtEveryByteButTheReservedOnes)
{
    const Format format = Stereo16();
    Format other = format;
    other.mReserved = 7;
    EXPECT_TRUE(Format::IsExactlyEqual(format, other));
    EXPECT_TRUE(format.IsEqual(other, false));
    for (size_t offset = 0; offset < 36; ++offset)
    {
        other = format;
        reinterpret_cast<unsigned char*>(&other)[offset] ^= 1;
        EXPECT_FALSE(Format::IsExactlyEqual(format, other)) << "byte " << offset;
        EXPECT_FALSE(format.IsEqual(other, false)) << "byte " << offset;
    }
}

TEST(Equivalence, ADefaultRecordEqualsAnyOther)
{
    EXPECT_TRUE(Format() == Stereo16());
    EXPECT_TRUE(AAC() == Format());
    EXPECT_TRUE(Format().IsEqual(Stereo16()));
    EXPECT_TRUE(Stereo16().IsEqual(Format(), true));
    EXPECT_FALSE(Stereo16().IsEqual(Format(), false));
}

TEST(Equivalence, EveryFieldTellsFormatsApartUnlessItIsZero)
{
    for (const Field field :
         {&AudioStreamBasicDescription::mFormatID, &AudioStreamBasicDescription::mBytesPerPacket,
          &AudioStreamBasicDescription::mFramesPerPacket,
          &AudioStreamBasicDescription::mBytesPerFrame,
          &AudioStreamBasicDescription::mChannelsPerFrame,
          &AudioStreamBasicDescription::mBitsPerChannel,
          &AudioStreamBasicDescription::mFormatFlags})
    {
        Format other = AAC();
        other.*field += 1;
        EXPECT_FALSE(AAC() == other);
        EXPECT_FALSE(other == AAC());
        other.*field = 0;
        EXPECT_TRUE(AAC() == other);
        EXPECT_TRUE(other == AAC());
    }
}

TEST(Equivalence, TheRateTellsFormatsApartUnlessItIsZeroOrNoNumber)
{
    Format other = AAC();
    other.mSampleRate = 44100.5;
    EXPECT_FALSE(AAC() == other);
    for (const double rate : {0.0, std::nan("")})
    {
        other.mSampleRate = rate;
        EXPECT_TRUE(AAC() == other) << rate;
        EXPECT_TRUE(other == AAC()) << rate;
    }
}

TEST(Equivalence, WithoutWildcardsZeroIsAValue)
{
    for (const Field field :
         {&AudioStreamBasicDescription::mFormatID, &AudioStreamBasicDescription::mBytesPerPacket,
          &AudioStreamBasicDescription::mFramesPerPacket,
          &AudioStreamBasicDescription::mChannelsPerFrame,
          &AudioStreamBasicDescription::mBitsPerChannel,
          &AudioStreamBasicDescription::mFormatFlags})
    {
        Format other = AAC();
        other.*field = 0;
        EXPECT_FALSE(Format::IsEquivalent(AAC(), other, 2));
        EXPECT_FALSE(Format::IsEquivalent(other, AAC(), 0));
    }
    Format other = AAC();
    other.mSampleRate = 0.0;
    EXPECT_FALSE(Format::IsEquivalent(AAC(), other, 2));
    other.mSampleRate = std::nan("");
    EXPECT_TRUE(Format::IsEquivalent(AAC(), other, 2));
}

TEST(Equivalence, WithoutWildcardsTheBytesOfAFrameDoNotCountByThemselves)
{
    Format other = AAC();
    other.mBytesPerFrame = 99;
    EXPECT_TRUE(Format::IsEquivalent(AAC(), other, 2));
    EXPECT_FALSE(Format::IsEquivalent(AAC(), other, 3));

    // They count through the flags of linear PCM: the wider word is not full.
    Format full = Stereo16();
    full.mFormatFlags = 0x4;
    Format wide = full;
    wide.mBytesPerFrame = 8;
    EXPECT_FALSE(Format::IsEquivalent(full, wide, 2));
    wide.mFormatFlags = 0xC;
    EXPECT_TRUE(Format::IsEquivalent(full, wide, 2));
}

TEST(Equivalence, MixingCountsByTheSecondOption)
{
    Format nonMixable = Stereo16();
    nonMixable.mFormatFlags |= 0x40;
    EXPECT_TRUE(Format::IsEquivalent(Stereo16(), nonMixable, 0));
    EXPECT_TRUE(Format::IsEquivalent(Stereo16(), nonMixable, 1));
    EXPECT_FALSE(Format::IsEquivalent(Stereo16(), nonMixable, 2));
    EXPECT_FALSE(Stereo16() == nonMixable);
}

TEST(Equivalence, OneChannelMayBeInterleavedOrNot)
{
    const Format interleaved(44100.0, kPCM, 2, 1, 2, 1, 16, 0xC);
    const Format planar(44100.0, kPCM, 2, 1, 2, 1, 16, 0x2C);
    EXPECT_TRUE(interleaved == planar);
    EXPECT_FALSE(interleaved != planar);
}

bool ComesFirst(const Format& inX, const Format& inY)
{
    return inX < inY && !(inY < inX);
}

TEST(Order, PutsLinearPCMFirstAndThenGoesByTheCode)
{
    EXPECT_TRUE(ComesFirst(Format(0, kPCM, 0, 0, 0, 0, 32, 0), Format(0, kAAC, 0, 0, 0, 0, 1, 0)));
    EXPECT_TRUE(ComesFirst(Format(0, 0x2E6D7033, 0, 0, 0, 0, 2, 0),
                           Format(0, 0xA0000000, 0, 0, 0, 0, 1, 0)));
}

TEST(Order, SkipsTheCodeWhereOneIsUnknown)
{
    const Format unknown(0, 0, 0, 0, 0, 0, 8, 0);
    EXPECT_TRUE(ComesFirst(unknown, Format(0, kPCM, 0, 0, 0, 0, 16, 0)));
    EXPECT_TRUE(ComesFirst(Format(0, kAAC, 0, 0, 0, 0, 4, 0), unknown));
}

TEST(Order, PutsMixableBeforeNonMixableAndIntegerBeforeFloat)
{
    const Format mixableFloat(0, kPCM, 0, 0, 0, 0, 32, 0x1);
    const Format nonMixable(0, kPCM, 0, 0, 0, 0, 8, 0x44);
    const Format integer(0, kPCM, 0, 0, 0, 0, 64, 0x4);
    EXPECT_TRUE(ComesFirst(mixableFloat, nonMixable));
    EXPECT_TRUE(ComesFirst(integer, mixableFloat));
    // Flags of other formats mean other things.
    EXPECT_TRUE(
        ComesFirst(Format(0, kAAC, 0, 0, 0, 0, 8, 0x41), Format(0, kAAC, 0, 0, 0, 0, 9, 0)));
}

TEST(Order, GoesOnWithDepthRateAndChannels)
{
    const Format base(44100.0, kPCM, 4, 1, 4, 2, 16, 0xC);
    Format deeper = base;
    deeper.mBitsPerChannel = 24;
    deeper.mSampleRate = 8000.0;
    EXPECT_TRUE(ComesFirst(base, deeper));
    Format faster = base;
    faster.mSampleRate = 48000.0;
    faster.mChannelsPerFrame = 1;
    EXPECT_TRUE(ComesFirst(base, faster));
    Format wider = base;
    wider.mChannelsPerFrame = 3;
    EXPECT_TRUE(ComesFirst(base, wider));
}

TEST(Order, IsNeverDecidedByWildcardsOrOtherFields)
{
    const Format base(44100.0, kPCM, 4, 1, 4, 2, 16, 0xC);
    EXPECT_FALSE(base < base);
    Format wild = base;
    wild.mBitsPerChannel = 0;
    wild.mSampleRate = 0.0;
    wild.mChannelsPerFrame = 0;
    wild.mBytesPerFrame = 100;
    wild.mBytesPerPacket = 100;
    wild.mFramesPerPacket = 100;
    EXPECT_FALSE(base < wild);
    EXPECT_FALSE(wild < base);
}

}  // namespace
