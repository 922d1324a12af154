#include "host/export/EncoderChoices.h"

#include "appleaudiotoolbox/utility/EncodableQueries.h"
#include "appleaudiotoolbox/utility/ExportValidation.h"

#include <AudioToolbox/AudioToolbox.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace host
{

namespace
{

constexpr UInt32 kAnyNumber = 0xFFFFFFFF;

// Samples cross the plug-in's interface as 32-bit floats at the widest.
constexpr std::uint32_t kWidestSample = 32;

// Formats whose flags tell the depth: the flags are the place in this list, from 1.
constexpr std::uint32_t kDepthsByFlags[] = {16, 20, 24, 32};

constexpr const char* kModeNames[] = {"cbr", "abr", "cvbr", "vbr"};

/// Empty unless the platform answers.
template <typename Value>
std::vector<Value> AskFormats(AudioFormatPropertyID inProperty, UInt32 inBytes,
                              const void* inSpecifier)
{
    UInt32 size = 0;
    if (AudioFormatGetPropertyInfo(inProperty, inBytes, inSpecifier, &size) != noErr)
        return {};
    std::vector<Value> values(size / sizeof(Value));
    size = static_cast<UInt32>(values.size() * sizeof(Value));
    const UInt32 room = size;
    if (AudioFormatGetProperty(inProperty, inBytes, inSpecifier, &size, values.data()) != noErr ||
        size > room)
        return {};
    values.resize(size / sizeof(Value));
    return values;
}

// "a, b", of what inText makes of each.
template <typename List, typename Text>
std::string Joined(const List& inList, Text inText)
{
    std::string text;
    for (const auto& item : inList)
        text += (text.empty() ? "" : ", ") + inText(item);
    return text;
}

std::string RangeText(const AudioValueRange& inRange, double inUnit, const char* inSuffix)
{
    char text[64];
    if (inRange.mMinimum == inRange.mMaximum)
        std::snprintf(text, sizeof(text), "%.10g%s", inRange.mMinimum / inUnit, inSuffix);
    else
        std::snprintf(text, sizeof(text), "%.10g to %.10g%s", inRange.mMinimum / inUnit,
                      inRange.mMaximum / inUnit, inSuffix);
    return text;
}

std::vector<SampleDepth> PCMDepths(EncoderKey inEncoder)
{
    std::vector<SampleDepth> depths;
    for (const auto& variant :
         appleaudiotoolbox::GetEncodableVariants(inEncoder.mFileType, inEncoder.mFormat))
    {
        const SampleDepth depth{variant.mBitsPerChannel,
                                (variant.mFormatFlags & kAudioFormatFlagIsFloat) != 0};
        if (depth.mBits <= kWidestSample &&
            std::find(depths.begin(), depths.end(), depth) == depths.end())
            depths.push_back(depth);
    }
    return depths;
}

std::vector<SampleDepth> DepthsByFlags(EncoderKey inEncoder)
{
    const auto variants =
        appleaudiotoolbox::GetEncodableVariants(inEncoder.mFileType, inEncoder.mFormat);
    std::vector<SampleDepth> depths;
    if (variants.empty())
        return depths;
    CAStreamBasicDescription format = variants.front();
    format.mSampleRate = 44100.0;
    format.mChannelsPerFrame = 2;
    for (const std::uint32_t bits : kDepthsByFlags)
    {
        ++format.mFormatFlags;
        if (appleaudiotoolbox::AreExportSettingsValid(inEncoder.mFileType, format))
            depths.push_back({bits, false});
    }
    return depths;
}

}  // namespace

std::vector<SampleDepth> EncodableDepths(EncoderKey inEncoder)
{
    if (inEncoder.mFormat == kAudioFormatLinearPCM)
        return PCMDepths(inEncoder);
    if (inEncoder.mFormat == kAudioFormatFLAC || inEncoder.mFormat == kAudioFormatAppleLossless)
        return DepthsByFlags(inEncoder);
    return {};
}

std::vector<std::uint32_t> EncodableChannelCounts(const CAStreamBasicDescription& inFormat)
{
    auto counts = AskFormats<std::uint32_t>(kAudioFormatProperty_AvailableEncodeNumberChannels,
                                            sizeof(AudioStreamBasicDescription), &inFormat);
    if (!counts.empty() && counts.front() == kAnyNumber)
        counts.clear();
    std::sort(counts.begin(), counts.end());
    return counts;
}

std::optional<std::uint32_t> NearestBitrate(EncoderKey inEncoder, std::uint32_t inMode,
                                            const CAStreamBasicDescription& inAudio,
                                            std::uint32_t inWanted)
{
    std::optional<double> nearest;
    for (const AudioValueRange& range : appleaudiotoolbox::GetEncodableBitrates(
             inEncoder.mFileType, inEncoder.mFormat, inMode, &inAudio))
    {
        const double rate = std::clamp<double>(inWanted, range.mMinimum, range.mMaximum);
        const double distance = std::abs(rate - inWanted);
        const double best = nearest ? std::abs(*nearest - inWanted) : distance;
        if (!nearest || distance < best || (distance == best && rate > *nearest))
            nearest = rate;
    }
    return nearest ? std::optional(static_cast<std::uint32_t>(*nearest)) : std::nullopt;
}

bool IsDepthIn(const std::vector<SampleDepth>& inDepths, const SampleDepth& inDepth)
{
    return inDepths.empty() || std::any_of(inDepths.begin(), inDepths.end(),
                                           [&](const SampleDepth& inPossible)
                                           {
        return inPossible.mBits == inDepth.mBits &&
               (!inDepth.mIsFloat || inDepth.mIsFloat == inPossible.mIsFloat);
           });
}

std::string RatesText(std::uint32_t inFormat)
{
    const auto rates = AskFormats<AudioValueRange>(kAudioFormatProperty_AvailableEncodeSampleRates,
                                                   sizeof(inFormat), &inFormat);
    if (rates.empty() || rates.front().mMaximum <= 0)
        return "any";
    return Joined(rates,
                  [](const AudioValueRange& inRange) { return RangeText(inRange, 1.0, ""); });
}

std::string ChannelsText(const CAStreamBasicDescription& inFormat)
{
    const auto counts = EncodableChannelCounts(inFormat);
    return counts.empty()
               ? "any"
               : Joined(counts, [](std::uint32_t inCount) { return std::to_string(inCount); });
}

std::string BitratesText(EncoderKey inEncoder, std::uint32_t inMode,
                         const CAStreamBasicDescription& inAudio)
{
    return Joined(appleaudiotoolbox::GetEncodableBitrates(inEncoder.mFileType, inEncoder.mFormat,
                                                          inMode, &inAudio),
                  [](const AudioValueRange& inRange) { return RangeText(inRange, 1000.0, "k"); });
}

std::string DepthText(const SampleDepth& inDepth)
{
    return std::to_string(inDepth.mBits) + (inDepth.mIsFloat == true ? "f" : "");
}

std::string DepthsText(const std::vector<SampleDepth>& inDepths)
{
    return Joined(inDepths, &DepthText);
}

std::string ModesText(const std::vector<std::uint32_t>& inModes)
{
    return Joined(inModes,
                  [](std::uint32_t inMode) -> std::string
                  { return inMode < std::size(kModeNames) ? kModeNames[inMode] : "?"; });
}

std::string BitrateForPeople(std::uint32_t inBitsPerSecond)
{
    return inBitsPerSecond % 1000 == 0 ? std::to_string(inBitsPerSecond / 1000) + " kbit/s"
                                       : std::to_string(inBitsPerSecond) + " bit/s";
}

}  // namespace host
