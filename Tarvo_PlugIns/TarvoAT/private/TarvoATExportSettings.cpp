// What an export starts from, and what stored settings come to for the audio at hand.
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATInterface.h"

#include "Tarvo_PlugIns/Common/SDKGlue/TarvoExtensionListBuilder.h"
#include "Tarvo_PlugIns/TarvoAT/private/ExportAudio.h"
#include "Tarvo_PlugIns/TarvoAT/private/HostFormatDescription.h"
#include "Tarvo_PlugIns/TarvoAT/private/RoundedNumbers.h"
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATPrivateSettings.h"
#include "appleaudiotoolbox/utility/ATUtils.h"
#include "appleaudiotoolbox/utility/EncodableQueries.h"
#include "appleaudiotoolbox/utility/FileTypeCatalogue.h"

#include <AudioToolbox/AudioToolbox.h>

#include <cstdint>
#include <vector>

namespace tarvo
{
namespace
{

constexpr std::int32_t kDefaultChannelCount = 2;
constexpr std::int32_t kDefaultSampleRate = 44100;

// The host's wish for settings that cannot encode its audio.
enum RepairMode : std::int32_t
{
    kRepairMode_None = 0,
    kRepairMode_FitSettings = 1,
    kRepairMode_FitAudio = 2
};

// For what a file holds beyond its audio, in bits.
constexpr std::uint64_t kEstimateAllowance = 2048;

void ApplyFilter(const TarvoFormatInterface& inFormat, TarvoATPrivateSettings& ioSettings)
{
    if (QueryFilterFileType(inFormat) != kAudioFileAAC_ADTSType)
        return;
    ioSettings.SetAudioFileTypeID(kAudioFileAAC_ADTSType);
    ioSettings.SetFormatID(kAudioFormatMPEG4AAC);
    const std::vector<CAStreamBasicDescription> variants =
        appleaudiotoolbox::GetEncodableVariants(kAudioFileAAC_ADTSType, kAudioFormatMPEG4AAC);
    if (!variants.empty())
        ioSettings.SetStreamBasicDescription(variants.front());
}

bool IsUncompressed(const TarvoATPrivateSettings& inSettings)
{
    return inSettings.GetFormatID() == kAudioFormatLinearPCM;
}

// Rate and channels as they are, and the depth as far as the file type has it.
void BringToAudio(const TarvoFormatInterface& inFormat, TarvoATPrivateSettings& ioSettings)
{
    ioSettings.SetSampleRate(inFormat.GetSampleRate());
    ioSettings.SetChannelsPerFrame(ChannelCountOf(inFormat));
    if (!IsUncompressed(ioSettings))
        return;
    const UInt32 bits = BitsPerChannelOfSampleType(inFormat.GetSampleType());
    if (ioSettings.GetBitsPerChannel() != bits)
        (void)ioSettings.TryBitsPerChannel(bits);  // what it comes to is judged as a whole
}

void TellSampleRate(const TarvoATPrivateSettings& inSettings, TarvoFormatInterface& inFormat)
{
    inFormat.SetSampleRate(TruncatedTo<std::int32_t>(inSettings.GetSampleRate()));
}

void TellChannelCount(const TarvoATPrivateSettings& inSettings, TarvoFormatInterface& inFormat)
{
    inFormat.SetChannelCount(static_cast<std::int32_t>(inSettings.GetChannelsPerFrame()));
}

// One property after the other, up to the first that makes the settings valid.
bool FitSettings(TarvoFormatInterface& inFormat, TarvoATPrivateSettings& ioSettings)
{
    (void)ioSettings.TrySampleRate(inFormat.GetSampleRate());
    if (ioSettings.IsValidForEncode())
    {
        TellSampleRate(ioSettings, inFormat);
        return true;
    }
    (void)ioSettings.TryChannelsPerFrame(ChannelCountOf(inFormat));
    if (ioSettings.IsValidForEncode())
    {
        TellChannelCount(ioSettings, inFormat);
        return true;
    }
    // For the last property the trial is the verdict.
    return IsUncompressed(ioSettings) &&
           ioSettings.TryBitsPerChannel(BitsPerChannelOfSampleType(inFormat.GetSampleType()));
}

// Back to the stored settings: the audio is to become what they say.
bool FitAudio(const UTF16String& inStored, TarvoFormatInterface& inFormat,
              TarvoATPrivateSettings& ioSettings)
{
    if (inStored.empty())
        return false;
    (void)ioSettings.InitializeFromSerialized(inStored);
    if (!ioSettings.IsValidForEncode())
        return false;
    TellSampleRate(ioSettings, inFormat);
    TellChannelCount(ioSettings, inFormat);
    return true;
}

// Whether the settings can encode the audio, perhaps after the repair that the host wants.
bool Settle(const TarvoGetExportSettingsInfoInterface& inInfo, const UTF16String& inStored,
            TarvoFormatInterface& inFormat, TarvoATPrivateSettings& ioSettings)
{
    if (ioSettings.IsValidForEncode())
        return true;
    if (inInfo.GetRepairMode() == kRepairMode_None)
        return false;
    if (inInfo.GetRepairMode() == kRepairMode_FitSettings)
        return FitSettings(inFormat, ioSettings);
    if (inInfo.GetRepairMode() == kRepairMode_FitAudio)
        return FitAudio(inStored, inFormat, ioSettings);
    return false;
}

// Bits of the file. Any length may stand in the host's format and any figure in stored settings, so
// the sums wrap around.
std::int64_t EstimatedBits(const TarvoFormatInterface& inFormat,
                           const TarvoATPrivateSettings& inSettings)
{
    const std::int64_t frames = inFormat.GetSampleCount();
    std::uint64_t bits = 0;
    if (IsUncompressed(inSettings))
    {
        const std::uint64_t frameBits = std::uint64_t{inSettings.GetBytesPerFrame()} * 8;
        bits = static_cast<std::uint64_t>(frames) * frameBits;
    }
    else
    {
        const double seconds =
            static_cast<double>(frames) / static_cast<double>(inFormat.GetSampleRate());
        const double figure = inSettings.GetBitrate() * seconds;
        bits = static_cast<std::uint64_t>(TruncatedTo<std::int64_t>(figure));
    }
    return static_cast<std::int64_t>(bits + kEstimateAllowance);
}

void TellFileType(UInt32 inFileTypeID, TarvoFormatInterface& inFormat)
{
    inFormat.SetMimeType(appleaudiotoolbox::GetMIMEType(inFileTypeID).c_str());
    inFormat.SetXmpType(appleaudiotoolbox::GetXMPType(inFileTypeID));
    inFormat.SetFormatFlags(0);
}

void TellExtensions(UInt32 inFileTypeID, TarvoFormatInterface& inFormat)
{
    appleaudiotoolbox::ATExtensionSet extensions;
    appleaudiotoolbox::QueryFileTypeExtensions(inFileTypeID, extensions);
    TarvoExtensionListBuilder list;
    for (const UTF8String& extension : extensions)
        list.Append(extension.c_str());
    inFormat.SetFileExtensions(list.List());
}

// All that the settings come to, also for settings that stay impossible.
void Report(const TarvoATPrivateSettings& inSettings, TarvoFormatInterface& inFormat,
            TarvoGetExportSettingsInfoInterface& inInfo)
{
    inInfo.SetLossy(inSettings.IsFormatLossy());
    inInfo.SetEstimatedBits(EstimatedBits(inFormat, inSettings));
    TellFileType(inSettings.GetAudioFileTypeID(), inFormat);
    inInfo.SetFormatDescription(
        GetFormatDescription(inSettings.GetExtendedFormatDescription()).c_str());
    inFormat.SetPrivateSettings(inSettings.GetSerialized().c_str());
    TellExtensions(inSettings.GetAudioFileTypeID(), inFormat);
}

}  // namespace

std::int32_t TarvoATInterface::GetDefaultExportSettings(TarvoFormatInterface& inFormat)
{
    inFormat.SetChannelCount(kDefaultChannelCount);
    inFormat.SetSampleRate(kDefaultSampleRate);
    inFormat.SetSampleType(kTarvoSampleType16);
    return kTarvoResultSuccess;
}

std::int32_t TarvoATInterface::GetExportSettingsInfo(TarvoGetExportSettingsInfoInterface& inInfo)
{
    inInfo.SetHasSettings(true);
    TarvoFormatInterface& format = *inInfo.GetFormatInterface();
    TarvoATPrivateSettings settings;
    const UTF16String stored = format.GetPrivateSettings();
    if (!stored.empty())
        (void)settings.InitializeFromSerialized(stored);  // judged below, with the audio
    else
        ApplyFilter(format, settings);

    BringToAudio(format, settings);
    const bool isValid = Settle(inInfo, stored, format, settings);
    Report(settings, format, inInfo);
    return isValid ? kTarvoResultSuccess : kTarvoResultUnsupportedFormat;
}

}  // namespace tarvo
