// Reading packets of an open file allocates nothing.

#include "ContainerBuilders.h"
#include "Opened.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <new>

namespace
{
// Of this executable only, and of the one thread that tests run on.
std::size_t sAllocations = 0;
}  // namespace

void* operator new(std::size_t inSize)
{
    ++sAllocations;
    if (void* place = std::malloc(inSize > 0 ? inSize : 1))
        return place;
    throw std::bad_alloc();
}
void* operator new(std::size_t inSize, const std::nothrow_t&) noexcept
{
    ++sAllocations;
    return std::malloc(inSize > 0 ? inSize : 1);
}
void operator delete(void* inPlace) noexcept
{
    std::free(inPlace);
}
void operator delete(void* inPlace, std::size_t) noexcept
{
    std::free(inPlace);
}

namespace
{

using namespace testing_support;

TEST(Reading, AllocatesNothing)
{
    for (const Bytes& bytes : {WaveFile(WaveRecord(), CountingBytes(4000)),
                               AIFFFile(2, 1000, 16, CountingBytes(4000)), SmallALACFile()})
    {
        const Opened file = Open(bytes);
        ASSERT_EQ(file.mStatus, noErr);
        UInt8 buffer[400];
        AudioStreamPacketDescription descriptions[100];
        const std::size_t before = sAllocations;
        SInt64 start = 0;
        UInt32 packets = 0;
        do
        {
            UInt32 count = sizeof(buffer);
            packets = 100;
            if (file.mReader->ReadPackets(start, &count, &packets, descriptions, buffer) != noErr)
                break;
            start += packets;
        } while (packets > 0);
        const std::size_t after = sAllocations;
        EXPECT_EQ(after, before);
        EXPECT_EQ(start, static_cast<SInt64>(*file.Facts().mPacketCount));
    }
}

TEST(Reading, IsCountedByTheCounterAtAll)
{
    const std::size_t before = sAllocations;
    const auto place = std::make_unique<int>(1);
    EXPECT_EQ(*place, 1);
    EXPECT_EQ(sAllocations, before + 1);
}

}  // namespace
