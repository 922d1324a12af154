// EncodableQueries: plain look-ups in the output catalogue.
#include "appleaudiotoolbox/utility/EncodableQueries.h"

#include "appleaudiotoolbox/utility/BitrateProbe.h"
#include "appleaudiotoolbox/utility/src/BitrateModes.h"
#include "appleaudiotoolbox/utility/src/CatalogueState.h"

namespace appleaudiotoolbox
{

namespace
{

template <typename Map>
std::vector<UInt32> Keys(const Map& inMap)
{
    std::vector<UInt32> keys;
    keys.reserve(inMap.size());
    for (const auto& [key, value] : inMap)
        keys.push_back(key);
    return keys;
}

// Null if the type is not in the catalogue.
const ATFormatTypeMap* FindFormats(UInt32 inFileTypeID)
{
    InitializeOutputFileTypes();
    const auto found = sOutputFileTypes.find(inFileTypeID);
    return found == sOutputFileTypes.end() ? nullptr : &found->second.mFormatTypeMap;
}

// Null if the format is not in the catalogue.
const ATFormatTypeList* FindVariants(UInt32 inFileTypeID, UInt32 inFormatID)
{
    const ATFormatTypeMap* const formats = FindFormats(inFileTypeID);
    if (!formats)
        return nullptr;
    const auto found = formats->find(inFormatID);
    return found == formats->end() ? nullptr : &found->second;
}

// Null also for a format without variants.
const ATFormatType* FindFirstVariant(UInt32 inFileTypeID, UInt32 inFormatID)
{
    const ATFormatTypeList* const variants = FindVariants(inFileTypeID, inFormatID);
    return variants && !variants->empty() ? &variants->front() : nullptr;
}

// The variant as an encoder would do it for this source.
ATFormatType ProbeForSource(const ATFormatType& inVariant, const CAStreamBasicDescription& inSource)
{
    ATFormatType probed;
    probed.mFormatDescription = inVariant.mFormatDescription;
    probed.mFormatDescription.mSampleRate = inSource.mSampleRate;
    probed.mFormatDescription.mChannelsPerFrame = inSource.mChannelsPerFrame;
    QueryFormatBitrateInformation(probed, &inSource);
    return probed;
}

}  // namespace

std::vector<UInt32> GetExportableFileTypes()
{
    InitializeOutputFileTypes();
    return Keys(sOutputFileTypes);
}

std::vector<UInt32> GetEncodableFormats(UInt32 inFileTypeID)
{
    const ATFormatTypeMap* const formats = FindFormats(inFileTypeID);
    return formats ? Keys(*formats) : std::vector<UInt32>();
}

std::vector<CAStreamBasicDescription> GetEncodableVariants(UInt32 inFileTypeID, UInt32 inFormatID)
{
    std::vector<CAStreamBasicDescription> descriptions;
    if (const ATFormatTypeList* const variants = FindVariants(inFileTypeID, inFormatID))
        for (const ATFormatType& variant : *variants)
            descriptions.push_back(variant.mFormatDescription);
    return descriptions;
}

std::vector<UInt32> GetEncodableBitrateModes(UInt32 inFileTypeID, UInt32 inFormatID)
{
    const ATFormatType* const variant = FindFirstVariant(inFileTypeID, inFormatID);
    if (!variant)
        return {};
    std::vector<UInt32> modes;
    for (const BitrateMode& mode : kBitrateModes)
        if (!(variant->*mode.mBitrates).empty())
            modes.push_back(mode.mMode);
    if (variant->mSupportsVBR)
        modes.push_back(kAudioCodecBitRateControlMode_Variable);
    return modes;
}

ATBitrateList GetEncodableBitrates(UInt32 inFileTypeID, UInt32 inFormatID, UInt32 inBitrateMode,
                                   const CAStreamBasicDescription* inSourceFormat)
{
    const ATFormatType* const variant = FindFirstVariant(inFileTypeID, inFormatID);
    const BitrateMode* const mode = FindBitrateMode(inBitrateMode);
    if (!variant)
        return {};
    if (!inSourceFormat)
        return mode ? variant->*mode->mBitrates : ATBitrateList();
    const ATFormatType probed = ProbeForSource(*variant, *inSourceFormat);
    return mode ? probed.*mode->mBitrates : ATBitrateList();
}

UInt32 GetDefaultEncodableBitrate(UInt32 inFileTypeID, UInt32 inFormatID, UInt32 inBitrateMode)
{
    const ATFormatType* const variant = FindFirstVariant(inFileTypeID, inFormatID);
    const BitrateMode* const mode = FindBitrateMode(inBitrateMode);
    return variant && mode ? variant->*mode->mDefault : 0;
}

}  // namespace appleaudiotoolbox
