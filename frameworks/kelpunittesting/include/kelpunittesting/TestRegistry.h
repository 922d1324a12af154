// TestRegistry: the suites that the modules of this process have entered, one registry for all.
//
// A module that has entered a suite must stay loaded for as long as the suite is made and run. One
// thread at a time.
#ifndef KELPUNITTESTING_TESTREGISTRY_H
#define KELPUNITTESTING_TESTREGISTRY_H

#include "kelpunittesting/Export.h"
#include "kelpunittesting/Test.h"

#include <memory>
#include <string>
#include <vector>

namespace kelpunittesting
{

class KELPUNITTESTING_EXPORT TestRegistry
{
public:
    /// Returns a new test, which belongs to the caller.
    using Factory = Test* (*)();

    /// A name that is there already keeps its place and gets the new factory: the old one may be
    /// gone with a module that has been loaded anew.
    static void RegisterTest(const std::string& inName, Factory inFactory);

    /// In the order of registration.
    static std::vector<std::string> GetNames();

    /// A new test; null if nobody has registered the name.
    static std::unique_ptr<Test> CreateTest(const std::string& inName);
};

/// Registers T::kSuiteName with T::CreateTest when its first object is made, and never again.
template <typename T>
class TestRegistrar
{
public:
    TestRegistrar()
    {
        if (sRegistered)
            return;
        TestRegistry::RegisterTest(T::kSuiteName, &T::CreateTest);
        sRegistered = true;
    }

private:
    static inline bool sRegistered = false;
};

}  // namespace kelpunittesting

#endif
