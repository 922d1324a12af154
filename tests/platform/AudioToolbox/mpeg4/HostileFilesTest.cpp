// Damaged and lying files: a status, or the packets that are whole; never a read outside the file,
// a loop without end or memory by a count that nothing backs.
#include "platform/AudioToolbox/mpeg4/MovieMaker.h"
#include "platform/AudioToolbox/mpeg4/OpenedFile.h"

#include <chrono>
#include <random>

namespace audiotoolbox
{
namespace
{

using movie_maker::Box;
using movie_maker::Bytes;
using movie_maker::Counting;
using movie_maker::FourPackets;
using movie_maker::FullBox;
using movie_maker::Join;
using movie_maker::kDataOffset;
using movie_maker::MakeFile;
using movie_maker::TrackPlan;
using movie_maker::U32;
using movie_maker::U64;
using opened_file::AllPackets;
using opened_file::Open;
using opened_file::Opened;
using opened_file::StoredBytes;

OSStatus StatusOf(const Bytes& inFile)
{
    PacketReaderPtr reader;
    return Open(inFile, reader);
}

// Opens and reads to the end; the facts must agree with what comes, and with the file.
void Exercise(const Bytes& inFile)
{
    PacketReaderPtr reader;
    if (Open(inFile, reader) != noErr)
    {
        EXPECT_EQ(reader, nullptr);
        return;
    }
    const FileFacts& facts = reader->Facts();
    const std::vector<Bytes> packets =
        AllPackets(*reader, std::max<UInt32>(facts.mPacketSizeUpperBound, 4096));
    EXPECT_EQ(facts.mPacketCount, packets.size());
    SInt64 bytes = 0;
    for (const Bytes& packet : packets)
    {
        bytes += static_cast<SInt64>(packet.size());
        EXPECT_LE(packet.size(), facts.mPacketSizeUpperBound);
    }
    EXPECT_EQ(bytes, facts.mDataByteCount);
    EXPECT_LE(facts.mPacketSizeUpperBound, std::max<std::size_t>(inFile.size(), 1));
    EXPECT_GT(facts.mDataFormat.mSampleRate, 0.0);
    EXPECT_GT(facts.mDataFormat.mChannelsPerFrame, 0u);
    if (facts.mPacketTable)
    {
        EXPECT_GE(facts.mPacketTable->mPrimingFrames, 0);
        EXPECT_GE(facts.mPacketTable->mNumberValidFrames, 0);
        EXPECT_GE(facts.mPacketTable->mRemainderFrames, 0);
    }
}

const char* const kSeeds[] = {
    "mpeg4/aac-stereo.m4a", "mpeg4/aac-faststart.m4a",  "mpeg4/aac-fragments-delay-moov.mp4",
    "mpeg4/opus.mp4",       "mpeg4/flac.mp4",           "mpeg4/eac3-5.1.mp4",
    "mpeg4/mp3.mp4",        "mpeg4/video-and-audio.mp4"};

TEST(HostileFiles, EveryTruncationOpensOrIsRefused)
{
    for (const char* seed :
         {"mpeg4/aac-stereo.m4a", "mpeg4/aac-faststart.m4a", "mpeg4/aac-fragments-delay-moov.mp4"})
    {
        const Bytes file = StoredBytes(seed);
        for (std::size_t size = 0; size < file.size(); ++size)
            Exercise(Bytes(file.begin(), file.begin() + static_cast<long>(size)));
    }
}

TEST(HostileFiles, TruncatedDataDeliversItsWholePackets)
{
    const Bytes whole = StoredBytes("mpeg4/aac-faststart.m4a");
    const std::vector<Bytes> packets = AllPackets(*Opened(whole));
    const PacketReaderPtr cut = Opened(Bytes(whole.begin(), whole.end() - 300));
    ASSERT_NE(cut, nullptr);
    const std::vector<Bytes> left = AllPackets(*cut);
    ASSERT_LT(left.size(), packets.size());
    ASSERT_GT(left.size(), 0u);
    EXPECT_EQ(left, std::vector<Bytes>(packets.begin(),
                                       packets.begin() + static_cast<long>(left.size())));
    EXPECT_EQ(cut->Facts().mPacketTable->mNumberValidFrames,
              static_cast<SInt64>(left.size()) * 1024 - 1024);
}

TEST(HostileFiles, HeadCutAwayIsDamage)
{
    const Bytes file = StoredBytes("mpeg4/aac-stereo.m4a");
    EXPECT_EQ(StatusOf(Bytes(file.begin(), file.begin() + 1000)), kAudioFileInvalidFileError);
    EXPECT_EQ(StatusOf(movie_maker::TypeBox()), kAudioFileInvalidFileError);
}

TEST(HostileFiles, OtherMagicIsAnotherType)
{
    EXPECT_EQ(StatusOf({}), kAudioFileUnsupportedFileTypeError);
    EXPECT_EQ(StatusOf(Bytes(7)), kAudioFileUnsupportedFileTypeError);
    EXPECT_EQ(StatusOf(Bytes(100)), kAudioFileUnsupportedFileTypeError);
    EXPECT_EQ(StatusOf(Box("RIFF", Counting(50))), kAudioFileUnsupportedFileTypeError);
}

TEST(HostileFiles, MutationsNeverBreakTheParser)
{
    std::mt19937 random(20240229);
    for (const char* seed : kSeeds)
    {
        const Bytes file = StoredBytes(seed);
        for (int round = 0; round < 1000; ++round)
        {
            Bytes mutant = file;
            for (UInt32 changes = 1 + random() % 6; changes > 0; --changes)
                mutant[random() % mutant.size()] = static_cast<UInt8>(random());
            Exercise(mutant);
        }
    }
}

// Changes of whole fields reach what single bytes seldom do.
TEST(HostileFiles, ExtremeFieldsNeverBreakTheParser)
{
    constexpr UInt32 kExtremes[] = {0, 1, 7, 8, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0xFFFFFFF8};
    for (const char* seed : {"mpeg4/aac-stereo.m4a", "mpeg4/aac-fragments-delay-moov.mp4"})
    {
        const Bytes file = StoredBytes(seed);
        for (std::size_t place = 0; place + 4 <= file.size(); ++place)
        {
            const Bytes field = movie_maker::U32(kExtremes[place % std::size(kExtremes)]);
            Bytes mutant = file;
            std::copy(field.begin(), field.end(), mutant.begin() + static_cast<long>(place));
            Exercise(mutant);
        }
    }
}

TEST(HostileFiles, TablesLongerThanTheirBoxAreDamage)
{
    TrackPlan sizes = FourPackets();
    sizes.mSizeBox = FullBox("stsz", 0, Join({U32(0), U32(0xFFFFFFFF), U32(10)}));
    EXPECT_EQ(StatusOf(MakeFile({sizes}, Counting(100))), kAudioFileInvalidFileError);

    TrackPlan compact = FourPackets();
    compact.mSizeBox = FullBox("stz2", 0, Join({U32(4), U32(7), Bytes{1, 2, 3}}));
    EXPECT_EQ(StatusOf(MakeFile({compact}, Counting(100))), kAudioFileInvalidFileError);

    TrackPlan width = FourPackets();
    width.mSizeBox = FullBox("stz2", 0, Join({U32(5), U32(1), Bytes{1, 2, 3}}));
    EXPECT_EQ(StatusOf(MakeFile({width}, Counting(100))), kAudioFileInvalidFileError);
}

TEST(HostileFiles, ConstantSizesAreBoundedByTheFile)
{
    TrackPlan plan = FourPackets();
    plan.mSizeBox = movie_maker::ConstantSizeBox(1, 0xFFFFFFFF);
    plan.mChunks.assign(50, {0, 300});
    const Bytes file = MakeFile({plan}, Counting(100));
    const PacketReaderPtr reader = Opened(file);
    ASSERT_NE(reader, nullptr);
    EXPECT_LE(reader->Facts().mPacketCount, file.size());
}

TEST(HostileFiles, ChunksOutsideTheFileEndTheAudio)
{
    for (const UInt64 offset : {UInt64{1} << 32, UInt64{1} << 63, ~UInt64{0}, UInt64{5000}})
    {
        TrackPlan plan = FourPackets();
        plan.mHasWideOffsets = true;
        plan.mChunks = {{kDataOffset, 2}, {offset, 2}};
        const PacketReaderPtr reader = Opened(MakeFile({plan}, Counting(100)));
        ASSERT_NE(reader, nullptr);
        EXPECT_EQ(AllPackets(*reader).size(), 2u) << offset;
    }
}

TEST(HostileFiles, DeeplyNestedBoxesAreNotFollowed)
{
    Bytes nest = Counting(8);
    for (int depth = 0; depth < 20000; ++depth)
    {
        nest.insert(nest.begin(), {0, 0, 0, 0, 'u', 'd', 't', 'a'});
        const Bytes size = U32(nest.size());
        std::copy(size.begin(), size.end(), nest.begin());
    }
    EXPECT_EQ(Opened(MakeFile({FourPackets()}, Counting(100), nest))->Facts().mPacketCount, 4u);
}

TEST(HostileFiles, ThousandsOfTracksAndBoxesOpenQuickly)
{
    const std::vector<TrackPlan> tracks(3000, FourPackets());
    const Bytes empty = Box("free", {});
    Bytes boxes;
    for (int count = 0; count < 100000; ++count)
        movie_maker::Append(boxes, empty);
    const auto start = std::chrono::steady_clock::now();
    Exercise(MakeFile(tracks, Counting(100), boxes));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

// A client's callback may claim any size and then have nothing.
class BoastfulSource : public ByteSource
{
public:
    explicit BoastfulSource(Bytes inBytes) : mBytes(std::move(inBytes)) {}

    OSStatus ReadAt(SInt64 inPosition, UInt32 inCount, void* outBytes, UInt32* outCount) override
    {
        return mBytes.ReadAt(inPosition, inCount, outBytes, outCount);
    }

    SInt64 Size() const override { return SInt64{1} << 62; }

private:
    testing_support::MemorySource mBytes;
};

TEST(HostileFiles, ClaimedSizesDoNotCostMemory)
{
    // a head and tables that claim 2^61 bytes, with 4 billion packets
    const auto huge = [](const char* inType, const Bytes& inBody) {
        return Join({U32(1), movie_maker::Text(inType), U64(UInt64{1} << 61), inBody});
    };
    const Bytes entry = FullBox("stsd", 0, Join({U32(1), movie_maker::AACEntry()}));
    const Bytes sizes = huge("stsz", Join({U32(0), U32(0), U32(0xFFFFFFF0)}));
    const Bytes head = Join(
        {movie_maker::TypeBox(),
         huge("moov",
              huge("trak",
                   huge("mdia", Join({FullBox("hdlr", 0, Join({U32(0), movie_maker::Text("soun")})),
                                      huge("minf", huge("stbl", Join({entry, sizes})))}))))});
    ByteSourcePtr source = std::make_unique<BoastfulSource>(head);
    PacketReaderPtr reader;
    const OSStatus status = OpenMPEG4(kAudioFileM4AType, source, reader);
    EXPECT_EQ(status, kAudioFileInvalidFileError);
    EXPECT_NE(source, nullptr) << "a refused source stays the caller's";
}

class FailingSource : public testing_support::MemorySource
{
public:
    FailingSource(Bytes inBytes, int inGoodReads)
        : MemorySource(std::move(inBytes)), mGoodReads(inGoodReads)
    {
    }

    OSStatus ReadAt(SInt64 inPosition, UInt32 inCount, void* outBytes, UInt32* outCount) override
    {
        *outCount = 0;
        return mGoodReads-- > 0 ? MemorySource::ReadAt(inPosition, inCount, outBytes, outCount)
                                : kAudio_IOError;
    }

private:
    int mGoodReads;
};

TEST(HostileFiles, FailingReadsComeBackWhicheverItIs)
{
    Bytes padded = StoredBytes("mpeg4/aac-stereo.m4a");
    for (int good = 0; good < 100; ++good)
    {
        ByteSourcePtr source = std::make_unique<FailingSource>(padded, good);
        PacketReaderPtr reader;
        const OSStatus status = OpenMPEG4(kAudioFileM4AType, source, reader);
        if (status == noErr)
            return;
        EXPECT_EQ(status, kAudio_IOError) << "read " << good;
        EXPECT_NE(source, nullptr);
    }
    FAIL() << "opening never ran through without a fault";
}

}  // namespace
}  // namespace audiotoolbox
