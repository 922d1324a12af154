// Packets that stand in fragments, and tables and boxes in their rarer forms.
#include "platform/AudioToolbox/mpeg4/MovieMaker.h"
#include "platform/AudioToolbox/mpeg4/OpenedFile.h"

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
using opened_file::Opened;

// A head without packets that announces fragments, with defaults of 1024 ticks and 10 bytes.
Bytes FragmentedHead()
{
    TrackPlan plan;
    const Bytes defaults = FullBox("trex", 0, Join({U32(1), U32(1), U32(1024), U32(10), U32(0)}));
    return MakeFile({plan}, {}, Box("mvex", defaults));
}

Bytes Moof(const Bytes& inTrackFragments)
{
    return Box("moof", inTrackFragments);
}

Bytes Traf(UInt32 inFlags, UInt32 inTrack, const Bytes& inFields, const Bytes& inRuns)
{
    return Box("traf", Join({FullBox("tfhd", inFlags, Join({U32(inTrack), inFields})), inRuns}));
}

// The bytes at a place of the file, cut at these sizes.
std::vector<Bytes> Cut(const Bytes& inFile, std::size_t inOffset,
                       const std::vector<std::size_t>& inSizes)
{
    std::vector<Bytes> packets;
    for (const std::size_t size : inSizes)
    {
        const auto begin = inFile.begin() + static_cast<long>(inOffset);
        packets.emplace_back(begin, begin + static_cast<long>(size));
        inOffset += size;
    }
    return packets;
}

TEST(Fragments, RunsWithEntriesAndTheMoofAsBase)
{
    const Bytes head = FragmentedHead();
    const Bytes entries = Join({U32(1024), U32(5), U32(1024), U32(7), U32(100), U32(9)});
    // size of the fragment, so that the offset can point behind the data box's head
    const auto fragment = [&](UInt32 inOffset)
    {
        const Bytes run = FullBox("trun", 0x301, Join({U32(3), U32(inOffset), entries}));
        return Moof(Traf(0x20000, 1, {}, run));
    };
    const UInt32 size = static_cast<UInt32>(fragment(0).size());
    const Bytes file = Join({head, fragment(size + 8), Box("mdat", Counting(21))});
    const PacketReaderPtr reader = Opened(file);
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(AllPackets(*reader), Cut(file, head.size() + size + 8, {5, 7, 9}));
    ASSERT_TRUE(reader->Facts().mPacketTable.has_value());
    EXPECT_EQ(reader->Facts().mPacketTable->mNumberValidFrames, 2148);
}

TEST(Fragments, RunsByDefaultsFollowEachOther)
{
    const Bytes head = FragmentedHead();
    const UInt64 base = head.size() + 200;
    const Bytes runs =
        Join({FullBox("trun", 0x1, Join({U32(2), U32(4)})), FullBox("trun", 0, U32(1)),
              FullBox("trun", 0x204, Join({U32(1), U32(0), U32(3)}))});
    const Bytes file =
        Join({head, Moof(Traf(0x1, 1, U64(base), runs)), Box("mdat", Counting(300))});
    const PacketReaderPtr reader = Opened(file);
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(AllPackets(*reader), Cut(file, base + 4, {10, 10, 10, 3}));
}

TEST(Fragments, OtherTracksDataIsPassedOver)
{
    const Bytes head = FragmentedHead();
    // the first fragment's data begins at the moof, the next one's behind it
    const Bytes other = Traf(0x10, 2, U32(20), FullBox("trun", 0x1, Join({U32(4), U32(300)})));
    const Bytes ours = Traf(0x18, 1, Join({U32(512), U32(6)}), FullBox("trun", 0, U32(2)));
    const Bytes file = Join({head, Moof(Join({other, ours})), Box("mdat", Counting(600))});
    const PacketReaderPtr reader = Opened(file);
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(AllPackets(*reader), Cut(file, head.size() + 380, {6, 6}));
}

TEST(Fragments, FollowPacketsOfTheHead)
{
    TrackPlan plan = FourPackets();
    const Bytes defaults = FullBox("trex", 0, Join({U32(1), U32(1), U32(1024), U32(10), U32(0)}));
    const Bytes head = MakeFile({plan}, Counting(100), Box("mvex", defaults));
    const Bytes run = FullBox("trun", 0x1, Join({U32(1), U32(0)}));
    const Bytes file = Join({head, Moof(Traf(0x20000, 1, {}, run))});
    const PacketReaderPtr reader = Opened(file);
    ASSERT_NE(reader, nullptr);
    const std::vector<Bytes> packets = AllPackets(*reader);
    ASSERT_EQ(packets.size(), 5u);
    EXPECT_EQ(packets[4], Cut(file, head.size(), {10})[0]);
}

TEST(Fragments, EndWhereARunClaimsTooMuch)
{
    const Bytes head = FragmentedHead();
    const Bytes runs[] = {
        FullBox("trun", 0x201, Join({U32(0xFFFFFFFF), U32(0), U32(4)})),
        FullBox("trun", 0x1, Join({U32(0xFFFFFFFF), U32(0)})),
        FullBox("trun", 0x201, Join({U32(1), U32(0), U32(0xFFFFFFFF)})),
        FullBox("trun", 0x1, Join({U32(1), U32(0x80000000)})),
        FullBox("trun", 0x1, Join({U32(1), U32(0x7FFFFFFF)})),
        FullBox("trun", 0x1, U32(1)),
    };
    for (const Bytes& run : runs)
    {
        const PacketReaderPtr reader = Opened(Join({head, Moof(Traf(0x20000, 1, {}, run))}));
        ASSERT_NE(reader, nullptr);
        EXPECT_EQ(reader->Facts().mPacketCount, 0u);
    }
}

TEST(Fragments, NamingTheSameBytesAgainDoNotGrowBeyondTheFile)
{
    const Bytes head = FragmentedHead();
    const Bytes run = FullBox("trun", 0x1, Join({U32(50), U32(0)}));
    Bytes file = head;
    for (int count = 0; count < 200; ++count)
        movie_maker::Append(file, Moof(Traf(0x1, 1, U64(0), run)));
    const PacketReaderPtr reader = Opened(file);
    ASSERT_NE(reader, nullptr);
    EXPECT_LE(reader->Facts().mDataByteCount, static_cast<SInt64>(file.size()));
    EXPECT_GT(reader->Facts().mPacketCount, 50u);
}

TEST(Tables, WideOffsetsAndLongBoxesAreRead)
{
    TrackPlan plan = FourPackets();
    plan.mHasWideOffsets = true;
    plan.mChunks = {{kDataOffset + 8, 4}};
    const Bytes head = Join({movie_maker::MovieHeader(1000), movie_maker::TrackBox(plan)});
    const Bytes data = Counting(100);
    const Bytes file = Join({movie_maker::TypeBox(), movie_maker::LongBox("mdat", data),
                             movie_maker::LongBox("moov", head)});
    const PacketReaderPtr reader = Opened(file);
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(AllPackets(*reader), Cut(data, 0, {10, 20, 30, 40}));
}

TEST(Tables, DataBoxOfSizeZeroGoesToTheEnd)
{
    TrackPlan plan = FourPackets();
    const Bytes head =
        Box("moov", Join({movie_maker::MovieHeader(1000), movie_maker::TrackBox(plan)}));
    plan.mChunks = {{16 + head.size() + 8, 4}};
    const Bytes moved =
        Box("moov", Join({movie_maker::MovieHeader(1000), movie_maker::TrackBox(plan)}));
    const Bytes file =
        Join({movie_maker::TypeBox(), moved, U32(0), movie_maker::Text("mdat"), Counting(100)});
    const PacketReaderPtr reader = Opened(file);
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(AllPackets(*reader), Cut(Counting(100), 0, {10, 20, 30, 40}));
}

TEST(Tables, CompactSizesOfEveryWidth)
{
    const auto compact = [](UInt32 inBits, const Bytes& inEntries) {
        return FullBox("stz2", 0, Join({U32(inBits), U32(3), inEntries}));
    };
    const Bytes boxes[] = {compact(4, {0x5F, 0x30}), compact(8, {5, 15, 3}),
                           compact(16, {0, 5, 0, 15, 0, 3})};
    for (const Bytes& box : boxes)
    {
        TrackPlan plan = FourPackets();
        plan.mSizeBox = box;
        plan.mChunks = {{kDataOffset, 3}};
        const PacketReaderPtr reader = Opened(MakeFile({plan}, Counting(100)));
        ASSERT_NE(reader, nullptr);
        EXPECT_EQ(AllPackets(*reader), Cut(Counting(100), 0, {5, 15, 3}));
    }
}

TEST(Tables, ConstantSizesOfCompressedPackets)
{
    TrackPlan plan = FourPackets();
    plan.mSizeBox = movie_maker::ConstantSizeBox(25, 4);
    const PacketReaderPtr reader = Opened(MakeFile({plan}, Counting(100)));
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(AllPackets(*reader), Cut(Counting(100), 0, {25, 25, 25, 25}));
    EXPECT_EQ(reader->Facts().mPacketSizeUpperBound, 25u);
}

TEST(Tables, RunOfChunksHoldsForAllThatFollow)
{
    TrackPlan plan = FourPackets();
    plan.mSizes = {10, 10, 10, 10, 10};
    plan.mTimes = {{5, 1024}};
    const Bytes offsets = FullBox(
        "stco", 0, Join({U32(3), U32(kDataOffset + 50), U32(kDataOffset), U32(kDataOffset + 80)}));
    const Bytes runs =
        FullBox("stsc", 0, Join({U32(2), U32(1), U32(2), U32(1), U32(3), U32(1), U32(1)}));
    Bytes file = MakeFile({plan}, Counting(100));
    const Bytes original = movie_maker::ChunkBoxes(plan.mChunks, false);
    const auto place = std::search(file.begin(), file.end(), original.begin(), original.end());
    ASSERT_NE(place, file.end());
    // The tables become longer, so every box around them does too.
    const UInt32 growth = static_cast<UInt32>(runs.size() + offsets.size() - original.size());
    for (const char* type : {"moov", "trak", "mdia", "minf", "stbl"})
    {
        const auto name = std::search(file.begin(), file.end(), type, type + 4);
        ASSERT_NE(name, file.end());
        const Bytes size = U32(((name[-2] << 8) | name[-1]) + growth);
        std::copy(size.begin(), size.end(), name - 4);
    }
    file.erase(place, place + static_cast<long>(original.size()));
    const Bytes tables = Join({runs, offsets});
    file.insert(place, tables.begin(), tables.end());
    const PacketReaderPtr reader = Opened(file);
    ASSERT_NE(reader, nullptr);
    std::vector<Bytes> expected = Cut(Counting(100), 50, {10, 10});
    for (const Bytes& packet : Cut(Counting(100), 0, {10, 10}))
        expected.push_back(packet);
    expected.push_back(Cut(Counting(100), 80, {10})[0]);
    EXPECT_EQ(AllPackets(*reader), expected);
}

}  // namespace
}  // namespace audiotoolbox
