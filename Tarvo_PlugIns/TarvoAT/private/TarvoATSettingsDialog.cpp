#include "Tarvo_PlugIns/TarvoAT/private/TarvoATSettingsDialog.h"

#include "Tarvo_PlugIns/Common/Module/private/Module.h"
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATSettingsDialogTexts.h"
#include "appleaudiotoolbox/utility/ATUtils.h"
#include "appleaudiotoolbox/utility/EncodableQueries.h"
#include "appleaudiotoolbox/utility/ExportValidation.h"

#include <AudioToolbox/AudioToolbox.h>
#include <kelpcore/config/Localizer.h>
#include <kelpui/ui/BindMessageFunction.h>
#include <ombra/app/App.h>

#include <algorithm>
#include <vector>

namespace tarvo
{
namespace
{

using kelpui::ui::UI_ArchivedDialog;
using Variants = std::vector<CAStreamBasicDescription>;

constexpr char kArchiveName[] = "FormatOptions";
constexpr long kPopupStyle = 3;
constexpr unsigned kHasTitleBar = 1;

// The platform's qualities, in the order of the items that the archive has: maximum, high, medium,
// low, minimum.
constexpr UInt32 kQualities[] = {127, 96, 64, 32, 0};

boost::intrusive_ptr<UI_ArchivedDialog> OpenDialog(void* inParent)
{
    const kelpui::inkwright::SupplierInterface& supplier =
        ombra::app::App::GetApp().GetWorkspace().GetSupplier();
    return new UI_ArchivedDialog(supplier, module::GetResourceManager(), kArchiveName,
                                 kelpcore::config::Localizer::Get().Translate(kSettingsTitleToken),
                                 inParent, true, false, kelpui::ui::Point{},
                                 kelpui::ui::NodeFactory(), false, kHasTitleBar);
}

// The value of the chosen item; null for an item without one, as in an empty popup.
template <typename Value>
const Value* Chosen(const TarvoATSettingsDialog::Popup& inPopup,
                    const std::map<long, Value>& inItems)
{
    const auto found = inItems.find(inPopup.GetValue());
    return found == inItems.end() ? nullptr : &found->second;
}

void Read(const TarvoATSettingsDialog::Popup& inPopup, const std::map<long, UInt32>& inItems,
          TarvoATPrivateSettings& outSettings, void (TarvoATPrivateSettings::*inStore)(UInt32))
{
    if (const UInt32* value = Chosen(inPopup, inItems))
        (outSettings.*inStore)(*value);
}

template <typename Differs>
void Narrow(Variants& ioVariants, CAStreamBasicDescription& ioChosen, Differs inDiffers)
{
    ioVariants.erase(std::remove_if(ioVariants.begin(), ioVariants.end(), inDiffers),
                     ioVariants.end());
    if (!ioVariants.empty())
        ioChosen = ioVariants.front();
}

// Each wish narrows the variants; one that none fulfils ends the narrowing. There is a variant at
// least.
CAStreamBasicDescription NearestVariant(Variants inVariants, UInt32 inBitDepth, UInt32 inFlags)
{
    CAStreamBasicDescription chosen = inVariants.front();
    if (inBitDepth != 0)
        Narrow(inVariants, chosen,
               [&](const CAStreamBasicDescription& variant)
               { return variant.mBitsPerChannel != inBitDepth; });
    for (const UInt32 flag : {UInt32{kAudioFormatFlagIsFloat}, UInt32{kAudioFormatFlagIsBigEndian}})
        Narrow(inVariants, chosen,
               [&](const CAStreamBasicDescription& variant)
               { return ((variant.mFormatFlags ^ inFlags) & flag) != 0; });
    return chosen;
}

// Byte counts, rate and channels that fit the depth; what it comes to is validated as a whole.
void FitUncompressed(TarvoATPrivateSettings& ioSettings)
{
    if (ioSettings.GetFormatID() == kAudioFormatLinearPCM)
        (void)ioSettings.TryBitsPerChannel(ioSettings.GetBitsPerChannel());
}

// Bits per second of the format as it is, with an estimate for one without a depth.
double UncompressedBitrate(const TarvoATPrivateSettings& inSettings)
{
    const UInt32 bits = inSettings.GetBitsPerChannel();
    const double depth =
        bits != 0
            ? bits
            : appleaudiotoolbox::GetEstimatedBitDepthFromCompressedFormat(inSettings.GetFormatID());
    return inSettings.GetSampleRate() * depth * inSettings.GetChannelsPerFrame();
}

template <typename Value>
void DisableWithoutChoice(TarvoATSettingsDialog::Popup& ioPopup,
                          const std::map<long, Value>& inItems)
{
    ioPopup.SetDisabled(inItems.size() < 2);
}

}  // namespace

TarvoATSettingsDialog::TarvoATSettingsDialog(TarvoATPrivateSettings& ioSettings,
                                             double inSampleRate, UInt32 inChannels,
                                             UInt32 inBitDepth)
    : mSettings(ioSettings),
      mSourceSampleRate(inSampleRate),
      mSourceChannels(inChannels),
      mSourceBitDepth(inBitDepth),
      mWorkingSettings(ioSettings)
{
}

bool TarvoATSettingsDialog::RunModal(void* inParent)
{
    mDialog = OpenDialog(inParent);
    GetPopup(kFileTypePopupID, &TarvoATSettingsDialog::OnFileTypeChanged, mFileTypePopup);
    if (mFixedFileType != 0)
        mWorkingSettings = mSettings;  // the caller has changed it since
    RePopulateFilePopup();
    GetPopup(kFormatTypePopupID, &TarvoATSettingsDialog::OnFormatTypeChanged, mFormatTypePopup);
    RePopulateFormatPopup();
    GetPopup(kVariantPopupID, &TarvoATSettingsDialog::OnVariantChanged, mVariantPopup);
    RePopulateVariantPopup();
    GetPopup(kBitrateModePopupID, &TarvoATSettingsDialog::OnBitrateModeChanged, mBitrateModePopup);
    RePopulateBitrateModePopup();
    GetPopup(kBitratePopupID, &TarvoATSettingsDialog::OnBitrateChanged, mBitratePopup);
    GetQualityPopup();
    GetTextAndButtons();
    OnFileTypeChanged(nullptr);

    mDialog->RunDialog();
    if (mDialog->GetResult() != UI_ArchivedDialog::kOK)
        return false;
    mSettings = mWorkingSettings;
    return true;
}

void TarvoATSettingsDialog::GetPopup(const UTF8String& inID, Handler inHandler, PopupRef& outPopup)
{
    outPopup = mDialog->GetTypedControlForID<Popup>(inID);
    outPopup->SetStyle(kPopupStyle);
    outPopup->SetItemCheckStyle(true);
    outPopup->NotifyWhenChanged(kelpui::ui::BindMessageFunction(inHandler, this));
}

// The archive has the items, so that they alone are not filled in here.
void TarvoATSettingsDialog::GetQualityPopup()
{
    GetPopup(kVBRQualityPopupID, &TarvoATSettingsDialog::OnVBRQualityChanged, mVBRQualityPopup);
    long item = 0;
    for (const UInt32 quality : kQualities)
        mVBRQualityItems.emplace(item++, quality);
    for (const auto& [number, quality] : mVBRQualityItems)
        if (quality == mWorkingSettings.GetVBRQuality())
            mVBRQualityPopup->SetValue(number);
}

void TarvoATSettingsDialog::GetTextAndButtons()
{
    using kelpui::controls::UI_Button;
    mBitrateStaticText =
        mDialog->GetTypedControlForID<kelpui::controls::UI_StaticText>(kBitrateStaticTextID);
    mOKButton = mDialog->GetTypedControlForID<UI_Button>(kOKButtonID);
    mDialog->SetOkButton(mOKButton);
    const auto cancelButton = mDialog->GetTypedControlForID<UI_Button>(kCancelButtonID);
    mDialog->SetCancelButton(cancelButton);
    kelpui::ui::FlipNodePositionsOnMac(mOKButton, cancelButton);
}

void TarvoATSettingsDialog::ReadFormat()
{
    if (const UInt32* format = Chosen(*mFormatTypePopup, mFormatItems))
        SetFormat(*format);
}

void TarvoATSettingsDialog::ShowBitrateLabel(const char* inText)
{
    mBitrateStaticText->SetValue(kelpcore::config::Localizer::Get().Translate(inText));
}

void TarvoATSettingsDialog::OnFileTypeChanged(Message* inMessage)
{
    Read(*mFileTypePopup, mFileTypeItems, mWorkingSettings,
         &TarvoATPrivateSettings::SetAudioFileTypeID);
    RePopulateFormatPopup();
    ReadFormat();
    OnFormatTypeChanged(inMessage);
}

void TarvoATSettingsDialog::OnFormatTypeChanged(Message* inMessage)
{
    ReadFormat();
    // Still from the items of the format before, so that its mode is kept where both have it.
    Read(*mBitrateModePopup, mBitrateModeItems, mWorkingSettings,
         &TarvoATPrivateSettings::SetBitrateMode);
    RePopulateVariantPopup();
    RePopulateBitrateModePopup();
    const bool hasBitrates = !mBitrateModeItems.empty() && mVariantItems.size() == 1;
    mVariantPopup->SetVisible(!hasBitrates);
    mBitrateModePopup->SetVisible(hasBitrates);
    if (hasBitrates)
        return OnBitrateModeChanged(inMessage);
    // Bit rate and quality popup stay as they are, whichever of them shows.
    ShowBitrateLabel(kBitrateZStringToken);
    OnVariantChanged(inMessage);
}

void TarvoATSettingsDialog::OnVariantChanged(Message*)
{
    if (const CAStreamBasicDescription* variant = Chosen(*mVariantPopup, mVariantItems))
    {
        CAStreamBasicDescription format = *variant;
        if (format.mSampleRate == 0.0)
            format.mSampleRate = mSourceSampleRate;
        if (format.mChannelsPerFrame == 0)
            format.mChannelsPerFrame = mSourceChannels;
        mWorkingSettings.SetStreamBasicDescription(format);
    }
    FitUncompressed(mWorkingSettings);
    ShowComputedBitrate(UncompressedBitrate(mWorkingSettings));
    Read(*mBitratePopup, mBitrateItems, mWorkingSettings, &TarvoATPrivateSettings::SetBitrate);
    ValidateSettings();
}

void TarvoATSettingsDialog::OnBitrateModeChanged(Message*)
{
    Read(*mBitrateModePopup, mBitrateModeItems, mWorkingSettings,
         &TarvoATPrivateSettings::SetBitrateMode);
    // From the old items, so that the refill can find the rate again.
    Read(*mBitratePopup, mBitrateItems, mWorkingSettings, &TarvoATPrivateSettings::SetBitrate);
    if (mWorkingSettings.GetBitrateMode() == kAudioCodecBitRateControlMode_Variable)
    {
        mVBRQualityPopup->SetVisible(true);
        mBitratePopup->SetVisible(false);
        ShowBitrateLabel(kVBRQualityZStringToken);
        return OnVBRQualityChanged(nullptr);
    }
    mVBRQualityPopup->SetVisible(false);
    mBitratePopup->SetVisible(true);
    ShowBitrateLabel(kBitrateZStringToken);
    RePopulateBitratePopup();
    OnBitrateChanged(nullptr);
}

void TarvoATSettingsDialog::OnBitrateChanged(Message*)
{
    Read(*mBitratePopup, mBitrateItems, mWorkingSettings, &TarvoATPrivateSettings::SetBitrate);
    ValidateSettings();
}

void TarvoATSettingsDialog::OnVBRQualityChanged(Message*)
{
    Read(*mVBRQualityPopup, mVBRQualityItems, mWorkingSettings,
         &TarvoATPrivateSettings::SetVBRQuality);
    ValidateSettings();
}

void TarvoATSettingsDialog::SetFormat(UInt32 inFormatID)
{
    const Variants variants =
        appleaudiotoolbox::GetEncodableVariants(mWorkingSettings.GetAudioFileTypeID(), inFormatID);
    // A format without variants leaves what there is.
    if (!variants.empty())
        mWorkingSettings.SetStreamBasicDescription(
            NearestVariant(variants, mSourceBitDepth, mWorkingSettings.GetFormatFlags()));
    if (mWorkingSettings.GetSampleRate() == 0.0)
        (void)mWorkingSettings.TrySampleRate(mSourceSampleRate);
    if (mWorkingSettings.GetChannelsPerFrame() == 0)
        (void)mWorkingSettings.TryChannelsPerFrame(mSourceChannels);
    FitUncompressed(mWorkingSettings);
}

void TarvoATSettingsDialog::ValidateSettings()
{
    DisableWithoutChoice(*mFormatTypePopup, mFormatItems);
    DisableWithoutChoice(*mVariantPopup, mVariantItems);
    DisableWithoutChoice(*mBitrateModePopup, mBitrateModeItems);
    DisableWithoutChoice(*mBitratePopup, mBitrateItems);
    mSettingsValid = appleaudiotoolbox::AreExportSettingsValid(
        mWorkingSettings.GetAudioFileTypeID(), mWorkingSettings.GetStreamBasicDescription());
    mOKButton->SetDisabled(!mSettingsValid);
    if (mFixedFileType != 0)
        mFileTypePopup->SetDisabled(true);
}

}  // namespace tarvo
