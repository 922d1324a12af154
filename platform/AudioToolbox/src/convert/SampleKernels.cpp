// The vector forms of the kernels, compiled once for each instruction set.
//
// Between load and store a sample is, by the two words: a 32-bit integer with its value in the
// upper bits (integers only), a float 32, or a float 64 where either side is one. A step takes as
// many samples as 32 bytes hold of the widest form; the rest goes through padded copies of the
// same step, so every sample sees the same arithmetic.
#include "convert/SampleKernels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

// The fallback for processors without SSE4. The compiler bug that switches it off by default
// concerns multiplications for the high half, which do not occur here.
#define HWY_BROKEN_EMU128 0
// With steps of 32 bytes at the most, wider vectors bring nothing.
#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/SampleKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "convert/VectorSamples-inl.h"

#ifndef AUDIOTOOLBOX_CONVERT_SAMPLEWORDS
#define AUDIOTOOLBOX_CONVERT_SAMPLEWORDS
namespace audiotoolbox
{

// A word and its byte order as one number, the index of kernel tables.
constexpr std::size_t kWordCount = 11;

constexpr SampleWord WordOfIndex(std::size_t inIndex)
{
    return static_cast<SampleWord>((inIndex + 1) / 2);
}

constexpr bool IsBigOfIndex(std::size_t inIndex)
{
    return inIndex != 0 && inIndex % 2 == 0;
}

constexpr std::size_t BytesOfWord(SampleWord inWord)
{
    constexpr std::size_t kBytes[] = {1, 2, 3, 4, 4, 8};
    return kBytes[static_cast<std::size_t>(inWord)];
}

}  // namespace audiotoolbox
#endif

HWY_BEFORE_NAMESPACE();
namespace audiotoolbox::HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

// From an index of words to an index of words; one step, and the loop around it.
template <std::size_t kFrom, std::size_t kTo>
struct Kernel
{
    static constexpr SampleWord kIn = WordOfIndex(kFrom);
    static constexpr SampleWord kOut = WordOfIndex(kTo);
    static constexpr bool kInBig = IsBigOfIndex(kFrom);
    static constexpr bool kOutBig = IsBigOfIndex(kTo);
    static constexpr bool kIsDouble = kIn == SampleWord::Float64 || kOut == SampleWord::Float64;
    static constexpr bool kInFloat = kIn >= SampleWord::Float32;
    static constexpr bool kOutFloat = kOut >= SampleWord::Float32;

    using Ints = std::conditional_t<kIsDouble, hn::Rebind<int32_t, DoubleSteps>, FloatSteps>;
    using Floats = hn::Rebind<float, Ints>;
    static constexpr std::size_t kStep = hn::MaxLanes(Ints());
    static constexpr std::size_t kSlack =
        kIn == SampleWord::Int24 || kOut == SampleWord::Int24 ? kSlack24 : 0;

    static HWY_INLINE hn::Vec<Ints> LoadInteger(const UInt8* inBytes, const KernelNumbers& inN)
    {
        const Ints ints;
        const auto left = hn::ShiftLeftSame(LoadLeft<kIn, kInBig>(ints, inBytes), inN.mInShift);
        return hn::Xor(left, hn::Set(ints, static_cast<int32_t>(inN.mInFlip)));
    }

    // inValues: right-justified at the destination's depth.
    static HWY_INLINE void StoreInteger(hn::Vec<Ints> inValues, UInt8* outBytes,
                                        const KernelNumbers& inN)
    {
        const Ints ints;
        const auto flipped = hn::Xor(inValues, hn::Set(ints, static_cast<int32_t>(inN.mOutFlip)));
        const auto word = hn::And(flipped, hn::Set(ints, static_cast<int32_t>(inN.mOutMask)));
        StoreRight<kOut, kOutBig>(ints, hn::ShiftLeftSame(word, inN.mOutLeft), outBytes);
    }

    static HWY_INLINE void IntegerToInteger(const UInt8* inBytes, UInt8* outBytes,
                                            const KernelNumbers& inN)
    {
        const Ints ints;
        const auto room = hn::Set(ints, std::numeric_limits<SInt32>::max() - inN.mRound);
        const auto rounded =
            hn::Add(hn::Min(LoadInteger(inBytes, inN), room), hn::Set(ints, inN.mRound));
        StoreInteger(hn::ShiftRightSame(rounded, inN.mOutRight), outBytes, inN);
    }

    static HWY_INLINE hn::Vec<Ints> Rounded(hn::Vec<Floats> inValues, const KernelNumbers& inN)
    {
        const Ints ints;
        const Floats floats;
        const float scale = static_cast<float>(inN.mScale);
        const auto numbers = hn::IfThenElseZero(hn::Eq(inValues, inValues), inValues);
        const auto scaled =
            hn::Max(hn::Mul(numbers, hn::Set(floats, scale)), hn::Set(floats, -scale));
        const auto highest = hn::Set(ints, inN.mHighest);
        const auto isOver = hn::RebindMask(ints, hn::Ge(scaled, hn::Set(floats, scale)));
        return hn::Min(hn::IfThenElse(isOver, highest, hn::NearestInt(scaled)), highest);
    }

    static HWY_INLINE hn::Vec<Ints> Rounded(hn::Vec<DoubleSteps> inValues, const KernelNumbers& inN)
    {
        const DoubleSteps doubles;
        const auto numbers = hn::IfThenElseZero(hn::Eq(inValues, inValues), inValues);
        const auto scaled = hn::Mul(numbers, hn::Set(doubles, inN.mScale));
        const auto bounded = hn::Min(hn::Max(scaled, hn::Set(doubles, -inN.mScale)),
                                     hn::Set(doubles, static_cast<double>(inN.mHighest)));
        return hn::DemoteTo(Ints(), hn::Round(bounded));
    }

    static HWY_INLINE hn::Vec<DoubleSteps> LoadDouble(const UInt8* inBytes,
                                                      const KernelNumbers& inN)
    {
        const DoubleSteps doubles;
        if constexpr (kIn == SampleWord::Float64)
            return LoadLanes<kInBig>(doubles, inBytes);
        else if constexpr (kIn == SampleWord::Float32)
            return hn::PromoteTo(doubles, LoadLanes<kInBig>(Floats(), inBytes));
        else
            return hn::Mul(hn::PromoteTo(doubles, LoadInteger(inBytes, inN)),
                           hn::Set(doubles, 0x1p-31));
    }

    static HWY_INLINE hn::Vec<Floats> LoadFloat(const UInt8* inBytes, const KernelNumbers& inN)
    {
        const Floats floats;
        if constexpr (kIn == SampleWord::Float32)
            return LoadLanes<kInBig>(floats, inBytes);
        else
            return hn::Mul(hn::ConvertTo(floats, LoadInteger(inBytes, inN)),
                           hn::Set(floats, 0x1p-31f));
    }

    static HWY_INLINE void Step(const UInt8* inBytes, UInt8* outBytes, const KernelNumbers& inN)
    {
        if constexpr (!kInFloat && !kOutFloat)
            IntegerToInteger(inBytes, outBytes, inN);
        else if constexpr (kOut == SampleWord::Float64)
            StoreLanes<kOutBig>(DoubleSteps(), LoadDouble(inBytes, inN), outBytes);
        else if constexpr (kIsDouble && kOut == SampleWord::Float32)
            StoreLanes<kOutBig>(Floats(), NarrowDoubles(Floats(), LoadDouble(inBytes, inN)),
                                outBytes);
        else if constexpr (kIsDouble)
            StoreInteger(Rounded(LoadDouble(inBytes, inN), inN), outBytes, inN);
        else if constexpr (kOut == SampleWord::Float32)
            StoreLanes<kOutBig>(Floats(), LoadFloat(inBytes, inN), outBytes);
        else
            StoreInteger(Rounded(LoadFloat(inBytes, inN), inN), outBytes, inN);
    }

    static void Run(const UInt8* inSamples, UInt8* outSamples, std::size_t inCount,
                    const KernelNumbers& inN)
    {
        constexpr std::size_t kInBytes = BytesOfWord(kIn);
        constexpr std::size_t kOutBytes = BytesOfWord(kOut);
        const KernelNumbers numbers = inN;  // a copy that the stores cannot alias
        std::size_t done = 0;
        for (; inCount - done >= kStep + kSlack; done += kStep)
            Step(inSamples + done * kInBytes, outSamples + done * kOutBytes, numbers);
        if (done == inCount)
            return;

        constexpr std::size_t kPadded = 3 * kStep + 2 * kSlack24;
        const std::size_t rest = inCount - done;
        UInt8 from[kPadded * kInBytes] = {};
        UInt8 to[kPadded * kOutBytes];
        std::memcpy(from, inSamples + done * kInBytes, rest * kInBytes);
        for (std::size_t i = 0; i < rest; i += kStep)
            Step(from + i * kInBytes, to + i * kOutBytes, numbers);
        std::memcpy(outSamples + done * kOutBytes, to, rest * kOutBytes);
    }
};

template <std::size_t... kPairs>
constexpr std::array<KernelFunction, sizeof...(kPairs)> MakeKernels(std::index_sequence<kPairs...>)
{
    return {&Kernel<kPairs / kWordCount, kPairs % kWordCount>::Run...};
}

constexpr auto kKernels = MakeKernels(std::make_index_sequence<kWordCount * kWordCount>());

KernelFunction FindKernel(std::size_t inFrom, std::size_t inTo)
{
    return kKernels[inFrom * kWordCount + inTo];
}

// Byte order alone: the same bits, reversed within each word.
template <std::size_t kBytes>
void SwapBytes(const UInt8* inSamples, UInt8* outSamples, std::size_t inCount, const KernelNumbers&)
{
    const hn::CappedTag<uint8_t, 32> bytes;
    constexpr const UInt8* kTable = kBytes == 2 ? kSwap16 : kBytes == 4 ? kSwap32 : kSwap64;
    const auto table = hn::LoadDup128(bytes, kTable);
    const std::size_t step = hn::Lanes(bytes);
    const std::size_t byteCount = inCount * kBytes;
    std::size_t done = 0;
    for (; byteCount - done >= step; done += step)
        hn::StoreU(hn::TableLookupBytes(hn::LoadU(bytes, inSamples + done), table), bytes,
                   outSamples + done);
    for (; done < byteCount; done += kBytes)
        std::reverse_copy(inSamples + done, inSamples + done + kBytes, outSamples + done);
}

// Five words in 16 bytes; the byte behind them is written again by the next step.
template <>
void SwapBytes<3>(const UInt8* inSamples, UInt8* outSamples, std::size_t inCount,
                  const KernelNumbers&)
{
    const hn::FixedTag<uint8_t, 16> bytes;
    const auto table = hn::Load(bytes, kSwap24);
    const std::size_t byteCount = inCount * 3;
    std::size_t done = 0;
    for (; byteCount - done >= 16; done += 15)
        hn::StoreU(hn::TableLookupBytes(hn::LoadU(bytes, inSamples + done), table), bytes,
                   outSamples + done);
    for (; done < byteCount; done += 3)
        std::reverse_copy(inSamples + done, inSamples + done + 3, outSamples + done);
}

KernelFunction FindSwap(std::size_t inBytes)
{
    switch (inBytes)
    {
        case 2:
            return &SwapBytes<2>;
        case 3:
            return &SwapBytes<3>;
        case 4:
            return &SwapBytes<4>;
        default:
            return &SwapBytes<8>;
    }
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
void Copy(const UInt8* inSamples, UInt8* outSamples, std::size_t inCount, const KernelNumbers&)
{
    if (inCount > 0)
        std::memcpy(outSamples, inSamples, inCount * kBytes);
}

KernelFunction FindCopy(SampleWord inWord)
{
    constexpr KernelFunction kCopies[] = {&Copy<1>, &Copy<2>, &Copy<3>,
                                          &Copy<4>, &Copy<4>, &Copy<8>};
    return kCopies[static_cast<std::size_t>(inWord)];
}

std::size_t IndexOf(const SampleLayout& inLayout)
{
    const std::size_t word = static_cast<std::size_t>(inLayout.mWord);
    return word == 0 ? 0 : word * 2 - (inLayout.mIsBigEndian ? 0 : 1);
}

// The numbers of the source: what brings its value to the upper end of 32 bits, as signed.
void TellSource(const SampleLayout& inFrom, KernelNumbers& outNumbers)
{
    const UInt32 wordBits = WordBytes(inFrom.mWord) * 8;
    if (IsFloat(inFrom.mWord))
        return;
    outNumbers.mInShift = inFrom.mIsLow ? static_cast<int>(wordBits - inFrom.mBits) : 0;
    outNumbers.mInFlip = inFrom.mIsUnsigned ? 0x80000000u : 0;
}

// The numbers of the destination: its depth, and where in its word the value goes.
void TellDestination(const SampleLayout& inTo, UInt32 inSourceBits, KernelNumbers& outNumbers)
{
    if (IsFloat(inTo.mWord))
        return;
    const UInt32 wordBits = WordBytes(inTo.mWord) * 8;
    outNumbers.mOutRight = static_cast<int>(32 - inTo.mBits);
    outNumbers.mOutLeft = inTo.mIsLow ? 0 : static_cast<int>(wordBits - inTo.mBits);
    outNumbers.mOutFlip = inTo.mIsUnsigned ? 1u << (inTo.mBits - 1) : 0;
    outNumbers.mOutMask = inTo.mIsUnsigned ? (1u << inTo.mBits) - 1 : ~UInt32{0};
    outNumbers.mRound = inSourceBits > inTo.mBits ? 1 << (31 - inTo.mBits) : 0;
    outNumbers.mScale = std::ldexp(1.0, static_cast<int>(inTo.mBits) - 1);
    outNumbers.mHighest = static_cast<SInt32>((1u << (inTo.mBits - 1)) - 1);
}

bool IsOnlyByteOrder(SampleLayout inFrom, const SampleLayout& inTo)
{
    inFrom.mIsBigEndian = inTo.mIsBigEndian;
    return inFrom == inTo;
}

}  // namespace

SampleKernel::SampleKernel(const SampleLayout& inFrom, const SampleLayout& inTo)
{
    if (inFrom == inTo)
        mFunction = FindCopy(inFrom.mWord);
    else if (IsOnlyByteOrder(inFrom, inTo))
        mFunction = VECTOR_CHOOSE(FindSwap)(WordBytes(inFrom.mWord));
    else
        mFunction = VECTOR_CHOOSE(FindKernel)(IndexOf(inFrom), IndexOf(inTo));
    TellSource(inFrom, mNumbers);
    TellDestination(inTo, inFrom.mBits, mNumbers);
}

}  // namespace audiotoolbox
#endif
