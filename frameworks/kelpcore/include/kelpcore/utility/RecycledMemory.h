// RecycledMemory: scratch blocks that are used again instead of going back to the heap.
#ifndef KELPCORE_UTILITY_RECYCLEDMEMORY_H
#define KELPCORE_UTILITY_RECYCLEDMEMORY_H

#include "kelpcore/Export.h"

#include <cstddef>

namespace kelpcore::utility
{

/// Keeps a few blocks that were given back, and hands out one that is large enough before it asks
/// the heap. Safe on any thread.
class KELPCORE_EXPORT MemoryRecycler
{
public:
    /// A block of at least inBytes bytes, aligned to 64, contents undefined; null for 0 bytes and
    /// when out of memory.
    static void* Allocate(std::size_t inBytes);
    /// Takes a block of Allocate back, with the size that was asked. Null is fine.
    static void Recycle(void* inBlock, std::size_t inBytes) noexcept;
};

/// Owns one block of the recycler. A size of 0 takes no block, and Get is null then, as it is when
/// out of memory; Size is 0 in both cases.
class KELPCORE_EXPORT RecycledMemory
{
public:
    explicit RecycledMemory(std::size_t inBytes);
    ~RecycledMemory();
    RecycledMemory(const RecycledMemory&) = delete;
    RecycledMemory& operator=(const RecycledMemory&) = delete;

    char* Get() const { return mBlock; }
    std::size_t Size() const { return mSize; }

private:
    std::size_t mSize;
    char* mBlock;
};

}  // namespace kelpcore::utility

#endif
