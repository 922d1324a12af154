// SmallBlockAllocator: the allocator of the framework's strings and vectors.
//
// Small blocks come from per-size free lists of this thread, larger ones from the general heap, so
// that the many short texts and label lists cost little. Blocks may be freed on another thread.
#ifndef KELPCORE_UTILITY_SMALLBLOCKALLOCATOR_H
#define KELPCORE_UTILITY_SMALLBLOCKALLOCATOR_H

#include "kelpcore/Export.h"

#include <cstddef>
#include <limits>
#include <new>

namespace kelpcore::utility
{

/// A block of inBytes bytes, aligned for any type; raises std::bad_alloc when out of memory.
KELPCORE_EXPORT void* AllocateSmallBlock(std::size_t inBytes);
/// Gives back a block of AllocateSmallBlock with the size that was asked.
KELPCORE_EXPORT void FreeSmallBlock(void* inBlock, std::size_t inBytes) noexcept;

template <typename Value>
class SmallBlockAllocator
{
public:
    using value_type = Value;

    SmallBlockAllocator() noexcept = default;
    template <typename Other>
    SmallBlockAllocator(const SmallBlockAllocator<Other>&) noexcept
    {
    }

    Value* allocate(std::size_t inCount)
    {
        if (inCount > std::numeric_limits<std::size_t>::max() / sizeof(Value))
            throw std::bad_array_new_length();
        return static_cast<Value*>(AllocateSmallBlock(inCount * sizeof(Value)));
    }

    void deallocate(Value* inBlock, std::size_t inCount) noexcept
    {
        FreeSmallBlock(inBlock, inCount * sizeof(Value));
    }

    template <typename Other>
    bool operator==(const SmallBlockAllocator<Other>&) const noexcept
    {
        return true;
    }
};

}  // namespace kelpcore::utility

#endif
