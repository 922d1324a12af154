// Tests: suites and cases show themselves to visitors.
#include "kelpunittesting/TestCase.h"
#include "kelpunittesting/TestSuite.h"
#include "kelpunittesting/TestVisitor.h"

namespace kelpunittesting
{

Test::~Test() = default;
TestCaseBase::~TestCaseBase() = default;
TestSuite::~TestSuite() = default;
TestVisitor::~TestVisitor() = default;

void TestCaseBase::Accept(TestVisitor& ioVisitor)
{
    ioVisitor.VisitCase(*this);
}

void TestSuite::Accept(TestVisitor& ioVisitor)
{
    ioVisitor.EnterSuite(*this);
    for (const std::unique_ptr<Test>& test : mTests)
        test->Accept(ioVisitor);
    ioVisitor.LeaveSuite(*this);
}

void TestSuite::AddTest(Test* inTest)
{
    std::unique_ptr<Test> test(inTest);
    if (test)
        mTests.push_back(std::move(test));
}

}  // namespace kelpunittesting
