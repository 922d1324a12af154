// ExtendedErrorInfo: the texts of the sites, and the line with the status.
#include "appleaudiotoolbox/ExtendedErrorInfo.h"

#include "appleaudiotoolbox/utility/FourCharText.h"
#include "kelpcore/ZString.h"
#include "kelpcore/config/Localizer.h"
#include "kelpcore/utility/StringConversion.h"

#include <iterator>
#include <string>

namespace appleaudiotoolbox
{

namespace
{

constexpr const char* kProcessingText =
    "$$$/appleaudiotoolbox/kATError_AudioConverterFillComplexBuffer=Apple AudioToolbox reported an "
    "error while processing this file.";
constexpr const char* kCreateText =
    "$$$/appleaudiotoolbox/kATError_ExtAudioFileCreateWithURL=Apple AudioToolbox cannot create the "
    "specified file.";

// By site; null where the general message says it best. Sites behind the table have no text.
constexpr const char* kSiteTexts[] = {
    nullptr,  // kATError_None
    nullptr,  // kATError_General
    "$$$/appleaudiotoolbox/kATError_UnsupportedDataFormatError=Unsupported Data Format for Apple "
    "AudioToolbox.",
    "$$$/appleaudiotoolbox/kATError_AudioFileOpenURL=Apple AudioToolbox cannot open the specified "
    "file.",
    "$$$/appleaudiotoolbox/kATError_AudioFileGetDataFormat=Unable to get audio data format via "
    "Apple AudioToolbox.",
    "$$$/appleaudiotoolbox/kATError_AudioFileGetFormatList=Apple AudioToolbox was unable to get "
    "the list of formats from the specified file.",
    "$$$/appleaudiotoolbox/kATError_AudioFileGetMagicCookieData=Apple AudioToolbox was unable to "
    "read the Magic Cookie (elementary stream descriptor) from the specified file.",
    "$$$/appleaudiotoolbox/kATError_AudioFileGetPacketSizeUpperBound=Apple AudioToolbox was unable "
    "to read the maximum packet size for this VBR file.",
    "$$$/appleaudiotoolbox/kATError_AudioFormatGetDecodeFormatIDs=Apple AudioToolbox was unable to "
    "find a decoder for the specified file.",
    "$$$/appleaudiotoolbox/kATError_AudioConverterNew=Apple AudioToolbox was unable to create a "
    "converter between the input and output formats for the specified file.",
    "$$$/appleaudiotoolbox/kATError_AudioConverterGetCurrentInputStreamDescription=Apple "
    "AudioToolbox was unable to get the input format to convert the file.",
    "$$$/appleaudiotoolbox/kATError_AudioConverterGetCurrentOutputStreamDescription=Apple "
    "AudioToolbox was unable to get the output format to convert the file.",
    kProcessingText,
    "$$$/appleaudiotoolbox/kATError_AudioConverterSetDecompressionMagicCookie=Apple AudioToolbox "
    "was unable to set the Decompression Magic Cookie (elementary stream descriptor) to convert "
    "the file.",
    "$$$/appleaudiotoolbox/kATError_AudioConverterSetEncodeBitRate=Apple AudioToolbox was unable "
    "to set the encode bitrate to convert the file.",
    nullptr,  // kATError_AudioConverterSetBitRateControl
    "$$$/appleaudiotoolbox/kATError_AudioConverterSetPrimeInfo=Apple AudioToolbox was unable to "
    "set the priming info to convert the compressed file.",
    kCreateText,  // kATError_AudioFileCreateWithURL
    kCreateText,
    nullptr,          // kATError_ExtAudioFileSetClientDataFormat
    nullptr,          // kATError_ExtAudioFileGetAudioConverter
    nullptr,          // kATError_ExtAudioFileSetConverterConfig
    kProcessingText,  // kATError_AudioConverterFillComplexBuffer2
};
static_assert(std::size(kSiteTexts) == kATError_AudioConverterFillComplexBuffer2 + 1);

const char* SiteText(ATErrorSite inSite)
{
    return inSite < std::size(kSiteTexts) ? kSiteTexts[inSite] : nullptr;
}

// Begins with the line break. The sign alone tells codes from numbers.
UTF16String StatusLine(OSStatus inStatus)
{
    if (inStatus > 0)
        return kelpcore::ZString("$$$/appleaudiotoolbox/Error4CC=#{endl}Error Code: '@0'",
                                 FourCharText(static_cast<std::uint32_t>(inStatus)));
    return kelpcore::ZString("$$$/appleaudiotoolbox/ErrorNumber=#{endl}Error Code: @0",
                             kelpcore::utility::AsciiToUTF16(std::to_string(inStatus)));
}

}  // namespace

void SetExtendedErrorString(ExtendedErrorInfo& ioInfo)
{
    if (const char* const text = SiteText(ioInfo.mSite); text != nullptr)
        ioInfo.mMessage = kelpcore::config::Localizer::Get().Translate(text);
    ioInfo.mMessage += StatusLine(ioInfo.mStatus);
}

}  // namespace appleaudiotoolbox
