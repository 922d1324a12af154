// ExtendedErrorInfo: where an operation failed and what the platform answered.
//
// The reader and the writer note a site and a status. The layer that speaks to the host owns the
// record, puts its general message into it and has it completed, once, for the user.
#ifndef APPLEAUDIOTOOLBOX_EXTENDEDERRORINFO_H
#define APPLEAUDIOTOOLBOX_EXTENDEDERRORINFO_H

#include "kelpcore/Strings.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>

namespace appleaudiotoolbox
{

/// The step that failed. The values are fixed: results for the host are looked up by them. Some
/// are never noted and only hold their place.
enum ATErrorSite : std::uint32_t
{
    kATError_None = 0,
    kATError_General = 1,
    kATError_UnsupportedDataFormatError = 2,
    kATError_AudioFileOpenURL = 3,
    kATError_AudioFileGetDataFormat = 4,
    kATError_AudioFileGetFormatList = 5,
    kATError_AudioFileGetMagicCookieData = 6,
    kATError_AudioFileGetPacketSizeUpperBound = 7,
    kATError_AudioFormatGetDecodeFormatIDs = 8,
    kATError_AudioConverterNew = 9,
    kATError_AudioConverterGetCurrentInputStreamDescription = 10,
    kATError_AudioConverterGetCurrentOutputStreamDescription = 11,
    kATError_AudioConverterFillComplexBuffer = 12,
    kATError_AudioConverterSetDecompressionMagicCookie = 13,
    kATError_AudioConverterSetEncodeBitRate = 14,
    kATError_AudioConverterSetBitRateControl = 15,
    kATError_AudioConverterSetPrimeInfo = 16,
    kATError_AudioFileCreateWithURL = 17,
    kATError_ExtAudioFileCreateWithURL = 18,
    kATError_ExtAudioFileSetClientDataFormat = 19,
    kATError_ExtAudioFileGetAudioConverter = 20,
    kATError_ExtAudioFileSetConverterConfig = 21,
    kATError_AudioConverterFillComplexBuffer2 = 22,
    kATError_ExtAudioFileWrite = 23,
    kATError_ExtAudioFileDispose = 24
};

struct ExtendedErrorInfo
{
    ATErrorSite mSite = kATError_None;
    OSStatus mStatus = 0;  // 0 where the step had no status
    UTF16String mMessage;  // general message, then the whole text for the user
};

/// Notes site and status, leaves the message alone and answers false, so that a failing step is one
/// return statement.
inline bool NoteFailure(ExtendedErrorInfo& ioInfo, ATErrorSite inSite, OSStatus inStatus)
{
    ioInfo.mSite = inSite;
    ioInfo.mStatus = inStatus;
    return false;
}

/// Completes the message, once for each failure: the site's own text takes the place of the general
/// one if the site has a text, and a line with the status follows. A status above 0 is shown as a
/// four-character code, any other as a number, 0 included.
void SetExtendedErrorString(ExtendedErrorInfo& ioInfo);

}  // namespace appleaudiotoolbox

#endif
