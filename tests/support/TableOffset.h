// TableOffset: where a virtual operation stands in its class's table.
#ifndef TESTS_SUPPORT_TABLEOFFSET_H
#define TESTS_SUPPORT_TABLEOFFSET_H

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

namespace testing_support
{

/// A pointer to a virtual operation is, by the C++ ABI of this platform, 1 plus the offset in the
/// table of virtual operations, and an adjustment of the object's address. The first two positions
/// are those of a virtual destructor that is declared before all others.
template <typename Operation>
std::ptrdiff_t TableOffset(Operation inOperation)
{
    std::ptrdiff_t words[2] = {};
    static_assert(sizeof words == sizeof inOperation);
    std::memcpy(words, &inOperation, sizeof words);
    EXPECT_EQ(words[1], 0);
    EXPECT_EQ(words[0] % 8, 1);
    return words[0] - 1;
}

}  // namespace testing_support

#endif
