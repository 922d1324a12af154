#include "convert/LogLaw.h"

#include <algorithm>
#include <array>
#include <bit>

namespace audiotoolbox
{

namespace
{

constexpr SInt16 ExpandA(UInt8 inCode)
{
    const UInt32 code = inCode ^ 0x55u;  // even bits go inverted on the line
    const UInt32 segment = (code >> 4) & 7u;
    const SInt32 step = static_cast<SInt32>((code & 0xFu) * 16u + 8u);
    const SInt32 magnitude = segment == 0 ? step : (step + 256) << (segment - 1);
    return static_cast<SInt16>((code & 0x80u) != 0 ? magnitude : -magnitude);
}

constexpr SInt16 ExpandMu(UInt8 inCode)
{
    constexpr SInt32 kBias = 132;
    const UInt32 code = inCode ^ 0xFFu;
    const UInt32 segment = (code >> 4) & 7u;
    const SInt32 magnitude = (static_cast<SInt32>((code & 0xFu) * 8u) + kBias) << segment;
    return static_cast<SInt16>((code & 0x80u) != 0 ? kBias - magnitude : magnitude - kBias);
}

// The steps of a segment are equal, and its codes stand for the middles of them.
constexpr UInt8 CompressA(SInt16 inSample)
{
    const bool isPositive = inSample >= 0;
    const UInt32 magnitude = static_cast<UInt32>(isPositive ? inSample : -1 - inSample);
    const UInt32 width = static_cast<UInt32>(std::bit_width(magnitude >> 8));
    const UInt32 step = magnitude >> (width < 2 ? 4 : width + 3);
    const UInt32 code = (width << 4) | (step & 0xFu);
    return static_cast<UInt8>((code | (isPositive ? 0x80u : 0u)) ^ 0x55u);
}

constexpr UInt8 CompressMu(SInt16 inSample)
{
    constexpr UInt32 kBias = 132;
    constexpr UInt32 kHighest = 32767;
    const bool isPositive = inSample >= 0;
    const UInt32 size = static_cast<UInt32>(isPositive ? SInt32{inSample} : -SInt32{inSample});
    const UInt32 magnitude = std::min(size + kBias, kHighest);
    const UInt32 width = static_cast<UInt32>(std::bit_width(magnitude >> 8));
    const UInt32 code = (width << 4) | (magnitude >> (width + 3) & 0xFu);
    return static_cast<UInt8>((code | (isPositive ? 0u : 0x80u)) ^ 0xFFu);
}

template <SInt16 (*kExpand)(UInt8), typename Sample>
constexpr std::array<Sample, 256> MakeTable(Sample inScale)
{
    std::array<Sample, 256> table = {};
    for (UInt32 code = 0; code < 256; ++code)
        table[code] = static_cast<Sample>(kExpand(static_cast<UInt8>(code)) * inScale);
    return table;
}

constexpr std::array<SInt16, 256> kIntegers[] = {MakeTable<ExpandA, SInt16>(1),
                                                 MakeTable<ExpandMu, SInt16>(1)};
constexpr std::array<Float32, 256> kFloats[] = {MakeTable<ExpandA, Float32>(0x1p-15f),
                                                MakeTable<ExpandMu, Float32>(0x1p-15f)};

template <UInt8 (*kCompress)(SInt16)>
void Compress(const SInt16* inSamples, std::size_t inCount, UInt8* outCodes)
{
    for (std::size_t i = 0; i < inCount; ++i)
        outCodes[i] = kCompress(inSamples[i]);
}

}  // namespace

SInt16 ExpandLogLaw(LogLaw inLaw, UInt8 inCode)
{
    return kIntegers[static_cast<std::size_t>(inLaw)][inCode];
}

void ExpandLogLaw(LogLaw inLaw, const UInt8* inCodes, std::size_t inCount, Float32* outSamples)
{
    const std::array<Float32, 256>& table = kFloats[static_cast<std::size_t>(inLaw)];
    for (std::size_t i = 0; i < inCount; ++i)
        outSamples[i] = table[inCodes[i]];
}

void CompressLogLaw(LogLaw inLaw, const SInt16* inSamples, std::size_t inCount, UInt8* outCodes)
{
    const auto compress = inLaw == LogLaw::A ? &Compress<CompressA> : &Compress<CompressMu>;
    compress(inSamples, inCount, outCodes);
}

}  // namespace audiotoolbox
