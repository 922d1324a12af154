#include "HeapCounter.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace
{

std::atomic<long> sAllocations{0};
std::atomic<long> sReleases{0};

void* Allocate(std::size_t inBytes, std::size_t inAlignment)
{
    ++sAllocations;
    void* block = nullptr;
    return ::posix_memalign(&block, inAlignment, inBytes > 0 ? inBytes : 1) == 0 ? block : nullptr;
}

void Release(void* inBlock)
{
    if (inBlock)
        ++sReleases;
    std::free(inBlock);
}

}  // namespace

long HeapAllocations()
{
    return sAllocations;
}
long HeapReleases()
{
    return sReleases;
}

void* operator new(std::size_t inBytes)
{
    if (void* block = Allocate(inBytes, alignof(std::max_align_t)))
        return block;
    throw std::bad_alloc();
}

void* operator new(std::size_t inBytes, std::align_val_t inAlignment,
                   const std::nothrow_t&) noexcept
{
    return Allocate(inBytes, static_cast<std::size_t>(inAlignment));
}

void operator delete(void* inBlock) noexcept
{
    Release(inBlock);
}
void operator delete(void* inBlock, std::size_t) noexcept
{
    Release(inBlock);
}
void operator delete(void* inBlock, std::align_val_t) noexcept
{
    Release(inBlock);
}
