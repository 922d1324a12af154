// FileTypeCatalogue: which file types can be read and which can be written.
//
// Everything is asked of the platform at the first query and kept until the module is unloaded;
// answers are copies. A build that finds nothing is tried again by the next query. Nothing is
// reported: a failure shows as a missing type, an empty name or an empty set. There are no locks,
// so one thread at a time may use the catalogue, in any of its files.
#ifndef APPLEAUDIOTOOLBOX_UTILITY_FILETYPECATALOGUE_H
#define APPLEAUDIOTOOLBOX_UTILITY_FILETYPECATALOGUE_H

#include "appleaudiotoolbox/utility/CatalogueRecords.h"

namespace appleaudiotoolbox
{

/// All that the platform reads, also a type of which nothing else could be learned. No format has
/// variants.
void QueryInputFileTypes(ATFileTypeMap& outFileTypes);

/// All that the platform writes and into which something can be encoded.
void QueryOutputFileTypes(ATFileTypeMap& outFileTypes);

/// The extensions of all types of the one catalogue and of the other.
void QueryAllImportExtensions(ATExtensionSet& outExtensions);
void QueryAllExportExtensions(ATExtensionSet& outExtensions);

/// Of one type, asked each time. AIFF and AIFF-C have extensions of their own, whatever the
/// platform says.
void QueryFileTypeExtensions(UInt32 inFileTypeID, ATExtensionSet& outExtensions);

}  // namespace appleaudiotoolbox

#endif
