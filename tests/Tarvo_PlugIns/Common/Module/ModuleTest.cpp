// The module on the real dialog framework.
#include "Tarvo_PlugIns/Common/Module/private/Module.h"

#include <kelpui/inkwright/Supplier.h>
#include <kelpui/utility/ResourceManager.h>

#include <gtest/gtest.h>

namespace
{

using namespace tarvo::module;

struct ModuleTest : testing::Test
{
    ~ModuleTest() override { Terminate(); }
};

TEST_F(ModuleTest, HasNoResourceManagerBeforeItsStart)
{
    EXPECT_EQ(GetResourceManager(), nullptr);
}

TEST_F(ModuleTest, HasAResourceManagerOnceItIsStarted)
{
    // Whether the bundle is found depends on what is built; no bundle has a resource of this name.
    Initialize();
    ASSERT_NE(GetResourceManager(), nullptr);
    EXPECT_FALSE(GetResourceManager()->HasResource("NoSuchResource", "ui"));
}

TEST_F(ModuleTest, StaysWithOneSupplier)
{
    const auto* const supplier = GetDrawSupplier();
    ASSERT_NE(supplier, nullptr);
    EXPECT_EQ(GetDrawSupplier(), supplier);
    EXPECT_FALSE(supplier->GetBaseFont().mFamily.empty());
}

TEST_F(ModuleTest, EndsAndStartsAgain)
{
    Initialize();
    (void)GetDrawSupplier();
    Terminate();
    EXPECT_EQ(GetResourceManager(), nullptr);
    Terminate();

    Initialize();
    EXPECT_NE(GetResourceManager(), nullptr);
    EXPECT_NE(GetDrawSupplier(), nullptr);
}

}  // namespace
