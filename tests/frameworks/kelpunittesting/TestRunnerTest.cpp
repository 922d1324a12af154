// Running: verdicts, locations, and that nothing keeps a case from its turn.
#include "kelpunittesting/TestRunner.h"

#include "kelpunittesting/TestCase.h"
#include "kelpunittesting/TestContext.h"
#include "kelpunittesting/TestSuite.h"

#include <gtest/gtest.h>

#include <sstream>

namespace
{

using namespace kelpunittesting;

struct Fixture
{
    void Pass(const TestContext& inContext) { inContext.TraceOut() << "fine\n"; }
    void Fail(const TestContext& inContext)
    {
        inContext.TraceOut() << "as far as this\n";
        ThrowTestFailure("x == y", {"Fail", "folder/Source.cpp", 17});
    }
    void ThrowError(const TestContext&) { throw std::out_of_range("beyond the end"); }
    void ThrowNumber(const TestContext&) { throw 5; }
};

std::unique_ptr<TestSuite> MakeSuite()
{
    auto outer = std::make_unique<TestSuite>("Outer");
    auto* const inner = new TestSuite("Inner");
    outer->AddTest(inner);
    inner->AddTest(new TestCase<Fixture>("Error", &Fixture::ThrowError));
    inner->AddTest(new TestCase<Fixture>("Number", &Fixture::ThrowNumber));
    inner->AddTest(new TestCase<Fixture>("Fail", &Fixture::Fail));
    outer->AddTest(new TestCase<Fixture>("Pass", &Fixture::Pass));
    return outer;
}

TEST(TestRunner, ReportsEveryCaseBehindWhatItPrinted)
{
    std::ostringstream report;
    TestRunner runner(report);
    runner.Run(*MakeSuite());
    EXPECT_EQ(report.str(),
              "Outer/Inner/Error: failed: beyond the end\n"
              "Outer/Inner/Number: failed: unknown exception\n"
              "as far as this\n"
              "Outer/Inner/Fail: failed: x == y (Fail, folder/Source.cpp:17)\n"
              "fine\n"
              "Outer/Pass: passed\n");
    EXPECT_EQ(runner.GetCaseCount(), 4);
    EXPECT_EQ(runner.GetFailureCount(), 3);
}

TEST(TestRunner, TellsTheListenerTextAndLocation)
{
    std::ostringstream report;
    std::vector<TestResult> results;
    TestRunner runner(report, [&](const TestResult& result) { results.push_back(result); });
    runner.Run(*MakeSuite());
    ASSERT_EQ(results.size(), 4u);
    EXPECT_FALSE(results[2].mPassed);
    EXPECT_EQ(results[2].mText, "x == y");
    EXPECT_EQ(results[2].mLocation.mFunction, "Fail");
    EXPECT_EQ(results[2].mLocation.mSourcePath, "folder/Source.cpp");
    EXPECT_EQ(results[2].mLocation.mLine, 17);
    EXPECT_EQ(results[0].mLocation.mLine, 0);
    EXPECT_TRUE(results[3].mPassed);
    EXPECT_EQ(results[3].mText, "");
    EXPECT_EQ(report.str(), "as far as this\nfine\n");
}

TEST(TestRunner, ALoneCaseHasItsNameAsPath)
{
    std::ostringstream report;
    TestRunner runner(report);
    TestCase<Fixture> testCase("Pass", &Fixture::Pass);
    runner.Run(testCase);
    runner.Run(testCase);
    EXPECT_EQ(report.str(), "fine\nPass: passed\nfine\nPass: passed\n");
    EXPECT_EQ(runner.GetCaseCount(), 2);
    EXPECT_EQ(runner.GetFailureCount(), 0);
}

TEST(TestRunner, WhatAListenerThrowsEndsTheRunAndTheNextOneStartsAfresh)
{
    std::ostringstream report;
    std::vector<std::string> paths;
    TestRunner runner(report,
                      [&](const TestResult& result)
                      {
        paths.push_back(result.mPath);
        if (paths.size() == 1)
            throw std::runtime_error("enough");
    });
    EXPECT_THROW(runner.Run(*MakeSuite()), std::runtime_error);
    EXPECT_EQ(paths.size(), 1u);
    runner.Run(*MakeSuite());
    ASSERT_EQ(paths.size(), 5u);
    EXPECT_EQ(paths[1], "Outer/Inner/Error");
}

TEST(ThrowTestFailure, CarriesTextAndPlace)
{
    try
    {
        ThrowTestFailure("a < b", {"Compare", "Compare.cpp", 3});
        FAIL() << "returned";
    }
    catch (const TestFailure& failure)
    {
        EXPECT_STREQ(failure.what(), "a < b");
        EXPECT_EQ(failure.GetLocation().mFunction, "Compare");
        EXPECT_EQ(failure.GetLocation().mSourcePath, "Compare.cpp");
        EXPECT_EQ(failure.GetLocation().mLine, 3);
    }
}

}  // namespace
