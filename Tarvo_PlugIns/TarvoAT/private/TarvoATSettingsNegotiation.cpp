// The negotiation of TarvoATPrivateSettings: a wish, and what the platform's encoders make of it.
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATPrivateSettings.h"

#include "appleaudiotoolbox/utility/ATUtils.h"
#include "appleaudiotoolbox/utility/EncodableQueries.h"
#include "appleaudiotoolbox/utility/ExportValidation.h"
#include "appleaudiotoolbox/utility/src/PropertyLists.h"

#include <AudioToolbox/AudioToolbox.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace tarvo
{
namespace
{

constexpr UInt32 kAnyChannelCount = 0xFFFFFFFF;
constexpr UInt32 kUsualBitsPerChannel = 16;

// The byte order of linear PCM by file type: the format flags that stay. AIFF and its like keep the
// big-endian bit alone.
struct PCMFileType
{
    UInt32 mFileTypeID;
    UInt32 mFlagsThatStay;
};

constexpr PCMFileType kPCMFileTypes[] = {
    {kAudioFileAIFFType, kAudioFormatFlagIsBigEndian},
    {kAudioFileNextType, kAudioFormatFlagIsBigEndian},
    {kAudioFileSoundDesigner2Type, kAudioFormatFlagIsBigEndian},
    {kAudioFileCAFType, kAudioFormatFlagIsBigEndian},
    {kAudioFileWAVEType, ~UInt32{kAudioFormatFlagIsBigEndian}},
};

// The rates that an encoder takes, and zeros behind them. A platform without such a list leaves the
// zeros alone, which stand for any rate.
std::vector<AudioValueRange> QueryEncodeSampleRates(UInt32 inFormatID)
{
    constexpr AudioFormatPropertyID property = kAudioFormatProperty_AvailableEncodeSampleRates;
    UInt32 bytes = sizeof(AudioValueRange);
    (void)AudioFormatGetPropertyInfo(property, sizeof(inFormatID), &inFormatID, &bytes);
    std::vector<AudioValueRange> ranges(bytes);  // an entry for each byte: zeros always follow
    (void)AudioFormatGetProperty(property, sizeof(inFormatID), &inFormatID, &bytes, ranges.data());
    return ranges;
}

bool TakesAnyRate(const AudioValueRange& inRange)
{
    return inRange.mMinimum <= 0.0 || !(inRange.mMaximum > 0.0);
}

// Fills in what the platform knows of the format.
bool CompleteFormat(CAStreamBasicDescription& ioFormat)
{
    UInt32 bytes = sizeof(AudioStreamBasicDescription);
    return AudioFormatGetProperty(kAudioFormatProperty_FormatInfo, 0, nullptr, &bytes, &ioFormat) ==
           noErr;
}

// As it stands, then in a rate, then in a channel count that the encoder takes.
bool CompleteFormatByTrying(UInt32 inFileTypeID, CAStreamBasicDescription& ioFormat)
{
    if (CompleteFormat(ioFormat))
        return true;

    TarvoATPrivateSettings inRate(inFileTypeID, ioFormat);
    if (inRate.TrySampleRate(ioFormat.mSampleRate))
        ioFormat.mSampleRate = inRate.GetSampleRate();
    if (CompleteFormat(ioFormat))
        return true;

    TarvoATPrivateSettings inChannels(inFileTypeID, ioFormat);
    if (inChannels.TryChannelsPerFrame(ioFormat.mChannelsPerFrame))
        ioFormat.mChannelsPerFrame = inChannels.GetChannelsPerFrame();
    return CompleteFormat(ioFormat);
}

// False, with outFormat left alone, for a file type outside the table.
bool ConstructPCMFormat(const TarvoATPrivateSettings& inSettings,
                        CAStreamBasicDescription& outFormat)
{
    for (const PCMFileType& row : kPCMFileTypes)
    {
        if (row.mFileTypeID != inSettings.GetAudioFileTypeID())
            continue;
        const UInt32 bits = inSettings.GetBitsPerChannel();
        outFormat = appleaudiotoolbox::ConstructClientFormatFromArgs(
            inSettings.GetSampleRate(), bits == 0 ? kUsualBitsPerChannel : bits,
            inSettings.GetChannelsPerFrame());
        outFormat.mFormatFlags &= row.mFlagsThatStay;
        return true;
    }
    return false;
}

}  // namespace

bool TarvoATPrivateSettings::TrySampleRate(double inRate)
{
    if (!(inRate >= 1.0))
        return false;
    for (const AudioValueRange& range : QueryEncodeSampleRates(GetFormatID()))
    {
        const bool isAbove = inRate < range.mMinimum;
        if (TakesAnyRate(range) || (!isAbove && inRate <= range.mMaximum))
        {
            SetSampleRate(inRate);
            return true;
        }
        const double nearest = isAbove ? range.mMinimum : range.mMaximum;
        if (std::abs(nearest - inRate) < std::abs(GetSampleRate() - inRate))
            SetSampleRate(nearest);
    }
    return true;
}

bool TarvoATPrivateSettings::TryFormatID(UInt32 inFormatID)
{
    CAStreamBasicDescription format;
    format.mFormatID = inFormatID;
    format.mSampleRate = GetSampleRate();
    format.mChannelsPerFrame = GetChannelsPerFrame();
    const bool isPossible = inFormatID == kAudioFormatLinearPCM
                                ? ConstructPCMFormat(*this, format)
                                : CompleteFormatByTrying(mAudioFileTypeID, format);
    if (isPossible)
        mStreamBasicDescription = format;
    return isPossible;
}

bool TarvoATPrivateSettings::TryChannelsPerFrame(UInt32 inCount)
{
    std::vector<UInt32> counts;
    if (appleaudiotoolbox::ReadFormatList(kAudioFormatProperty_AvailableEncodeNumberChannels,
                                          appleaudiotoolbox::Specifier(mStreamBasicDescription),
                                          counts) != noErr)
        return false;
    if (counts.empty())
        return true;
    if (counts.front() == kAnyChannelCount)
    {
        SetChannelsPerFrame(inCount);
        return true;
    }
    const auto [smallest, largest] = std::minmax_element(counts.begin(), counts.end());
    SetChannelsPerFrame(std::clamp(inCount, *smallest, *largest));
    return true;
}

bool TarvoATPrivateSettings::TryBitsPerChannel(UInt32 inBits)
{
    const UInt32 channels = GetChannelsPerFrame();
    const double rate = std::trunc(GetSampleRate());
    const std::vector<CAStreamBasicDescription> variants =
        appleaudiotoolbox::GetEncodableVariants(mAudioFileTypeID, GetFormatID());
    if (variants.empty() || GetFormatID() != kAudioFormatLinearPCM)
        return true;

    const auto variant = std::find_if(variants.begin(), variants.end(),
                                      [=](const CAStreamBasicDescription& description)
                                      { return description.mBitsPerChannel == inBits; });
    if (variant != variants.end() && GetBitsPerChannel() != inBits)
        mStreamBasicDescription = *variant;
    if (!TrySampleRate(rate) || !TryChannelsPerFrame(channels))
        return false;

    const UInt32 frameBytes = inBits / 8 * GetChannelsPerFrame();
    SetBytesPerPacket(frameBytes);
    SetBytesPerFrame(frameBytes);
    return true;
}

bool TarvoATPrivateSettings::IsValidForEncode() const
{
    return appleaudiotoolbox::AreExportSettingsValid(mAudioFileTypeID, mStreamBasicDescription);
}

}  // namespace tarvo
