// AudioToolboxTests: what the module brings along to be diagnosed with, as one suite of the host's
// test framework.
#ifndef APPLEAUDIOTOOLBOX_DIAGNOSTICS_AUDIOTOOLBOXTESTS_H
#define APPLEAUDIOTOOLBOX_DIAGNOSTICS_AUDIOTOOLBOXTESTS_H

#include "kelpunittesting/Test.h"

namespace appleaudiotoolbox
{

class AudioToolboxTests
{
public:
    static constexpr const char* kSuiteName = "AudioToolbox";

    /// Registers the suite, once however often it is called. Runs and asks nothing.
    static void Initialize();

    /// A new suite with the catalogue's suite in it; it belongs to the caller.
    static kelpunittesting::Test* CreateTest();
};

}  // namespace appleaudiotoolbox

#endif
