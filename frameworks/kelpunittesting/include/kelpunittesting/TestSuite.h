// TestSuite: a named container of suites and cases.
#ifndef KELPUNITTESTING_TESTSUITE_H
#define KELPUNITTESTING_TESTSUITE_H

#include "kelpunittesting/Test.h"

#include <memory>
#include <vector>

namespace kelpunittesting
{

class KELPUNITTESTING_EXPORT TestSuite : public Test
{
public:
    explicit TestSuite(const std::string& inName) : Test(inName) {}
    ~TestSuite() override;

    void Accept(TestVisitor& ioVisitor) override;

    /// Takes the test over, also when it throws. Null is ignored.
    void AddTest(Test* inTest);

private:
    std::vector<std::unique_ptr<Test>> mTests;
};

}  // namespace kelpunittesting

#endif
