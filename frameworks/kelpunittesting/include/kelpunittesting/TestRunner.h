// TestRunner: runs every case of a test and tells how each came out.
#ifndef KELPUNITTESTING_TESTRUNNER_H
#define KELPUNITTESTING_TESTRUNNER_H

#include "kelpunittesting/Export.h"
#include "kelpunittesting/TestFailure.h"
#include "kelpunittesting/TestVisitor.h"

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace kelpunittesting
{

class Test;

/// How one case came out.
struct TestResult
{
    std::string mPath;  // names from the outermost suite to the case, parted by "/"
    bool mPassed = false;
    // Of a failure; the location is empty if the case failed with another exception than a
    // TestFailure.
    std::string mText;
    LocationInfo mLocation;
};

/// One line: "PATH: passed", or "PATH: failed: TEXT (FUNCTION, SOURCE:LINE)" without the brackets
/// where there is no location.
KELPUNITTESTING_EXPORT std::ostream& operator<<(std::ostream& ioStream, const TestResult& inResult);

class KELPUNITTESTING_EXPORT TestRunner : public TestVisitor
{
public:
    using Listener = std::function<void(const TestResult& inResult)>;

    /// inReport      where the cases print; flushed behind each of them. It has to outlive the
    ///               runner.
    /// inListener    called after each case; what it throws ends the run
    TestRunner(std::ostream& inReport, Listener inListener);
    /// Prints each result into the report, behind what its case printed.
    explicit TestRunner(std::ostream& inReport);
    ~TestRunner() override;

    /// A case that fails, with whatever exception, does not keep the others from their turn.
    void Run(Test& ioTest);

    // Of all runs so far.
    int GetCaseCount() const { return mCases; }
    int GetFailureCount() const { return mFailures; }

    void EnterSuite(TestSuite& ioSuite) override;
    void LeaveSuite(TestSuite& ioSuite) override;
    void VisitCase(TestCaseBase& ioCase) override;

private:
    std::string PathOf(const TestCaseBase& inCase) const;

    std::ostream& mReport;
    const Listener mListener;
    std::vector<std::string> mSuites;  // from the outermost to the one that is being walked
    int mCases = 0;
    int mFailures = 0;
};

}  // namespace kelpunittesting

#endif
