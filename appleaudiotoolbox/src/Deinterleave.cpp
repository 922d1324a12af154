// Samples of a few channels are taken from a few frames at once and transposed in registers: each
// row of a square starts as one frame and ends as one channel. Whole chunks of frames go that way,
// in tiles that stay in the first-level cache while one group of channels after the other is taken
// from them; what is left at the end goes sample by sample.
#include "appleaudiotoolbox/src/Deinterleave.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

// Nothing here is wider than 32 bytes, so targets with wider vectors would only repeat the code.
#define HWY_DISABLED_TARGETS (HWY_AVX3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "appleaudiotoolbox/src/Deinterleave.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
#include <VectorBlocks-inl.h>

#ifndef APPLEAUDIOTOOLBOX_SRC_DEINTERLEAVE_ONCE
#define APPLEAUDIOTOOLBOX_SRC_DEINTERLEAVE_ONCE
namespace appleaudiotoolbox
{

struct DeinterleaveJob
{
    const std::uint8_t* mFrames;
    std::size_t mChannels;
    std::size_t mSampleBytes;
    std::size_t mFrameCount;
    char* const* mOut;

    const std::uint8_t* Sample(std::size_t inFrame, std::size_t inChannel) const
    {
        return mFrames + (inFrame * mChannels + inChannel) * mSampleBytes;
    }
    std::uint8_t* Out(std::size_t inFrame, std::size_t inChannel) const
    {
        return reinterpret_cast<std::uint8_t*>(mOut[inChannel]) + inFrame * mSampleBytes;
    }
};

}  // namespace appleaudiotoolbox
#endif

HWY_BEFORE_NAMESPACE();
namespace appleaudiotoolbox
{
namespace HWY_NAMESPACE
{

#if HWY_TARGET == HWY_SCALAR

// Without vectors the loop over samples does everything.
std::size_t SplitWidth(const DeinterleaveJob&)
{
    return 0;
}

#else

namespace hn = hwy::HWY_NAMESPACE;
using vectorblocks::HWY_NAMESPACE::ByteTag;
using vectorblocks::HWY_NAMESPACE::kBlockBytes;
using vectorblocks::HWY_NAMESPACE::kBlocks;
using vectorblocks::HWY_NAMESPACE::kChunkFrames;
using vectorblocks::HWY_NAMESPACE::LoadBlocks;
using vectorblocks::HWY_NAMESPACE::Positions;
using vectorblocks::HWY_NAMESPACE::SafeFrames;
using vectorblocks::HWY_NAMESPACE::StoreBlock;
using vectorblocks::HWY_NAMESPACE::TileFrames;
using vectorblocks::HWY_NAMESPACE::Transpose;
using vectorblocks::HWY_NAMESPACE::Vector;

// Samples of 1, 2 and 4 bytes: as many channels at once as fit a block.
template <typename Lane>
struct WholeLanes
{
    static constexpr std::size_t kGroup = kBlockBytes / sizeof(Lane);
    static constexpr std::size_t kStep = kBlocks * kGroup;  // frames
    static constexpr std::size_t kSpareFrames = 0;

    static HWY_INLINE void Split(const DeinterleaveJob& inJob, std::size_t inChannel,
                                 std::size_t inChannels, std::size_t inFrame)
    {
        Vector rows[kGroup];
        HWY_UNROLL(16)
        for (std::size_t row = 0; row < kGroup; ++row)
            rows[row] = LoadBlocks(inJob.Sample(inFrame + row, inChannel),
                                   inJob.Sample(inFrame + row + (kBlocks - 1) * kGroup, inChannel));
        Transpose<Lane>(rows);
        HWY_UNROLL(16)
        for (std::size_t row = 0; row < kGroup; ++row)
            if (row < inChannels)
                hn::StoreU(rows[row], ByteTag(), inJob.Out(inFrame, inChannel + row));
    }
};

// Stores 4 samples of 3 bytes from each block, whose lanes have 4 bytes. Writes 4 bytes more than
// it counts; what comes behind goes over them.
HWY_INLINE void StoreTriples(Vector inLanes, std::uint8_t* outSamples)
{
    alignas(16) static constexpr std::uint8_t kPacked[] = {0,  1,  2,  4,  5, 6, 8, 9,
                                                           10, 12, 13, 14, 0, 0, 0, 0};
    const Vector packed = hn::TableLookupBytes(inLanes, Positions(kPacked));
    StoreBlock<0>(packed, outSamples);
    if constexpr (kBlocks == 2)
        StoreBlock<1>(packed, outSamples + 12);
}

// Samples of 3 bytes: 4 channels at once, in lanes of 4 bytes on the way.
struct Triples
{
    static constexpr std::size_t kGroup = 4;
    static constexpr std::size_t kStep = kBlocks * 4;
    static constexpr std::size_t kSpareFrames = 2;  // for the bytes that a store writes too many

    static HWY_INLINE void Split(const DeinterleaveJob& inJob, std::size_t inChannel,
                                 std::size_t inChannels, std::size_t inFrame)
    {
        alignas(16) static constexpr std::uint8_t kLanes[] = {0, 1, 2, 0, 3, 4,  5,  0,
                                                              6, 7, 8, 0, 9, 10, 11, 0};
        Vector rows[4];
        HWY_UNROLL(4)
        for (std::size_t row = 0; row < 4; ++row)
            rows[row] = hn::TableLookupBytes(
                LoadBlocks(inJob.Sample(inFrame + row, inChannel),
                           inJob.Sample(inFrame + row + (kBlocks - 1) * 4, inChannel)),
                Positions(kLanes));
        Transpose<std::uint32_t>(rows);
        HWY_UNROLL(4)
        for (std::size_t row = 0; row < 4; ++row)
            if (row < inChannels)
                StoreTriples(rows[row], inJob.Out(inFrame, inChannel + row));
    }
};

// Stereo fills a vector with whole frames, of which every other lane is taken.
template <typename Lane>
struct WholeLanePairs
{
    static constexpr std::size_t kGroup = 2;
    static constexpr std::size_t kStep = kBlocks * kBlockBytes / sizeof(Lane);
    static constexpr std::size_t kSpareFrames = 0;

    static HWY_INLINE void Split(const DeinterleaveJob& inJob, std::size_t, std::size_t,
                                 std::size_t inFrame)
    {
        const ByteTag bytes;
        const hn::Repartition<Lane, ByteTag> tag;
        const std::uint8_t* const frames = inJob.Sample(inFrame, 0);
        const auto first = hn::BitCast(tag, hn::LoadU(bytes, frames));
        const auto second = hn::BitCast(tag, hn::LoadU(bytes, frames + kBlocks * kBlockBytes));
        const auto left = hn::ConcatEven(tag, second, first);
        const auto right = hn::ConcatOdd(tag, second, first);
        hn::StoreU(hn::BitCast(bytes, left), bytes, inJob.Out(inFrame, 0));
        hn::StoreU(hn::BitCast(bytes, right), bytes, inJob.Out(inFrame, 1));
    }
};

// The same for samples of 3 bytes, two frames to a block.
struct TriplePairs
{
    static constexpr std::size_t kGroup = 2;
    static constexpr std::size_t kStep = kBlocks * 4;
    static constexpr std::size_t kSpareFrames = 2;

    static HWY_INLINE void Split(const DeinterleaveJob& inJob, std::size_t, std::size_t,
                                 std::size_t inFrame)
    {
        alignas(16) static constexpr std::uint8_t kLanes[] = {0, 1, 2, 0, 6, 7,  8,  0,
                                                              3, 4, 5, 0, 9, 10, 11, 0};
        const hn::Repartition<std::uint64_t, ByteTag> pairs;
        const ByteTag bytes;
        const auto load = [&](std::size_t frame) HWY_ATTR
        {
            const Vector frames =
                LoadBlocks(inJob.Sample(frame, 0), inJob.Sample(frame + (kBlocks - 1) * 4, 0));
            return hn::BitCast(pairs, hn::TableLookupBytes(frames, Positions(kLanes)));
        };
        const auto first = load(inFrame);
        const auto second = load(inFrame + 2);
        StoreTriples(hn::BitCast(bytes, hn::InterleaveLower(pairs, first, second)),
                     inJob.Out(inFrame, 0));
        StoreTriples(hn::BitCast(bytes, hn::InterleaveUpper(pairs, first, second)),
                     inJob.Out(inFrame, 1));
    }
};

template <typename Kernel>
std::size_t SplitChunks(const DeinterleaveJob& inJob)
{
    static_assert(kChunkFrames % Kernel::kStep == 0);
    const std::size_t frames = SafeFrames<Kernel>(inJob);
    const std::size_t tileFrames = TileFrames(inJob);
    for (std::size_t tile = 0; tile < frames; tile += tileFrames)
    {
        const std::size_t tileEnd = std::min(frames, tile + tileFrames);
        for (std::size_t channel = 0; channel < inJob.mChannels; channel += Kernel::kGroup)
        {
            const std::size_t channels = std::min(Kernel::kGroup, inJob.mChannels - channel);
            for (std::size_t frame = tile; frame < tileEnd; frame += Kernel::kStep)
                Kernel::Split(inJob, channel, channels, frame);
        }
    }
    return frames;
}

// Answers how many frames it has split, from the first on.
std::size_t SplitWidth(const DeinterleaveJob& inJob)
{
    const bool isStereo = inJob.mChannels == 2;
    switch (inJob.mSampleBytes)
    {
        case 1:
            return isStereo ? SplitChunks<WholeLanePairs<std::uint8_t>>(inJob)
                            : SplitChunks<WholeLanes<std::uint8_t>>(inJob);
        case 2:
            return isStereo ? SplitChunks<WholeLanePairs<std::uint16_t>>(inJob)
                            : SplitChunks<WholeLanes<std::uint16_t>>(inJob);
        case 3:
            return isStereo ? SplitChunks<TriplePairs>(inJob) : SplitChunks<Triples>(inJob);
        default:
            return isStereo ? SplitChunks<WholeLanePairs<std::uint32_t>>(inJob)
                            : SplitChunks<WholeLanes<std::uint32_t>>(inJob);
    }
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace appleaudiotoolbox
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include <VectorTarget.h>

namespace appleaudiotoolbox
{

void Deinterleave(const char* inFrames, std::size_t inChannels, std::size_t inBytesPerSample,
                  std::size_t inFrameCount, char* const* outChannels)
{
    if (inFrameCount == 0 || inChannels == 0)
        return;
    if (inChannels == 1)
    {
        std::memcpy(outChannels[0], inFrames, inFrameCount * inBytesPerSample);
        return;
    }
    const DeinterleaveJob job = {reinterpret_cast<const std::uint8_t*>(inFrames), inChannels,
                                 inBytesPerSample, inFrameCount, outChannels};
    for (std::size_t frame = VECTOR_CHOOSE(SplitWidth)(job); frame < inFrameCount; ++frame)
        for (std::size_t channel = 0; channel < inChannels; ++channel)
            std::memcpy(job.Out(frame, channel), job.Sample(frame, channel), inBytesPerSample);
}

}  // namespace appleaudiotoolbox
#endif
