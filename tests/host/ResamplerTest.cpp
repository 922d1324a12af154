#include "host/Resampler.h"

#include "host/Failure.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace
{

using host::Resampler;

// One channel through a resampler, in blocks of inBlock frames.
std::vector<float> Resampled(const std::vector<float>& inSound, int inFrom, int inTo,
                             Resampler::Quality inQuality, std::int64_t inBlock = 4096)
{
    Resampler resampler(inFrom, inTo, 1, inQuality);
    std::vector<float> result;
    std::vector<float> room(static_cast<std::size_t>(inBlock));
    float* out = room.data();
    const auto take = [&](std::int64_t inMade)
    { result.insert(result.end(), room.begin(), room.begin() + inMade); };
    for (std::size_t done = 0; done < inSound.size();)
    {
        const float* in = inSound.data() + done;
        const auto left = static_cast<std::int64_t>(inSound.size() - done);
        const auto counts = resampler.Process(&in, std::min(left, inBlock), &out, inBlock);
        done += static_cast<std::size_t>(counts.mTaken);
        take(counts.mMade);
    }
    while (const std::int64_t made = resampler.Drain(&out, inBlock))
        take(made);
    return result;
}

std::vector<float> Tone(double inHertz, int inRate, std::size_t inFrames)
{
    std::vector<float> tone(inFrames);
    for (std::size_t frame = 0; frame < inFrames; ++frame)
        tone[frame] = static_cast<float>(
            0.5 * std::sin(2 * std::numbers::pi * inHertz * static_cast<double>(frame) / inRate));
    return tone;
}

TEST(Resampler, MakesTheRoundedLength)
{
    const std::vector<float> sound(44101, 0.1F);
    EXPECT_EQ(Resampled(sound, 44100, 48000, Resampler::Quality::k16Bit).size(), 48001u);
    EXPECT_EQ(Resampled(sound, 44100, 22050, Resampler::Quality::k24Bit).size(), 22051u);
    EXPECT_EQ(Resampled(sound, 44100, 8000, Resampler::Quality::k16Bit, 100).size(), 8000u);
    EXPECT_EQ(Resampled({}, 44100, 8000, Resampler::Quality::k16Bit).size(), 0u);
    EXPECT_EQ(Resampled({0.5F}, 8000, 48000, Resampler::Quality::k24Bit).size(), 6u);
}

TEST(Resampler, KeepsAToneInItsPlaceAndAtItsLevel)
{
    struct Row
    {
        int mFrom;
        int mTo;
        Resampler::Quality mQuality;
        double mMostError;
    };
    const Row rows[] = {{44100, 48000, Resampler::Quality::k16Bit, 1e-5},
                        {48000, 44100, Resampler::Quality::k16Bit, 1e-5},
                        {96000, 44100, Resampler::Quality::k24Bit, 1e-6},
                        {22050, 44100, Resampler::Quality::k24Bit, 1e-6}};
    for (const Row& row : rows)
    {
        const auto frames = static_cast<std::size_t>(row.mFrom);
        const std::vector<float> result =
            Resampled(Tone(1000.0, row.mFrom, frames), row.mFrom, row.mTo, row.mQuality);
        const std::vector<float> expected = Tone(1000.0, row.mTo, result.size());
        double error = 0.0;
        // The ends ring, as the tone begins and ends with a bend.
        for (std::size_t frame = 4000; frame < result.size() - 4000; ++frame)
            error =
                std::max(error, std::fabs(static_cast<double>(result[frame]) - expected[frame]));
        EXPECT_LT(error, row.mMostError) << row.mFrom << " to " << row.mTo;
    }
}

TEST(Resampler, KeepsAnImpulseInItsPlace)
{
    std::vector<float> sound(9600, 0.0F);
    sound[4800] = 1.0F;
    const std::vector<float> result = Resampled(sound, 48000, 24000, Resampler::Quality::k24Bit);
    EXPECT_EQ(std::max_element(result.begin(), result.end()) - result.begin(), 2400);
}

TEST(Resampler, RefusesRatesThatAreNone)
{
    EXPECT_THROW(Resampler(0, 48000, 1, Resampler::Quality::k16Bit), host::Failure);
    EXPECT_THROW(Resampler(44100, -1, 1, Resampler::Quality::k16Bit), host::Failure);
}

}  // namespace
