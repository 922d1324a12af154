#include "AllocationCount.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{

std::atomic<std::size_t> sAllocations = 0;

}  // namespace

std::size_t AllocationCount()
{
    return sAllocations;
}

void* operator new(std::size_t inBytes)
{
    ++sAllocations;
    if (void* block = std::malloc(inBytes == 0 ? 1 : inBytes))
        return block;
    throw std::bad_alloc();
}

void* operator new(std::size_t inBytes, const std::nothrow_t&) noexcept
{
    ++sAllocations;
    return std::malloc(inBytes == 0 ? 1 : inBytes);
}

void operator delete(void* inBlock) noexcept
{
    std::free(inBlock);
}

void operator delete(void* inBlock, std::size_t) noexcept
{
    std::free(inBlock);
}
