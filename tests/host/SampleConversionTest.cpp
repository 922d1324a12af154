#include "host/SampleConversion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

namespace
{

using host::ChangeWidth;
using host::DitherNoise;
using host::FromFloat;
using host::PeakOf;
using host::ToFloat;

std::string Packed(const std::vector<std::int32_t>& inSamples, std::size_t inBytes)
{
    std::string packed;
    for (const std::int32_t sample : inSamples)
        for (std::size_t byte = 0; byte < inBytes; ++byte)
            packed += static_cast<char>((sample + (inBytes == 1 ? 128 : 0)) >> (8 * byte));
    return packed;
}

std::string Changed(const std::string& inSamples, std::size_t inFrom, std::size_t inTo,
                    DitherNoise* ioNoise = nullptr)
{
    const std::size_t count = inSamples.size() / inFrom;
    // Floats want their alignment, which a string's memory has.
    std::string changed(count * inTo, '?');
    ChangeWidth(inSamples.data(), inFrom, static_cast<std::int64_t>(count), inTo, changed.data(),
                ioNoise);
    return changed;
}

std::string FloatBytes(const std::vector<float>& inSamples)
{
    return {reinterpret_cast<const char*>(inSamples.data()), inSamples.size() * sizeof(float)};
}

TEST(SampleConversion, WidensIntegersByShifts)
{
    EXPECT_EQ(Changed(Packed({-128, -1, 0, 1, 127}, 1), 1, 2),
              Packed({-32768, -256, 0, 256, 32512}, 2));
    EXPECT_EQ(Changed(Packed({-128, -1, 0, 127}, 1), 1, 3),
              Packed({-8388608, -65536, 0, 8323072}, 3));
    EXPECT_EQ(Changed(Packed({-32768, -1, 0, 32767}, 2), 2, 3),
              Packed({-8388608, -256, 0, 8388352}, 3));
}

TEST(SampleConversion, NarrowsToTheNearestAndSaturates)
{
    EXPECT_EQ(Changed(Packed({-8388608, -129, -128, 127, 128, 8388607}, 3), 3, 2),
              Packed({-32768, -1, 0, 0, 1, 32767}, 2));
    EXPECT_EQ(Changed(Packed({-32768, -129, 127, 128, 32767}, 2), 2, 1),
              Packed({-128, -1, 0, 1, 127}, 1));
    EXPECT_EQ(Changed(Packed({-8388608, 32767, 32768, 8388607}, 3), 3, 1),
              Packed({-128, 0, 1, 127}, 1));
}

TEST(SampleConversion, BringsEvery16BitSampleThroughAllWiderKinds)
{
    std::vector<std::int32_t> all;
    for (std::int32_t sample = -32768; sample <= 32767; ++sample)
        all.push_back(sample);
    const std::string samples = Packed(all, 2);
    EXPECT_EQ(Changed(Changed(samples, 2, 3), 3, 2), samples);
    EXPECT_EQ(Changed(Changed(samples, 2, 4), 4, 2), samples);
    EXPECT_EQ(Changed(Changed(Changed(samples, 2, 3), 3, 4), 4, 2), samples);
}

TEST(SampleConversion, BringsTheEndsOf24BitsThroughFloats)
{
    const std::string samples =
        Packed({-8388608, -8388607, -1, 0, 1, 1234567, 8388606, 8388607}, 3);
    EXPECT_EQ(Changed(Changed(samples, 3, 4), 4, 3), samples);
}

TEST(SampleConversion, TakesIntegersAsFractionsOfFullScale)
{
    float samples[2] = {};
    ToFloat(Packed({-128, 64}, 1).data(), 1, 2, samples);
    EXPECT_EQ(samples[0], -1.0F);
    EXPECT_EQ(samples[1], 0.5F);
    ToFloat(Packed({-8388608, 4194304}, 3).data(), 3, 2, samples);
    EXPECT_EQ(samples[0], -1.0F);
    EXPECT_EQ(samples[1], 0.5F);
}

TEST(SampleConversion, SaturatesFloatsAndTakesNaNForSilence)
{
    const float infinity = std::numeric_limits<float>::infinity();
    const std::vector<float> wild = {1.0F,     -1.0F,     1e30F,         -1e30F,
                                     infinity, -infinity, std::nanf(""), 0.0F};
    EXPECT_EQ(Changed(FloatBytes(wild), 4, 2),
              Packed({32767, -32768, 32767, -32768, 32767, -32768, 0, 0}, 2));
    EXPECT_EQ(Changed(FloatBytes(wild), 4, 1), Packed({127, -128, 127, -128, 127, -128, 0, 0}, 1));
    EXPECT_EQ(Changed(FloatBytes(wild), 4, 3),
              Packed({8388607, -8388608, 8388607, -8388608, 8388607, -8388608, 0, 0}, 3));
}

TEST(SampleConversion, RoundsFloatsToTheNearestStep)
{
    const std::vector<float> samples = {0.4F / 32768, 0.6F / 32768, -0.4F / 32768, -0.6F / 32768,
                                        1.5F / 32768};
    EXPECT_EQ(Changed(FloatBytes(samples), 4, 2), Packed({0, 1, 0, -1, 2}, 2));
}

// Mean and mean square of the error, in steps.
template <typename Sample>
std::pair<double, double> ErrorOf(const std::string& inSamples, double inTrue)
{
    double sum = 0.0;
    double squares = 0.0;
    const std::size_t count = inSamples.size() / sizeof(Sample);
    for (std::size_t index = 0; index < count; ++index)
    {
        Sample sample;
        std::memcpy(&sample, inSamples.data() + index * sizeof(Sample), sizeof(Sample));
        const double error = sample - inTrue;
        sum += error;
        squares += error * error;
    }
    return {sum / static_cast<double>(count), squares / static_cast<double>(count)};
}

// Triangular noise two steps wide has a power of 1/6, and rounding adds 1/12, wherever between two
// steps the signal is; without it the mean would be off by the signal's place.
TEST(SampleConversion, DithersFloatsWithTriangularNoise)
{
    for (const float place : {0.0F, 0.25F, 0.5F})
    {
        DitherNoise noise(1);
        const std::vector<float> samples(100000, (100.0F + place) / 32768);
        const auto [mean, power] =
            ErrorOf<std::int16_t>(Changed(FloatBytes(samples), 4, 2, &noise), 100.0 + place);
        EXPECT_NEAR(mean, 0.0, 0.01) << place;
        EXPECT_NEAR(power, 0.25, 0.01) << place;
    }
}

TEST(SampleConversion, DithersIntegersWithTriangularNoise)
{
    for (const int place : {0, 64, 128})
    {
        DitherNoise noise(1);
        const std::string samples = Packed(std::vector<std::int32_t>(100000, 100 * 256 + place), 3);
        const auto [mean, power] =
            ErrorOf<std::int16_t>(Changed(samples, 3, 2, &noise), 100.0 + place / 256.0);
        EXPECT_NEAR(mean, 0.0, 0.01) << place;
        EXPECT_NEAR(power, 0.25, 0.01) << place;
    }
}

TEST(SampleConversion, NeverDithersBeyondTheEnds)
{
    DitherNoise noise(3);
    const std::string loud =
        Changed(Packed(std::vector<std::int32_t>(1000, 8388607), 3), 3, 2, &noise);
    for (std::size_t index = 0; index < loud.size(); index += 2)
    {
        std::int16_t sample;
        std::memcpy(&sample, loud.data() + index, 2);
        ASSERT_GE(sample, 32766);
    }
}

TEST(SampleConversion, RepeatsTheNoiseOfASeed)
{
    DitherNoise one(7);
    DitherNoise same(7);
    DitherNoise other(8);
    bool differs = false;
    for (int index = 0; index < 100; ++index)
    {
        const float step = one.NextStep();
        EXPECT_EQ(step, same.NextStep());
        differs = differs || step != other.NextStep();
    }
    EXPECT_TRUE(differs);
}

TEST(SampleConversion, MeasuresThePeakOfEveryWidth)
{
    EXPECT_EQ(PeakOf(Packed({0, -128, 5}, 1).data(), 1, 3), 1.0);
    EXPECT_EQ(PeakOf(Packed({0, 16384, -5}, 2).data(), 2, 3), 0.5);
    EXPECT_EQ(PeakOf(Packed({0, -2097152}, 3).data(), 3, 2), 0.25);
    EXPECT_EQ(PeakOf(FloatBytes({0.5F, -1.5F, std::nanf("")}).data(), 4, 3), 1.5);
    EXPECT_EQ(PeakOf(nullptr, 2, 0), 0.0);
}

TEST(SampleConversion, KnowsTheSilenceOfUnsignedSamples)
{
    std::string samples(4, '?');
    host::FillWithSilence(samples.data(), 1, 4);
    EXPECT_EQ(samples, "\x80\x80\x80\x80");
    host::FillWithSilence(samples.data(), 2, 2);
    EXPECT_EQ(samples, std::string(4, '\0'));
}

}  // namespace
