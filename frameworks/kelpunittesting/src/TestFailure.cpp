#include "kelpunittesting/TestFailure.h"

namespace kelpunittesting
{

TestFailure::~TestFailure() = default;

void ThrowTestFailure(const std::string& inText, const LocationInfo& inLocation)
{
    throw TestFailure(inText, inLocation);
}

}  // namespace kelpunittesting
