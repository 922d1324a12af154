// TestCase: one test that can be run.
#ifndef KELPUNITTESTING_TESTCASE_H
#define KELPUNITTESTING_TESTCASE_H

#include "kelpunittesting/Test.h"

namespace kelpunittesting
{

class TestContext;

class KELPUNITTESTING_EXPORT TestCaseBase : public Test
{
public:
    ~TestCaseBase() override;

    void Accept(TestVisitor& ioVisitor) override;

    /// Returns if the test passes, and throws if it fails, as a rule with ThrowTestFailure.
    virtual void Run(const TestContext& inContext) = 0;

protected:
    explicit TestCaseBase(const std::string& inName) : Test(inName) {}
};

/// A case that is a member function of a fixture. Each run has a fixture of its own.
template <typename Fixture>
class TestCase : public TestCaseBase
{
public:
    using Member = void (Fixture::*)(const TestContext& inContext);

    TestCase(const std::string& inName, Member inMember) : TestCaseBase(inName), mMember(inMember)
    {
    }

    void Accept(TestVisitor& ioVisitor) override { TestCaseBase::Accept(ioVisitor); }

    void Run(const TestContext& inContext) override
    {
        Fixture fixture;
        (fixture.*mMember)(inContext);
    }

private:
    const Member mMember;
};

}  // namespace kelpunittesting

#endif
