// FormatEnumeration: the data formats that a file type can hold, and what can be encoded into it.
//
// Out arguments are replaced. A failing platform call shortens the result. For the catalogue's
// build; not guarded against two threads at once.
#ifndef APPLEAUDIOTOOLBOX_UTILITY_FORMATENUMERATION_H
#define APPLEAUDIOTOOLBOX_UTILITY_FORMATENUMERATION_H

#include "appleaudiotoolbox/utility/CatalogueRecords.h"

namespace appleaudiotoolbox
{

/// Every format of the type but the protected one, each without variants.
void QueryReadableFormats(UInt32 inFileTypeID, ATFormatTypeMap& outFormats);

/// Every format of the type that has an encoder, each with its variants, of which there may be
/// none.
void QueryWritableFormats(UInt32 inFileTypeID, ATFormatTypeMap& outFormats);

/// The variants, probed for channel count and bit rates. Where their number is known and the list
/// cannot be read, that many default records.
void QueryFormatVariants(UInt32 inFileTypeID, UInt32 inFormatID, ATFormatTypeList& outVariants);

}  // namespace appleaudiotoolbox

#endif
