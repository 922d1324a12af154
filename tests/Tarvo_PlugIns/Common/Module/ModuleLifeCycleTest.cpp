// When the module makes and deletes its two objects, seen by a dialog framework that takes note.
#include "Tarvo_PlugIns/Common/Module/private/Module.h"

#include <kelpui/inkwright/Supplier.h>
#include <kelpui/utility/OS_ResourceManager.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

std::vector<std::string> sEvents;
std::vector<CFBundleRef> sBundles;

class NotingSupplier : public kelpui::inkwright::SupplierInterface
{
public:
    NotingSupplier() { sEvents.emplace_back("supplier made"); }
    ~NotingSupplier() override { sEvents.emplace_back("supplier deleted"); }
    kelpui::inkwright::BaseFont GetBaseFont() const override { return {"Sans", 10.0}; }
};

}  // namespace

namespace kelpui::inkwright
{
SupplierInterface::~SupplierInterface() = default;

SupplierInterface* NewOSSupplier()
{
    return new NotingSupplier;
}
}  // namespace kelpui::inkwright

namespace kelpui::utility
{
ResourceManager::~ResourceManager() = default;

OS_ResourceManager::OS_ResourceManager(CFBundleRef inBundle) : mBundle(inBundle)
{
    sBundles.push_back(mBundle);
    sEvents.emplace_back("manager made");
}

OS_ResourceManager::~OS_ResourceManager()
{
    sEvents.emplace_back("manager deleted");
}

bool OS_ResourceManager::HasResource(const UTF8String&, const UTF8String&) const
{
    return false;
}

bool OS_ResourceManager::LoadResource(const UTF8String&, const UTF8String&, ResourceBytes&) const
{
    return false;
}
}  // namespace kelpui::utility

namespace
{

using namespace tarvo::module;
using Events = std::vector<std::string>;

struct ModuleLifeCycleTest : testing::Test
{
    ModuleLifeCycleTest() { Forget(); }
    ~ModuleLifeCycleTest() override { Terminate(); }

    static void Forget()
    {
        sEvents.clear();
        sBundles.clear();
    }
};

TEST_F(ModuleLifeCycleTest, StartMakesAResourceManagerAndNoSupplier)
{
    Initialize();
    EXPECT_EQ(sEvents, (Events{"manager made"}));
    EXPECT_NE(GetResourceManager(), nullptr);
}

TEST_F(ModuleLifeCycleTest, AFailedLookUpOfTheBundleIsPassedOnAsNull)
{
    Initialize();
    EXPECT_EQ(sBundles, (std::vector<CFBundleRef>{nullptr}));
}

TEST_F(ModuleLifeCycleTest, ASecondStartLeavesTheNewerManagerAlone)
{
    Initialize();
    const auto* const first = GetResourceManager();
    Initialize();
    EXPECT_EQ(sEvents, (Events{"manager made", "manager made", "manager deleted"}));
    EXPECT_NE(GetResourceManager(), first);
}

TEST_F(ModuleLifeCycleTest, ASecondStartKeepsTheSupplier)
{
    Initialize();
    const auto* const supplier = GetDrawSupplier();
    Initialize();
    EXPECT_EQ(GetDrawSupplier(), supplier);
}

TEST_F(ModuleLifeCycleTest, TheSupplierIsMadeOnceAndAlsoBeforeAStart)
{
    const auto* const supplier = GetDrawSupplier();
    EXPECT_EQ(GetDrawSupplier(), supplier);
    EXPECT_EQ(sEvents, (Events{"supplier made"}));
    EXPECT_EQ(GetResourceManager(), nullptr);
}

TEST_F(ModuleLifeCycleTest, TheEndDeletesTheSupplierFirst)
{
    Initialize();
    (void)GetDrawSupplier();
    Forget();
    Terminate();
    EXPECT_EQ(sEvents, (Events{"supplier deleted", "manager deleted"}));
    EXPECT_EQ(GetResourceManager(), nullptr);
}

TEST_F(ModuleLifeCycleTest, TheEndOfNothingDoesNothing)
{
    Terminate();
    Terminate();
    EXPECT_TRUE(sEvents.empty());
}

TEST_F(ModuleLifeCycleTest, AfterTheEndASupplierIsMadeAnew)
{
    (void)GetDrawSupplier();
    Terminate();
    Forget();
    EXPECT_NE(GetDrawSupplier(), nullptr);
    EXPECT_EQ(sEvents, (Events{"supplier made"}));
}

}  // namespace
