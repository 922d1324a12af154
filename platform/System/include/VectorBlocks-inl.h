// VectorBlocks: what splitting and joining the channels of frames have in common.
//
// A vector is one or two blocks of 16 bytes, and everything but loading and storing stays within
// blocks. Where all channels are at hand, squares of samples are turned in registers, whole chunks
// of frames at a time, in tiles that stay in the first-level cache while one group of channels
// after the other takes its turn. Compiled once for each target, as Highway's own headers are; a
// file that includes it leaves out the targets with wider vectors, which would only repeat the
// code.

#include <hwy/highway.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

// Toggles with each target.
#if defined(SYSTEM_VECTORBLOCKS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SYSTEM_VECTORBLOCKS_INL_H
#undef SYSTEM_VECTORBLOCKS_INL_H
#else
#define SYSTEM_VECTORBLOCKS_INL_H
#endif

HWY_BEFORE_NAMESPACE();
namespace vectorblocks
{
namespace HWY_NAMESPACE
{

#if HWY_TARGET != HWY_SCALAR

namespace hn = hwy::HWY_NAMESPACE;

constexpr std::size_t kBlockBytes = 16;

using ByteTag = hn::CappedTag<std::uint8_t, 2 * kBlockBytes>;
using Vector = hn::Vec<ByteTag>;
constexpr std::size_t kBlocks = hn::MaxLanes(ByteTag()) / kBlockBytes;
static_assert(kBlocks == 1 || kBlocks == 2);

// One block from each address; the second counts only where vectors have two.
HWY_INLINE Vector LoadBlocks(const std::uint8_t* inFirst, const std::uint8_t* inSecond)
{
    const ByteTag tag;
    if constexpr (kBlocks == 1)
        return hn::LoadU(tag, inFirst);
    else
    {
        const hn::Half<ByteTag> half;
        return hn::Combine(tag, hn::LoadU(half, inSecond), hn::LoadU(half, inFirst));
    }
}

// The same byte positions in both blocks.
HWY_INLINE Vector Positions(const std::uint8_t (&inPositions)[kBlockBytes])
{
    return LoadBlocks(inPositions, inPositions);
}

template <std::size_t kBlock>
HWY_INLINE void StoreBlock(Vector inBlocks, std::uint8_t* outBytes)
{
    if constexpr (kBlocks == 1)
        hn::StoreU(inBlocks, ByteTag(), outBytes);
    else
    {
        const hn::Half<ByteTag> half;
        if constexpr (kBlock == 0)
            hn::StoreU(hn::LowerHalf(half, inBlocks), half, outBytes);
        else
            hn::StoreU(hn::UpperHalf(half, inBlocks), half, outBytes);
    }
}

// Turns rows into columns, in each block for itself: zipping the two halves of the rows as often as
// a row number has bits is a transposition.
template <typename Lane, std::size_t kRows>
HWY_INLINE void Transpose(Vector (&ioRows)[kRows])
{
    const hn::Repartition<Lane, ByteTag> tag;
    const ByteTag bytes;
    HWY_UNROLL(4)
    for (std::size_t stage = 1; stage < kRows; stage *= 2)
    {
        Vector next[kRows];
        HWY_UNROLL(8)
        for (std::size_t row = 0; row < kRows / 2; ++row)
        {
            const auto upper = hn::BitCast(tag, ioRows[row]);
            const auto lower = hn::BitCast(tag, ioRows[row + kRows / 2]);
            next[2 * row] = hn::BitCast(bytes, hn::InterleaveLower(tag, upper, lower));
            next[2 * row + 1] = hn::BitCast(bytes, hn::InterleaveUpper(tag, upper, lower));
        }
        HWY_UNROLL(16)
        for (std::size_t row = 0; row < kRows; ++row)
            ioRows[row] = next[row];
    }
}

// Every kernel takes a number of frames at once that divides this one.
constexpr std::size_t kChunkFrames = 32;

// The first channel of the last group.
template <typename Kernel, typename Job>
std::size_t LastGroup(const Job& inJob)
{
    return (inJob.mChannels - 1) / Kernel::kGroup * Kernel::kGroup;
}

// Frames, in whole chunks, whose loads and stores stay within the buffers: blocks reach beyond the
// end of a narrow frame, and by Kernel::kSpareFrames beyond the frames of one channel.
template <typename Kernel, typename Job>
std::size_t SafeFrames(const Job& inJob)
{
    const std::size_t frameBytes = inJob.mChannels * inJob.mSampleBytes;
    const std::size_t reach = LastGroup<Kernel>(inJob) * inJob.mSampleBytes + kBlockBytes;
    const std::size_t allBytes = inJob.mFrameCount * frameBytes;
    if (allBytes < reach || inJob.mFrameCount < Kernel::kSpareFrames)
        return 0;
    const std::size_t frames =
        std::min((allBytes - reach) / frameBytes + 1, inJob.mFrameCount - Kernel::kSpareFrames);
    return frames / kChunkFrames * kChunkFrames;
}

// At least one chunk.
template <typename Job>
std::size_t TileFrames(const Job& inJob)
{
    constexpr std::size_t kTileBytes = 16384;
    const std::size_t chunks = kTileBytes / (inJob.mChannels * inJob.mSampleBytes * kChunkFrames);
    return std::max<std::size_t>(chunks, 1) * kChunkFrames;
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace vectorblocks
HWY_AFTER_NAMESPACE();

#endif
