// The free lists. Every block is one of the general heap's own, so that it may go back to the heap,
// or into another thread's list, at any time.
#include "kelpcore/utility/SmallBlockAllocator.h"

// KELPCORE_KEEP_BLOCKS asks for the lists under the sanitizer too, for their own tests.
#if defined(KELPCORE_KEEP_BLOCKS)
#define KELPCORE_HEAP_ONLY 0
#elif defined(__SANITIZE_ADDRESS__)
#define KELPCORE_HEAP_ONLY 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KELPCORE_HEAP_ONLY 1
#endif
#endif

namespace kelpcore::utility
{

#if KELPCORE_HEAP_ONLY

// The sanitizer finds an error in a block only when the heap knows the block's true size and life.
void* AllocateSmallBlock(std::size_t inBytes)
{
    return ::operator new(inBytes);
}

void FreeSmallBlock(void* inBlock, std::size_t) noexcept
{
    ::operator delete(inBlock);
}

#else

namespace
{

constexpr std::size_t kStep = 16;         // one list per 16 bytes of size
constexpr std::size_t kListCount = 16;    // up to 256 bytes
constexpr std::size_t kBytesKept = 4096;  // at most, per list and thread

struct FreeBlock
{
    FreeBlock* mNext;
};

struct FreeList
{
    FreeBlock* mFirst;
    std::size_t mCount;
};

enum class Life
{
    New,
    Running,
    Ended
};

// Plain data without a destructor, so that it can still be looked at while the thread's and the
// program's last objects go: a string that dies after the lists are gone finds Ended and uses the
// heap.
struct ThreadLists
{
    FreeList mLists[kListCount];
    Life mLife;
};

constinit thread_local ThreadLists sLists = {};

// Gives a thread's blocks back when it ends.
struct ListCloser
{
    ~ListCloser()
    {
        sLists.mLife = Life::Ended;
        for (FreeList& list : sLists.mLists)
        {
            while (FreeBlock* block = list.mFirst)
            {
                list.mFirst = block->mNext;
                ::operator delete(block);
            }
            list.mCount = 0;
        }
    }
    void Arm() { sLists.mLife = Life::Running; }
};

thread_local ListCloser sCloser;

// 0 for 1 to 16 bytes, 1 for 17 to 32, ...; a size of 0 takes the smallest block.
std::size_t ListIndex(std::size_t inBytes)
{
    return inBytes == 0 ? 0 : (inBytes - 1) / kStep;
}

bool Keep(void* inBlock, std::size_t inIndex)
{
    if (sLists.mLife == Life::New)
        sCloser.Arm();
    FreeList& list = sLists.mLists[inIndex];
    const std::size_t blockBytes = (inIndex + 1) * kStep;
    if (sLists.mLife == Life::Ended || (list.mCount + 1) * blockBytes > kBytesKept)
        return false;
    list.mFirst = ::new (inBlock) FreeBlock{list.mFirst};
    ++list.mCount;
    return true;
}

}  // namespace

void* AllocateSmallBlock(std::size_t inBytes)
{
    const std::size_t index = ListIndex(inBytes);
    if (index >= kListCount)
        return ::operator new(inBytes);
    FreeList& list = sLists.mLists[index];
    if (FreeBlock* block = list.mFirst)
    {
        list.mFirst = block->mNext;
        --list.mCount;
        return block;
    }
    return ::operator new((index + 1) * kStep);
}

void FreeSmallBlock(void* inBlock, std::size_t inBytes) noexcept
{
    const std::size_t index = ListIndex(inBytes);
    if (!inBlock || index >= kListCount || !Keep(inBlock, index))
        ::operator delete(inBlock);
}

#endif

}  // namespace kelpcore::utility
