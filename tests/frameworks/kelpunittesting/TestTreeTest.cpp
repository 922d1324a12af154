// Suites and cases as visitors see them.
#include "kelpunittesting/TestCase.h"
#include "kelpunittesting/TestContext.h"
#include "kelpunittesting/TestSuite.h"
#include "kelpunittesting/TestVisitor.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

namespace
{

using namespace kelpunittesting;
using Steps = std::vector<std::string>;

class Notes : public TestVisitor
{
public:
    void EnterSuite(TestSuite& ioSuite) override { mSteps.push_back("enter " + ioSuite.GetName()); }
    void LeaveSuite(TestSuite& ioSuite) override { mSteps.push_back("leave " + ioSuite.GetName()); }
    void VisitCase(TestCaseBase& ioCase) override { mSteps.push_back("case " + ioCase.GetName()); }

    Steps mSteps;
};

struct Fixture
{
    Fixture() { ++sMade; }
    void Say(const TestContext& inContext) { inContext.TraceOut() << "said " << ++mSaid; }

    int mSaid = 0;
    static inline int sMade = 0;
};

class Watched : public TestSuite
{
public:
    explicit Watched(int& ioAlive) : TestSuite("watched"), mAlive(ioAlive) { ++mAlive; }
    ~Watched() override { --mAlive; }

private:
    int& mAlive;
};

TEST(TestTree, IsVisitedInTheOrderOfAdding)
{
    TestSuite outer("outer");
    auto* const inner = new TestSuite("inner");
    outer.AddTest(new TestCase<Fixture>("z", &Fixture::Say));
    outer.AddTest(inner);
    inner->AddTest(new TestCase<Fixture>("b", &Fixture::Say));
    outer.AddTest(new TestCase<Fixture>("a", &Fixture::Say));
    Notes notes;
    outer.Accept(notes);
    EXPECT_EQ(notes.mSteps, (Steps{"enter outer", "case z", "enter inner", "case b", "leave inner",
                                   "case a", "leave outer"}));
}

TEST(TestTree, AnEmptySuiteIsEnteredAndLeft)
{
    Notes notes;
    TestSuite("empty").Accept(notes);
    EXPECT_EQ(notes.mSteps, (Steps{"enter empty", "leave empty"}));
}

TEST(TestTree, ASuiteOwnsItsTestsAndIgnoresNull)
{
    int alive = 0;
    {
        TestSuite outer("outer");
        outer.AddTest(new Watched(alive));
        outer.AddTest(nullptr);
        EXPECT_EQ(alive, 1);
        Notes notes;
        outer.Accept(notes);
        EXPECT_EQ(notes.mSteps.size(), 4u);
    }
    EXPECT_EQ(alive, 0);
}

TEST(TestCase, HasANewFixtureForEachRun)
{
    TestCase<Fixture> testCase("say", &Fixture::Say);
    EXPECT_EQ(Fixture::sMade, 0);
    std::ostringstream report;
    testCase.Run(TestContext(report));
    testCase.Run(TestContext(report));
    EXPECT_EQ(Fixture::sMade, 2);
    EXPECT_EQ(report.str(), "said 1said 1");
}

}  // namespace
