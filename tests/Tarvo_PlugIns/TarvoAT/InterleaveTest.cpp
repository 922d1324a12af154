// The vectorised joining against a plain loop, on every kind of processor that this one can play.
#include "Tarvo_PlugIns/TarvoAT/private/Interleave.h"

#include <gtest/gtest.h>
#include <VectorTarget.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

namespace
{

// A block of exactly this size, at an odd address, so that a sanitizer sees one byte too many.
class OddBlock
{
public:
    explicit OddBlock(std::size_t inBytes) : mBytes(new char[inBytes + 1]), mSize(inBytes) {}
    char* Data() const { return mBytes.get() + 1; }
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

void PlainLoop(const std::vector<const char*>& inChannels, std::size_t inWidth,
               std::size_t inFrames, char* outFrames)
{
    for (std::size_t frame = 0; frame < inFrames; ++frame)
        for (const char* channel : inChannels)
            for (std::size_t byte = 0; byte < inWidth; ++byte)
                *outFrames++ = channel[frame * inWidth + byte];
}

testing::AssertionResult JoinsLikeAPlainLoop(std::size_t inChannels, std::size_t inWidth,
                                             std::size_t inFrames)
{
    std::vector<OddBlock> planes;
    std::vector<const char*> in;
    for (std::size_t channel = 0; channel < inChannels; ++channel)
    {
        const OddBlock& plane = planes.emplace_back(inFrames * inWidth);
        for (std::size_t index = 0; index < plane.Size(); ++index)
            plane.Data()[index] = Noise(channel * plane.Size() + index);
        in.push_back(plane.Data());
    }
    const OddBlock expected(inFrames * inChannels * inWidth);
    PlainLoop(in, inWidth, inFrames, expected.Data());

    const OddBlock joined(expected.Size());
    std::memset(joined.Data(), 0x55, joined.Size());
    for (std::size_t channel = 0; channel < inChannels; ++channel)
        tarvo::InterleaveChannel(channel, in[channel],
                                 {inChannels, inWidth, inFrames, joined.Data()});
    for (std::size_t index = 0; index < joined.Size(); ++index)
        if (joined.Data()[index] != expected.Data()[index])
            return testing::AssertionFailure()
                   << inChannels << " channels of " << inWidth << " bytes, " << inFrames
                   << " frames: wrong at byte " << index;
    return testing::AssertionSuccess();
}

class Interleaving : public testing::TestWithParam<int64_t>
{
protected:
    Interleaving() { Play(GetParam()); }
    ~Interleaving() override { Play(~std::int64_t{0}); }

    static void Play(int64_t inTarget) { vectortarget::sAllowed = inTarget; }
};

TEST_P(Interleaving, MatchesAPlainLoopForEveryWidthAndChannelCount)
{
    for (std::size_t width = 1; width <= 4; ++width)
        for (std::size_t channels = 1; channels <= 24; ++channels)
            for (std::size_t frames = 1; frames <= 70; ++frames)
                ASSERT_TRUE(JoinsLikeAPlainLoop(channels, width, frames));
}

TEST_P(Interleaving, MatchesAPlainLoopForLongBlocks)
{
    for (std::size_t width = 1; width <= 4; ++width)
        for (const std::size_t channels : {1, 2, 3, 6, 16, 600})
            ASSERT_TRUE(JoinsLikeAPlainLoop(channels, width, 40011 / channels));
}

TEST(Interleave, OfNoFramesTouchesNothing)
{
    for (std::size_t width = 1; width <= 4; ++width)
        for (const std::size_t channels : {1, 2, 6})
            for (std::size_t channel = 0; channel < channels; ++channel)
                tarvo::InterleaveChannel(channel, nullptr, {channels, width, 0, nullptr});
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

INSTANTIATE_TEST_SUITE_P(Processors, Interleaving, testing::ValuesIn(Targets()),
                         [](const auto& target) { return hwy::TargetName(target.param); });

}  // namespace
