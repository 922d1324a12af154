// AAC of a constant bit rate has that rate over the file, and in any second of it.
#include "Exported.h"
#include "Packets.h"

#include <AudioToolbox/AudioToolbox.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace export_matrix
{

namespace
{

constexpr std::size_t kFrames = 3 * 48000;

enum class Content
{
    kSilence,
    kTones,
    kNoise,
    kNoiseBetweenSilence
};

Sound Make(Content inContent, std::uint32_t inChannels)
{
    const auto labels = UsualLabels(inChannels);
    Sound sound = inContent == Content::kTones ? Tones(labels, kFrames, 48000, 20)
                                               : Noise(labels, kFrames, 48000, 20);
    if (inContent == Content::kSilence)
        for (auto& channel : sound.mAudio.mChannels)
            std::fill(channel.begin(), channel.end(), 0.0);
    if (inContent == Content::kNoiseBetweenSilence)
        for (auto& channel : sound.mAudio.mChannels)
        {
            std::fill(channel.begin(), channel.begin() + kFrames / 3, 0.0);
            std::fill(channel.end() - kFrames / 3, channel.end(), 0.0);
        }
    return sound;
}

struct RateRow
{
    const char* mName;
    Content mContent;
    std::uint32_t mChannels;
    std::uint32_t mBitsPerSecond;
};

void PrintTo(const RateRow& inRow, std::ostream* outStream)
{
    *outStream << inRow.mName;
}

class ConstantRate : public testing::TestWithParam<RateRow>
{
protected:
    std::vector<std::size_t> Sizes() const
    {
        const Scratch scratch;
        const std::string path = scratch.File("file.m4a");
        const Variant variant = {{kAudioFileM4AType, kAudioFormatMPEG4AAC}};
        Export(path, variant, Make(GetParam().mContent, GetParam().mChannels),
               BitRate{kAudioCodecBitRateControlMode_Constant, GetParam().mBitsPerSecond});
        return PacketSizes(path);
    }

    // Bits of so many packets at the stated rate.
    double Stated(std::size_t inPackets) const
    {
        return static_cast<double>(inPackets) * 1024 / 48000 * GetParam().mBitsPerSecond;
    }
};

double Bits(const std::vector<std::size_t>& inSizes, std::size_t inFirst, std::size_t inCount)
{
    const auto first = inSizes.begin() + static_cast<std::ptrdiff_t>(inFirst);
    return 8.0 * static_cast<double>(std::accumulate(
                     first, first + static_cast<std::ptrdiff_t>(inCount), std::size_t{0}));
}

TEST_P(ConstantRate, IsThatOfTheFileAndOfEverySecond)
{
    constexpr std::size_t kSecond = 47;  // packets
    const std::vector<std::size_t> sizes = Sizes();
    ASSERT_EQ(sizes.size(), 142u);
    EXPECT_NEAR(Bits(sizes, 0, sizes.size()), Stated(sizes.size()), 0.001 * Stated(sizes.size()));
    for (std::size_t first = 0; first + kSecond <= sizes.size(); ++first)
        EXPECT_NEAR(Bits(sizes, first, kSecond), Stated(kSecond), 0.04 * Stated(kSecond)) << first;
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ConstantRate,
    testing::Values(RateRow{"SilenceStereo", Content::kSilence, 2, 128000},
                    RateRow{"TonesStereo", Content::kTones, 2, 128000},
                    RateRow{"NoiseStereo", Content::kNoise, 2, 128000},
                    RateRow{"NoiseBetweenSilenceStereo", Content::kNoiseBetweenSilence, 2, 128000},
                    RateRow{"NoiseBetweenSilenceMono", Content::kNoiseBetweenSilence, 1, 64000},
                    RateRow{"NoiseBetweenSilenceSurround", Content::kNoiseBetweenSilence, 6,
                            384000},
                    RateRow{"SilenceMono", Content::kSilence, 1, 64000},
                    RateRow{"NoiseMono", Content::kNoise, 1, 32000},
                    RateRow{"SilenceSurround", Content::kSilence, 6, 384000},
                    RateRow{"NoiseSurround", Content::kNoise, 6, 384000}),
    [](const auto& inInfo) { return std::string(inInfo.param.mName); });

}  // namespace

}  // namespace export_matrix
