// The vector kernels against plain loops: every pair of layouts, odd lengths, odd addresses, and
// every instruction set that this processor has.
#include "PlainSamples.h"

#include "convert/PlaneKernels.h"
#include "convert/SampleKernels.h"

#include <gtest/gtest.h>
#include <VectorTarget.h>

#include <random>

namespace
{

using audiotoolbox::SampleKernel;
using audiotoolbox::SampleLayout;
using audiotoolbox::SampleWord;
using audiotoolbox::WordBytes;

// Whole scale, its ends, halves between two steps, beyond full scale, and no numbers.
std::vector<double> FloatValues(std::size_t inCount)
{
    const double infinity = std::numeric_limits<double>::infinity();
    std::vector<double> values = {0.0,  -0.0, 1.0,   -1.0,     0.99999,   -0.99999,     1.5,
                                  -1.5, 1e30, -1e30, infinity, -infinity, std::nan(""), 1e-30};
    for (const double halves : {0.5, 1.5, 2.5, -0.5, -1.5, -2.5})
        for (const int bits : {8, 16, 24, 32})
            values.push_back(std::ldexp(halves, 1 - bits));
    std::mt19937 random(7);
    std::uniform_real_distribution<double> any(-1.1, 1.1);
    while (values.size() < inCount)
        values.push_back(any(random));
    values.resize(inCount);
    return values;
}

// Sign extension fills unused bits, as files have it; the unused bits of high samples are zero.
std::vector<UInt8> MakeSamples(const SampleLayout& inLayout, std::size_t inCount)
{
    const UInt32 bytes = WordBytes(inLayout.mWord);
    std::vector<UInt8> samples(inCount * bytes);
    const std::vector<double> floats = FloatValues(inCount);
    std::mt19937 random(11);
    for (std::size_t i = 0; i < inCount; ++i)
    {
        UInt8* place = samples.data() + i * bytes;
        const SInt64 full = SInt64{1} << (inLayout.mBits - 1);
        if (audiotoolbox::IsFloat(inLayout.mWord))
            plain::WriteFloat(inLayout, floats[i], place);
        else if (i < 4)
            plain::WriteInteger(inLayout,
                                i == 0   ? full - 1
                                : i == 1 ? -full
                                : i == 2 ? 0
                                         : -1,
                                place);
        else
            plain::WriteInteger(inLayout, static_cast<SInt64>(random() % (2 * full)) - full, place);
    }
    return samples;
}

bool AreSameNumber(const SampleLayout& inLayout, const UInt8* inOne, const UInt8* inOther)
{
    const UInt32 bytes = WordBytes(inLayout.mWord);
    if (std::memcmp(inOne, inOther, bytes) == 0)
        return true;
    return audiotoolbox::IsFloat(inLayout.mWord) && std::isnan(plain::ReadFloat(inLayout, inOne)) &&
           std::isnan(plain::ReadFloat(inLayout, inOther));
}

constexpr UInt8 kGuard = 0xA5;
constexpr std::size_t kGuardBytes = 32;

// One byte off any alignment. The guard shows bytes written behind the last sample.
void ExpectKernelMatches(const SampleLayout& inFrom, const SampleLayout& inTo, std::size_t inCount)
{
    const UInt32 fromBytes = WordBytes(inFrom.mWord);
    const UInt32 toBytes = WordBytes(inTo.mWord);
    const std::vector<UInt8> samples = MakeSamples(inFrom, inCount);
    std::vector<UInt8> from(1 + samples.size());
    std::copy(samples.begin(), samples.end(), from.begin() + 1);
    std::vector<UInt8> to(1 + inCount * toBytes + kGuardBytes, kGuard);

    SampleKernel(inFrom, inTo)(from.data() + 1, to.data() + 1, inCount);

    const std::string pair = plain::NameOf(inFrom) + " to " + plain::NameOf(inTo) + ", " +
                             std::to_string(inCount) + " samples";
    for (std::size_t i = 0; i < inCount; ++i)
    {
        UInt8 expected[8] = {};
        plain::Convert(inFrom, inTo, samples.data() + i * fromBytes, expected);
        ASSERT_TRUE(AreSameNumber(inTo, to.data() + 1 + i * toBytes, expected))
            << pair << ", sample " << i;
    }
    ASSERT_EQ(to[0], kGuard) << pair;
    for (std::size_t i = 1 + inCount * toBytes; i < to.size(); ++i)
        ASSERT_EQ(to[i], kGuard) << pair << ", behind the end";
}

// Each instruction set in turn, the best last; the fallback is what remains when all others are
// switched off.
class EveryInstructionSet : public testing::TestWithParam<int64_t>
{
protected:
    void SetUp() override { vectortarget::sAllowed = GetParam(); }
    void TearDown() override { vectortarget::sAllowed = ~int64_t{0}; }
};

std::vector<int64_t> InstructionSets()
{
    std::vector<int64_t> sets = {0};
    for (const int64_t set : {int64_t{HWY_SSE4}, int64_t{HWY_AVX2}})
        if ((vectortarget::OfProcessor() & set) != 0)
            sets.push_back(set);
    return sets;
}

TEST_P(EveryInstructionSet, ConvertsEveryPairLikeThePlainLoop)
{
    for (const SampleLayout& from : plain::AllLayouts())
        for (const SampleLayout& to : plain::AllLayouts())
            ExpectKernelMatches(from, to, 83);
}

TEST_P(EveryInstructionSet, ConvertsEveryLength)
{
    const SampleLayout layouts[] = {{SampleWord::Int8, false, true, false, 8},
                                    {SampleWord::Int16, true, false, false, 16},
                                    {SampleWord::Int24, false, false, false, 24},
                                    {SampleWord::Int24, true, false, false, 24},
                                    {SampleWord::Int32, false, false, false, 32},
                                    {SampleWord::Float32, false, false, false, 32},
                                    {SampleWord::Float64, true, false, false, 64}};
    for (const SampleLayout& from : layouts)
        for (const SampleLayout& to : layouts)
            for (std::size_t count = 0; count < 40; ++count)
                ExpectKernelMatches(from, to, count);
}

TEST_P(EveryInstructionSet, InterleavesPlanesToFloats)
{
    const SampleLayout floats;
    for (const SampleWord word : {SampleWord::Int16, SampleWord::Int32, SampleWord::Float32})
        for (const UInt32 channels : {1u, 2u, 3u, 6u})
            for (const std::size_t frames : {1u, 7u, 8u, 9u, 50u})
            {
                const UInt32 bytes = WordBytes(word);
                const SampleLayout layout = {word, false, false, false, bytes * 8};
                ASSERT_TRUE(audiotoolbox::CanInterleaveToFloat(layout));
                const std::vector<UInt8> samples = MakeSamples(layout, frames * channels);
                const UInt8* planes[audiotoolbox::kMaxChannels] = {};
                for (UInt32 channel = 0; channel < channels; ++channel)
                    planes[channel] = samples.data() + channel * frames * bytes;
                std::vector<float> out(frames * channels);
                audiotoolbox::InterleaveToFloat(planes, word, channels, frames, out.data());
                for (std::size_t i = 0; i < out.size(); ++i)
                {
                    float expected = 0;
                    plain::Convert(layout, floats, planes[i % channels] + i / channels * bytes,
                                   reinterpret_cast<UInt8*>(&expected));
                    ASSERT_TRUE(AreSameNumber(floats, reinterpret_cast<const UInt8*>(&out[i]),
                                              reinterpret_cast<const UInt8*>(&expected)))
                        << "word " << static_cast<int>(word) << ", " << channels << " channels";
                }
            }
}

INSTANTIATE_TEST_SUITE_P(Targets, EveryInstructionSet, testing::ValuesIn(InstructionSets()));

TEST(SampleKernels, SwappingKeepsEveryBitOfAFloat)
{
    const UInt8 signalling[] = {0x7F, 0xA0, 0x00, 0x01, 0x80, 0x00, 0x00, 0x00};
    UInt8 out[8] = {};
    SampleKernel({SampleWord::Float32, true, false, false, 32}, SampleLayout())(signalling, out, 2);
    const UInt8 expected[] = {0x01, 0x00, 0xA0, 0x7F, 0x00, 0x00, 0x00, 0x80};
    EXPECT_EQ(std::memcmp(out, expected, 8), 0);
}

TEST(SampleKernels, FullScaleFloatsSaturateAndNoNumberBecomesSilence)
{
    const float in[] = {1.0f, -1.0f, 2.0f, -2.0f, std::nanf(""), 0.5f, 1.5f / 32768, 2.5f / 32768};
    SInt16 out[8] = {};
    SampleKernel(SampleLayout(), {SampleWord::Int16, false, false, false, 16})(in, out, 8);
    const SInt16 expected[] = {32767, -32768, 32767, -32768, 0, 16384, 2, 2};
    EXPECT_TRUE(std::equal(std::begin(out), std::end(out), std::begin(expected)));
}

TEST(SampleKernels, TwentyFourBitsBecomeTheExactFloat)
{
    const UInt8 in[] = {0x01, 0x00, 0x00, 0xFF, 0xFF, 0x7F, 0x00, 0x00, 0x80};
    float out[3] = {};
    SampleKernel({SampleWord::Int24, false, false, false, 24}, SampleLayout())(in, out, 3);
    EXPECT_EQ(out[0], 0x1p-23f);
    EXPECT_EQ(out[1], 8388607.0f / 8388608.0f);
    EXPECT_EQ(out[2], -1.0f);
}

}  // namespace
