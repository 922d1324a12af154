// ExportValidation: each check, from the output catalogue and the platform's encoders.
#include "appleaudiotoolbox/utility/ExportValidation.h"

#include "appleaudiotoolbox/utility/BitrateProbe.h"
#include "appleaudiotoolbox/utility/src/BitrateModes.h"
#include "appleaudiotoolbox/utility/src/CatalogueState.h"
#include "appleaudiotoolbox/utility/src/ProbeConverter.h"
#include "appleaudiotoolbox/utility/src/PropertyLists.h"

#include <algorithm>

namespace appleaudiotoolbox
{

namespace
{

constexpr UInt32 kAnyChannelCount = 0xFFFFFFFF;

bool Holds(const AudioValueRange& inRange, double inValue)
{
    return inRange.mMinimum <= inValue && inValue <= inRange.mMaximum;
}

// Whether a valid format has a variant of this kind.
template <typename Accepts>
bool HasVariant(UInt32 inFileTypeID, UInt32 inFormatID, Accepts inAccepts)
{
    if (!IsExportFormatValid(inFileTypeID, inFormatID))
        return false;
    const ATFormatTypeList& variants = sOutputFileTypes[inFileTypeID].mFormatTypeMap[inFormatID];
    return std::any_of(variants.begin(), variants.end(), inAccepts);
}

bool AcceptsChannelCount(const ATFormatType& inVariant, UInt32 inChannelCount)
{
    std::vector<UInt32> counts;
    if (ReadFormatList(kAudioFormatProperty_AvailableEncodeNumberChannels,
                       Specifier(inVariant.mFormatDescription), counts) != noErr ||
        counts.empty())
        return false;
    // Only in front does the value mean any number.
    return counts.front() == kAnyChannelCount ||
           std::find(counts.begin(), counts.end(), inChannelCount) != counts.end();
}

bool HasBitrateMode(const ATFormatType& inVariant, UInt32 inBitrateMode)
{
    if (inBitrateMode == kAudioCodecBitRateControlMode_Variable)
        return inVariant.mSupportsVBR;
    const BitrateMode* const mode = FindBitrateMode(inBitrateMode);
    return mode && !(inVariant.*mode->mBitrates).empty();
}

bool HasBitrate(const ATFormatType& inVariant, UInt32 inBitrateMode, double inBitrate)
{
    if (inBitrateMode == kAudioCodecBitRateControlMode_Variable)
        return inVariant.mSupportsVBR;
    const BitrateMode* const mode = FindBitrateMode(inBitrateMode);
    if (!mode)
        return false;
    const ATBitrateList& rates = inVariant.*mode->mBitrates;
    return std::any_of(rates.begin(), rates.end(),
                       [=](const AudioValueRange& range) { return Holds(range, inBitrate); });
}

}  // namespace

bool IsExportFileTypeValid(UInt32 inFileTypeID)
{
    InitializeOutputFileTypes();
    return sOutputFileTypes.count(inFileTypeID) > 0;
}

bool IsExportFormatValid(UInt32 inFileTypeID, UInt32 inFormatID)
{
    // The subscript for the format enters an unknown one without variants, which callers rely on.
    return IsExportFileTypeValid(inFileTypeID) &&
           !sOutputFileTypes[inFileTypeID].mFormatTypeMap[inFormatID].empty();
}

bool IsExportSampleRateValid(UInt32 inFileTypeID, UInt32 inFormatID, double inSampleRate)
{
    if (!IsExportFormatValid(inFileTypeID, inFormatID))
        return false;
    const ATFormatType variant = sOutputFileTypes[inFileTypeID].mFormatTypeMap[inFormatID].front();
    for (;;)
    {
        AudioValueRange range = {0.0, 0.0};
        UInt32 bytes = sizeof(range);  // for the first range, whatever else there is
        if (AudioFormatGetProperty(kAudioFormatProperty_AvailableEncodeSampleRates,
                                   sizeof(AudioStreamBasicDescription), &variant.mFormatDescription,
                                   &bytes, &range) != noErr)
            continue;
        const bool takesAnyRate = range.mMinimum == 0.0 && range.mMaximum == 0.0;
        if (takesAnyRate || Holds(range, inSampleRate))
            return true;
    }
}

bool IsExportChannelNumberValid(UInt32 inFileTypeID, UInt32 inFormatID, UInt32 inChannelCount)
{
    return HasVariant(inFileTypeID, inFormatID,
                      [=](const ATFormatType& variant)
                      { return AcceptsChannelCount(variant, inChannelCount); });
}

bool IsExportBitDepthValid(UInt32 inFileTypeID, UInt32 inFormatID, UInt32 inBitsPerChannel)
{
    return HasVariant(inFileTypeID, inFormatID,
                      [=](const ATFormatType& variant)
                      {
        return variant.mFormatDescription.IsPCM() &&
               variant.mFormatDescription.mBitsPerChannel == inBitsPerChannel;
    });
}

bool AreExportFormatFlagsValid(UInt32 inFileTypeID, UInt32 inFormatID, UInt32 inFormatFlags)
{
    return HasVariant(inFileTypeID, inFormatID,
                      [=](const ATFormatType& variant)
                      { return variant.mFormatDescription.mFormatFlags == inFormatFlags; });
}

bool IsExportBitrateModeValid(UInt32 inFileTypeID, UInt32 inFormatID, UInt32 inBitrateMode)
{
    return HasVariant(inFileTypeID, inFormatID,
                      [=](const ATFormatType& variant)
                      { return HasBitrateMode(variant, inBitrateMode); });
}

bool IsExportBitrateValid(UInt32 inFileTypeID, UInt32 inFormatID, UInt32 inBitrateMode,
                          UInt32 inBitrate)
{
    if (!IsExportBitrateModeValid(inFileTypeID, inFormatID, inBitrateMode))
        return false;
    return HasVariant(inFileTypeID, inFormatID,
                      [=](const ATFormatType& variant)
                      { return HasBitrate(variant, inBitrateMode, inBitrate); });
}

bool AreExportSettingsValid(UInt32 inFileTypeID, CAStreamBasicDescription inFormat)
{
    if (!SanityCheck(inFormat) || !IsExportFormatValid(inFileTypeID, inFormat.mFormatID))
        return false;
    return ProbeConverter(kReferenceSourceFormat, inFormat).Status() == noErr;
}

}  // namespace appleaudiotoolbox
