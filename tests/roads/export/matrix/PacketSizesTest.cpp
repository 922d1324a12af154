// Lossless packets stay below what readers with 16-bit sizes can take, also of noise.
#include "Exported.h"
#include "Packets.h"

#include <AudioToolbox/AudioToolbox.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace export_matrix
{

namespace
{

bool IsPacked(const Pair& inPair)
{
    return inPair.mFormat == kAudioFormatFLAC || inPair.mFormat == kAudioFormatAppleLossless;
}

std::vector<Pair> Packed()
{
    std::vector<Pair> pairs;
    for (const Pair& pair : EveryPair())
        if (IsPacked(pair))
            pairs.push_back(pair);
    return pairs;
}

class PackedNoise : public testing::TestWithParam<Pair>
{
};

TEST_P(PackedNoise, StaysBelow64KilobytesAPacket)
{
    constexpr std::size_t kMostBytes = 65535;
    constexpr std::size_t kFrames = 9001;
    for (const std::uint32_t channels : {6u, 8u})
    {
        SCOPED_TRACE(std::to_string(channels) + " channels");
        const Scratch scratch;
        const std::string path = scratch.File(FileName(GetParam()));
        const Sound sound = Noise(UsualLabels(channels), kFrames, 48000, 30);
        Export(path, VariantsOf(GetParam()).back(), sound);
        const std::vector<std::size_t> sizes = PacketSizes(path);
        ASSERT_GE(sizes.size(), 2u);
        std::size_t bytes = 0;
        for (const std::size_t size : sizes)
            bytes += size;
        EXPECT_LE(*std::max_element(sizes.begin(), sizes.end()), kMostBytes);
        EXPECT_GE(bytes, kFrames * channels * 3) << "noise of 24 bits cannot be made smaller";
        EXPECT_EQ(testing_support::Difference(sound.mAudio, testing_support::Import(path).mAudio),
                  "");
    }
}

INSTANTIATE_TEST_SUITE_P(Pairs, PackedNoise, testing::ValuesIn(Packed()),
                         TestName<testing::TestParamInfo<Pair>>);

}  // namespace

}  // namespace export_matrix
