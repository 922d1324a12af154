// The vectorised splitting against a plain loop, on every kind of processor that this one can play.
#include "appleaudiotoolbox/src/Deinterleave.h"

#include <gtest/gtest.h>
#include <VectorTarget.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace
{

// A block of exactly this size at an odd address, so that a sanitizer sees one byte too many.
class OddBlock
{
public:
    explicit OddBlock(std::size_t inBytes) : mBytes(new char[inBytes + 1]), mSize(inBytes) {}
    char* Data() { return mBytes.get() + 1; }
    std::size_t Size() const { return mSize; }

private:
    std::unique_ptr<char[]> mBytes;
    std::size_t mSize;
};

char Noise(std::size_t inIndex)
{
    std::uint64_t value = (inIndex + 1) * 0x9E3779B97F4A7C15ull;
    value ^= value >> 29;
    return static_cast<char>(value >> 7);
}

testing::AssertionResult SplitsLikeAPlainLoop(std::size_t inChannels, std::size_t inWidth,
                                              std::size_t inFrames)
{
    OddBlock frames(inFrames * inChannels * inWidth);
    for (std::size_t index = 0; index < frames.Size(); ++index)
        frames.Data()[index] = Noise(index);
    std::vector<OddBlock> planes;
    std::vector<char*> out;
    for (std::size_t channel = 0; channel < inChannels; ++channel)
        out.push_back(planes.emplace_back(inFrames * inWidth).Data());

    appleaudiotoolbox::Deinterleave(frames.Data(), inChannels, inWidth, inFrames, out.data());

    for (std::size_t frame = 0; frame < inFrames; ++frame)
        for (std::size_t channel = 0; channel < inChannels; ++channel)
            for (std::size_t byte = 0; byte < inWidth; ++byte)
                if (out[channel][frame * inWidth + byte] !=
                    frames.Data()[(frame * inChannels + channel) * inWidth + byte])
                    return testing::AssertionFailure()
                           << inChannels << " channels of " << inWidth << " bytes, " << inFrames
                           << " frames: wrong at frame " << frame << ", channel " << channel;
    return testing::AssertionSuccess();
}

class Deinterleaving : public testing::TestWithParam<int64_t>
{
protected:
    Deinterleaving() { Play(GetParam()); }
    ~Deinterleaving() override { Play(~std::int64_t{0}); }

    static void Play(int64_t inTarget) { vectortarget::sAllowed = inTarget; }
};

TEST_P(Deinterleaving, MatchesAPlainLoopForEveryWidthAndChannelCount)
{
    for (std::size_t width = 1; width <= 4; ++width)
        for (std::size_t channels = 1; channels <= 24; ++channels)
            for (const std::size_t frames :
                 {1, 2, 3, 7, 8, 31, 32, 33, 34, 35, 47, 48, 63, 64, 65, 66, 67, 100, 129, 257})
                ASSERT_TRUE(SplitsLikeAPlainLoop(channels, width, frames));
}

TEST_P(Deinterleaving, MatchesAPlainLoopOverSeveralTiles)
{
    for (std::size_t width = 1; width <= 4; ++width)
        for (const std::size_t channels : {2, 3, 6, 16, 64, 600})
            ASSERT_TRUE(SplitsLikeAPlainLoop(channels, width, 40011 / channels));
}

TEST(Deinterleave, OfNoFramesTouchesNothing)
{
    for (std::size_t width = 1; width <= 4; ++width)
        appleaudiotoolbox::Deinterleave(nullptr, 2, width, 0, nullptr);
}

// Those that the code under test is compiled for and this processor has.
std::vector<int64_t> Targets()
{
    std::vector<int64_t> targets = {0};  // the baseline
    for (const int64_t target : {HWY_AVX2, HWY_SSE4, HWY_SSSE3})
        if (vectortarget::OfProcessor() & target)
            targets.push_back(target);
    return targets;
}

INSTANTIATE_TEST_SUITE_P(Processors, Deinterleaving, testing::ValuesIn(Targets()),
                         [](const auto& target) { return hwy::TargetName(target.param); });

}  // namespace
