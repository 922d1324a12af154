// The registered suite: its names, its shape, and its run by the framework.
#include "appleaudiotoolbox/diagnostics/AudioToolboxTests.h"

#include "kelpunittesting/TestCase.h"
#include "kelpunittesting/TestRegistry.h"
#include "kelpunittesting/TestRunner.h"
#include "kelpunittesting/TestSuite.h"
#include "tests/appleaudiotoolbox/diagnostics/DiagnosticsFixture.h"

using namespace appleaudiotoolbox;
using kelpunittesting::TestCaseBase;
using kelpunittesting::TestRegistry;
using kelpunittesting::TestResult;
using kelpunittesting::TestRunner;
using kelpunittesting::TestSuite;
using namespace testing_support;

namespace
{

using Names = std::vector<std::string>;

class Shape : public kelpunittesting::TestVisitor
{
public:
    void EnterSuite(TestSuite& ioSuite) override { mSteps.push_back(ioSuite.GetName() + " ("); }
    void LeaveSuite(TestSuite&) override { mSteps.push_back(")"); }
    void VisitCase(TestCaseBase& ioCase) override { mSteps.push_back(ioCase.GetName()); }

    Names mSteps;
};

using AudioToolboxTestsTest = DiagnosticsTest;

TEST_F(AudioToolboxTestsTest, InitializeRegistersOnceAndAsksThePlatformNothing)
{
    for (int call = 0; call < 3; ++call)
        AudioToolboxTests::Initialize();
    EXPECT_EQ(TestRegistry::GetNames(), (Names{"AudioToolbox"}));
    EXPECT_EQ(mPlatform.Calls(), Names());
}

TEST_F(AudioToolboxTestsTest, TheSuiteHoldsTheTwoCatalogueCases)
{
    const std::unique_ptr<kelpunittesting::Test> suite(AudioToolboxTests::CreateTest());
    Shape shape;
    suite->Accept(shape);
    EXPECT_EQ(shape.mSteps, (Names{"AudioToolbox (", "FormatTests (", "QueryInputFormats",
                                   "QueryOuputFormats", ")", ")"}));
    EXPECT_EQ(mPlatform.Calls(), Names());
}

TEST_F(AudioToolboxTestsTest, TheRegisteredSuiteRunsAndBreachesLeaveThroughTheFramework)
{
    AudioToolboxTests::Initialize();
    const std::unique_ptr<kelpunittesting::Test> suite = TestRegistry::CreateTest("AudioToolbox");
    ASSERT_TRUE(suite);
    Mode(1).mDefault = 0;
    std::ostringstream report;
    std::vector<TestResult> results;
    TestRunner runner(report, [&](const TestResult& result) { results.push_back(result); });
    runner.Run(*suite);
    ASSERT_EQ(results.size(), 2u);
    EXPECT_EQ(results[0].mPath, "AudioToolbox/FormatTests/QueryInputFormats");
    EXPECT_TRUE(results[0].mPassed) << results[0].mText;
    EXPECT_EQ(results[1].mPath, "AudioToolbox/FormatTests/QueryOuputFormats");
    EXPECT_FALSE(results[1].mPassed);
    EXPECT_EQ(results[1].mText, "inFormatType.mDefaultLTA != 0");
}

TEST_F(AudioToolboxTestsTest, ARunLeavesTheCatalogueAsItIs)
{
    const std::string first = RunOutput().mReport;
    mPlatform.ForgetCalls();
    EXPECT_EQ(RunOutput().mReport, first);
    EXPECT_EQ(mPlatform.Calls(), Names());
}

}  // namespace
