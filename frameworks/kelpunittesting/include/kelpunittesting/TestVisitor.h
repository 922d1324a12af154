// TestVisitor: walks a tree of suites and cases.
#ifndef KELPUNITTESTING_TESTVISITOR_H
#define KELPUNITTESTING_TESTVISITOR_H

#include "kelpunittesting/Export.h"

namespace kelpunittesting
{

class TestCaseBase;
class TestSuite;

/// Told of a suite before and after its contents, and of its contents in the order in which they
/// were added. An exception of a visitor ends the walk.
class KELPUNITTESTING_EXPORT TestVisitor
{
public:
    virtual ~TestVisitor();

    virtual void EnterSuite(TestSuite& ioSuite) = 0;
    virtual void LeaveSuite(TestSuite& ioSuite) = 0;
    virtual void VisitCase(TestCaseBase& ioCase) = 0;
};

}  // namespace kelpunittesting

#endif
