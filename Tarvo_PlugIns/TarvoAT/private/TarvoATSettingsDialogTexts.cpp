#include "Tarvo_PlugIns/TarvoAT/private/TarvoATSettingsDialogTexts.h"

#include <AudioToolbox/AudioToolbox.h>
#include <kelpcore/config/Localizer.h>
#include <kelpcore/utility/NumberText.h>
#include <kelpcore/utility/ReplaceInString.h>
#include <kelpcore/utility/StringConversion.h>

#include <string>

namespace tarvo
{
namespace
{

struct ModeText
{
    UInt32 mMode;
    const char* mText;
};

constexpr ModeText kModeTexts[] = {
    {kAudioCodecBitRateControlMode_Constant,
     "$$$/tarvo/TarvoATSettingsDialog/ConstantBitrate=Constant Bitrate"},
    {kAudioCodecBitRateControlMode_LongTermAverage,
     "$$$/tarvo/TarvoATSettingsDialog/LongTermAverageBitrate=Long-Term Average Bitrate"},
    {kAudioCodecBitRateControlMode_VariableConstrained,
     "$$$/tarvo/TarvoATSettingsDialog/VariableBitrateContrainted=Variable Bitrate (Constrained)"},
    {kAudioCodecBitRateControlMode_Variable,
     "$$$/tarvo/TarvoATSettingsDialog/VariableBitrate=Variable Bitrate"},
};
constexpr char kUnknownMode[] =
    "$$$/tarvo/TarvoATSettingsDialog/UnknownBitrateMode=(Unknown Bitrate Mode: @0)";

constexpr char kNoBitrate[] =
    "$$$/tarvo/TarvoATSettingsDialog/UnableToCalculateBitrate=(Unable to Calculate Bitrate)";

struct BitrateUnit
{
    double mScale;
    const char* mText;
};

constexpr BitrateUnit kKilobits = {0.001,
                                   "$$$/tarvo/TarvoATSettingsDialog/kilobitsPerSecond= kbps"};
constexpr BitrateUnit kMegabits = {0.000001,
                                   "$$$/tarvo/TarvoATSettingsDialog/MegabitsPerSecond= Mbps"};
constexpr BitrateUnit kBits = {1.0, "$$$/tarvo/TarvoATSettingsDialog/bitsPerSecond= bps"};

// There is no unit above the megabit.
const BitrateUnit& UnitOf(double inBitrate)
{
    if (inBitrate >= 1e3 && inBitrate < 1e6)
        return kKilobits;
    if (inBitrate >= 1e6 && inBitrate < 1e9)
        return kMegabits;
    return kBits;
}

UTF16String Translate(const char* inLiteral)
{
    return kelpcore::config::Localizer::Get().Translate(inLiteral);
}

UTF16String NumberText(double inNumber)
{
    return kelpcore::utility::NumberToString(inNumber, 1, 2, 0, 31);
}

}  // namespace

const UTF8String kOKButtonID = "OKButtonID";
const UTF8String kCancelButtonID = "CancelButtonID";
const UTF8String kFileTypePopupID = "FileTypePopupID";
const UTF8String kFormatTypePopupID = "FormatTypePopupID";
const UTF8String kVariantPopupID = "VariantPopupID";
const UTF8String kBitrateModePopupID = "BitrateModePopupID";
const UTF8String kBitratePopupID = "BitratePopupID";
const UTF8String kVBRQualityPopupID = "VBRQualityPopupID";
const UTF8String kBitrateStaticTextID = "BitrateStaticTextID";

const char* const kSettingsTitleToken =
    "$$$/tarvo/TarvoATSettingsDialog/ATSettings=Apple Audio Toolbox Settings";
const char* const kBitrateZStringToken = "$$$/tarvo/TarvoATSettingsDialog/Bitrate=Bitrate:";
const char* const kVBRQualityZStringToken =
    "$$$/tarvo/TarvoATSettingsDialog/VBRQuality=VBR Quality:";

UTF16String GetBitrateModeText(UInt32 inBitrateMode)
{
    for (const ModeText& row : kModeTexts)
        if (row.mMode == inBitrateMode)
            return Translate(row.mText);
    return kelpcore::utility::ReplaceInString(
        Translate(kUnknownMode), kelpcore::utility::AsciiToUTF16(std::to_string(inBitrateMode)));
}

UTF16String GetBitrateText(double inLow, double inHigh)
{
    if (!(inLow > 0.0))  // NaN too
        return Translate(kNoBitrate);
    const BitrateUnit& unit = UnitOf(inLow);
    UTF16String text = NumberText(inLow * unit.mScale);
    if (inHigh > 0.0)
        text += u" - " + NumberText(inHigh * unit.mScale);
    return text + Translate(unit.mText);
}

}  // namespace tarvo
