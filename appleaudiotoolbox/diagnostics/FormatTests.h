// FormatTests: prints the format catalogue and holds it to what its users rely on.
//
// The first breach ends a case, with what was printed up to there. A case works on a copy of the
// catalogue; it may be what first builds it.
#ifndef APPLEAUDIOTOOLBOX_DIAGNOSTICS_FORMATTESTS_H
#define APPLEAUDIOTOOLBOX_DIAGNOSTICS_FORMATTESTS_H

#include "kelpunittesting/Test.h"
#include "kelpunittesting/TestContext.h"

namespace appleaudiotoolbox
{

class FormatTests
{
public:
    static constexpr const char* kSuiteName = "FormatTests";

    /// A new suite with a case for each catalogue; it belongs to the caller.
    static kelpunittesting::Test* CreateTest();

    /// What can be read: every file type has formats, and no format has variants.
    void QueryInputFormats(const kelpunittesting::TestContext& inContext);
    /// What can be written: every format has variants, with names, bit rates and defaults.
    void QueryOuputFormats(const kelpunittesting::TestContext& inContext);
};

}  // namespace appleaudiotoolbox

#endif
