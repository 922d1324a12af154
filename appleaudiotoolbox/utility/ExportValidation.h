// ExportValidation: whether an export setting is possible, one setting at a time.
//
// A value is valid if any variant of the format accepts it. A platform failure is a negative answer
// for that variant. One thread at a time, as for the whole catalogue.
#ifndef APPLEAUDIOTOOLBOX_UTILITY_EXPORTVALIDATION_H
#define APPLEAUDIOTOOLBOX_UTILITY_EXPORTVALIDATION_H

#include "appleaudiotoolbox/utility/CatalogueRecords.h"

namespace appleaudiotoolbox
{

bool IsExportFileTypeValid(UInt32 inFileTypeID);

/// A format of the type that has variants. One that the catalogue does not have is entered in it
/// without variants and stays there, and so it is with all the checks below.
bool IsExportFormatValid(UInt32 inFileTypeID, UInt32 inFormatID);

/// Asks the first variant's encoder for its first range until the rate lies in it, so this does not
/// return for a rate outside.
bool IsExportSampleRateValid(UInt32 inFileTypeID, UInt32 inFormatID, double inSampleRate);

bool IsExportChannelNumberValid(UInt32 inFileTypeID, UInt32 inFormatID, UInt32 inChannelCount);

/// False for every depth of a compressed format, 0 included.
bool IsExportBitDepthValid(UInt32 inFileTypeID, UInt32 inFormatID, UInt32 inBitsPerChannel);

/// The flags of a variant, exactly.
bool AreExportFormatFlagsValid(UInt32 inFileTypeID, UInt32 inFormatID, UInt32 inFormatFlags);

/// inBitrateMode is one of the platform's control modes, 0 to 3.
bool IsExportBitrateModeValid(UInt32 inFileTypeID, UInt32 inFormatID, UInt32 inBitrateMode);

/// inBitrate is in bits per second. Mode 3 takes any.
bool IsExportBitrateValid(UInt32 inFileTypeID, UInt32 inFormatID, UInt32 inBitrateMode,
                          UInt32 inBitrate);

/// A plausible description of a format that the type has, into which the platform makes a
/// converter.
bool AreExportSettingsValid(UInt32 inFileTypeID, CAStreamBasicDescription inFormat);

}  // namespace appleaudiotoolbox

#endif
