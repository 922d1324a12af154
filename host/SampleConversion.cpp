#include "host/SampleConversion.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace host
{

namespace
{

// A packed integer sample as a signed number of 8 * kBytes bits.
template <std::size_t kBytes>
std::int32_t Load(const char* inSample)
{
    if constexpr (kBytes == 1)
    {
        return static_cast<std::int32_t>(static_cast<unsigned char>(*inSample)) - 128;
    }
    else if constexpr (kBytes == 2)
    {
        std::int16_t sample;
        std::memcpy(&sample, inSample, sizeof(sample));
        return sample;
    }
    else
    {
        const auto* bytes = reinterpret_cast<const unsigned char*>(inSample);
        return static_cast<signed char>(bytes[2]) * 65536 + bytes[1] * 256 + bytes[0];
    }
}

template <std::size_t kBytes>
void Store(std::int32_t inSample, char* outSample)
{
    if constexpr (kBytes == 1)
    {
        *outSample = static_cast<char>(static_cast<unsigned char>(inSample + 128));
    }
    else if constexpr (kBytes == 2)
    {
        const auto sample = static_cast<std::int16_t>(inSample);
        std::memcpy(outSample, &sample, sizeof(sample));
    }
    else
    {
        const auto bits = static_cast<std::uint32_t>(inSample);
        outSample[0] = static_cast<char>(bits);
        outSample[1] = static_cast<char>(bits >> 8);
        outSample[2] = static_cast<char>(bits >> 16);
    }
}

template <std::size_t kBytes>
constexpr std::int32_t kFullScale = 1 << (8 * kBytes - 1);

template <std::size_t kBytes>
void IntegersToFloat(const char* inSamples, std::int64_t inCount, float* outSamples)
{
    constexpr float kScale = 1.0F / static_cast<float>(kFullScale<kBytes>);
    for (std::int64_t index = 0; index < inCount; ++index)
        outSamples[index] = static_cast<float>(Load<kBytes>(inSamples + index * kBytes)) * kScale;
}

template <std::size_t kBytes>
std::int32_t Round(float inScaled)
{
    constexpr auto kLowest = static_cast<float>(-kFullScale<kBytes>);
    constexpr auto kHighest = static_cast<float>(kFullScale<kBytes> - 1);
    const float number = inScaled == inScaled ? inScaled : 0.0F;
    return static_cast<std::int32_t>(std::lrint(std::min(std::max(number, kLowest), kHighest)));
}

template <std::size_t kBytes>
void IntegersFromFloat(const float* inSamples, std::int64_t inCount, char* outSamples,
                       DitherNoise* ioNoise)
{
    constexpr auto kScale = static_cast<float>(kFullScale<kBytes>);
    for (std::int64_t index = 0; index < inCount; ++index)
    {
        const float noise = ioNoise ? ioNoise->NextStep() : 0.0F;
        Store<kBytes>(Round<kBytes>(inSamples[index] * kScale + noise),
                      outSamples + index * kBytes);
    }
}

template <std::size_t kFrom, std::size_t kTo>
void Widen(const char* inSamples, std::int64_t inCount, char* outSamples)
{
    constexpr std::int32_t kFactor = 1 << (8 * (kTo - kFrom));
    for (std::int64_t index = 0; index < inCount; ++index)
        Store<kTo>(Load<kFrom>(inSamples + index * kFrom) * kFactor, outSamples + index * kTo);
}

template <std::size_t kFrom, std::size_t kTo>
void Narrow(const char* inSamples, std::int64_t inCount, char* outSamples, DitherNoise* ioNoise)
{
    constexpr int kShift = 8 * (kFrom - kTo);
    constexpr std::int32_t kHalf = 1 << (kShift - 1);
    for (std::int64_t index = 0; index < inCount; ++index)
    {
        const std::int32_t noise = ioNoise ? ioNoise->NextInteger(kShift) : 0;
        const std::int32_t sample =
            (Load<kFrom>(inSamples + index * kFrom) + noise + kHalf) >> kShift;
        Store<kTo>(std::clamp(sample, -kFullScale<kTo>, kFullScale<kTo> - 1),
                   outSamples + index * kTo);
    }
}

void Copy(const void* inSamples, std::size_t inBytes, std::int64_t inCount, void* outSamples)
{
    std::memcpy(outSamples, inSamples, static_cast<std::size_t>(inCount) * inBytes);
}

template <std::size_t kBytes>
double PeakOfIntegers(const char* inSamples, std::int64_t inCount)
{
    std::int32_t peak = 0;
    for (std::int64_t index = 0; index < inCount; ++index)
        peak = std::max(peak, std::abs(Load<kBytes>(inSamples + index * kBytes)));
    return static_cast<double>(peak) / kFullScale<kBytes>;
}

double PeakOfFloats(const char* inSamples, std::int64_t inCount)
{
    float peak = 0.0F;
    for (std::int64_t index = 0; index < inCount; ++index)
    {
        float sample;
        std::memcpy(&sample, inSamples + index * 4, sizeof(sample));
        peak = std::fabs(sample) > peak ? std::fabs(sample) : peak;
    }
    return peak;
}

}  // namespace

void ToFloat(const char* inSamples, std::size_t inBytes, std::int64_t inCount, float* outSamples)
{
    switch (inBytes)
    {
        case 1:
            return IntegersToFloat<1>(inSamples, inCount, outSamples);
        case 2:
            return IntegersToFloat<2>(inSamples, inCount, outSamples);
        case 3:
            return IntegersToFloat<3>(inSamples, inCount, outSamples);
        default:
            return Copy(inSamples, sizeof(float), inCount, outSamples);
    }
}

void FromFloat(const float* inSamples, std::int64_t inCount, std::size_t inBytes, char* outSamples,
               DitherNoise* ioNoise)
{
    switch (inBytes)
    {
        case 1:
            return IntegersFromFloat<1>(inSamples, inCount, outSamples, ioNoise);
        case 2:
            return IntegersFromFloat<2>(inSamples, inCount, outSamples, ioNoise);
        case 3:
            return IntegersFromFloat<3>(inSamples, inCount, outSamples, ioNoise);
        default:
            return Copy(inSamples, sizeof(float), inCount, outSamples);
    }
}

void ChangeWidth(const char* inSamples, std::size_t inFromBytes, std::int64_t inCount,
                 std::size_t inToBytes, char* outSamples, DitherNoise* ioNoise)
{
    if (inFromBytes == inToBytes)
        return Copy(inSamples, inFromBytes, inCount, outSamples);
    if (inToBytes == 4)
        return ToFloat(inSamples, inFromBytes, inCount, reinterpret_cast<float*>(outSamples));
    if (inFromBytes == 4)
        return FromFloat(reinterpret_cast<const float*>(inSamples), inCount, inToBytes, outSamples,
                         ioNoise);
    switch (inFromBytes * 10 + inToBytes)
    {
        case 12:
            return Widen<1, 2>(inSamples, inCount, outSamples);
        case 13:
            return Widen<1, 3>(inSamples, inCount, outSamples);
        case 23:
            return Widen<2, 3>(inSamples, inCount, outSamples);
        case 21:
            return Narrow<2, 1>(inSamples, inCount, outSamples, ioNoise);
        case 31:
            return Narrow<3, 1>(inSamples, inCount, outSamples, ioNoise);
        default:
            return Narrow<3, 2>(inSamples, inCount, outSamples, ioNoise);
    }
}

double PeakOf(const char* inSamples, std::size_t inBytes, std::int64_t inCount)
{
    switch (inBytes)
    {
        case 1:
            return PeakOfIntegers<1>(inSamples, inCount);
        case 2:
            return PeakOfIntegers<2>(inSamples, inCount);
        case 3:
            return PeakOfIntegers<3>(inSamples, inCount);
        default:
            return PeakOfFloats(inSamples, inCount);
    }
}

void FillWithSilence(char* outSamples, std::size_t inBytes, std::int64_t inCount)
{
    std::memset(outSamples, inBytes == 1 ? 0x80 : 0, static_cast<std::size_t>(inCount) * inBytes);
}

}  // namespace host
