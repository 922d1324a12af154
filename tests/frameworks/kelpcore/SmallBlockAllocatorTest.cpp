// The free lists, compiled in here so that they run under the sanitizers too.
#include "HeapCounter.h"

#include "kelpcore/Strings.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace
{

using kelpcore::utility::AllocateSmallBlock;
using kelpcore::utility::FreeSmallBlock;

UTF16String& TextOfTheProgram()
{
    static UTF16String sText;
    return sText;
}

struct ThreadText
{
    UTF16String mText;
};

UTF16String& TextOfTheThread()
{
    thread_local ThreadText sText;
    return sText.mText;
}

}  // namespace

TEST(SmallBlocks, AreAlignedForAnyTypeAndWhollyUsable)
{
    for (std::size_t bytes = 0; bytes <= 600; ++bytes)
    {
        void* block = AllocateSmallBlock(bytes);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0u) << bytes;
        std::memset(block, 0xAA, bytes);
        FreeSmallBlock(block, bytes);
    }
}

TEST(SmallBlocks, AFreedBlockIsUsedAgainForItsSizeWithoutTheHeap)
{
    std::thread(
        []
        {
        void* first = AllocateSmallBlock(40);
        FreeSmallBlock(first, 40);
        const long before = HeapAllocations();
        void* second = AllocateSmallBlock(33);  // the list of 33 to 48 bytes
        EXPECT_EQ(second, first);
        EXPECT_EQ(HeapAllocations(), before);
        FreeSmallBlock(second, 33);
    }).join();
}

TEST(SmallBlocks, SizesOfOtherListsDoNotMix)
{
    std::thread(
        []
        {
        void* small = AllocateSmallBlock(32);
        FreeSmallBlock(small, 32);
        const long before = HeapAllocations();
        void* larger = AllocateSmallBlock(33);
        EXPECT_EQ(HeapAllocations(), before + 1);
        FreeSmallBlock(larger, 33);
    }).join();
}

TEST(SmallBlocks, LargeBlocksGoToTheHeapAtOnce)
{
    const long allocations = HeapAllocations();
    const long releases = HeapReleases();
    FreeSmallBlock(AllocateSmallBlock(257), 257);
    EXPECT_EQ(HeapAllocations(), allocations + 1);
    EXPECT_EQ(HeapReleases(), releases + 1);
}

TEST(SmallBlocks, AListKeepsABoundedNumberOfBytes)
{
    std::thread(
        []
        {
        std::vector<void*> blocks(1000);
        for (void*& block : blocks)
            block = AllocateSmallBlock(256);
        const long before = HeapReleases();
        for (void* block : blocks)
            FreeSmallBlock(block, 256);
        EXPECT_EQ(HeapReleases(), before + 984);  // 16 blocks of 256 bytes stay
    }).join();
}

TEST(SmallBlocks, AThreadGivesItsBlocksBackWhenItEnds)
{
    const long kept = HeapAllocations() - HeapReleases();
    std::thread(
        []
        {
        for (std::size_t bytes = 1; bytes <= 256; ++bytes)
            FreeSmallBlock(AllocateSmallBlock(bytes), bytes);
    }).join();
    EXPECT_EQ(HeapAllocations() - HeapReleases(), kept);
}

TEST(SmallBlocks, MayBeFreedOnAnotherThread)
{
    std::vector<std::pair<void*, std::size_t>> blocks;
    std::thread(
        [&blocks]
        {
        for (std::size_t bytes = 1; bytes <= 300; ++bytes)
            blocks.emplace_back(AllocateSmallBlock(bytes), bytes);
    }).join();
    for (const auto& [block, bytes] : blocks)
    {
        std::memset(block, 0x55, bytes);
        FreeSmallBlock(block, bytes);
    }
    // What this thread's lists took over serves it.
    const long before = HeapAllocations();
    void* block = AllocateSmallBlock(100);
    EXPECT_EQ(HeapAllocations(), before);
    FreeSmallBlock(block, 100);
}

TEST(SmallBlocks, ThreadsThatExchangeTextsKeepThemWhole)
{
    std::vector<UTF16String> texts(64, UTF16String(20, u'x'));
    for (int round = 0; round < 20; ++round)
    {
        std::vector<std::thread> threads;
        for (std::size_t part = 0; part < 4; ++part)
            threads.emplace_back(
                [&texts, part, round]
                {
                for (std::size_t index = part; index < texts.size(); index += 4)
                    texts[(index + 4 * static_cast<std::size_t>(round)) % texts.size()] =
                        UTF16String(10 + index % 100, static_cast<char16_t>(u'a' + part));
            });
        for (std::thread& thread : threads)
            thread.join();
    }
    for (const UTF16String& text : texts)
        EXPECT_EQ(text, UTF16String(text.size(), text[0]));
}

TEST(SmallBlocks, ATextOfAThreadMayDieAfterTheLists)
{
    // Made before the lists' own closer is armed, so it dies after it.
    const long kept = HeapAllocations() - HeapReleases();
    std::thread(
        []
        {
        TextOfTheThread() = UTF16String(50, u't');
        FreeSmallBlock(AllocateSmallBlock(20), 20);
    }).join();
    EXPECT_EQ(HeapAllocations() - HeapReleases(), kept);
}

TEST(SmallBlocksDeathTest, ATextOfTheProgramMayDieAfterTheLists)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            TextOfTheProgram() = UTF16String(50, u'p');
            FreeSmallBlock(AllocateSmallBlock(104), 104);
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST(SmallBlockAllocatorType, RefusesACountThatCannotBeCounted)
{
    kelpcore::utility::SmallBlockAllocator<std::uint64_t> allocator;
    EXPECT_THROW((void)allocator.allocate(SIZE_MAX / 4), std::bad_array_new_length);
}

TEST(SmallBlockAllocatorType, AllAllocatorsAreEqual)
{
    const kelpcore::utility::SmallBlockAllocator<char> chars;
    const kelpcore::utility::SmallBlockAllocator<int> ints(chars);
    EXPECT_TRUE(chars == ints);
}
