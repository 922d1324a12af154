// AllocationCount: how often this program has asked the heap through operator new.
#ifndef TESTS_CONVERT_ALLOCATIONCOUNT_H
#define TESTS_CONVERT_ALLOCATIONCOUNT_H

#include <cstddef>

std::size_t AllocationCount();

#endif
