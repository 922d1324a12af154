// Scratch blocks that are used again.
#include "HeapCounter.h"

#include "kelpcore/utility/RecycledMemory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

namespace
{

using kelpcore::utility::MemoryRecycler;
using kelpcore::utility::RecycledMemory;

constexpr std::size_t kMebibyte = std::size_t{1} << 20;

// Holds every block that waits from other tests, so that the recycler starts empty.
class EmptyRecycler
{
public:
    EmptyRecycler()
    {
        mHeld.reserve(32);
        const long before = HeapAllocations();
        while (HeapAllocations() == before)
            mHeld.push_back(MemoryRecycler::Allocate(1));
    }
    ~EmptyRecycler()
    {
        for (void* block : mHeld)
            MemoryRecycler::Recycle(block, 1);
    }

private:
    std::vector<void*> mHeld;
};

}  // namespace

TEST(MemoryRecycler, BlocksAreAlignedAndWhollyUsable)
{
    for (const std::size_t bytes :
         {std::size_t{1}, std::size_t{63}, std::size_t{64}, std::size_t{4097}, 3 * kMebibyte})
    {
        void* block = MemoryRecycler::Allocate(bytes);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 64, 0u) << bytes;
        std::memset(block, 0xAA, bytes);
        MemoryRecycler::Recycle(block, bytes);
    }
}

TEST(MemoryRecycler, TheSameSizeAgainAndAgainNeverAsksTheHeap)
{
    MemoryRecycler::Recycle(MemoryRecycler::Allocate(65536), 65536);
    const long allocations = HeapAllocations();
    const long releases = HeapReleases();
    for (int round = 0; round < 1000; ++round)
        MemoryRecycler::Recycle(MemoryRecycler::Allocate(65536), 65536);
    EXPECT_EQ(HeapAllocations(), allocations);
    EXPECT_EQ(HeapReleases(), releases);
}

TEST(MemoryRecycler, TheSameSizeStaysCheapWhateverIsKeptAlready)
{
    for (const std::size_t kept : {std::size_t{16}, 4 * kMebibyte})
    {
        std::vector<void*> blocks(20);
        for (void*& block : blocks)
            block = MemoryRecycler::Allocate(kept);
        for (void* block : blocks)
            MemoryRecycler::Recycle(block, kept);
        for (const std::size_t bytes : {std::size_t{100}, kMebibyte, 9 * kMebibyte, 60 * kMebibyte})
        {
            MemoryRecycler::Recycle(MemoryRecycler::Allocate(bytes), bytes);
            const long before = HeapAllocations();
            MemoryRecycler::Recycle(MemoryRecycler::Allocate(bytes), bytes);
            EXPECT_EQ(HeapAllocations(), before) << bytes << " bytes beside blocks of " << kept;
        }
    }
}

TEST(MemoryRecycler, ABlockKeepsItsTrueSizeWhenLittleOfItWasAsked)
{
    const EmptyRecycler empty;
    MemoryRecycler::Recycle(MemoryRecycler::Allocate(50 * kMebibyte), 50 * kMebibyte);
    const long before = HeapAllocations();
    MemoryRecycler::Recycle(MemoryRecycler::Allocate(10), 10);
    MemoryRecycler::Recycle(MemoryRecycler::Allocate(50 * kMebibyte), 50 * kMebibyte);
    EXPECT_EQ(HeapAllocations(), before);
}

TEST(MemoryRecycler, HandsOutTheSmallestBlockThatIsLargeEnough)
{
    const EmptyRecycler empty;
    void* large = MemoryRecycler::Allocate(9000);
    void* small = MemoryRecycler::Allocate(2000);
    MemoryRecycler::Recycle(large, 9000);
    MemoryRecycler::Recycle(small, 2000);
    void* fitting = MemoryRecycler::Allocate(1500);
    void* larger = MemoryRecycler::Allocate(1500);
    EXPECT_EQ(fitting, small);
    EXPECT_EQ(larger, large);
    MemoryRecycler::Recycle(fitting, 1500);
    MemoryRecycler::Recycle(larger, 1500);
}

TEST(MemoryRecycler, KeepsAtMostSixteenBlocks)
{
    const EmptyRecycler empty;
    std::vector<void*> blocks(40);
    for (void*& block : blocks)
        block = MemoryRecycler::Allocate(100000);
    const long before = HeapReleases();
    for (void* block : blocks)
        MemoryRecycler::Recycle(block, 100000);
    EXPECT_EQ(HeapReleases(), before + 24);
}

TEST(MemoryRecycler, KeepsAtMostSixtyFourMebibytes)
{
    const EmptyRecycler empty;
    std::vector<void*> blocks(10);
    for (void*& block : blocks)
        block = MemoryRecycler::Allocate(20 * kMebibyte);
    for (void* block : blocks)
        MemoryRecycler::Recycle(block, 20 * kMebibyte);
    const long before = HeapAllocations();
    for (void*& block : blocks)
        block = MemoryRecycler::Allocate(20 * kMebibyte);
    EXPECT_EQ(HeapAllocations(), before + 7);
    for (void* block : blocks)
        MemoryRecycler::Recycle(block, 20 * kMebibyte);

    const long releases = HeapReleases();
    MemoryRecycler::Recycle(MemoryRecycler::Allocate(65 * kMebibyte), 65 * kMebibyte);
    EXPECT_EQ(HeapReleases(), releases + 1);
}

TEST(MemoryRecycler, NothingIsNoBlock)
{
    EXPECT_EQ(MemoryRecycler::Allocate(0), nullptr);
    MemoryRecycler::Recycle(nullptr, 0);
    MemoryRecycler::Recycle(nullptr, 100);
}

TEST(MemoryRecycler, AnImpossibleSizeGivesNull)
{
    EXPECT_EQ(MemoryRecycler::Allocate(SIZE_MAX), nullptr);
    EXPECT_EQ(MemoryRecycler::Allocate(SIZE_MAX - 63), nullptr);
    EXPECT_EQ(MemoryRecycler::Allocate(PTRDIFF_MAX), nullptr);
}

TEST(MemoryRecycler, ThreadsNeverShareABlock)
{
    std::vector<std::thread> threads;
    std::vector<int> mixed(4, 0);
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back(
            [thread, &mixed]
            {
            for (std::size_t round = 0; round < 500; ++round)
            {
                const std::size_t bytes = 1000 + round % 7 * 3000;
                const RecycledMemory memory(bytes);
                std::memset(memory.Get(), 'a' + thread, bytes);
                std::this_thread::yield();
                for (std::size_t at = 0; at < bytes; at += 100)
                    mixed[static_cast<std::size_t>(thread)] +=
                        memory.Get()[at] != static_cast<char>('a' + thread);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(mixed, std::vector<int>(4, 0));
}

TEST(RecycledMemory, OwnsABlockOfItsSize)
{
    const RecycledMemory memory(1000);
    ASSERT_NE(memory.Get(), nullptr);
    EXPECT_EQ(memory.Size(), 1000u);
    std::memset(memory.Get(), 1, 1000);
}

TEST(RecycledMemory, GivesItsBlockBack)
{
    {
        const RecycledMemory memory(30000);
    }
    const long before = HeapAllocations();
    {
        const RecycledMemory memory(30000);
    }
    EXPECT_EQ(HeapAllocations(), before);
}

TEST(RecycledMemory, HasNoBlockForNothingAndForTooMuch)
{
    const RecycledMemory nothing(0);
    EXPECT_EQ(nothing.Get(), nullptr);
    EXPECT_EQ(nothing.Size(), 0u);
    const RecycledMemory tooMuch(SIZE_MAX);
    EXPECT_EQ(tooMuch.Get(), nullptr);
    EXPECT_EQ(tooMuch.Size(), 0u);
}
