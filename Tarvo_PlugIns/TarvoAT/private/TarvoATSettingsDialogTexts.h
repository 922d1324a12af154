// TarvoATSettingsDialogTexts: what the settings dialog's controls are called and what they say.
#ifndef TARVO_PLUGINS_TARVOAT_PRIVATE_TARVOATSETTINGSDIALOGTEXTS_H
#define TARVO_PLUGINS_TARVOAT_PRIVATE_TARVOATSETTINGSDIALOGTEXTS_H

#include <CoreAudio/CoreAudioTypes.h>
#include <kelpcore/Strings.h>

namespace tarvo
{

// IDs of the controls in the dialog's archive.
extern const UTF8String kOKButtonID;
extern const UTF8String kCancelButtonID;
extern const UTF8String kFileTypePopupID;
extern const UTF8String kFormatTypePopupID;
extern const UTF8String kVariantPopupID;
extern const UTF8String kBitrateModePopupID;
extern const UTF8String kBitratePopupID;
extern const UTF8String kVBRQualityPopupID;
extern const UTF8String kBitrateStaticTextID;

// For the localiser.
extern const char* const kSettingsTitleToken;
extern const char* const kBitrateZStringToken;
extern const char* const kVBRQualityZStringToken;

/// The name of one of the platform's bit rate control modes; any other number is shown as it is.
UTF16String GetBitrateModeText(UInt32 inBitrateMode);

/// A bit rate, or a range of them, in the unit that inLow asks for. Bits per second; inHigh is 0
/// for a single rate. A rate that is not above 0 has a text of its own.
UTF16String GetBitrateText(double inLow, double inHigh);

}  // namespace tarvo

#endif
