// BitrateTests: prints and checks the bit rates of one variant.
#ifndef APPLEAUDIOTOOLBOX_DIAGNOSTICS_SRC_BITRATETESTS_H
#define APPLEAUDIOTOOLBOX_DIAGNOSTICS_SRC_BITRATETESTS_H

#include "appleaudiotoolbox/utility/CatalogueRecords.h"

#include <iosfwd>

namespace appleaudiotoolbox
{

/// Constant, then average, then constrained variable mode. Fails at the first breach.
void TestBitrates(const ATFormatType& inFormatType, std::ostream& outReport);

}  // namespace appleaudiotoolbox

#endif
