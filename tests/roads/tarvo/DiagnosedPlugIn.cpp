// A plug-in whose start and diagnostics come out as the environment wants them (PLUG_IN):
// "no-start", "no-diagnostics", "nothing" registered, or else a suite of which one check fails.
#include "kelpunittesting/TestCase.h"
#include "kelpunittesting/TestContext.h"
#include "kelpunittesting/TestFailure.h"
#include "kelpunittesting/TestRegistry.h"
#include "kelpunittesting/TestSuite.h"

#include <cstdint>
#include <cstdlib>
#include <ostream>
#include <string>

namespace
{

using namespace kelpunittesting;

struct Checks
{
    static constexpr const char* kSuiteName = "Suite";
    static Test* CreateTest()
    {
        auto* const suite = new TestSuite(kSuiteName);
        suite->AddTest(new TestCase<Checks>("Bad", &Checks::Bad));
        suite->AddTest(new TestCase<Checks>("Good", &Checks::Good));
        return suite;
    }

    void Bad(const TestContext& inContext)
    {
        inContext.TraceOut() << "bad so far\n";
        ThrowTestFailure("rate > 0", {"TestRate", "Checks.cpp", 12});
    }
    void Good(const TestContext& inContext) { inContext.TraceOut() << "good\n"; }
};

bool Wants(const char* inWish)
{
    const char* const wish = std::getenv("PLUG_IN");
    return wish && std::string(wish) == inWish;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) std::int32_t TarvoInterface(int inSelector, void*,
                                                                              void*)
{
    if (inSelector == 0)
        return Wants("no-start") ? -1 : 0;
    if (inSelector != 1 || Wants("no-diagnostics"))
        return -3;
    if (!Wants("nothing"))
        TestRegistrar<Checks>();
    return 0;
}
