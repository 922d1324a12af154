#include "tables/EncoderBitRates.h"

#include <AudioToolbox/AudioConverter.h>

#include <algorithm>
#include <set>

namespace audiotoolbox
{
namespace
{

using Steps = std::span<const UInt32>;  // kbit/s, ascending

constexpr UInt32 kAACSteps[] = {8,   12,  16,  20,  24,  28,  32,  40,  48,  56,  64,
                                72,  80,  96,  112, 128, 144, 160, 192, 224, 256, 288,
                                320, 384, 448, 512, 576, 640, 768, 896, 1024};
constexpr UInt32 kMPEG1Layer3[] = {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};
constexpr UInt32 kMPEG2Steps[] = {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160};
constexpr UInt32 kMPEG25Steps[] = {8, 16, 24, 32, 40, 48, 56, 64};
constexpr UInt32 kLayer2Mono[] = {32, 48, 56, 64, 80, 96, 112, 128, 160, 192};
constexpr UInt32 kLayer2Stereo[] = {64, 96, 112, 128, 160, 192, 224, 256, 320, 384};
constexpr UInt32 kAC3Steps[] = {32,  40,  48,  56,  64,  80,  96,  112, 128, 160,
                                192, 224, 256, 320, 384, 448, 512, 576, 640};
constexpr UInt32 kOpusSteps[] = {6, 12, 16, 24, 32, 48, 64, 96, 128, 160, 192, 256};  // a channel

/// Where the AAC encoder meets its target with noise and with tones, kbit/s.
struct AACLimits
{
    UInt32 mHighestRate;  // Hz, of the audio
    UInt32 mMono[2];
    UInt32 mStereo[2];
};
constexpr AACLimits kAACLimits[] = {
    {8000, {8, 32}, {12, 72}},          {12000, {8, 48}, {12, 96}},
    {16000, {8, 72}, {16, 128}},        {24000, {12, 96}, {16, 192}},
    {32000, {12, 144}, {24, 256}},      {48000, {16, 192}, {28, 384}},
    {0xFFFFFFFF, {28, 448}, {64, 512}},
};

/// A step above the lowest at which the encoder found room for every packet of noise, tones,
/// clicks, bursts and square waves that differ from channel to channel. It gives up in the middle
/// of a file where it finds none.
struct AC3Floor
{
    AudioFormatID mFormat;
    UInt32 mMostChannels;
    UInt32 mAt32000;
    UInt32 mAt44100;
    UInt32 mAt48000;
};
constexpr AC3Floor kAC3Floors[] = {
    {kAudioFormatAC3, 1, 32, 32, 32},         {kAudioFormatAC3, 2, 32, 40, 48},
    {kAudioFormatAC3, 3, 40, 48, 56},         {kAudioFormatAC3, 4, 48, 64, 64},
    {kAudioFormatAC3, 6, 56, 80, 96},         {kAudioFormatEnhancedAC3, 1, 32, 32, 32},
    {kAudioFormatEnhancedAC3, 2, 32, 40, 48}, {kAudioFormatEnhancedAC3, 3, 40, 48, 56},
    {kAudioFormatEnhancedAC3, 4, 48, 64, 80}, {kAudioFormatEnhancedAC3, 6, 56, 80, 96},
};

std::vector<UInt32> Between(Steps inSteps, UInt64 inLowest, UInt64 inHighest, UInt32 inFactor)
{
    std::vector<UInt32> rates;
    for (const UInt32 step : inSteps)
        if (const UInt64 rate = UInt64{step} * inFactor; rate >= inLowest && rate <= inHighest)
            rates.push_back(static_cast<UInt32>(rate));
    return rates;
}

std::vector<UInt32> AllOf(Steps inSteps, UInt32 inFactor = 1000)
{
    return Between(inSteps, 0, ~UInt64{0}, inFactor);
}

// More than two channels have the limits of their number of half pairs.
UInt64 OfPairs(UInt32 inKilobits, UInt32 inChannels)
{
    return UInt64{inKilobits} * 1000 * (inChannels <= 2 ? 2 : inChannels) / 2;
}

std::vector<UInt32> AACRates(UInt32 inMode, UInt32 inRate, UInt32 inChannels)
{
    const AACLimits* limits = kAACLimits;
    while (inRate > limits->mHighestRate)
        ++limits;
    const UInt32(&pair)[2] = inChannels == 1 ? limits->mMono : limits->mStereo;
    // No packet has more than 6144 bits a channel.
    const UInt64 ceiling = UInt64{6144} * inChannels * inRate / 1024;
    if (inMode != kAudioCodecBitRateControlMode_Constant)
        return Between(kAACSteps, OfPairs(pair[0], inChannels),
                       std::min(OfPairs(pair[1], inChannels), ceiling), 1000);
    // What the encoder leaves over is filled up, but what it takes too much nobody gives back.
    constexpr UInt32 kLowestMono = 16;
    const UInt32 lowest = inChannels == 1   ? std::max(pair[0], kLowestMono)
                          : inChannels == 2 ? pair[0]
                                            : limits->mMono[0] * inChannels;
    const UInt64 highest = inChannels <= 2 ? 512000 : 1024000;
    return Between(kAACSteps, UInt64{lowest} * 1000, std::min(highest, ceiling), 1000);
}

std::vector<UInt32> MP3Rates(UInt32, UInt32 inRate, UInt32)
{
    if (inRate >= 32000)
        return AllOf(kMPEG1Layer3);
    return inRate >= 16000 ? AllOf(kMPEG2Steps) : AllOf(kMPEG25Steps);
}

std::vector<UInt32> MP2Rates(UInt32, UInt32 inRate, UInt32 inChannels)
{
    if (inRate < 32000)
        return AllOf(kMPEG2Steps);
    return inChannels == 1 ? AllOf(kLayer2Mono) : AllOf(kLayer2Stereo);
}

std::vector<UInt32> AC3RatesOf(AudioFormatID inFormat, UInt32 inRate, UInt32 inChannels)
{
    for (const AC3Floor& floor : kAC3Floors)
        if (floor.mFormat == inFormat && inChannels <= floor.mMostChannels)
        {
            const UInt32 lowest = inRate == 32000   ? floor.mAt32000
                                  : inRate == 44100 ? floor.mAt44100
                                                    : floor.mAt48000;
            return Between(kAC3Steps, UInt64{lowest} * 1000, ~UInt64{0}, 1000);
        }
    return {};
}

std::vector<UInt32> AC3Rates(UInt32, UInt32 inRate, UInt32 inChannels)
{
    return AC3RatesOf(kAudioFormatAC3, inRate, inChannels);
}

std::vector<UInt32> EnhancedAC3Rates(UInt32, UInt32 inRate, UInt32 inChannels)
{
    return AC3RatesOf(kAudioFormatEnhancedAC3, inRate, inChannels);
}

std::vector<UInt32> OpusRates(UInt32, UInt32, UInt32 inChannels)
{
    return AllOf(kOpusSteps, 1000 * inChannels);
}

UInt32 AACDefault(UInt32, UInt32 inChannels)
{
    return 64000 * inChannels;
}

UInt32 MP3Default(UInt32 inRate, UInt32)
{
    return inRate >= 32000 ? 128000 : 64000;
}

UInt32 MP2Default(UInt32, UInt32)
{
    return 192000;
}

UInt32 AC3Default(UInt32, UInt32 inChannels)
{
    return inChannels <= 2 ? 192000 : 448000;
}

UInt32 OpusDefault(UInt32, UInt32 inChannels)
{
    return 48000 * inChannels;
}

struct BitRateRow
{
    AudioFormatID mFormatID;
    std::vector<UInt32> (*mList)(UInt32 inMode, UInt32 inRate, UInt32 inChannels);
    UInt32 (*mDefault)(UInt32 inRate, UInt32 inChannels);  // the highest listed up to it is meant
};

constexpr BitRateRow kBitRates[] = {
    {kAudioFormatMPEG4AAC, &AACRates, &AACDefault},
    {kAudioFormatMPEGLayer3, &MP3Rates, &MP3Default},
    {kAudioFormatMPEGLayer2, &MP2Rates, &MP2Default},
    {kAudioFormatAC3, &AC3Rates, &AC3Default},
    {kAudioFormatEnhancedAC3, &EnhancedAC3Rates, &AC3Default},
    {kAudioFormatOpus, &OpusRates, &OpusDefault},
};

const BitRateRow* FindBitRates(AudioFormatID inFormat)
{
    for (const BitRateRow& row : kBitRates)
        if (row.mFormatID == inFormat)
            return &row;
    return nullptr;
}

}  // namespace

bool HasBitRateMode(const EncoderRow& inRow, UInt32 inMode)
{
    return inMode <= kAudioCodecBitRateControlMode_Variable && (inRow.mModes >> inMode & 1u) != 0;
}

std::vector<UInt32> EncoderBitRates(const EncoderRow& inRow, UInt32 inMode, UInt32 inRate,
                                    UInt32 inChannelCount)
{
    const BitRateRow* row = FindBitRates(inRow.mFormatID);
    if (row == nullptr || !HasBitRateMode(inRow, inMode) || !TakesRate(inRow, inRate) ||
        !TakesChannels(inRow, inChannelCount))
        return {};
    return row->mList(inMode, inRate, inChannelCount);
}

UInt32 DefaultBitRate(const EncoderRow& inRow, UInt32 inMode, UInt32 inRate, UInt32 inChannelCount)
{
    const std::vector<UInt32> rates = EncoderBitRates(inRow, inMode, inRate, inChannelCount);
    if (rates.empty())
        return 0;
    const UInt32 wish = FindBitRates(inRow.mFormatID)->mDefault(inRate, inChannelCount);
    const auto above = std::upper_bound(rates.begin(), rates.end(), wish);
    return above == rates.begin() ? rates.front() : *(above - 1);
}

std::vector<UInt32> AllBitRates(const EncoderRow& inRow, UInt32 inMode, UInt32 inChannelCount)
{
    std::set<UInt32> all;
    for (const RateRange& range : inRow.mRates)
        for (const UInt32 bitRate : EncoderBitRates(inRow, inMode, range.mLowest, inChannelCount))
            all.insert(bitRate);
    return {all.begin(), all.end()};
}

}  // namespace audiotoolbox
