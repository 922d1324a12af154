// FormatEnumeration: from file type to formats to variants.
#include "appleaudiotoolbox/utility/FormatEnumeration.h"

#include "appleaudiotoolbox/src/TracePlace.h"
#include "appleaudiotoolbox/utility/ATFormatUtils.h"
#include "appleaudiotoolbox/utility/BitrateProbe.h"
#include "appleaudiotoolbox/utility/FourCharText.h"
#include "appleaudiotoolbox/utility/src/PropertyLists.h"
#include "kelpcore/utility/StringConversion.h"

namespace appleaudiotoolbox
{

namespace
{

using FormatIDs = std::vector<UInt32>;

// Protected AAC, which nobody else may decode.
constexpr UInt32 kProtectedFormat = CA_FOUR_CHAR_CODE('d', 'r', 'm', 's');
constexpr UInt32 kAnyChannelCount = 0xFFFFFFFF;

void TraceFormat(const TracePlace& inPlace, UInt32 inFormatID, const UTF16String& inName)
{
    const UTF16String line = u"\t   '" + FourCharText(inFormatID) + u"' " + inName + u"\n";
    inPlace.Write(kelpcore::utility::UTF16to8(line));
}

OSStatus QueryFormatIDs(UInt32 inFileTypeID, FormatIDs& outFormats)
{
    return ReadGlobalList(kAudioFileGlobalInfo_AvailableFormatIDs, Specifier(inFileTypeID),
                          outFormats);
}

// All formats that have an encoder. Whatever the two calls leave behind counts, also after a
// failure.
FormatIDs QueryEncodableFormatIDs()
{
    UInt32 bytes = 0;
    (void)AudioFormatGetPropertyInfo(kAudioFormatProperty_EncodeFormatIDs, 0, nullptr, &bytes);
    FormatIDs formats(bytes / sizeof(UInt32) + 1);
    UInt32 delivered = bytes;
    (void)AudioFormatGetProperty(kAudioFormatProperty_EncodeFormatIDs, 0, nullptr, &delivered,
                                 formats.data());
    formats.resize(std::min(delivered, bytes) / sizeof(UInt32));
    return formats;
}

// Fills in what the codec fixes.
void CompleteDescription(CAStreamBasicDescription& ioFormat)
{
    UInt32 bytes = sizeof(AudioStreamBasicDescription);
    (void)AudioFormatGetProperty(kAudioFormatProperty_FormatInfo, 0, nullptr, &bytes, &ioFormat);
}

void LearnChannelCount(CAStreamBasicDescription& ioFormat)
{
    std::vector<UInt32> counts;
    if (ReadFormatList(kAudioFormatProperty_AvailableEncodeNumberChannels, Specifier(ioFormat),
                       counts) != noErr)
        return;
    const bool isFixed = counts.size() == 1 && counts.front() != kAnyChannelCount;
    ioFormat.mChannelsPerFrame = isFixed ? counts.front() : 0;
}

ATFormatType LearnVariant(const AudioStreamBasicDescription& inDescription)
{
    static constinit TracePlace sPlace(6);

    ATFormatType variant;
    variant.mFormatDescription = inDescription;
    variant.mFormatDescription.mChannelsPerFrame = 0;
    // A name for any number of channels, so it is made before the channels are learned.
    variant.mName = GetDescriptionString(variant.mFormatDescription, 0, -1, -1, -1);
    CompleteDescription(variant.mFormatDescription);
    if (sPlace.IsWanted())
        TraceFormat(sPlace, variant.mFormatDescription.mFormatID, variant.mName);
    QueryFormatBitrateInformation(variant, nullptr);
    LearnChannelCount(variant.mFormatDescription);
    return variant;
}

}  // namespace

void QueryReadableFormats(UInt32 inFileTypeID, ATFormatTypeMap& outFormats)
{
    static constinit TracePlace sPlace(6);

    outFormats.clear();
    FormatIDs formats;
    if (QueryFormatIDs(inFileTypeID, formats) != noErr)
        return;
    for (const UInt32 format : formats)
    {
        if (format == kProtectedFormat)
            continue;
        if (sPlace.IsWanted())
            TraceFormat(sPlace, format, GetDescriptionString(format));
        outFormats.try_emplace(format);
    }
}

void QueryWritableFormats(UInt32 inFileTypeID, ATFormatTypeMap& outFormats)
{
    outFormats.clear();
    FormatIDs formats;
    if (QueryFormatIDs(inFileTypeID, formats) != noErr)
        return;
    const FormatIDs encoders = QueryEncodableFormatIDs();
    for (const UInt32 format : formats)
    {
        // An encoder that is listed twice is asked twice, and its last answer stands.
        for (const UInt32 encoder : encoders)
        {
            if (encoder != format)
                continue;
            ATFormatTypeList variants;
            QueryFormatVariants(inFileTypeID, format, variants);
            outFormats[format] = std::move(variants);
        }
    }
}

void QueryFormatVariants(UInt32 inFileTypeID, UInt32 inFormatID, ATFormatTypeList& outVariants)
{
    constexpr auto kProperty = kAudioFileGlobalInfo_AvailableStreamDescriptionsForFormat;

    outVariants.clear();
    const AudioFileTypeAndFormatID pair = {inFileTypeID, inFormatID};
    UInt32 bytes = 0;
    if (GetGlobalSize(kProperty, Specifier(pair), &bytes) != noErr)
        return;
    // The records stay where the descriptions cannot be read.
    outVariants.resize(bytes / sizeof(AudioStreamBasicDescription));
    const auto getValue = [&pair](UInt32* ioBytes, void* outData)
    { return GetGlobalValue(kProperty, Specifier(pair), ioBytes, outData); };
    std::vector<AudioStreamBasicDescription> descriptions;
    if (ReadValues(bytes, getValue, descriptions) != noErr)
        return;

    outVariants.resize(descriptions.size());
    for (std::size_t index = 0; index < descriptions.size(); ++index)
        outVariants[index] = LearnVariant(descriptions[index]);
}

}  // namespace appleaudiotoolbox
