#include "appleaudiotoolbox/diagnostics/AudioToolboxTests.h"

#include "appleaudiotoolbox/diagnostics/FormatTests.h"
#include "kelpunittesting/TestRegistry.h"
#include "kelpunittesting/TestSuite.h"

#include <memory>

namespace appleaudiotoolbox
{

using kelpunittesting::TestRegistrar;
using kelpunittesting::TestSuite;

void AudioToolboxTests::Initialize()
{
    static TestRegistrar<AudioToolboxTests> AudioToolboxTestsReg;
}

kelpunittesting::Test* AudioToolboxTests::CreateTest()
{
    auto suite = std::make_unique<TestSuite>(kSuiteName);
    suite->AddTest(FormatTests::CreateTest());
    return suite.release();
}

}  // namespace appleaudiotoolbox
