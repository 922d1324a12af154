// Once a stream is open, reading its packets allocates nothing.
#include "StreamMakers.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace
{
std::size_t sAllocations = 0;
}

void* operator new(std::size_t inSize)
{
    ++sAllocations;
    if (void* const block = std::malloc(inSize > 0 ? inSize : 1))
        return block;
    throw std::bad_alloc();
}
void operator delete(void* inBlock) noexcept
{
    std::free(inBlock);
}
void operator delete(void* inBlock, std::size_t) noexcept
{
    std::free(inBlock);
}

using namespace stream_testing;

namespace
{

Bytes LongFile(const StreamKind& inKind, const char* inName)
{
    const Bytes once = LoadData(inName);
    if (&inKind == &kFLAC)
        return once;
    Bytes whole;
    for (int i = 0; i < 100; ++i)
        whole.insert(whole.end(), once.begin(), once.end());
    return whole;
}

TEST(StreamAllocation, ReadingAllocatesNothing)
{
    struct Row
    {
        const StreamKind& mKind;
        const char* mName;
    };
    const Row rows[] = {{kMPEG, "streams/untagged-44100-stereo.mp3"},
                        {kADTS, "streams/44100-stereo.aac"},
                        {kLOAS, "streams/44100-stereo.loas"},
                        {kAC3, "streams/48000-51.ac3"},
                        {kFLAC, "streams/48000-51-24.flac"}};
    for (const Row& row : rows)
    {
        Opened file = Open(row.mKind, LongFile(row.mKind, row.mName));
        ASSERT_EQ(file.mStatus, noErr) << row.mName;
        Bytes buffer(65536);
        std::vector<AudioStreamPacketDescription> descriptions(40);
        UInt32 bytes = 0;
        UInt32 packets = 1;
        SInt64 next = 0;
        OSStatus status = noErr;
        const std::size_t before = sAllocations;
        for (; status == noErr && packets > 0; next += packets)
        {
            bytes = 65536;
            packets = 40;
            status = file.mReader->ReadPackets(next, &bytes, &packets, descriptions.data(),
                                               buffer.data());
        }
        EXPECT_EQ(sAllocations, before) << row.mName;
        EXPECT_EQ(status, noErr) << row.mName;
        EXPECT_GE(next, 9) << row.mName;
    }
}

TEST(StreamAllocation, TheCounterCounts)
{
    const std::size_t before = sAllocations;
    delete new int(1);
    EXPECT_GT(sAllocations, before);
}

}  // namespace
