// ATFormatUtils: what the user reads about file types and formats.
//
// Names come from the platform. Failures are quiet and show as a text that tells the bare code.
#ifndef APPLEAUDIOTOOLBOX_UTILITY_ATFORMATUTILS_H
#define APPLEAUDIOTOOLBOX_UTILITY_ATFORMATUTILS_H

#include "CoreAudio/PublicUtility/CAStreamBasicDescription.h"
#include "kelpcore/Strings.h"

#include <cstdint>

namespace appleaudiotoolbox
{

/// The name of a file type. Empty for 0 and where the platform fails, the bare code where the
/// platform has an empty name.
UTF16String GetFileTypeDescriptionString(unsigned int inFileTypeID);

/// The name of a format, or its bare code.
UTF16String GetDescriptionString(unsigned int inFormatID);

/// Lines on file type, format and bit rate, joined by line feeds.
///
/// inFileTypeID   0 leaves its line out
/// inBitrateMode  0 to 3 as the platform's control modes; -1 leaves the line out, and an
///                uncompressed format has none
/// inBitrate      bits per second
/// inQuality      0 to 127, shown instead of the bit rate in mode 3; -1 for none
UTF16String GetDescriptionString(CAStreamBasicDescription inFormat, unsigned int inFileTypeID,
                                 std::int64_t inBitrateMode, std::int64_t inBitrate,
                                 std::int64_t inQuality);

}  // namespace appleaudiotoolbox

#endif
