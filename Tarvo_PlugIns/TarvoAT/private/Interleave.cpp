// A channel is put into its frames before the next one is known, so there is nothing to transpose:
// one channel is a plain copy, and many channels are a loop with a stride, which is bound by the
// caches. Between the two, stereo frames are made in whole vectors: the first channel is spread
// with zeros between its samples, and the second one is merged into them.
#include "Tarvo_PlugIns/TarvoAT/private/Interleave.h"

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

// Channel 0 or 1 of stereo frames.
struct StereoJob
{
    const std::uint8_t* mSamples;
    std::uint8_t* mFrames;
    std::size_t mFrameCount;
    std::size_t mSampleBytes;
    bool mIsSecond;
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
std::size_t SpreadWidth(const StereoJob&)
{
    return 0;
}

#else

namespace hn = hwy::HWY_NAMESPACE;
using vectorblocks::HWY_NAMESPACE::ByteTag;
using vectorblocks::HWY_NAMESPACE::kBlockBytes;
using vectorblocks::HWY_NAMESPACE::kBlocks;
using vectorblocks::HWY_NAMESPACE::LoadBlocks;
using vectorblocks::HWY_NAMESPACE::Positions;
using vectorblocks::HWY_NAMESPACE::StoreBlock;
using vectorblocks::HWY_NAMESPACE::Vector;

// Samples of 1, 2 and 4 bytes: a frame is a number of twice the width.
template <typename Sample, typename Frame>
struct WholeFrames
{
    static constexpr std::size_t kStep = kBlocks * kBlockBytes / sizeof(Frame);

    template <bool kIsSecond>
    static HWY_INLINE void Spread(const std::uint8_t* inSamples, std::uint8_t* ioFrames)
    {
        const ByteTag bytes;
        const hn::Half<ByteTag> half;
        const hn::Repartition<Frame, ByteTag> frames;
        const hn::Repartition<Sample, hn::Half<ByteTag>> samples;
        const auto spread = hn::PromoteTo(frames, hn::BitCast(samples, hn::LoadU(half, inSamples)));
        // The first channel stands in the lower bytes.
        if constexpr (kIsSecond)
        {
            const auto shifted = hn::ShiftLeft<8 * sizeof(Sample)>(spread);
            const Vector both = hn::Or(hn::LoadU(bytes, ioFrames), hn::BitCast(bytes, shifted));
            hn::StoreU(both, bytes, ioFrames);
        }
        else
            hn::StoreU(hn::BitCast(bytes, spread), bytes, ioFrames);
    }
};

// Samples of 3 bytes: 8 of them fill 3 blocks with frames.
struct TripleFrames
{
    static constexpr std::size_t kSamples = 8;
    static constexpr std::size_t kStep = kBlocks * kSamples;

    // Which of the bytes behind SourceOffset goes to each byte of a block.
    struct Places
    {
        alignas(kBlockBytes) std::uint8_t mBytes[kBlockBytes];
    };

    // A block needs at most 10 bytes; so no load reaches beyond the samples.
    static constexpr std::size_t SourceOffset(std::size_t inBlock) { return inBlock * 4; }

    static constexpr Places PlacesOf(std::size_t inChannel, std::size_t inBlock)
    {
        constexpr std::uint8_t kZero = 0x80;
        Places places = {};
        for (std::size_t index = 0; index < kBlockBytes; ++index)
        {
            const std::size_t frame = (inBlock * kBlockBytes + index) / 6;
            const std::size_t byte = (inBlock * kBlockBytes + index) % 6;
            places.mBytes[index] =
                byte / 3 == inChannel
                    ? static_cast<std::uint8_t>(frame * 3 + byte % 3 - SourceOffset(inBlock))
                    : kZero;
        }
        return places;
    }

    template <bool kIsSecond>
    static HWY_INLINE void Spread(const std::uint8_t* inSamples, std::uint8_t* ioFrames)
    {
        SpreadBlock<kIsSecond, 0>(inSamples, ioFrames);
        SpreadBlock<kIsSecond, 1>(inSamples, ioFrames);
        SpreadBlock<kIsSecond, 2>(inSamples, ioFrames);
    }

    template <bool kIsSecond, std::size_t kBlock>
    static HWY_INLINE void SpreadBlock(const std::uint8_t* inSamples, std::uint8_t* ioFrames)
    {
        static constexpr Places kPlaces = PlacesOf(kIsSecond, kBlock);
        const std::uint8_t* const samples = inSamples + SourceOffset(kBlock);
        std::uint8_t* const first = ioFrames + kBlock * kBlockBytes;
        std::uint8_t* const second = first + (kBlocks - 1) * 3 * kBlockBytes;
        Vector frames = hn::TableLookupBytesOr0(
            LoadBlocks(samples, samples + (kBlocks - 1) * 3 * kSamples), Positions(kPlaces.mBytes));
        if constexpr (kIsSecond)
            frames = hn::Or(frames, LoadBlocks(first, second));
        StoreBlock<0>(frames, first);
        if constexpr (kBlocks == 2)
            StoreBlock<1>(frames, second);
    }
};

template <typename Kernel, bool kIsSecond>
std::size_t SpreadChannel(const StereoJob& inJob)
{
    const std::size_t end = inJob.mFrameCount / Kernel::kStep * Kernel::kStep;
    for (std::size_t frame = 0; frame < end; frame += Kernel::kStep)
        Kernel::template Spread<kIsSecond>(inJob.mSamples + frame * inJob.mSampleBytes,
                                           inJob.mFrames + frame * 2 * inJob.mSampleBytes);
    return end;
}

template <typename Kernel>
std::size_t SpreadChannel(const StereoJob& inJob)
{
    return inJob.mIsSecond ? SpreadChannel<Kernel, true>(inJob)
                           : SpreadChannel<Kernel, false>(inJob);
}

// Answers how many frames are done, from the first on.
std::size_t SpreadWidth(const StereoJob& inJob)
{
    switch (inJob.mSampleBytes)
    {
        case 1:
            return SpreadChannel<WholeFrames<std::uint8_t, std::uint16_t>>(inJob);
        case 2:
            return SpreadChannel<WholeFrames<std::uint16_t, std::uint32_t>>(inJob);
        case 3:
            return SpreadChannel<TripleFrames>(inJob);
        default:
            return SpreadChannel<WholeFrames<std::uint32_t, std::uint64_t>>(inJob);
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
void PlaceSamples(std::size_t inChannel, const char* inSamples, const InterleavedFrames& outFrames,
                  std::size_t inFrame)
{
    const std::size_t frameBytes = outFrames.mChannelCount * kSampleBytes;
    char* place = outFrames.mBytes + inFrame * frameBytes + inChannel * kSampleBytes;
    const char* const end = inSamples + outFrames.mFrameCount * kSampleBytes;
    for (const char* sample = inSamples + inFrame * kSampleBytes; sample != end;
         sample += kSampleBytes, place += frameBytes)
        std::memcpy(place, sample, kSampleBytes);
}

constexpr void (*kPlaceSamples[])(std::size_t, const char*, const InterleavedFrames&,
                                  std::size_t) = {PlaceSamples<1>, PlaceSamples<2>, PlaceSamples<3>,
                                                  PlaceSamples<4>};

std::size_t SpreadStereo(std::size_t inChannel, const char* inSamples,
                         const InterleavedFrames& outFrames)
{
    const StereoJob job = {reinterpret_cast<const std::uint8_t*>(inSamples),
                           reinterpret_cast<std::uint8_t*>(outFrames.mBytes), outFrames.mFrameCount,
                           outFrames.mBytesPerSample, inChannel == 1};
    return VECTOR_CHOOSE(SpreadWidth)(job);
}

}  // namespace

void InterleaveChannel(std::size_t inChannel, const char* inSamples,
                       const InterleavedFrames& outFrames)
{
    if (outFrames.mFrameCount == 0)
        return;
    if (outFrames.mChannelCount == 1)
    {
        std::memcpy(outFrames.mBytes, inSamples, outFrames.mFrameCount * outFrames.mBytesPerSample);
        return;
    }
    const std::size_t done =
        outFrames.mChannelCount == 2 ? SpreadStereo(inChannel, inSamples, outFrames) : 0;
    kPlaceSamples[outFrames.mBytesPerSample - 1](inChannel, inSamples, outFrames, done);
}

}  // namespace tarvo
#endif
