// Resources of a bundle.
#include "kelpui/utility/OS_ResourceManager.h"

#include "kelpcore/utility/AutoCFRef.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <dlfcn.h>

namespace
{

using kelpui::utility::OS_ResourceManager;
using kelpui::utility::ResourceBytes;
using kelpui::utility::ResourceManager;

CFBundleRef ProbeBundle()
{
    // The library stays loaded.
    if (!::dlopen(PROBE_LIBRARY, RTLD_LAZY | RTLD_LOCAL))
        return nullptr;
    const kelpcore::utility::AutoCFRef<CFStringRef> identifier(
        CFStringCreateWithCString(kCFAllocatorDefault, "test.resources", kCFStringEncodingUTF8));
    return CFBundleGetBundleWithIdentifier(identifier.Get());
}

std::string Load(const ResourceManager& inManager, const UTF8String& inName,
                 const UTF8String& inType)
{
    ResourceBytes bytes(1, 'z');
    const bool loaded = inManager.LoadResource(inName, inType, bytes);
    return loaded ? std::string(bytes.begin(), bytes.end()) : "none" + std::to_string(bytes.size());
}

class BundleResources : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const CFBundleRef bundle = ProbeBundle();
        ASSERT_NE(bundle, nullptr);
        mManager = std::make_unique<OS_ResourceManager>(bundle);
    }

    std::unique_ptr<ResourceManager> mManager;
};

}  // namespace

TEST_F(BundleResources, LoadsTheBytesOfANamedFile)
{
    EXPECT_TRUE(mManager->HasResource("Greeting", "txt"));
    EXPECT_EQ(Load(*mManager, "Greeting", "txt"), "Hello\n");
    EXPECT_EQ(Load(*mManager, "Greeting.txt", ""), "Hello\n");
}

TEST_F(BundleResources, WhatIsNotThereIsNotLoaded)
{
    EXPECT_FALSE(mManager->HasResource("Greeting", "ui"));
    EXPECT_EQ(Load(*mManager, "Greeting", "ui"), "none0");
    EXPECT_EQ(Load(*mManager, "Greeting", ""), "none0");
    EXPECT_EQ(Load(*mManager, "", "txt"), "none0");
}

TEST_F(BundleResources, NoNameLeadsOutOfTheFolder)
{
    EXPECT_EQ(Load(*mManager, "../Info", "plist"), "none0");
    EXPECT_EQ(Load(*mManager, "Greeting", "txt/../../Info.plist"), "none0");
    EXPECT_EQ(Load(*mManager, "..", ""), "none0");
    EXPECT_EQ(Load(*mManager, UTF8String("Greeting.txt\0x", 14), ""), "none0");
    EXPECT_EQ(Load(*mManager, "\xFF", "txt"), "none0");
}

TEST(ResourceManagerWithoutBundle, EveryLookUpFails)
{
    const OS_ResourceManager manager(nullptr);
    EXPECT_FALSE(manager.HasResource("Greeting", "txt"));
    EXPECT_EQ(Load(manager, "Greeting", "txt"), "none0");
}
