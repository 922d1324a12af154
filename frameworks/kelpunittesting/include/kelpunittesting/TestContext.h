// TestContext: what a case is given to run with.
#ifndef KELPUNITTESTING_TESTCONTEXT_H
#define KELPUNITTESTING_TESTCONTEXT_H

#include <iosfwd>

namespace kelpunittesting
{

class TestContext
{
public:
    /// The stream stays the caller's and has to outlive the context.
    explicit TestContext(std::ostream& inTraceOut) : mTraceOut(inTraceOut) {}

    /// The report stream, for text in UTF-8.
    std::ostream& TraceOut() const { return mTraceOut; }

private:
    std::ostream& mTraceOut;
};

}  // namespace kelpunittesting

#endif
