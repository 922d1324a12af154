// BitrateModes: where a variant keeps what it has for each control mode.
#ifndef APPLEAUDIOTOOLBOX_UTILITY_SRC_BITRATEMODES_H
#define APPLEAUDIOTOOLBOX_UTILITY_SRC_BITRATEMODES_H

#include "appleaudiotoolbox/utility/CatalogueRecords.h"

#include <AudioToolbox/AudioToolbox.h>

namespace appleaudiotoolbox
{

/// A mode that has bit rates.
struct BitrateMode
{
    UInt32 mMode;
    ATBitrateList ATFormatType::*mBitrates;
    UInt32 ATFormatType::*mDefault;
};

inline constexpr BitrateMode kBitrateModes[] = {
    {kAudioCodecBitRateControlMode_Constant, &ATFormatType::mBitratesCBR,
     &ATFormatType::mDefaultCBR},
    {kAudioCodecBitRateControlMode_LongTermAverage, &ATFormatType::mBitratesLTA,
     &ATFormatType::mDefaultLTA},
    {kAudioCodecBitRateControlMode_VariableConstrained, &ATFormatType::mBitratesVBRConstrained,
     &ATFormatType::mDefaultVBRConstrained},
};

/// Null for variable mode and for a number that is no mode.
inline const BitrateMode* FindBitrateMode(UInt32 inMode)
{
    for (const BitrateMode& mode : kBitrateModes)
        if (mode.mMode == inMode)
            return &mode;
    return nullptr;
}

}  // namespace appleaudiotoolbox

#endif
