// When the module makes and deletes its two objects, seen by a dialog framework that takes note.
#include "Tarvo_PlugIns/Common/Module/private/Module.h"

#include <kelpui/inkwright/Supplier.h>
#include <kelpui/utility/OS_ResourceManager.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace
{

std::vector<std::string> sEvents;
std::vector<CFBundleRef> sBundles;
CFBundleRef sFoundBundle = nullptr;  // what the look-up answers
std::string sIdentifier;             // what it was asked for last
bool sIsExiting = false;

// At the process's end the list may be gone before the module's objects are.
void Note(const char* inEvent)
{
    if (sIsExiting)
        std::fprintf(stderr, "%s, ", inEvent);
    else
        sEvents.emplace_back(inEvent);
}

class NotingSupplier : public kelpui::inkwright::SupplierInterface
{
public:
    NotingSupplier() { Note("supplier made"); }
    ~NotingSupplier() override { Note("supplier deleted"); }
    kelpui::inkwright::BaseFont GetBaseFont() const override { return {"Sans", 10.0}; }
};

}  // namespace

// In front of the platform's, which finds the built bundle or not, as the build tree happens to be.
CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef inIdentifier)
{
    char text[64] = "";
    (void)CFStringGetCString(inIdentifier, text, sizeof text, kCFStringEncodingUTF8);
    sIdentifier = text;
    return sFoundBundle;
}

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
    Note("manager made");
}

OS_ResourceManager::~OS_ResourceManager()
{
    Note("manager deleted");
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
        sFoundBundle = nullptr;
    }
};

TEST_F(ModuleLifeCycleTest, StartMakesAResourceManagerAndNoSupplier)
{
    Initialize();
    EXPECT_EQ(sEvents, (Events{"manager made"}));
    EXPECT_NE(GetResourceManager(), nullptr);
}

TEST_F(ModuleLifeCycleTest, TheManagerGetsTheBundleOfThePlugInsIdentifier)
{
    char bundle = 0;
    sFoundBundle = reinterpret_cast<CFBundleRef>(&bundle);  // never looked into
    Initialize();
    EXPECT_EQ(sIdentifier, "com.verlo.TarvoAT.bundle");
    EXPECT_EQ(sBundles, (std::vector<CFBundleRef>{sFoundBundle}));
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

TEST_F(ModuleLifeCycleTest, TheEndOfTheProcessDeletesTheManagerFirst)
{
    EXPECT_EXIT(
        {
            Initialize();
            (void)GetDrawSupplier();
            sIsExiting = true;
            std::exit(0);
        },
        testing::ExitedWithCode(0), "^manager deleted, supplier deleted, $");
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
