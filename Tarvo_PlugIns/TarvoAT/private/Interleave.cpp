// Samples of a few channels are taken for a few frames at once and transposed in registers: each
// row of a square starts as one channel and ends as one frame. Whole chunks of frames go that way,
// in tiles that stay in the first-level cache while one group of channels after the other is put
// into them; what is left at the end goes sample by sample.
//
// Stores of the last group of channels are as wide as a block and may reach into the frames behind
// their own. So that group goes first in each tile, and frames go in ascending order: whatever a
// store has spoiled is written afterwards.
#include "Tarvo_PlugIns/TarvoAT/private/Interleave.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

// Nothing here is wider than 32 bytes, so targets with wider vectors would only repeat the code.
#define HWY_DISABLED_TARGETS (HWY_AVX3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Tarvo_PlugIns/TarvoAT/private/Interleave.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
#include <VectorBlocks-inl.h>

#ifndef TARVO_PLUGINS_TARVOAT_PRIVATE_INTERLEAVE_ONCE
#define TARVO_PLUGINS_TARVOAT_PRIVATE_INTERLEAVE_ONCE
namespace tarvo
{

struct InterleaveJob
{
    const char* const* mIn;
    std::size_t mChannels;
    std::size_t mSampleBytes;
    std::size_t mFrameCount;
    std::uint8_t* mFrames;

    const std::uint8_t* In(std::size_t inFrame, std::size_t inChannel) const
    {
        return reinterpret_cast<const std::uint8_t*>(mIn[inChannel]) + inFrame * mSampleBytes;
    }
    std::uint8_t* Sample(std::size_t inFrame, std::size_t inChannel) const
    {
        return mFrames + (inFrame * mChannels + inChannel) * mSampleBytes;
    }
};

}  // namespace tarvo
#endif

HWY_BEFORE_NAMESPACE();
namespace tarvo
{
namespace HWY_NAMESPACE
{

#if HWY_TARGET == HWY_SCALAR

// Without vectors the loop over samples does everything.
std::size_t JoinWidth(const InterleaveJob&)
{
    return 0;
}

#else

namespace hn = hwy::HWY_NAMESPACE;
using vectorblocks::HWY_NAMESPACE::ByteTag;
using vectorblocks::HWY_NAMESPACE::kBlockBytes;
using vectorblocks::HWY_NAMESPACE::kBlocks;
using vectorblocks::HWY_NAMESPACE::kChunkFrames;
using vectorblocks::HWY_NAMESPACE::LastGroup;
using vectorblocks::HWY_NAMESPACE::LoadBlocks;
using vectorblocks::HWY_NAMESPACE::Positions;
using vectorblocks::HWY_NAMESPACE::SafeFrames;
using vectorblocks::HWY_NAMESPACE::StoreBlock;
using vectorblocks::HWY_NAMESPACE::TileFrames;
using vectorblocks::HWY_NAMESPACE::Transpose;
using vectorblocks::HWY_NAMESPACE::Vector;

// The first 12 bytes of each block, and nothing behind them.
template <std::size_t kBlock>
HWY_INLINE void StoreTwelve(Vector inBlocks, std::uint8_t* outBytes)
{
    alignas(16) std::uint8_t block[kBlockBytes];
    StoreBlock<kBlock>(inBlocks, block);
    std::memcpy(outBytes, block, 12);
}

// Samples of 1, 2 and 4 bytes: as many channels at once as fit a block.
template <typename Lane>
struct WholeLanes
{
    static constexpr std::size_t kGroup = kBlockBytes / sizeof(Lane);
    static constexpr std::size_t kStep = kBlocks * kGroup;  // frames
    static constexpr std::size_t kSpareFrames = 0;

    static HWY_INLINE void Join(const InterleaveJob& inJob, std::size_t inChannel,
                                std::size_t inChannels, std::size_t inFrame)
    {
        Vector rows[kGroup];
        HWY_UNROLL(16)
        for (std::size_t row = 0; row < kGroup; ++row)
            rows[row] = row < inChannels ? hn::LoadU(ByteTag(), inJob.In(inFrame, inChannel + row))
                                         : hn::Zero(ByteTag());
        Transpose<Lane>(rows);
        HWY_UNROLL(16)
        for (std::size_t row = 0; row < kGroup; ++row)
            StoreBlock<0>(rows[row], inJob.Sample(inFrame + row, inChannel));
        if constexpr (kBlocks == 2)
        {
            HWY_UNROLL(16)
            for (std::size_t row = 0; row < kGroup; ++row)
                StoreBlock<1>(rows[row], inJob.Sample(inFrame + kGroup + row, inChannel));
        }
    }
};

// Samples of 3 bytes: 4 channels at once, in lanes of 4 bytes on the way.
struct Triples
{
    static constexpr std::size_t kGroup = 4;
    static constexpr std::size_t kStep = kBlocks * 4;
    static constexpr std::size_t kSpareFrames = 2;  // for the bytes that a load reads too many

    static HWY_INLINE void Join(const InterleaveJob& inJob, std::size_t inChannel,
                                std::size_t inChannels, std::size_t inFrame)
    {
        alignas(16) static constexpr std::uint8_t kLanes[] = {0, 1, 2, 0, 3, 4,  5,  0,
                                                              6, 7, 8, 0, 9, 10, 11, 0};
        alignas(16) static constexpr std::uint8_t kPacked[] = {0,  1,  2,  4,  5, 6, 8, 9,
                                                               10, 12, 13, 14, 0, 0, 0, 0};
        Vector rows[4];
        HWY_UNROLL(4)
        for (std::size_t row = 0; row < 4; ++row)
        {
            // A row that is not wanted repeats the last one.
            const std::size_t channel = inChannel + std::min(row, inChannels - 1);
            rows[row] =
                hn::TableLookupBytes(LoadBlocks(inJob.In(inFrame, channel),
                                                inJob.In(inFrame + (kBlocks - 1) * 4, channel)),
                                     Positions(kLanes));
        }
        Transpose<std::uint32_t>(rows);
        HWY_UNROLL(4)
        for (std::size_t row = 0; row < 4; ++row)
            rows[row] = hn::TableLookupBytes(rows[row], Positions(kPacked));
        // Only the last group may spoil what is behind it.
        if (inChannels == kGroup)
        {
            StoreFrames<StoreTwelve<0>>(rows, inJob, inChannel, inFrame);
            if constexpr (kBlocks == 2)
                StoreFrames<StoreTwelve<1>>(rows, inJob, inChannel, inFrame + 4);
        }
        else
        {
            StoreFrames<StoreBlock<0>>(rows, inJob, inChannel, inFrame);
            if constexpr (kBlocks == 2)
                StoreFrames<StoreBlock<1>>(rows, inJob, inChannel, inFrame + 4);
        }
    }

    template <void (*kStore)(Vector, std::uint8_t*)>
    static HWY_INLINE void StoreFrames(const Vector (&inRows)[4], const InterleaveJob& inJob,
                                       std::size_t inChannel, std::size_t inFrame)
    {
        HWY_UNROLL(4)
        for (std::size_t row = 0; row < 4; ++row)
            kStore(inRows[row], inJob.Sample(inFrame + row, inChannel));
    }
};

// Two channels fill whole vectors with frames.
template <typename Lane>
struct WholeLanePairs
{
    static constexpr std::size_t kGroup = 2;
    static constexpr std::size_t kStep = kBlocks * kBlockBytes / sizeof(Lane);
    static constexpr std::size_t kSpareFrames = 0;

    static HWY_INLINE void Join(const InterleaveJob& inJob, std::size_t, std::size_t,
                                std::size_t inFrame)
    {
        const ByteTag bytes;
        const hn::Repartition<Lane, ByteTag> tag;
        const auto left = hn::BitCast(tag, hn::LoadU(bytes, inJob.In(inFrame, 0)));
        const auto right = hn::BitCast(tag, hn::LoadU(bytes, inJob.In(inFrame, 1)));
        // Zipping stays within blocks: lower has the first frames of each block, upper the rest.
        const Vector lower = hn::BitCast(bytes, hn::InterleaveLower(tag, left, right));
        const Vector upper = hn::BitCast(bytes, hn::InterleaveUpper(tag, left, right));
        std::uint8_t* const frames = inJob.Sample(inFrame, 0);
        StoreBlock<0>(lower, frames);
        StoreBlock<0>(upper, frames + kBlockBytes);
        if constexpr (kBlocks == 2)
        {
            StoreBlock<1>(lower, frames + 2 * kBlockBytes);
            StoreBlock<1>(upper, frames + 3 * kBlockBytes);
        }
    }
};

// The same for samples of 3 bytes, two frames to a store of which the next one covers the end.
struct TriplePairs
{
    static constexpr std::size_t kGroup = 2;
    static constexpr std::size_t kStep = kBlocks * 4;
    static constexpr std::size_t kSpareFrames = 2;

    static HWY_INLINE void Join(const InterleaveJob& inJob, std::size_t, std::size_t,
                                std::size_t inFrame)
    {
        // Left in bytes 0 to 7, right in bytes 8 to 15 of a zipped block.
        alignas(16) static constexpr std::uint8_t kPairs[] = {0, 1,  2,  8,  9, 10, 3, 4,
                                                              5, 11, 12, 13, 0, 0,  0, 0};
        alignas(16) static constexpr std::uint8_t kSpread[] = {0, 1, 2, 3, 4,  5,  0, 0,
                                                               6, 7, 8, 9, 10, 11, 0, 0};
        const hn::Repartition<std::uint64_t, ByteTag> halves;
        const ByteTag bytes;
        const auto load = [&](std::size_t channel) HWY_ATTR
        {
            const Vector samples = LoadBlocks(inJob.In(inFrame, channel),
                                              inJob.In(inFrame + (kBlocks - 1) * 4, channel));
            return hn::BitCast(halves, hn::TableLookupBytes(samples, Positions(kSpread)));
        };
        const auto left = load(0);
        const auto right = load(1);
        const auto zipped = [&](auto frames) HWY_ATTR
        { return hn::TableLookupBytes(hn::BitCast(bytes, frames), Positions(kPairs)); };
        const Vector lower = zipped(hn::InterleaveLower(halves, left, right));
        const Vector upper = zipped(hn::InterleaveUpper(halves, left, right));
        std::uint8_t* const frames = inJob.Sample(inFrame, 0);
        StoreBlock<0>(lower, frames);
        StoreBlock<0>(upper, frames + 12);
        if constexpr (kBlocks == 2)
        {
            StoreBlock<1>(lower, frames + 24);
            StoreBlock<1>(upper, frames + 36);
        }
    }
};

template <typename Kernel>
void JoinTile(const InterleaveJob& inJob, std::size_t inChannel, std::size_t inBegin,
              std::size_t inEnd)
{
    const std::size_t channels = std::min(Kernel::kGroup, inJob.mChannels - inChannel);
    for (std::size_t frame = inBegin; frame < inEnd; frame += Kernel::kStep)
        Kernel::Join(inJob, inChannel, channels, frame);
}

template <typename Kernel>
std::size_t JoinChunks(const InterleaveJob& inJob)
{
    static_assert(kChunkFrames % Kernel::kStep == 0);
    const std::size_t frames = SafeFrames<Kernel>(inJob);
    const std::size_t tileFrames = TileFrames(inJob);
    const std::size_t lastGroup = LastGroup<Kernel>(inJob);
    for (std::size_t tile = 0; tile < frames; tile += tileFrames)
    {
        const std::size_t tileEnd = std::min(frames, tile + tileFrames);
        JoinTile<Kernel>(inJob, lastGroup, tile, tileEnd);
        for (std::size_t channel = 0; channel < lastGroup; channel += Kernel::kGroup)
            JoinTile<Kernel>(inJob, channel, tile, tileEnd);
    }
    return frames;
}

// Answers how many frames it has joined, from the first on.
std::size_t JoinWidth(const InterleaveJob& inJob)
{
    const bool isStereo = inJob.mChannels == 2;
    switch (inJob.mSampleBytes)
    {
        case 1:
            return isStereo ? JoinChunks<WholeLanePairs<std::uint8_t>>(inJob)
                            : JoinChunks<WholeLanes<std::uint8_t>>(inJob);
        case 2:
            return isStereo ? JoinChunks<WholeLanePairs<std::uint16_t>>(inJob)
                            : JoinChunks<WholeLanes<std::uint16_t>>(inJob);
        case 3:
            return isStereo ? JoinChunks<TriplePairs>(inJob) : JoinChunks<Triples>(inJob);
        default:
            return isStereo ? JoinChunks<WholeLanePairs<std::uint32_t>>(inJob)
                            : JoinChunks<WholeLanes<std::uint32_t>>(inJob);
    }
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace tarvo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include <VectorTarget.h>

namespace tarvo
{

namespace
{

// The frames from inFrame on, each sample moved as a whole.
template <std::size_t kSampleBytes>
void JoinRest(const InterleaveJob& inJob, std::size_t inFrame)
{
    for (; inFrame < inJob.mFrameCount; ++inFrame)
        for (std::size_t channel = 0; channel < inJob.mChannels; ++channel)
            std::memcpy(inJob.Sample(inFrame, channel), inJob.In(inFrame, channel), kSampleBytes);
}

constexpr void (*kJoinRest[])(const InterleaveJob&, std::size_t) = {JoinRest<1>, JoinRest<2>,
                                                                    JoinRest<3>, JoinRest<4>};

}  // namespace

void Interleave(const char* const* inChannels, std::size_t inChannelCount,
                std::size_t inBytesPerSample, std::size_t inFrameCount, char* outFrames)
{
    if (inFrameCount == 0 || inChannelCount == 0)
        return;
    if (inChannelCount == 1)
    {
        std::memcpy(outFrames, inChannels[0], inFrameCount * inBytesPerSample);
        return;
    }
    const InterleaveJob job = {inChannels, inChannelCount, inBytesPerSample, inFrameCount,
                               reinterpret_cast<std::uint8_t*>(outFrames)};
    kJoinRest[inBytesPerSample - 1](job, VECTOR_CHOOSE(JoinWidth)(job));
}

}  // namespace tarvo
#endif
