// The popups of the settings dialog: what they list and what their items mean.
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATSettingsDialog.h"

#include "Tarvo_PlugIns/TarvoAT/private/RoundedNumbers.h"
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATSettingsDialogTexts.h"
#include "appleaudiotoolbox/utility/ATFormatUtils.h"
#include "appleaudiotoolbox/utility/ATUtils.h"
#include "appleaudiotoolbox/utility/EncodableQueries.h"

#include <AudioToolbox/AudioToolbox.h>

#include <cstdint>
#include <vector>

namespace tarvo
{
namespace
{

// inIsStored  whether this is what the settings have; a later match wins over an earlier one
template <typename Value>
void AddItem(TarvoATSettingsDialog::Popup& ioPopup, std::map<long, Value>& ioItems,
             const UTF16String& inText, const Value& inValue, bool inIsStored)
{
    const long item = ioPopup.AddItem(inText);
    ioItems.emplace(item, inValue);
    if (inIsStored)
        ioPopup.SetValue(item);
}

// What matches nothing leaves the popup at its first item.
template <typename Value>
void Clear(TarvoATSettingsDialog::Popup& ioPopup, std::map<long, Value>& ioItems)
{
    ioPopup.DeleteAllItems();
    ioPopup.SetValue(0);
    ioItems.clear();
}

}  // namespace

void TarvoATSettingsDialog::PopulateFilePopup(UInt32 inFileTypeID)
{
    AddItem(*mFileTypePopup, mFileTypeItems,
            appleaudiotoolbox::GetFileTypeDescriptionString(inFileTypeID), inFileTypeID,
            inFileTypeID == mWorkingSettings.GetAudioFileTypeID());
}

void TarvoATSettingsDialog::PopulateFormatPopup(UInt32 inFormatID)
{
    AddItem(*mFormatTypePopup, mFormatItems, appleaudiotoolbox::GetDescriptionString(inFormatID),
            inFormatID, inFormatID == mWorkingSettings.GetFormatID());
}

void TarvoATSettingsDialog::PopulateVariantPopup(CAStreamBasicDescription inDescription,
                                                 bool inOnlyVariant)
{
    if (inOnlyVariant)
    {
        UInt32 size = sizeof(AudioStreamBasicDescription);
        AudioStreamBasicDescription& details = inDescription;
        // Without details the description serves as it is.
        (void)AudioFormatGetProperty(kAudioFormatProperty_FormatInfo, 0, nullptr, &size, &details);
        inDescription.mSampleRate = mWorkingSettings.GetSampleRate();
        inDescription.mChannelsPerFrame = mWorkingSettings.GetChannelsPerFrame();
    }
    AddItem(*mVariantPopup, mVariantItems,
            appleaudiotoolbox::GetDescriptionString(inDescription, 0, -1, -1, -1), inDescription,
            mWorkingSettings.GetStreamBasicDescription().IsEqual(inDescription));
}

void TarvoATSettingsDialog::PopulateBitrateModePopup(UInt32 inBitrateMode)
{
    AddItem(*mBitrateModePopup, mBitrateModeItems, GetBitrateModeText(inBitrateMode), inBitrateMode,
            inBitrateMode == mWorkingSettings.GetBitrateMode());
}

void TarvoATSettingsDialog::PopulateBitratePopup(double inLow, double inHigh)
{
    AddItem(*mBitratePopup, mBitrateItems, GetBitrateText(inLow, inHigh),
            static_cast<UInt32>(TruncatedTo<std::int64_t>(inLow)),
            static_cast<double>(mWorkingSettings.GetBitrate()) == inLow);
}

void TarvoATSettingsDialog::RePopulateFilePopup()
{
    Clear(*mFileTypePopup, mFileTypeItems);
    for (const UInt32 fileType : appleaudiotoolbox::GetExportableFileTypes())
        PopulateFilePopup(fileType);
}

void TarvoATSettingsDialog::RePopulateFormatPopup()
{
    Clear(*mFormatTypePopup, mFormatItems);
    const UInt32 fileType = mWorkingSettings.GetAudioFileTypeID();
    for (const UInt32 format : appleaudiotoolbox::GetEncodableFormats(fileType))
        PopulateFormatPopup(format);
}

void TarvoATSettingsDialog::RePopulateVariantPopup()
{
    Clear(*mVariantPopup, mVariantItems);
    const std::vector<CAStreamBasicDescription> variants = appleaudiotoolbox::GetEncodableVariants(
        mWorkingSettings.GetAudioFileTypeID(), mWorkingSettings.GetFormatID());
    // Variants of another depth than the audio's are left out, though none may remain.
    for (const CAStreamBasicDescription& variant : variants)
        if (variant.mBitsPerChannel == 0 || variant.mBitsPerChannel == mSourceBitDepth)
            PopulateVariantPopup(variant, variants.size() == 1);
}

void TarvoATSettingsDialog::RePopulateBitrateModePopup()
{
    Clear(*mBitrateModePopup, mBitrateModeItems);
    const std::vector<UInt32> modes = appleaudiotoolbox::GetEncodableBitrateModes(
        mWorkingSettings.GetAudioFileTypeID(), mWorkingSettings.GetFormatID());
    for (const UInt32 mode : modes)
        PopulateBitrateModePopup(mode);
}

void TarvoATSettingsDialog::RePopulateBitratePopup()
{
    Clear(*mBitratePopup, mBitrateItems);
    const CAStreamBasicDescription client = appleaudiotoolbox::ConstructClientFormatFromArgs(
        mWorkingSettings.GetSampleRate(), mSourceBitDepth, mWorkingSettings.GetChannelsPerFrame());
    const appleaudiotoolbox::ATBitrateList ranges = appleaudiotoolbox::GetEncodableBitrates(
        mWorkingSettings.GetAudioFileTypeID(), mWorkingSettings.GetFormatID(),
        mWorkingSettings.GetBitrateMode(), &client);
    for (const AudioValueRange& range : ranges)
        PopulateBitratePopup(range.mMinimum,
                             range.mMinimum != range.mMaximum ? range.mMaximum : 0.0);
}

void TarvoATSettingsDialog::ShowComputedBitrate(double inBitrate)
{
    Clear(*mBitratePopup, mBitrateItems);
    PopulateBitratePopup(inBitrate, 0.0);
}

}  // namespace tarvo
