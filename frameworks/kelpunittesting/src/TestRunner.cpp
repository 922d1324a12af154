#include "kelpunittesting/TestRunner.h"

#include "kelpunittesting/TestCase.h"
#include "kelpunittesting/TestContext.h"
#include "kelpunittesting/TestSuite.h"

#include <ostream>
#include <utility>

namespace kelpunittesting
{

namespace
{

// The path is the caller's to fill in.
TestResult RunCase(TestCaseBase& ioCase, const TestContext& inContext)
{
    try
    {
        ioCase.Run(inContext);
        return {{}, true, {}, {}};
    }
    catch (const TestFailure& failure)
    {
        return {{}, false, failure.what(), failure.GetLocation()};
    }
    catch (const std::exception& error)
    {
        return {{}, false, error.what(), {}};
    }
    catch (...)
    {
        return {{}, false, "unknown exception", {}};
    }
}

}  // namespace

std::ostream& operator<<(std::ostream& ioStream, const TestResult& inResult)
{
    ioStream << inResult.mPath << (inResult.mPassed ? ": passed" : ": failed: ") << inResult.mText;
    const LocationInfo& location = inResult.mLocation;
    if (location.mLine > 0)
        ioStream << " (" << location.mFunction << ", " << location.mSourcePath << ":"
                 << location.mLine << ")";
    return ioStream << "\n";
}

TestRunner::TestRunner(std::ostream& inReport, Listener inListener)
    : mReport(inReport), mListener(std::move(inListener))
{
}

TestRunner::TestRunner(std::ostream& inReport)
    : TestRunner(inReport, [&inReport](const TestResult& result) { inReport << result; })
{
}

TestRunner::~TestRunner() = default;

void TestRunner::Run(Test& ioTest)
{
    mSuites.clear();  // a listener may have ended the last run in the middle
    ioTest.Accept(*this);
}

void TestRunner::EnterSuite(TestSuite& ioSuite)
{
    mSuites.push_back(ioSuite.GetName());
}

void TestRunner::LeaveSuite(TestSuite&)
{
    mSuites.pop_back();
}

void TestRunner::VisitCase(TestCaseBase& ioCase)
{
    TestResult result = RunCase(ioCase, TestContext(mReport));
    result.mPath = PathOf(ioCase);
    mReport.flush();
    ++mCases;
    mFailures += result.mPassed ? 0 : 1;
    mListener(result);
}

std::string TestRunner::PathOf(const TestCaseBase& inCase) const
{
    std::string path;
    for (const std::string& suite : mSuites)
        path += suite + "/";
    return path + inCase.GetName();
}

}  // namespace kelpunittesting
