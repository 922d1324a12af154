// Reading packets: any start, any room, few reads of the file, no memory.
#include "file/mpeg4/TrackReader.h"

#include "platform/AudioToolbox/mpeg4/MovieMaker.h"
#include "platform/AudioToolbox/mpeg4/OpenedFile.h"

#include <cstdlib>
#include <new>

namespace
{

// Counts what this thread takes from the heap, so that a test can show that reading takes nothing.
thread_local std::size_t sAllocations = 0;

void* Take(std::size_t inSize)
{
    ++sAllocations;
    if (void* block = std::malloc(inSize > 0 ? inSize : 1))
        return block;
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t inSize)
{
    return Take(inSize);
}
void* operator new[](std::size_t inSize)
{
    return Take(inSize);
}
void* operator new(std::size_t inSize, const std::nothrow_t&) noexcept
{
    ++sAllocations;
    return std::malloc(inSize > 0 ? inSize : 1);
}
void operator delete(void* inBlock) noexcept
{
    std::free(inBlock);
}
void operator delete[](void* inBlock) noexcept
{
    std::free(inBlock);
}
void operator delete(void* inBlock, std::size_t) noexcept
{
    std::free(inBlock);
}
void operator delete[](void* inBlock, std::size_t) noexcept
{
    std::free(inBlock);
}

namespace audiotoolbox
{
namespace
{

using movie_maker::Bytes;
using movie_maker::Chunk;
using movie_maker::Counting;
using movie_maker::FourPackets;
using movie_maker::kDataOffset;
using movie_maker::MakeFile;
using movie_maker::TrackPlan;
using opened_file::Opened;
using opened_file::ReadAt;
using opened_file::ReadResult;

// Counts reads, and may fail or shrink after opening.
class WatchedSource : public testing_support::MemorySource
{
public:
    using MemorySource::MemorySource;

    OSStatus ReadAt(SInt64 inPosition, UInt32 inCount, void* outBytes, UInt32* outCount) override
    {
        ++mReads;
        *outCount = 0;
        if (mFailure != noErr)
            return mFailure;
        if (mEnd >= 0 && inPosition + SInt64{inCount} > mEnd)
            inCount = static_cast<UInt32>(std::max<SInt64>(mEnd - inPosition, 0));
        return MemorySource::ReadAt(inPosition, inCount, outBytes, outCount);
    }

    int mReads = 0;
    OSStatus mFailure = noErr;
    SInt64 mEnd = -1;
};

struct Watched
{
    WatchedSource* mSource;
    PacketReaderPtr mReader;
};

Watched OpenWatched(const Bytes& inFile)
{
    auto source = std::make_unique<WatchedSource>(inFile);
    Watched watched = {source.get(), nullptr};
    ByteSourcePtr owned = std::move(source);
    EXPECT_EQ(OpenMPEG4(kAudioFileM4AType, owned, watched.mReader), noErr);
    return watched;
}

Bytes Part(const Bytes& inBytes, std::size_t inBegin, std::size_t inCount)
{
    const auto begin = inBytes.begin() + static_cast<long>(inBegin);
    return Bytes(begin, begin + static_cast<long>(inCount));
}

TEST(ReadPackets, DeliversWholePacketsThatFitTheRoom)
{
    const Bytes data = Counting(100);
    const PacketReaderPtr reader = Opened(MakeFile({FourPackets()}, data));
    ASSERT_NE(reader, nullptr);
    const ReadResult result = ReadAt(*reader, 0, 59, 10);
    EXPECT_EQ(result.mStatus, noErr);
    ASSERT_EQ(result.mPackets.size(), 2u);
    EXPECT_EQ(result.mBytes, Part(data, 0, 30));
    EXPECT_EQ(result.mPackets[1].mStartOffset, 10);
    EXPECT_EQ(result.mPackets[1].mDataByteSize, 20u);
    EXPECT_EQ(result.mPackets[1].mVariableFramesInPacket, 0u);
}

TEST(ReadPackets, DeliversAtMostThePacketsAsked)
{
    const PacketReaderPtr reader = Opened(MakeFile({FourPackets()}, Counting(100)));
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(ReadAt(*reader, 0, 1000, 3).mBytes.size(), 60u);
    const ReadResult none = ReadAt(*reader, 0, 1000, 0);
    EXPECT_EQ(none.mStatus, noErr);
    EXPECT_TRUE(none.mBytes.empty());
}

TEST(ReadPackets, StartsAnywhere)
{
    const Bytes data = Counting(100);
    const PacketReaderPtr reader = Opened(MakeFile({FourPackets()}, data));
    ASSERT_NE(reader, nullptr);
    for (const SInt64 start : {3, 1, 2, 0, 3, 3})
    {
        constexpr std::size_t kOffsets[] = {0, 10, 30, 60};
        const ReadResult result = ReadAt(*reader, start, 1000, 1);
        const std::size_t index = static_cast<std::size_t>(start);
        EXPECT_EQ(result.mBytes, Part(data, kOffsets[index], (index + 1) * 10)) << start;
    }
}

TEST(ReadPackets, EndsWithoutAnError)
{
    const PacketReaderPtr reader = Opened(MakeFile({FourPackets()}, Counting(100)));
    ASSERT_NE(reader, nullptr);
    for (const SInt64 start : {SInt64{4}, SInt64{5}, SInt64{1} << 40})
    {
        const ReadResult result = ReadAt(*reader, start, 1000, 10);
        EXPECT_EQ(result.mStatus, noErr);
        EXPECT_TRUE(result.mPackets.empty());
        EXPECT_TRUE(result.mBytes.empty());
    }
}

TEST(ReadPackets, RefusesRoomBelowThePacket)
{
    const PacketReaderPtr reader = Opened(MakeFile({FourPackets()}, Counting(100)));
    ASSERT_NE(reader, nullptr);
    const ReadResult result = ReadAt(*reader, 3, 39, 10);
    EXPECT_EQ(result.mStatus, kAudioFileBadPropertySizeError);
    EXPECT_TRUE(result.mPackets.empty());
    EXPECT_TRUE(result.mBytes.empty());
}

TEST(ReadPackets, RefusesNegativeStartsAndMissingDescriptions)
{
    const PacketReaderPtr reader = Opened(MakeFile({FourPackets()}, Counting(100)));
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(ReadAt(*reader, -1, 1000, 10).mStatus, kAudio_ParamError);
    Bytes room(1000);
    UInt32 bytes = 1000;
    UInt32 packets = 10;
    EXPECT_EQ(reader->ReadPackets(0, &bytes, &packets, nullptr, room.data()), kAudio_ParamError);
    EXPECT_EQ(bytes, 0u);
    EXPECT_EQ(packets, 0u);
}

TEST(ReadPackets, GathersPacketsOfScatteredChunks)
{
    const Bytes data = Counting(200);
    TrackPlan plan = FourPackets();
    plan.mChunks = {{kDataOffset + 100, 1}, {kDataOffset + 5, 2}, {kDataOffset + 150, 1}};
    const PacketReaderPtr reader = Opened(MakeFile({plan}, data));
    ASSERT_NE(reader, nullptr);
    const ReadResult result = ReadAt(*reader, 0, 1000, 10);
    EXPECT_EQ(result.mBytes,
              movie_maker::Join({Part(data, 100, 10), Part(data, 5, 50), Part(data, 150, 40)}));
    EXPECT_EQ(reader->Facts().mDataOffset, SInt64{kDataOffset} + 100);
}

TEST(ReadPackets, ReadsNeighbouringChunksAtOnce)
{
    TrackPlan plan;
    plan.mTimes = {{300, 1024}};
    plan.mSizes.assign(300, 5);
    plan.mSizes.back() = 6;
    for (UInt32 chunk = 0; chunk < 100; ++chunk)
        plan.mChunks.push_back({kDataOffset + chunk * 15, 3});
    const Watched watched = OpenWatched(MakeFile({plan}, Counting(1501)));
    ASSERT_NE(watched.mReader, nullptr);
    watched.mSource->mReads = 0;
    const ReadResult result = ReadAt(*watched.mReader, 0, 65536, 1000);
    EXPECT_EQ(result.mPackets.size(), 300u);
    EXPECT_EQ(result.mBytes, Counting(1501));
    EXPECT_EQ(watched.mSource->mReads, 1);
}

TEST(ReadPackets, TellsAFailingRead)
{
    const Watched watched = OpenWatched(MakeFile({FourPackets()}, Counting(100)));
    ASSERT_NE(watched.mReader, nullptr);
    watched.mSource->mFailure = kAudio_IOError;
    const ReadResult failed = ReadAt(*watched.mReader, 0, 1000, 10);
    EXPECT_EQ(failed.mStatus, kAudio_IOError);
    EXPECT_TRUE(failed.mPackets.empty());
    EXPECT_TRUE(failed.mBytes.empty());
    watched.mSource->mFailure = noErr;
    EXPECT_EQ(ReadAt(*watched.mReader, 0, 1000, 10).mBytes, Counting(100));
}

TEST(ReadPackets, EndsAtTheLastWholePacketOfAFileThatShrank)
{
    const Watched watched = OpenWatched(MakeFile({FourPackets()}, Counting(100)));
    ASSERT_NE(watched.mReader, nullptr);
    watched.mSource->mEnd = kDataOffset + 45;
    const ReadResult result = ReadAt(*watched.mReader, 0, 1000, 10);
    EXPECT_EQ(result.mStatus, noErr);
    EXPECT_EQ(result.mPackets.size(), 2u);
    EXPECT_EQ(result.mBytes.size(), 30u);
    EXPECT_TRUE(ReadAt(*watched.mReader, 2, 1000, 10).mPackets.empty());
}

// 16-bit stereo in QuickTime's manner: 25 frames in two chunks.
Bytes PCMFile(const Bytes& inData)
{
    TrackPlan plan;
    plan.mEntry = movie_maker::AudioEntry("sowt", 2, 16, 44100, {});
    plan.mTimes = {{25, 1}};
    plan.mSizeBox = movie_maker::ConstantSizeBox(1, 25);
    plan.mChunks = {{kDataOffset, 10}, {kDataOffset + 60, 15}};
    return MakeFile({plan}, inData);
}

TEST(ReadPackets, ConstantPacketsNeedNoDescriptions)
{
    const Bytes data = Counting(120);
    const PacketReaderPtr reader = Opened(PCMFile(data));
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(reader->Facts().mDataFormat.mBytesPerPacket, 4u);
    EXPECT_EQ(reader->Facts().mPacketCount, 25u);
    Bytes room(1000);
    UInt32 bytes = 1000;
    UInt32 packets = 100;
    EXPECT_EQ(reader->ReadPackets(5, &bytes, &packets, nullptr, room.data()), noErr);
    EXPECT_EQ(packets, 20u);
    EXPECT_EQ(bytes, 80u);
    room.resize(bytes);
    EXPECT_EQ(room, movie_maker::Join({Part(data, 20, 20), Part(data, 60, 60)}));
}

TEST(ReadPackets, ConstantPacketsFitTheRoomWhole)
{
    const PacketReaderPtr reader = Opened(PCMFile(Counting(120)));
    ASSERT_NE(reader, nullptr);
    const ReadResult result = ReadAt(*reader, 9, 11, 10);
    ASSERT_EQ(result.mPackets.size(), 2u);
    EXPECT_EQ(result.mBytes.size(), 8u);
    EXPECT_EQ(result.mPackets[1].mStartOffset, 4);
    EXPECT_EQ(result.mPackets[1].mDataByteSize, 4u);
    EXPECT_EQ(ReadAt(*reader, 0, 3, 10).mStatus, kAudioFileBadPropertySizeError);
}

TEST(ReadPackets, TakesNothingFromTheHeap)
{
    TrackPlan plan;
    plan.mTimes = {{2000, 1024}};
    plan.mSizes.assign(2000, 31);
    plan.mSizes.back() = 30;
    for (UInt32 chunk = 0; chunk < 400; ++chunk)
        plan.mChunks.push_back({kDataOffset + UInt64{chunk} * 160, 5});
    for (const Bytes& file : {MakeFile({plan}, Counting(64000)), PCMFile(Counting(120))})
    {
        const PacketReaderPtr reader = Opened(file);
        ASSERT_NE(reader, nullptr);
        Bytes room(4096);
        std::vector<AudioStreamPacketDescription> places(100);
        UInt32 packets = 1;
        const std::size_t before = sAllocations;
        for (SInt64 start = 0; packets > 0; start += packets)
        {
            UInt32 bytes = 4096;
            packets = 100;
            ASSERT_EQ(reader->ReadPackets(start, &bytes, &packets, places.data(), room.data()),
                      noErr);
        }
        EXPECT_EQ(sAllocations - before, 0u);
    }
}

}  // namespace
}  // namespace audiotoolbox
