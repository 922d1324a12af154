#include "Pairs.h"

#include "appleaudiotoolbox/utility/EncodableQueries.h"
#include "host/export/EncoderChoices.h"

#include <AudioToolbox/AudioToolbox.h>

#include <cctype>
#include <cstdio>

namespace export_matrix
{

namespace
{

std::string CodeName(std::uint32_t inCode)
{
    std::string name;
    for (int shift = 24; shift >= 0; shift -= 8)
    {
        const auto byte = static_cast<unsigned char>(inCode >> shift);
        char hex[3] = "";
        if (std::isalnum(byte))
            name += static_cast<char>(byte);
        else if (!std::isprint(byte))
            name.append(hex, static_cast<std::size_t>(
                                 std::snprintf(hex, sizeof(hex), "%02x", unsigned{byte})));
    }
    return name;
}

bool TellsDepthByFlags(std::uint32_t inFormat)
{
    return inFormat == kAudioFormatFLAC || inFormat == kAudioFormatAppleLossless;
}

// Of 16, 20, 24 and 32 bits.
std::uint32_t FlagsOfDepth(std::uint32_t inBits)
{
    switch (inBits)
    {
        case 16:
            return 1;
        case 20:
            return 2;
        case 24:
            return 3;
        default:
            return 4;
    }
}

CAStreamBasicDescription Description(const Pair& inPair)
{
    CAStreamBasicDescription format;
    format.mFormatID = inPair.mFormat;
    return format;
}

}  // namespace

std::vector<Pair> EveryPair()
{
    std::vector<Pair> pairs;
    for (const UInt32 type : appleaudiotoolbox::GetExportableFileTypes())
        for (const UInt32 format : appleaudiotoolbox::GetEncodableFormats(type))
            pairs.push_back({type, format});
    return pairs;
}

std::string NameOf(const Pair& inPair)
{
    return CodeName(inPair.mType) + "_" + CodeName(inPair.mFormat);
}

void PrintTo(const Pair& inPair, std::ostream* outStream)
{
    *outStream << NameOf(inPair);
}

bool Variant::IsPCM() const
{
    return mPair.mFormat == kAudioFormatLinearPCM;
}

bool Variant::IsFloat() const
{
    return IsPCM() && (mFlags & kAudioFormatFlagIsFloat) != 0;
}

std::vector<Variant> VariantsOf(const Pair& inPair)
{
    std::vector<Variant> variants;
    for (const auto& format : appleaudiotoolbox::GetEncodableVariants(inPair.mType, inPair.mFormat))
        variants.push_back({inPair, format.mFormatFlags, format.mBitsPerChannel});
    if (TellsDepthByFlags(inPair.mFormat))
        for (const host::SampleDepth& depth : host::EncodableDepths({inPair.mType, inPair.mFormat}))
            variants.push_back({inPair, FlagsOfDepth(depth.mBits), 0});
    return variants;
}

std::string NameOf(const Variant& inVariant)
{
    return NameOf(inVariant.mPair) + " flags " + std::to_string(inVariant.mFlags) + " bits " +
           std::to_string(inVariant.mBits);
}

bool IsLossy(const Pair& inPair)
{
    return inPair.mFormat != kAudioFormatLinearPCM && !TellsDepthByFlags(inPair.mFormat);
}

std::vector<std::uint32_t> ChannelCountsOf(const Pair& inPair)
{
    std::vector<std::uint32_t> counts = host::EncodableChannelCounts(Description(inPair));
    if (counts.empty())
        counts = {1, 2, 3, 4, 5, 6, 7, 8};
    return counts;
}

std::int32_t RateOf(const Pair& inPair)
{
    return inPair.mFormat == kAudioFormatMicrosoftGSM ? 8000 : 48000;
}

std::uint32_t FramesPerPacket(const Pair& inPair, std::uint32_t inChannels)
{
    CAStreamBasicDescription format = Description(inPair);
    format.mSampleRate = RateOf(inPair);
    format.mChannelsPerFrame = inChannels;
    UInt32 size = sizeof(AudioStreamBasicDescription);
    if (AudioFormatGetProperty(kAudioFormatProperty_FormatInfo, 0, nullptr, &size, &format) !=
        noErr)
        return 0;
    return inPair.mFormat == kAudioFormatLinearPCM ? 1 : format.mFramesPerPacket;
}

}  // namespace export_matrix
