#include "convert/PlaneKernels.h"

#include <cstring>

// The compiler bug that switches the fallback off concerns multiplications for the high half, which
// do not occur here; and vectors have 32 bytes at the most, so wider targets would bring nothing.
#define HWY_BROKEN_EMU128 0
#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/PlaneKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace audiotoolbox::HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::CappedTag<float, 8>;
using Ints = hn::Rebind<int32_t, Floats>;

HWY_INLINE hn::Vec<Floats> LoadFloats(const float* inSamples)
{
    return hn::LoadU(Floats(), inSamples);
}

HWY_INLINE hn::Vec<Floats> LoadFloats(const int16_t* inSamples)
{
    const auto loaded = hn::LoadU(hn::Rebind<int16_t, Floats>(), inSamples);
    return hn::Mul(hn::ConvertTo(Floats(), hn::PromoteTo(Ints(), loaded)),
                   hn::Set(Floats(), 0x1p-15f));
}

HWY_INLINE hn::Vec<Floats> LoadFloats(const int32_t* inSamples)
{
    return hn::Mul(hn::ConvertTo(Floats(), hn::LoadU(Ints(), inSamples)),
                   hn::Set(Floats(), 0x1p-31f));
}

HWY_INLINE float ToFloat(float inSample)
{
    return inSample;
}

HWY_INLINE float ToFloat(int16_t inSample)
{
    return static_cast<float>(inSample) * 0x1p-15f;
}

HWY_INLINE float ToFloat(int32_t inSample)
{
    return static_cast<float>(inSample) * 0x1p-31f;
}

template <typename Sample>
void Mono(const Sample* inPlane, std::size_t inCount, float* outFrames)
{
    std::size_t i = 0;
    for (; i + hn::Lanes(Floats()) <= inCount; i += hn::Lanes(Floats()))
        hn::StoreU(LoadFloats(inPlane + i), Floats(), outFrames + i);
    for (; i < inCount; ++i)
        outFrames[i] = ToFloat(inPlane[i]);
}

template <typename Sample>
void Stereo(const Sample* inLeft, const Sample* inRight, std::size_t inCount, float* outFrames)
{
    std::size_t i = 0;
    for (; i + hn::Lanes(Floats()) <= inCount; i += hn::Lanes(Floats()))
        hn::StoreInterleaved2(LoadFloats(inLeft + i), LoadFloats(inRight + i), Floats(),
                              outFrames + 2 * i);
    for (; i < inCount; ++i)
    {
        outFrames[2 * i] = ToFloat(inLeft[i]);
        outFrames[2 * i + 1] = ToFloat(inRight[i]);
    }
}

template <typename Sample>
void Many(const Sample* const* inPlanes, UInt32 inChannels, std::size_t inCount, float* outFrames)
{
    for (std::size_t i = 0; i < inCount; ++i)
        for (UInt32 channel = 0; channel < inChannels; ++channel)
            *outFrames++ = ToFloat(inPlanes[channel][i]);
}

template <typename Sample>
void Interleave(const UInt8* const* inPlanes, UInt32 inChannels, std::size_t inCount,
                float* outFrames)
{
    const Sample* planes[kMaxChannels];
    for (UInt32 channel = 0; channel < inChannels; ++channel)
        planes[channel] = reinterpret_cast<const Sample*>(inPlanes[channel]);
    if (inChannels == 1)
        Mono(planes[0], inCount, outFrames);
    else if (inChannels == 2)
        Stereo(planes[0], planes[1], inCount, outFrames);
    else
        Many(planes, inChannels, inCount, outFrames);
}

void InterleaveFloats(const UInt8* const* inPlanes, SampleWord inWord, UInt32 inChannels,
                      std::size_t inCount, float* outFrames)
{
    if (inWord == SampleWord::Float32)
        Interleave<float>(inPlanes, inChannels, inCount, outFrames);
    else if (inWord == SampleWord::Int16)
        Interleave<int16_t>(inPlanes, inChannels, inCount, outFrames);
    else
        Interleave<int32_t>(inPlanes, inChannels, inCount, outFrames);
}

}  // namespace audiotoolbox::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include <VectorTarget.h>

namespace audiotoolbox
{

namespace
{

template <std::size_t kBytes>
void Gather(const UInt8* const* inPlanes, UInt32 inChannels, std::size_t inFrames, UInt8* outFrames)
{
    for (std::size_t i = 0; i < inFrames; ++i)
        for (UInt32 channel = 0; channel < inChannels; ++channel, outFrames += kBytes)
            std::memcpy(outFrames, inPlanes[channel] + i * kBytes, kBytes);
}

template <std::size_t kBytes>
void Scatter(const UInt8* inFrames, UInt32 inChannels, std::size_t inFrameCount,
             UInt8* const* outPlanes)
{
    for (std::size_t i = 0; i < inFrameCount; ++i)
        for (UInt32 channel = 0; channel < inChannels; ++channel, inFrames += kBytes)
            std::memcpy(outPlanes[channel] + i * kBytes, inFrames, kBytes);
}

}  // namespace

bool CanInterleaveToFloat(const SampleLayout& inPlanes)
{
    const bool isNative = !inPlanes.mIsBigEndian && !inPlanes.mIsUnsigned && !inPlanes.mIsLow;
    return isNative &&
           (inPlanes.mWord == SampleWord::Int16 || inPlanes.mWord == SampleWord::Int32 ||
            inPlanes.mWord == SampleWord::Float32);
}

void InterleaveToFloat(const UInt8* const* inPlanes, SampleWord inWord, UInt32 inChannelCount,
                       std::size_t inFrameCount, Float32* outFrames)
{
    VECTOR_CHOOSE(InterleaveFloats)
    (inPlanes, inWord, inChannelCount, inFrameCount, outFrames);
}

void InterleaveWords(const UInt8* const* inPlanes, UInt32 inWordBytes, UInt32 inChannelCount,
                     std::size_t inFrameCount, UInt8* outFrames)
{
    using Function = void (*)(const UInt8* const*, UInt32, std::size_t, UInt8*);
    constexpr Function kFunctions[] = {nullptr, &Gather<1>, &Gather<2>, &Gather<3>, &Gather<4>,
                                       nullptr, nullptr,    nullptr,    &Gather<8>};
    kFunctions[inWordBytes](inPlanes, inChannelCount, inFrameCount, outFrames);
}

void DeinterleaveWords(const UInt8* inFrames, UInt32 inWordBytes, UInt32 inChannelCount,
                       std::size_t inFrameCount, UInt8* const* outPlanes)
{
    using Function = void (*)(const UInt8*, UInt32, std::size_t, UInt8* const*);
    constexpr Function kFunctions[] = {nullptr, &Scatter<1>, &Scatter<2>, &Scatter<3>, &Scatter<4>,
                                       nullptr, nullptr,     nullptr,     &Scatter<8>};
    kFunctions[inWordBytes](inFrames, inChannelCount, inFrameCount, outPlanes);
}

}  // namespace audiotoolbox
#endif
