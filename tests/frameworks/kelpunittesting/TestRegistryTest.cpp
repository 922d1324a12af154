// Registration: once per name, once per registrar.
#include "kelpunittesting/TestRegistry.h"

#include "kelpunittesting/TestSuite.h"

#include <gtest/gtest.h>

namespace
{

using namespace kelpunittesting;
using Names = std::vector<std::string>;

Test* MakeFirst()
{
    return new TestSuite("made by the first");
}

Test* MakeSecond()
{
    return new TestSuite("made by the second");
}

int sMadeSuites = 0;

struct Registered
{
    static constexpr const char* kSuiteName = "Registered";
    static Test* CreateTest()
    {
        ++sMadeSuites;
        return new TestSuite(kSuiteName);
    }
};

// There is one registry a process, so that each test has names of its own.
int Count(const std::string& inName)
{
    int count = 0;
    for (const std::string& name : TestRegistry::GetNames())
        count += name == inName ? 1 : 0;
    return count;
}

TEST(TestRegistry, MakesANewTestEachTime)
{
    TestRegistry::RegisterTest("new each time", &MakeFirst);
    const auto one = TestRegistry::CreateTest("new each time");
    const auto other = TestRegistry::CreateTest("new each time");
    ASSERT_TRUE(one);
    ASSERT_TRUE(other);
    EXPECT_NE(one, other);
    EXPECT_EQ(one->GetName(), "made by the first");
}

TEST(TestRegistry, KeepsTheOrderOfRegistration)
{
    const std::size_t before = TestRegistry::GetNames().size();
    TestRegistry::RegisterTest("z of order", &MakeFirst);
    TestRegistry::RegisterTest("a of order", &MakeSecond);
    const Names names = TestRegistry::GetNames();
    ASSERT_EQ(names.size(), before + 2);
    EXPECT_EQ(names[before], "z of order");
    EXPECT_EQ(names[before + 1], "a of order");
}

TEST(TestRegistry, TakesTheLastFactoryOfANameInItsPlace)
{
    TestRegistry::RegisterTest("twice", &MakeFirst);
    TestRegistry::RegisterTest("behind twice", &MakeFirst);
    TestRegistry::RegisterTest("twice", &MakeSecond);
    EXPECT_EQ(Count("twice"), 1);
    EXPECT_EQ(TestRegistry::GetNames().back(), "behind twice");
    EXPECT_EQ(TestRegistry::CreateTest("twice")->GetName(), "made by the second");
    EXPECT_EQ(TestRegistry::CreateTest("behind twice")->GetName(), "made by the first");
}

TEST(TestRegistry, HasNothingForAnUnknownName)
{
    EXPECT_EQ(TestRegistry::CreateTest("nobody's"), nullptr);
}

TEST(TestRegistrar, RegistersOnceAndMakesNothingYet)
{
    EXPECT_EQ(Count("Registered"), 0);
    TestRegistrar<Registered> first;
    TestRegistrar<Registered> second;
    EXPECT_EQ(Count("Registered"), 1);
    EXPECT_EQ(sMadeSuites, 0);
    EXPECT_EQ(TestRegistry::CreateTest("Registered")->GetName(), "Registered");
    EXPECT_EQ(sMadeSuites, 1);
}

}  // namespace
