// Test: anything that a registry or a suite holds, a suite or a case.
#ifndef KELPUNITTESTING_TEST_H
#define KELPUNITTESTING_TEST_H

#include "kelpunittesting/Export.h"

#include <string>

namespace kelpunittesting
{

class TestVisitor;

class KELPUNITTESTING_EXPORT Test
{
public:
    virtual ~Test();
    Test(const Test&) = delete;
    Test& operator=(const Test&) = delete;

    /// Shows itself to the visitor, and after itself what it contains.
    virtual void Accept(TestVisitor& ioVisitor) = 0;

    const std::string& GetName() const { return mName; }

protected:
    explicit Test(const std::string& inName) : mName(inName) {}

private:
    const std::string mName;
};

}  // namespace kelpunittesting

#endif
