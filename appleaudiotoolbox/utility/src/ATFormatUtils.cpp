// ATFormatUtils: names from the platform, their stand-ins, and the line on the bit rate.
#include "appleaudiotoolbox/utility/ATFormatUtils.h"

#include "appleaudiotoolbox/utility/FourCharText.h"
#include "kelpcore/config/Localizer.h"
#include "kelpcore/utility/AutoCFRef.h"
#include "kelpcore/utility/NumberText.h"
#include "kelpcore/utility/ReplaceInString.h"
#include "kelpcore/utility/StringConversion.h"

#include <AudioToolbox/AudioToolbox.h>

#include <cstdio>

namespace appleaudiotoolbox
{

namespace
{

using StringRef = kelpcore::utility::AutoCFRef<CFStringRef>;

struct LineText
{
    std::int64_t mValue;
    const char* mText;
};

constexpr LineText kModeLines[] = {
    {kAudioCodecBitRateControlMode_Constant, "$$$/appleaudiotoolbox/CBRPrefix=CBR: @0"},
    {kAudioCodecBitRateControlMode_LongTermAverage,
     "$$$/appleaudiotoolbox/LTAPrefix=CBR (LTA): @0"},
    {kAudioCodecBitRateControlMode_VariableConstrained,
     "$$$/appleaudiotoolbox/ConstrPrefix=VBR: @0"},
};

constexpr const char* kLowestQuality = "$$$/appleaudiotoolbox/QualMin=VBR Quality: Minimum";
constexpr LineText kQualityLines[] = {
    {32, "$$$/appleaudiotoolbox/QualLow=VBR Quality: Low"},
    {64, "$$$/appleaudiotoolbox/QualMed=VBR Quality: Medium"},
    {96, "$$$/appleaudiotoolbox/QualHigh=VBR Quality: High"},
    {127, "$$$/appleaudiotoolbox/QualMax=VBR Quality: Maximum"},
};

UTF16String Translate(const char* inLiteral)
{
    return kelpcore::config::Localizer::Get().Translate(inLiteral);
}

template <std::size_t kCount>
const char* FindText(const LineText (&inLines)[kCount], std::int64_t inValue,
                     const char* inOtherwise)
{
    for (const LineText& line : inLines)
        if (line.mValue == inValue)
            return line.mText;
    return inOtherwise;
}

void AppendLine(UTF16String& ioText, const char* inLiteral)
{
    ioText += u'\n';
    ioText += Translate(inLiteral);
}

// A text with the code as four characters and as a hexadecimal number.
UTF16String DescribeBareCode(const char* inLiteral, unsigned int inCode)
{
    char number[12];
    std::snprintf(number, sizeof(number), "%X", inCode);
    return kelpcore::utility::ReplaceInString(Translate(inLiteral), FourCharText(inCode),
                                              kelpcore::utility::AsciiToUTF16(number));
}

// The platform's name of a format; null when it fails.
StringRef QueryFormatName(const AudioStreamBasicDescription& inFormat)
{
    CFStringRef name = nullptr;
    UInt32 size = 0;
    // The size is answered by property alone. Nothing reads this specifier, which is shorter than
    // its size says.
    if (AudioFormatGetPropertyInfo(kAudioFormatProperty_FormatName, sizeof(inFormat), &name,
                                   &size) != noErr)
        return {};
    size = sizeof(name);
    if (AudioFormatGetProperty(kAudioFormatProperty_FormatName, sizeof(inFormat), &inFormat, &size,
                               &name) != noErr)
        return {};
    return StringRef(name);
}

UTF16String FormatName(const AudioStreamBasicDescription& inFormat)
{
    const StringRef name = QueryFormatName(inFormat);
    const UTF16String text = kelpcore::utility::MACtoKELP(name.Get());
    if (!text.empty())
        return text;
    return DescribeBareCode(
        "$$$/appleaudiotoolbox/EmptyFormatDescription=(Unnamed Format: '@0', 0x@1)",
        inFormat.mFormatID);
}

UTF16String BitrateText(std::int64_t inBitrate)
{
    constexpr std::uint64_t kKilo = 1000;
    constexpr std::uint64_t kMega = 1000000;
    constexpr std::uint64_t kGiga = 1000000000;

    const auto magnitude = static_cast<std::uint64_t>(inBitrate);  // a negative one is beyond all
    double number = static_cast<double>(inBitrate);
    const char* unit = "$$$/appleaudiotoolbox/bitsPerSecond= bps";
    if (magnitude >= kKilo && magnitude < kMega)
    {
        number /= 1000.0;
        unit = "$$$/appleaudiotoolbox/kilobitsPerSecond= kbps";
    }
    else if (magnitude >= kMega && magnitude < kGiga)
    {
        number /= 1000000.0;
        unit = "$$$/appleaudiotoolbox/MegabitsPerSecond= Mbps";
    }
    return kelpcore::utility::NumberToString(number, 1, 2, 0, 31) + Translate(unit);
}

}  // namespace

UTF16String GetFileTypeDescriptionString(unsigned int inFileTypeID)
{
    CFStringRef name = nullptr;
    UInt32 size = 0;
    if (inFileTypeID == 0 ||
        AudioFileGetGlobalInfoSize(kAudioFileGlobalInfo_FileTypeName, 0, nullptr, &size) != noErr ||
        size > sizeof(name))
        return {};
    size = sizeof(name);
    if (AudioFileGetGlobalInfo(kAudioFileGlobalInfo_FileTypeName, sizeof(inFileTypeID),
                               &inFileTypeID, &size, &name) != noErr)
        return {};

    const StringRef owner(name);
    const UTF16String text = kelpcore::utility::MACtoKELP(name);
    if (!text.empty())
        return text;
    return DescribeBareCode("$$$/appleaudiotoolbox/UnnamedFileType=(Unnamed File Type: '@0', 0x@1)",
                            inFileTypeID);
}

UTF16String GetDescriptionString(unsigned int inFormatID)
{
    CAStreamBasicDescription format;
    format.mFormatID = inFormatID;
    return GetDescriptionString(format, 0, -1, -1, -1);
}

UTF16String GetDescriptionString(CAStreamBasicDescription inFormat, unsigned int inFileTypeID,
                                 std::int64_t inBitrateMode, std::int64_t inBitrate,
                                 std::int64_t inQuality)
{
    UTF16String result;
    if (inFileTypeID != 0)
        result = GetFileTypeDescriptionString(inFileTypeID) + u'\n';
    result += FormatName(inFormat);
    if (inBitrateMode < 0 || inFormat.mBitsPerChannel != 0)
        return result;

    if (inQuality >= 0 && inBitrateMode == kAudioCodecBitRateControlMode_Variable &&
        inFormat.mBytesPerPacket == 0)
    {
        AppendLine(result, FindText(kQualityLines, inQuality, kLowestQuality));
        return result;
    }
    if (const char* const line = FindText(kModeLines, inBitrateMode, nullptr); line != nullptr)
        AppendLine(result, line);
    // The whole text is filled in, the names of the platform too.
    return kelpcore::utility::ReplaceInString(result, BitrateText(inBitrate));
}

}  // namespace appleaudiotoolbox
