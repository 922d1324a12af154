// TarvoATSettingsDialog: the modal dialog in which the user chooses the settings of one export.
//
// Each popup shows a list of the catalogue, and a map beside it tells what its items mean. A choice
// refills what depends on it, from file type down to bit rate. All choices are made on a copy; the
// caller's record changes on OK alone. Made, run once and destroyed by its caller, on one thread.
#ifndef TARVO_PLUGINS_TARVOAT_PRIVATE_TARVOATSETTINGSDIALOG_H
#define TARVO_PLUGINS_TARVOAT_PRIVATE_TARVOATSETTINGSDIALOG_H

#include "Tarvo_PlugIns/TarvoAT/private/TarvoATPrivateSettings.h"

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <kelpui/controls/UI_Button.h>
#include <kelpui/controls/UI_Popup.h>
#include <kelpui/controls/UI_StaticText.h>
#include <kelpui/ui/UI_ArchivedDialog.h>

#include <map>

namespace tarvo
{

class TarvoATSettingsDialog
{
public:
    using Message = kelpui::controls::UI_ControlChangedMessage;
    using Popup = kelpui::controls::UI_Popup;
    using PopupRef = boost::intrusive_ptr<Popup>;
    using Handler = void (TarvoATSettingsDialog::*)(Message*);

    /// Asks nobody for anything yet.
    ///
    /// ioSettings   where the dialog starts from and what it changes; outlives the dialog
    /// inSampleRate, inChannels, inBitDepth  of the audio to be saved; a depth of 0 is unknown
    TarvoATSettingsDialog(TarvoATPrivateSettings& ioSettings, double inSampleRate,
                          UInt32 inChannels, UInt32 inBitDepth);
    TarvoATSettingsDialog(const TarvoATSettingsDialog&) = delete;
    TarvoATSettingsDialog& operator=(const TarvoATSettingsDialog&) = delete;

    /// Shows the dialog until the user closes it. True for OK, with the caller's record replaced;
    /// false otherwise. Throws what the framework throws for an archive that is missing or lacks a
    /// control, and without somebody to show the dialog.
    ///
    /// inParent  the desktop's window that the dialog belongs to, an NSWindow on the Mac; may be
    ///           null
    bool RunModal(void* inParent);

    // Reactions to the user. The message tells nothing that the popup does not.
    void OnFileTypeChanged(Message* inMessage);
    void OnFormatTypeChanged(Message* inMessage);
    void OnVariantChanged(Message* inMessage);
    void OnBitrateModeChanged(Message* inMessage);
    void OnBitrateChanged(Message* inMessage);
    void OnVBRQualityChanged(Message* inMessage);

    /// Gives the working copy the variant of a format that is nearest to what it has: depth of the
    /// audio first, then float or integer, then byte order, then the catalogue's order.
    void SetFormat(UInt32 inFormatID);
    /// Brings disabled states and the OK button up to date.
    void ValidateSettings();

    // One item more; it is chosen if it is what the working copy has.
    void PopulateFilePopup(UInt32 inFileTypeID);
    void PopulateFormatPopup(UInt32 inFormatID);
    /// inOnlyVariant  the format has no other: the platform fills in its details
    void PopulateVariantPopup(CAStreamBasicDescription inDescription, bool inOnlyVariant);
    void PopulateBitrateModePopup(UInt32 inBitrateMode);
    /// Bits per second. inHigh is 0 for a single rate; a range means its low end.
    void PopulateBitratePopup(double inLow, double inHigh);

    // A whole popup afresh, from what stands above it in the working copy.
    void RePopulateFilePopup();
    void RePopulateFormatPopup();
    void RePopulateVariantPopup();
    void RePopulateBitrateModePopup();
    void RePopulateBitratePopup();

private:
    void GetPopup(const UTF8String& inID, Handler inHandler, PopupRef& outPopup);
    void GetQualityPopup();
    void GetTextAndButtons();
    // Applies the format that the popup shows.
    void ReadFormat();
    // One item, which the user cannot choose another for.
    void ShowComputedBitrate(double inBitrate);
    void ShowBitrateLabel(const char* inText);

    boost::intrusive_ptr<kelpui::ui::UI_ArchivedDialog> mDialog;
    boost::intrusive_ptr<kelpui::controls::UI_Button> mOKButton;
    PopupRef mFileTypePopup;
    PopupRef mFormatTypePopup;
    PopupRef mVariantPopup;
    PopupRef mBitrateModePopup;
    PopupRef mBitratePopup;
    PopupRef mVBRQualityPopup;
    boost::intrusive_ptr<kelpui::controls::UI_StaticText> mBitrateStaticText;
    TarvoATPrivateSettings& mSettings;
    double mSourceSampleRate;
    UInt32 mSourceChannels;
    UInt32 mSourceBitDepth;
    TarvoATPrivateSettings mWorkingSettings;
    bool mSettingsValid = false;
    std::map<long, UInt32> mFileTypeItems;
    std::map<long, UInt32> mFormatItems;
    std::map<long, CAStreamBasicDescription> mVariantItems;
    std::map<long, UInt32> mBitrateModeItems;
    std::map<long, UInt32> mBitrateItems;  // bits per second
    std::map<long, UInt32> mVBRQualityItems;

public:
    /// 0, or the file type that the user may not change. To be set before the run.
    UInt32 mFixedFileType = 0;
};

}  // namespace tarvo

#endif
