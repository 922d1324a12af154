// VectorSamples: samples of any layout to and from vector lanes.
//
// Compiled once for each instruction set: the guard is of that kind.
#if defined(AUDIOTOOLBOX_CONVERT_VECTORSAMPLES) == defined(HWY_TARGET_TOGGLE)
#ifdef AUDIOTOOLBOX_CONVERT_VECTORSAMPLES
#undef AUDIOTOOLBOX_CONVERT_VECTORSAMPLES
#else
#define AUDIOTOOLBOX_CONVERT_VECTORSAMPLES
#endif

#include "convert/SampleLayout.h"

#include <hwy/highway.h>

#include <algorithm>
#include <iterator>

HWY_BEFORE_NAMESPACE();
namespace audiotoolbox::HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

using FloatSteps = hn::CappedTag<int32_t, 8>;
using DoubleSteps = hn::CappedTag<double, 4>;

// 16 bytes hold four samples of 24 bits and 4 bytes of the next ones, or fewer samples.
constexpr std::size_t kSlack24 = 4;

alignas(16) constexpr UInt8 kSwap16[16] = {1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 11, 10, 13, 12, 15, 14};
alignas(16) constexpr UInt8 kSwap32[16] = {3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12};
alignas(16) constexpr UInt8 kSwap64[16] = {7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8};
alignas(16) constexpr UInt8 kSwap24[16] = {2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, 14, 13, 12, 15};
// 0x80 puts a zero byte.
alignas(16) constexpr UInt8 kWiden24[2][16] = {
    {0x80, 0, 1, 2, 0x80, 3, 4, 5, 0x80, 6, 7, 8, 0x80, 9, 10, 11},
    {0x80, 2, 1, 0, 0x80, 5, 4, 3, 0x80, 8, 7, 6, 0x80, 11, 10, 9}};
alignas(16) constexpr UInt8 kNarrow24[2][16] = {
    {0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 0x80, 0x80, 0x80, 0x80},
    {2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, 0x80, 0x80, 0x80, 0x80}};

template <bool kBig, class D>
HWY_INLINE hn::Vec<D> LoadLanes(D inLanes, const UInt8* inBytes)
{
    const hn::Repartition<uint8_t, D> bytes;
    auto loaded = hn::LoadU(bytes, inBytes);
    if constexpr (kBig)
    {
        const UInt8* swap = sizeof(hn::TFromD<D>) == 2   ? kSwap16
                            : sizeof(hn::TFromD<D>) == 4 ? kSwap32
                                                         : kSwap64;
        loaded = hn::TableLookupBytes(loaded, hn::LoadDup128(bytes, swap));
    }
    return hn::BitCast(inLanes, loaded);
}

template <bool kBig, class D>
HWY_INLINE void StoreLanes(D inLanes, hn::Vec<D> inValues, UInt8* outBytes)
{
    (void)inLanes;
    const hn::Repartition<uint8_t, D> bytes;
    auto stored = hn::BitCast(bytes, inValues);
    if constexpr (kBig)
    {
        const UInt8* swap = sizeof(hn::TFromD<D>) == 2   ? kSwap16
                            : sizeof(hn::TFromD<D>) == 4 ? kSwap32
                                                         : kSwap64;
        stored = hn::TableLookupBytes(stored, hn::LoadDup128(bytes, swap));
    }
    hn::StoreU(stored, bytes, outBytes);
}

template <bool kBig, class D>
HWY_INLINE hn::Vec<D> LoadLeft24(D inLanes, const UInt8* inBytes)
{
    const hn::FixedTag<uint8_t, 16> block;
    const auto widen = hn::Load(block, kWiden24[kBig]);
    const auto first = hn::TableLookupBytesOr0(hn::LoadU(block, inBytes), widen);
    if constexpr (hn::MaxLanes(D()) == 8)
    {
        const hn::Repartition<uint8_t, D> both;
        const auto second = hn::TableLookupBytesOr0(hn::LoadU(block, inBytes + 12), widen);
        return hn::BitCast(inLanes, hn::Combine(both, second, first));
    }
    else if constexpr (hn::MaxLanes(D()) == 4)
        return hn::BitCast(inLanes, first);
    else
        return hn::BitCast(inLanes, hn::LowerHalf(first));
}

template <bool kBig, class D>
HWY_INLINE void StoreRight24(D, hn::Vec<D> inValues, UInt8* outBytes)
{
    const hn::FixedTag<uint8_t, 16> block;
    const hn::Repartition<uint8_t, D> bytes;
    const auto narrow = hn::Load(block, kNarrow24[kBig]);
    const auto values = hn::BitCast(bytes, inValues);
    if constexpr (hn::MaxLanes(D()) == 8)
    {
        const hn::Half<hn::Repartition<uint8_t, D>> half;
        hn::StoreU(hn::TableLookupBytesOr0(hn::LowerHalf(half, values), narrow), block, outBytes);
        hn::StoreU(hn::TableLookupBytesOr0(hn::UpperHalf(half, values), narrow), block,
                   outBytes + 12);
    }
    else if constexpr (hn::MaxLanes(D()) == 4)
        hn::StoreU(hn::TableLookupBytesOr0(values, narrow), block, outBytes);
    else
        hn::StoreU(hn::TableLookupBytesOr0(hn::ZeroExtendVector(block, values), narrow), block,
                   outBytes);
}

// An integer sample with its word in the upper bits.
template <SampleWord kWord, bool kBig, class D>
HWY_INLINE hn::Vec<D> LoadLeft(D inLanes, const UInt8* inBytes)
{
    const hn::RebindToUnsigned<D> lanes;
    if constexpr (kWord == SampleWord::Int8)
    {
        const auto loaded = LoadLanes<false>(hn::Rebind<uint8_t, D>(), inBytes);
        return hn::BitCast(inLanes, hn::ShiftLeft<24>(hn::PromoteTo(lanes, loaded)));
    }
    else if constexpr (kWord == SampleWord::Int16)
    {
        const auto loaded = LoadLanes<kBig>(hn::Rebind<uint16_t, D>(), inBytes);
        return hn::BitCast(inLanes, hn::ShiftLeft<16>(hn::PromoteTo(lanes, loaded)));
    }
    else if constexpr (kWord == SampleWord::Int24)
        return LoadLeft24<kBig>(inLanes, inBytes);
    else
        return LoadLanes<kBig>(inLanes, inBytes);
}

// The lower bits of each lane as a word. Bits above the word are a copy of its sign bit, or for
// unsigned words zero, so that no narrowing saturates.
template <SampleWord kWord, bool kBig, class D>
HWY_INLINE void StoreRight(D inLanes, hn::Vec<D> inValues, UInt8* outBytes)
{
    if constexpr (kWord == SampleWord::Int8)
    {
        const hn::RebindToUnsigned<D> lanes;
        const auto low = hn::And(hn::BitCast(lanes, inValues), hn::Set(lanes, 0xFFu));
        const hn::Rebind<uint8_t, D> words;
        StoreLanes<false>(words, hn::DemoteTo(words, hn::BitCast(inLanes, low)), outBytes);
    }
    else if constexpr (kWord == SampleWord::Int16)
    {
        const hn::Rebind<int16_t, D> words;
        const auto word = hn::ShiftRight<16>(hn::ShiftLeft<16>(inValues));
        StoreLanes<kBig>(words, hn::DemoteTo(words, word), outBytes);
    }
    else if constexpr (kWord == SampleWord::Int24)
        StoreRight24<kBig>(inLanes, inValues, outBytes);
    else
        StoreLanes<kBig>(inLanes, inValues, outBytes);
}

template <class D>
HWY_INLINE hn::Vec<D> NarrowDoubles(D inFloats, hn::Vec<DoubleSteps> inValues)
{
#if HWY_TARGET == HWY_EMU128
    // Its own narrowing turns infinities into the highest number.
    double values[hn::MaxLanes(D())];
    float narrowed[hn::MaxLanes(D())];
    hn::StoreU(inValues, DoubleSteps(), values);
    std::transform(std::begin(values), std::end(values), narrowed,
                   [](double inValue) { return static_cast<float>(inValue); });
    return hn::LoadU(inFloats, narrowed);
#else
    return hn::DemoteTo(inFloats, inValues);
#endif
}

}  // namespace audiotoolbox::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
