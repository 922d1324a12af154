// CatalogueState: the two catalogues themselves, for the sources that work on them.
//
// Both are empty until something is learned, and complete from then on.
#ifndef APPLEAUDIOTOOLBOX_UTILITY_SRC_CATALOGUESTATE_H
#define APPLEAUDIOTOOLBOX_UTILITY_SRC_CATALOGUESTATE_H

#include "appleaudiotoolbox/utility/CatalogueRecords.h"

namespace appleaudiotoolbox
{

extern ATFileTypeMap sInputFileTypes;
extern ATFileTypeMap sOutputFileTypes;

/// Builds the output catalogue unless it has entries.
void InitializeOutputFileTypes();

}  // namespace appleaudiotoolbox

#endif
