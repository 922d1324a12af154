// EncodableQueries: the output catalogue from the top down, file type to format to variant to bit
// rate mode to bit rate.
//
// Results are new lists. What is not in the catalogue has an empty list or 0, and no question adds
// to the catalogue. Modes and bit rates are those of a format's first variant. Modes are the
// platform's control modes: 0 constant, 1 long-term average, 2 constrained variable, 3 variable.
// One thread at a time, as for the whole catalogue.
#ifndef APPLEAUDIOTOOLBOX_UTILITY_ENCODABLEQUERIES_H
#define APPLEAUDIOTOOLBOX_UTILITY_ENCODABLEQUERIES_H

#include "appleaudiotoolbox/utility/CatalogueRecords.h"

#include <vector>

namespace appleaudiotoolbox
{

/// File type IDs, ascending.
std::vector<UInt32> GetExportableFileTypes();

/// Format IDs, ascending, also of a format without variants.
std::vector<UInt32> GetEncodableFormats(UInt32 inFileTypeID);

std::vector<CAStreamBasicDescription> GetEncodableVariants(UInt32 inFileTypeID, UInt32 inFormatID);

/// Ascending.
std::vector<UInt32> GetEncodableBitrateModes(UInt32 inFileTypeID, UInt32 inFormatID);

/// Mode 3 has none.
///
/// inSourceFormat  null: what the catalogue holds, learned with a source of 44.1 kHz and two
///                 channels. Otherwise the rates that a converter from this source accepts, asked
///                 at each call.
ATBitrateList GetEncodableBitrates(UInt32 inFileTypeID, UInt32 inFormatID, UInt32 inBitrateMode,
                                   const CAStreamBasicDescription* inSourceFormat);

/// Bits per second, learned with a source of 44.1 kHz and two channels; 0 for mode 3.
UInt32 GetDefaultEncodableBitrate(UInt32 inFileTypeID, UInt32 inFormatID, UInt32 inBitrateMode);

}  // namespace appleaudiotoolbox

#endif
