#include "tables/Encoders.h"

#include <AudioToolbox/AudioConverter.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace audiotoolbox
{
namespace
{

constexpr RateRange kAACRates[] = {
    {7350, 7350},   {8000, 8000},   {11025, 11025}, {12000, 12000}, {16000, 16000},
    {22050, 22050}, {24000, 24000}, {32000, 32000}, {44100, 44100}, {48000, 48000},
    {64000, 64000}, {88200, 88200}, {96000, 96000},
};
constexpr RateRange kMP3Rates[] = {
    {8000, 8000},   {11025, 11025}, {12000, 12000}, {16000, 16000}, {22050, 22050},
    {24000, 24000}, {32000, 32000}, {44100, 44100}, {48000, 48000},
};
constexpr RateRange kMP2Rates[] = {
    {16000, 16000}, {22050, 22050}, {24000, 24000}, {32000, 32000}, {44100, 44100}, {48000, 48000},
};
constexpr RateRange kAC3Rates[] = {{32000, 32000}, {44100, 44100}, {48000, 48000}};
// The head of a frame has no room for most rates above 16 bits.
constexpr RateRange kFLACRates[] = {
    {1, 65534},       {88200, 88200},   {96000, 96000},   {176400, 176400},
    {192000, 192000}, {352800, 352800}, {384000, 384000},
};
constexpr RateRange kGSMRates[] = {{8000, 8000}};
// Streams of other rates come back at this one.
constexpr RateRange kOpusRates[] = {{48000, 48000}};

constexpr EncoderLayout kMono[] = {{1, 0x4}};
constexpr EncoderLayout kMonoAndStereo[] = {{1, 0x4}, {2, 0x3}};
constexpr EncoderLayout kAACLayouts[] = {
    {1, 0x4}, {2, 0x3}, {3, 0x7}, {4, 0x107}, {5, 0x37}, {6, 0x3F}, {8, 0x63F},
};
constexpr EncoderLayout kALACLayouts[] = {
    {1, 0x4}, {2, 0x3}, {3, 0x7}, {4, 0x107}, {5, 0x37}, {6, 0x3F}, {7, 0x13F}, {8, 0xFF},
};
constexpr EncoderLayout kFLACLayouts[] = {
    {1, 0x4}, {2, 0x3}, {3, 0x7}, {4, 0x33}, {5, 0x37}, {6, 0x3F}, {7, 0x70F}, {8, 0x63F},
};
constexpr EncoderLayout kAC3Layouts[] = {
    {1, 0x4}, {2, 0x3}, {3, 0x7}, {4, 0x107}, {5, 0x607}, {6, 0x60F},
};
constexpr EncoderLayout kOpusLayouts[] = {
    {1, 0x4}, {2, 0x3}, {3, 0x7}, {4, 0x33}, {5, 0x37}, {6, 0x3F}, {7, 0x70F}, {8, 0x63F},
};

constexpr Float32 kAACQualities[] = {0.3f, 0.5f, 0.8f, 1.0f, 1.5f};
constexpr Float32 kMP3Qualities[] = {9.0f, 6.0f, 4.0f, 2.0f, 0.0f};

constexpr BitRateModes kConstant = 1 << kAudioCodecBitRateControlMode_Constant;
constexpr BitRateModes kAverage = 1 << kAudioCodecBitRateControlMode_LongTermAverage;
constexpr BitRateModes kConstrained = 1 << kAudioCodecBitRateControlMode_VariableConstrained;
constexpr BitRateModes kVariable = 1 << kAudioCodecBitRateControlMode_Variable;

using Road = EncoderRoad;
using Samples = EncoderSamples;

// clang-format off
constexpr EncoderRow kEncoders[] = {
    // code, codec, road, samples, rates, layouts, delay, tail, fills, cookie, modes, qualities
    {kAudioFormatLinearPCM, nullptr, Road::Linear, Samples::Floats,
     {}, {}, 0, false, false, false, 0, {}},
    {kAudioFormatMPEGLayer2, "mp2", Road::Codec, Samples::Words16,
     kMP2Rates, kMonoAndStereo, 481, true, true, false, kConstant, {}},
    {kAudioFormatMPEGLayer3, "libmp3lame", Road::Codec, Samples::Floats,
     kMP3Rates, kMonoAndStereo, 1105, false, false, false,
     kConstant | kAverage | kVariable, kMP3Qualities},
    {kAudioFormatMPEG4AAC, "aac", Road::Codec, Samples::Floats,
     kAACRates, kAACLayouts, 1024, false, false, true,
     kConstant | kAverage | kVariable, kAACQualities},
    {kAudioFormatAC3, "ac3", Road::Codec, Samples::Floats,
     kAC3Rates, kAC3Layouts, 256, true, true, false, kConstant, {}},
    {kAudioFormatAppleLossless, "alac", Road::Codec, Samples::Lossless,
     {}, kALACLayouts, 0, false, false, true, 0, {}},
    {kAudioFormatALaw, nullptr, Road::LogLaw, Samples::Words16,
     {}, {}, 0, false, false, false, 0, {}},
    {kAudioFormatEnhancedAC3, "eac3", Road::Codec, Samples::Floats,
     kAC3Rates, kAC3Layouts, 256, true, true, false, kConstant, {}},
    {kAudioFormatFLAC, "flac", Road::Codec, Samples::Lossless,
     kFLACRates, kFLACLayouts, 0, false, false, true, 0, {}},
    {kAudioFormatAppleIMA4, "adpcm_ima_qt", Road::Codec, Samples::Words16,
     {}, kMonoAndStereo, 0, false, true, false, 0, {}},
    {kAudioFormatMicrosoftADPCM, "adpcm_ms", Road::Codec, Samples::Words16,
     {}, kMonoAndStereo, 0, false, true, true, 0, {}},
    {kAudioFormatDVIIntelIMA, "adpcm_ima_wav", Road::Codec, Samples::Words16,
     {}, kMonoAndStereo, 0, false, true, false, 0, {}},
    {kAudioFormatMicrosoftGSM, "libgsm_ms", Road::Codec, Samples::Words16,
     kGSMRates, kMono, 0, false, true, false, 0, {}},
    {kAudioFormatOpus, "libopus", Road::Codec, Samples::Floats,
     kOpusRates, kOpusLayouts, 312, false, false, true,
     kConstant | kAverage | kConstrained, {}},
    {kAudioFormatULaw, nullptr, Road::LogLaw, Samples::Words16,
     {}, {}, 0, false, false, false, 0, {}},
};
// clang-format on

constexpr UInt32 kBlockBytes = 1024;  // of a packet of either ADPCM of WAVE files
constexpr UInt32 kMostLosslessBytes = 65535;
constexpr UInt32 kLosslessHeadBytes = 512;  // generous: heads, and what does not compress

UInt32 LosslessFrames(UInt32 inUsual, const StreamShape& inShape)
{
    const UInt32 bytesPerFrame = inShape.mChannelCount * (inShape.mDepth > 16 ? 3 : 2);
    const bool fits = inUsual * bytesPerFrame + kLosslessHeadBytes <= kMostLosslessBytes;
    return fits ? inUsual : inUsual / 2;
}

// A head with the first samples of each channel, then 4 bits a sample.
UInt32 BlockFrames(AudioFormatID inFormat, UInt32 inChannels)
{
    if (inChannels == 0)
        return 0;
    if (inFormat == kAudioFormatMicrosoftADPCM)
        return (kBlockBytes - 7 * inChannels) * 2 / inChannels + 2;
    return (kBlockBytes - 4 * inChannels) * 2 / inChannels + 1;
}

}  // namespace

std::span<const EncoderRow> AllEncoders()
{
    return kEncoders;
}

const EncoderRow* FindEncoder(AudioFormatID inFormat)
{
    for (const EncoderRow& row : kEncoders)
        if (row.mFormatID == inFormat)
            return &row;
    return nullptr;
}

bool TakesRate(const EncoderRow& inRow, UInt32 inRate)
{
    if (inRow.mRates.empty())
        return inRate > 0 && inRate <= kHighestEncodedRate;
    return std::any_of(inRow.mRates.begin(), inRow.mRates.end(),
                       [=](const RateRange& inRange)
                       { return inRange.mLowest <= inRate && inRate <= inRange.mHighest; });
}

bool TakesChannels(const EncoderRow& inRow, UInt32 inChannelCount)
{
    if (inRow.mLayouts.empty())
        return inChannelCount >= 1 && inChannelCount <= 64;
    return std::any_of(inRow.mLayouts.begin(), inRow.mLayouts.end(),
                       [=](const EncoderLayout& inLayout)
                       { return inLayout.mChannelCount == inChannelCount; });
}

UInt32 NearestRate(const EncoderRow& inRow, double inRate)
{
    const double rate = std::clamp(std::floor(inRate + 0.5), 1.0, double{kHighestEncodedRate});
    const UInt32 wish = static_cast<UInt32>(rate);
    UInt32 best = wish;
    UInt32 bestDistance = 0xFFFFFFFF;
    for (const RateRange& range : inRow.mRates)
    {
        const UInt32 near = std::clamp(wish, range.mLowest, range.mHighest);
        const UInt32 distance = near > wish ? near - wish : wish - near;
        if (distance <= bestDistance)
        {
            best = near;
            bestDistance = distance;
        }
    }
    return best;
}

UInt32 NearestChannels(const EncoderRow& inRow, UInt32 inChannelCount)
{
    UInt32 best = inChannelCount;
    UInt32 bestDistance = 0xFFFFFFFF;
    for (const EncoderLayout& layout : inRow.mLayouts)
    {
        const UInt32 count = layout.mChannelCount;
        const UInt32 distance =
            count > inChannelCount ? count - inChannelCount : inChannelCount - count;
        if (distance < bestDistance)
        {
            best = count;
            bestDistance = distance;
        }
    }
    return best;
}

UInt32 EncoderMask(const EncoderRow& inRow, UInt32 inChannelCount)
{
    for (const EncoderLayout& layout : inRow.mLayouts)
        if (layout.mChannelCount == inChannelCount)
            return layout.mMask;
    return 0;
}

UInt32 FramesPerPacket(const EncoderRow& inRow, const StreamShape& inShape)
{
    switch (inRow.mFormatID)
    {
        case kAudioFormatMPEG4AAC:
            return 1024;
        case kAudioFormatMPEGLayer3:
            return inShape.mRate != 0 && inShape.mRate < 32000 ? 576 : 1152;
        case kAudioFormatMPEGLayer2:
            return 1152;
        case kAudioFormatAC3:
        case kAudioFormatEnhancedAC3:
            return 1536;
        case kAudioFormatAppleLossless:
            return LosslessFrames(4096, inShape);
        case kAudioFormatFLAC:
            return LosslessFrames(4608, inShape);
        case kAudioFormatAppleIMA4:
            return 64;
        case kAudioFormatMicrosoftADPCM:
        case kAudioFormatDVIIntelIMA:
            return BlockFrames(inRow.mFormatID, inShape.mChannelCount);
        case kAudioFormatMicrosoftGSM:
            return 320;
        case kAudioFormatOpus:
            return 960;
        default:
            return 1;
    }
}

UInt32 BytesPerPacket(const EncoderRow& inRow, const StreamShape& inShape)
{
    switch (inRow.mFormatID)
    {
        case kAudioFormatALaw:
        case kAudioFormatULaw:
            return inShape.mChannelCount;
        case kAudioFormatAppleIMA4:
            return 34 * inShape.mChannelCount;
        case kAudioFormatMicrosoftADPCM:
        case kAudioFormatDVIIntelIMA:
            return kBlockBytes;
        case kAudioFormatMicrosoftGSM:
            return 65;
        default:
            return 0;
    }
}

UInt32 MaximumPacketBytes(const EncoderRow& inRow, const StreamShape& inShape)
{
    if (const UInt32 constant = BytesPerPacket(inRow, inShape); constant != 0)
        return constant;
    switch (inRow.mFormatID)
    {
        case kAudioFormatMPEG4AAC:
            return 768 * inShape.mChannelCount;
        case kAudioFormatMPEGLayer3:
            return 1441;
        case kAudioFormatMPEGLayer2:
            return 1729;
        case kAudioFormatAC3:
        case kAudioFormatEnhancedAC3:
            return 3840;
        case kAudioFormatOpus:
            return 1282 * inShape.mChannelCount;
        default:
            return kMostLosslessBytes;
    }
}

Float32 EncoderQuality(const EncoderRow& inRow, Float32 inQuality)
{
    constexpr Float32 kKnots[] = {0.0f, 32.0f, 64.0f, 96.0f, 127.0f};
    const Float32 quality = std::clamp(inQuality, kKnots[0], kKnots[4]);
    std::size_t upper = 1;
    while (upper < 4 && quality > kKnots[upper])
        ++upper;
    const Float32 share = (quality - kKnots[upper - 1]) / (kKnots[upper] - kKnots[upper - 1]);
    return inRow.mQualities[upper - 1] +
           share * (inRow.mQualities[upper] - inRow.mQualities[upper - 1]);
}

}  // namespace audiotoolbox
