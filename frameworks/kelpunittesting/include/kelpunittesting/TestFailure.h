// TestFailure: how a case says that it did not pass, and where.
#ifndef KELPUNITTESTING_TESTFAILURE_H
#define KELPUNITTESTING_TESTFAILURE_H

#include "kelpunittesting/Export.h"

#include <stdexcept>
#include <string>

namespace kelpunittesting
{

/// A place in the sources. A failure without a place has empty texts and line 0.
struct LocationInfo
{
    std::string mFunction;
    std::string mSourcePath;
    int mLine = 0;
};

/// what() is the condition that did not hold.
class KELPUNITTESTING_EXPORT TestFailure : public std::runtime_error
{
public:
    TestFailure(const std::string& inText, const LocationInfo& inLocation)
        : std::runtime_error(inText), mLocation(inLocation)
    {
    }
    ~TestFailure() override;

    const LocationInfo& GetLocation() const { return mLocation; }

private:
    LocationInfo mLocation;
};

/// Throws a TestFailure.
[[noreturn]] KELPUNITTESTING_EXPORT void ThrowTestFailure(const std::string& inText,
                                                          const LocationInfo& inLocation);

}  // namespace kelpunittesting

#endif
