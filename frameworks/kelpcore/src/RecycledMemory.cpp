#include "kelpcore/utility/RecycledMemory.h"

#include <cstdint>
#include <mutex>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(inBlock, inBytes) ((void)(inBlock), (void)(inBytes))
#define ASAN_UNPOISON_MEMORY_REGION(inBlock, inBytes) ((void)(inBlock), (void)(inBytes))
#endif

namespace kelpcore::utility
{
namespace
{

constexpr std::size_t kAlignment = 64;
constexpr std::size_t kMostBlocks = 16;
constexpr std::size_t kMostBytes = std::size_t{64} << 20;

// Stands before every block, in a cache line of its own, so that a block keeps its true size
// however little of it was asked for.
struct alignas(kAlignment) Header
{
    std::size_t mCapacity;
};
static_assert(sizeof(Header) == kAlignment);

Header* HeaderOf(void* inBlock)
{
    return static_cast<Header*>(inBlock) - 1;
}

Header* NewBlock(std::size_t inBytes)
{
    if (inBytes > PTRDIFF_MAX - sizeof(Header))
        return nullptr;
    void* memory =
        ::operator new (sizeof(Header) + inBytes, std::align_val_t{kAlignment}, std::nothrow);
    return memory ? ::new (memory) Header{inBytes} : nullptr;
}

void DeleteBlock(Header* inHeader)
{
    if (!inHeader)
        return;
    ASAN_UNPOISON_MEMORY_REGION(inHeader + 1, inHeader->mCapacity);
    ::operator delete (inHeader, std::align_val_t{kAlignment});
}

// The blocks that wait, smallest first. Plain data: it outlives its closer below, since scratch
// memory may come back while the program's last objects go.
struct Shelf
{
    std::mutex mMutex;
    Header* mBlocks[kMostBlocks];
    std::size_t mCount;
    std::size_t mBytes;
    bool mClosed;

    Header* RemoveAt(std::size_t inIndex)
    {
        Header* taken = mBlocks[inIndex];
        --mCount;
        mBytes -= taken->mCapacity;
        for (std::size_t index = inIndex; index < mCount; ++index)
            mBlocks[index] = mBlocks[index + 1];
        return taken;
    }

    void Insert(Header* inHeader)
    {
        std::size_t index = mCount++;
        for (; index > 0 && mBlocks[index - 1]->mCapacity > inHeader->mCapacity; --index)
            mBlocks[index] = mBlocks[index - 1];
        mBlocks[index] = inHeader;
        mBytes += inHeader->mCapacity;
    }

    bool HasRoomFor(std::size_t inBytes) const
    {
        return mCount < kMostBlocks && mBytes + inBytes <= kMostBytes;
    }
};

constinit Shelf sShelf = {};

// The smallest waiting block that is large enough, null without one.
Header* TakeFromShelf(std::size_t inBytes)
{
    const std::lock_guard<std::mutex> lock(sShelf.mMutex);
    for (std::size_t index = 0; index < sShelf.mCount; ++index)
        if (sShelf.mBlocks[index]->mCapacity >= inBytes)
            return sShelf.RemoveAt(index);
    return nullptr;
}

// Blocks that have no place any more. They go to the heap after the lock is released.
struct Surplus
{
    Header* mBlocks[kMostBlocks + 1];
    std::size_t mCount = 0;

    void Add(Header* inHeader) { mBlocks[mCount++] = inHeader; }
    ~Surplus()
    {
        for (std::size_t index = 0; index < mCount; ++index)
            DeleteBlock(mBlocks[index]);
    }
};

// The smallest blocks give way, the new one included: a large block can serve for a small one.
void PutOnShelf(Header* inHeader)
{
    Surplus surplus;
    const std::lock_guard<std::mutex> lock(sShelf.mMutex);
    if (sShelf.mClosed || inHeader->mCapacity > kMostBytes)
        return surplus.Add(inHeader);
    while (!sShelf.HasRoomFor(inHeader->mCapacity))
    {
        if (sShelf.mBlocks[0]->mCapacity >= inHeader->mCapacity)
            return surplus.Add(inHeader);
        surplus.Add(sShelf.RemoveAt(0));
    }
    ASAN_POISON_MEMORY_REGION(inHeader + 1, inHeader->mCapacity);
    sShelf.Insert(inHeader);
}

// Clears the shelf when the library goes.
struct ShelfCloser
{
    ~ShelfCloser()
    {
        const std::lock_guard<std::mutex> lock(sShelf.mMutex);
        sShelf.mClosed = true;
        while (sShelf.mCount > 0)
            DeleteBlock(sShelf.RemoveAt(sShelf.mCount - 1));
    }
};

ShelfCloser sShelfCloser;

}  // namespace

void* MemoryRecycler::Allocate(std::size_t inBytes)
{
    if (inBytes == 0)
        return nullptr;
    Header* header = TakeFromShelf(inBytes);
    if (!header)
        header = NewBlock(inBytes);
    if (!header)
        return nullptr;
    ASAN_UNPOISON_MEMORY_REGION(header + 1, inBytes);
    return header + 1;
}

void MemoryRecycler::Recycle(void* inBlock, std::size_t) noexcept
{
    if (inBlock)
        PutOnShelf(HeaderOf(inBlock));
}

RecycledMemory::RecycledMemory(std::size_t inBytes)
    : mSize(inBytes), mBlock(static_cast<char*>(MemoryRecycler::Allocate(inBytes)))
{
    if (!mBlock)
        mSize = 0;
}

RecycledMemory::~RecycledMemory()
{
    MemoryRecycler::Recycle(mBlock, mSize);
}

}  // namespace kelpcore::utility
