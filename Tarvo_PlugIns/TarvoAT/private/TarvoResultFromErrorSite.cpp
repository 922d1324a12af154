#include "Tarvo_PlugIns/TarvoAT/private/TarvoResultFromErrorSite.h"

#include "TarvoSDK/TarvoSDKTypes.h"

#include <cstddef>
#include <iterator>

namespace tarvo
{
namespace
{

constexpr TarvoResult kResults[] = {
    kTarvoResultSuccess,            // kATError_None
    kTarvoResultFailed,             // kATError_General
    kTarvoResultUnsupportedFormat,  // kATError_UnsupportedDataFormatError
    kTarvoResultFailed,             // kATError_AudioFileOpenURL
    kTarvoResultFileFormatError,    // kATError_AudioFileGetDataFormat
    kTarvoResultFileFormatError,    // kATError_AudioFileGetFormatList
    kTarvoResultFileFormatError,    // kATError_AudioFileGetMagicCookieData
    kTarvoResultFileFormatError,    // kATError_AudioFileGetPacketSizeUpperBound
    kTarvoResultFileFormatError,    // kATError_AudioFormatGetDecodeFormatIDs
    kTarvoResultFileFormatError,    // kATError_AudioConverterNew
    kTarvoResultInputFormatError,   // kATError_AudioConverterGetCurrentInputStreamDescription
    kTarvoResultOutputFormatError,  // kATError_AudioConverterGetCurrentOutputStreamDescription
};

}  // namespace

std::int32_t TarvoResultFromErrorSite(std::int64_t inSite)
{
    if (inSite < 0 || inSite >= std::ssize(kResults))
        return kTarvoResultFailed;
    return kResults[static_cast<std::size_t>(inSite)];
}

}  // namespace tarvo
