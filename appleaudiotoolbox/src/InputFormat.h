// InputFormat: which of a file's data formats is to be decoded.
#ifndef APPLEAUDIOTOOLBOX_SRC_INPUTFORMAT_H
#define APPLEAUDIOTOOLBOX_SRC_INPUTFORMAT_H

#include "CoreAudio/PublicUtility/CAStreamBasicDescription.h"
#include "appleaudiotoolbox/ExtendedErrorInfo.h"

#include <AudioToolbox/AudioToolbox.h>

namespace appleaudiotoolbox
{

/// The only format of a file, or of a layered one the first in its list that the platform can
/// decode. A single format is not checked for a decoder. False: site and status of the failing
/// step, outFormat untouched.
bool GetFormatFromInputFile(AudioFileID inFile, CAStreamBasicDescription& outFormat,
                            ExtendedErrorInfo& ioInfo);

/// The format as a line for people.
UTF8String FormatText(const CAStreamBasicDescription& inFormat);

}  // namespace appleaudiotoolbox

#endif
