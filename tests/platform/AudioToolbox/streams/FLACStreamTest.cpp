// Native FLAC: metadata, facts and where frames end.
#include "ProbedPackets.h"
#include "StreamMakers.h"

#include <gtest/gtest.h>

using namespace stream_testing;

namespace
{

// Frames of noise, numbered from inFirst on.
std::vector<Bytes> Frames(const FLACShape& inShape, UInt64 inFirst, int inCount,
                          std::size_t inBodyBytes = 1000)
{
    std::vector<Bytes> frames;
    for (int i = 0; i < inCount; ++i)
        frames.push_back(FLACFrame(inShape, inFirst + static_cast<UInt64>(i), inShape.mLargestBlock,
                                   Noise(inBodyBytes, static_cast<UInt32>(i) + 1)));
    return frames;
}

Bytes Whole(const Bytes& inHead, const std::vector<Bytes>& inFrames)
{
    Bytes whole = inHead;
    for (const Bytes& frame : inFrames)
        whole.insert(whole.end(), frame.begin(), frame.end());
    return whole;
}

std::vector<Bytes> BytesOf(const std::vector<Packet>& inPackets)
{
    std::vector<Bytes> bytes;
    for (const Packet& packet : inPackets)
        bytes.push_back(packet.mBytes);
    return bytes;
}

TEST(FLACStream, PacketsAreThoseThatFFprobeFinds)
{
    for (const char* const name : {"streams/44100-stereo-16.flac", "streams/48000-51-24.flac"})
    {
        const std::vector<Bytes> expected = ProbedPackets(DataPath(name));
        ASSERT_FALSE(expected.empty()) << name;
        Opened file = Open(kFLAC, LoadData(name));
        ASSERT_EQ(file.mStatus, noErr) << name;
        EXPECT_EQ(BytesOf(ReadAll(*file.mReader)), expected) << name;
        EXPECT_EQ(file.Facts().mPacketCount, expected.size()) << name;
    }
}

TEST(FLACStream, FactsOfSixteenBits)
{
    const Bytes bytes = LoadData("streams/44100-stereo-16.flac");
    const Opened file = Open(kFLAC, bytes);
    ASSERT_EQ(file.mStatus, noErr);
    const audiotoolbox::FileFacts& facts = file.Facts();
    EXPECT_EQ(facts.mFileType, UInt32{kAudioFileFLACType});
    EXPECT_EQ(facts.mDataFormat.mFormatID, UInt32{kAudioFormatFLAC});
    EXPECT_EQ(facts.mDataFormat.mFormatFlags, 1u);
    EXPECT_EQ(facts.mDataFormat.mSampleRate, 44100);
    EXPECT_EQ(facts.mDataFormat.mChannelsPerFrame, 2u);
    EXPECT_EQ(facts.mDataFormat.mFramesPerPacket, 1152u);
    EXPECT_EQ(facts.mDataFormat.mBitsPerChannel, 0u);
    EXPECT_EQ(facts.mDataFormat.mBytesPerPacket, 0u);
    EXPECT_EQ(facts.mCookie, Bytes(bytes.begin() + 8, bytes.begin() + 42));
    EXPECT_EQ(TagOf(facts), kAudioChannelLayoutTag_Stereo);
    ASSERT_TRUE(facts.mPacketTable);
    EXPECT_EQ(facts.mPacketTable->mPrimingFrames, 0);
    EXPECT_EQ(facts.mPacketTable->mNumberValidFrames, 8820);
    EXPECT_EQ(facts.mPacketTable->mRemainderFrames, 8 * 1152 - 8820);
    EXPECT_EQ(static_cast<SInt64>(facts.mEstimatedDuration * 44100), 8820);
    EXPECT_EQ(facts.mBitRate,
              static_cast<UInt32>(static_cast<double>(facts.mDataByteCount) * 40 + 0.5));  // 0.2 s
    const UInt32 stated = UInt32{bytes[15]} << 16 | UInt32{bytes[16]} << 8 | bytes[17];
    EXPECT_EQ(facts.mPacketSizeUpperBound, stated);
}

TEST(FLACStream, DepthStandsInTheFlags)
{
    struct Row
    {
        UInt32 mBits;
        UInt32 mFlags;
    };
    for (const Row& row : {Row{8, 0}, Row{12, 0}, Row{16, 1}, Row{20, 2}, Row{24, 3}, Row{32, 4}})
    {
        FLACShape shape;
        shape.mBits = row.mBits;
        const Opened file = Open(kFLAC, Whole(FLACHead(shape), Frames(shape, 0, 3)));
        ASSERT_EQ(file.mStatus, noErr) << row.mBits;
        EXPECT_EQ(file.Facts().mDataFormat.mFormatFlags, row.mFlags) << row.mBits;
    }
}

TEST(FLACStream, ChannelCountsHaveTheFormatsLayouts)
{
    constexpr UInt32 kBitmaps[] = {0, 0, 0, 0x7, 0x33, 0x37, 0x3F, 0x70F, 0x63F};
    for (UInt32 channels = 1; channels <= 8; ++channels)
    {
        FLACShape shape;
        shape.mChannels = channels;
        const Opened file = Open(kFLAC, Whole(FLACHead(shape), Frames(shape, 0, 3)));
        ASSERT_EQ(file.mStatus, noErr) << channels;
        EXPECT_EQ(file.Facts().mDataFormat.mChannelsPerFrame, channels);
        EXPECT_EQ(BitmapOf(file.Facts()), kBitmaps[channels]) << channels;
    }
}

TEST(FLACStream, ChannelMaskOfTheCommentsWins)
{
    FLACShape shape;
    shape.mChannels = 4;
    struct Row
    {
        const char* mComment;
        UInt32 mBitmap;
    };
    for (const Row& row : {Row{"WAVEFORMATEXTENSIBLE_CHANNEL_MASK=0x107", 0x107},
                           Row{"waveformatextensible_channel_mask=0x603", 0x603},
                           Row{"WAVEFORMATEXTENSIBLE_CHANNEL_MASK=0x7", 0x33},  // too few
                           Row{"WAVEFORMATEXTENSIBLE_CHANNEL_MASK=0x", 0x33},   // no number
                           Row{"WAVEFORMATEXTENSIBLE_CHANNEL_MASK=0x10z7", 0x33},
                           Row{"WAVEFORMATEXTENSIBLE_CHANNEL_MASK=0xF0000000", 0x33}})
    {
        const Bytes head = Join({FLACHead(shape, false), FLACBlock(1, false, Bytes(300)),
                                 FLACBlock(4, true, FLACMaskComment(row.mComment))});
        const Opened file = Open(kFLAC, Whole(head, Frames(shape, 0, 3)));
        ASSERT_EQ(file.mStatus, noErr) << row.mComment;
        EXPECT_EQ(BitmapOf(file.Facts()), row.mBitmap) << row.mComment;
    }
}

TEST(FLACStream, BrokenCommentsDoNotKeepTheFileFromOpening)
{
    const FLACShape shape;
    for (const Bytes& body :
         {Bytes{}, Bytes{0xFF, 0xFF, 0xFF, 0xFF}, Bytes(8, 0), Bytes(64, 0xFF), Bytes(64, 0)})
    {
        const Bytes head = Join({FLACHead(shape, false), FLACBlock(4, true, body)});
        EXPECT_EQ(Open(kFLAC, Whole(head, Frames(shape, 0, 3))).mStatus, noErr);
    }
}

TEST(FLACStream, VariableBlocksAreToldByThePacket)
{
    FLACShape shape;
    shape.mSmallestBlock = 192;
    shape.mLargestBlock = 4096;
    shape.mAllFrames = 4096 + 192 + 300;
    const Bytes first = FLACFrame(shape, 0, 4096, Noise(900, 1), true);
    const Bytes second = FLACFrame(shape, 4096, 192, Noise(90, 2), true);
    const Bytes third = FLACFrame(shape, 4288, 300, Noise(120, 3), true);
    Opened file = Open(kFLAC, Whole(FLACHead(shape), {first, second, third}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mDataFormat.mFramesPerPacket, 0u);
    EXPECT_FALSE(file.Facts().mPacketTable);
    EXPECT_EQ(static_cast<SInt64>(file.Facts().mEstimatedDuration * 44100), 4588);
    EXPECT_EQ(ReadAll(*file.mReader),
              (std::vector<Packet>{{first, 4096}, {second, 192}, {third, 300}}));
}

TEST(FLACStream, NumbersOfEveryLengthContinue)
{
    const FLACShape shape;
    for (const UInt64 first : {UInt64{0x7E}, UInt64{0x7FE}, UInt64{0xFFFE}, UInt64{0x1FFFFE},
                               UInt64{0x3FFFFFE}, UInt64{0x7FFFFFFD}})
    {
        const std::vector<Bytes> frames = Frames(shape, first, 4, 300);
        Opened file = Open(kFLAC, Whole(FLACHead(shape), frames));
        ASSERT_EQ(file.mStatus, noErr) << first;
        EXPECT_EQ(BytesOf(ReadAll(*file.mReader)), frames) << first;
    }
}

TEST(FLACStream, HeadersWithinAFrameDoNotEndIt)
{
    // The body of the second frame holds whole headers with right checksums and other numbers.
    const FLACShape shape;
    const auto headerOf = [&](UInt64 inNumber)
    {
        const Bytes frame = FLACFrame(shape, inNumber, 4096, Bytes(4, 0));
        return Bytes(frame.begin(), frame.end() - 6);
    };
    const Bytes body = Join({Noise(200, 1), headerOf(0), Noise(100, 2), headerOf(5000),
                             Noise(100, 3), headerOf(90000), Noise(100, 4)});
    const std::vector<Bytes> frames = {FLACFrame(shape, 1, 4096, Noise(500, 5)),
                                       FLACFrame(shape, 2, 4096, body),
                                       FLACFrame(shape, 3, 4096, Noise(500, 6))};
    Opened file = Open(kFLAC, Whole(FLACHead(shape), frames));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(BytesOf(ReadAll(*file.mReader)), frames);
}

TEST(FLACStream, ChecksumEndsAFrameWhereTheNumbersStartAgain)
{
    const FLACShape shape;
    std::vector<Bytes> frames = Frames(shape, 500, 3);
    const std::vector<Bytes> again = Frames(shape, 0, 3);
    frames.insert(frames.end(), again.begin(), again.end());
    Opened file = Open(kFLAC, Whole(FLACHead(shape), frames));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(BytesOf(ReadAll(*file.mReader)), frames);
}

TEST(FLACStream, MissingFramesLeaveTheOthersWhole)
{
    const FLACShape shape;
    std::vector<Bytes> frames = Frames(shape, 0, 10);
    frames.erase(frames.begin() + 4, frames.begin() + 7);
    Opened file = Open(kFLAC, Whole(FLACHead(shape), frames));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(BytesOf(ReadAll(*file.mReader)), frames);
}

TEST(FLACStream, BrokenHeaderCostsOnlyItsOwnFrame)
{
    FLACShape shape;
    shape.mLargestPacket = 1020;
    std::vector<Bytes> frames = Frames(shape, 0, 6);
    frames[3][4] ^= 0x40;
    Opened file = Open(kFLAC, Whole(FLACHead(shape), frames));
    ASSERT_EQ(file.mStatus, noErr);
    const std::vector<Bytes> found = BytesOf(ReadAll(*file.mReader));
    ASSERT_EQ(found.size(), 6u);
    EXPECT_EQ(found[1], frames[1]);
    // The frame before it ends at the bound at the latest, and is whole.
    EXPECT_TRUE(std::equal(frames[2].begin(), frames[2].end(), found[2].begin()));
    EXPECT_LE(found[2].size(), 1020u);
    EXPECT_EQ(found[4], frames[4]);
    EXPECT_EQ(found[5], frames[5]);
}

// A decoder refuses ten bytes out of a frame's middle, and that keeps the frame's place.
TEST(FLACStream, MissingNumbersKeepThePlacesOfBrokenHeaders)
{
    const FLACShape shape;
    for (const std::size_t lost : {1u, 2u})
    {
        std::vector<Bytes> frames = Frames(shape, 0, 7);
        Bytes stretch = frames[2];
        for (std::size_t i = 3; i < 3 + lost; ++i)
        {
            frames[i][4] ^= 0x40;
            stretch = Join({stretch, frames[i]});
        }
        Opened file = Open(kFLAC, Whole(FLACHead(shape), frames));
        ASSERT_EQ(file.mStatus, noErr);
        std::vector<Bytes> expected = {frames[0], frames[1]};
        const auto end = stretch.end() - static_cast<std::ptrdiff_t>(10 * lost);
        expected.emplace_back(stretch.begin(), end);
        for (std::size_t i = 0; i < lost; ++i)
            expected.emplace_back(end + static_cast<std::ptrdiff_t>(10 * i),
                                  end + static_cast<std::ptrdiff_t>(10 * i + 10));
        expected.insert(expected.end(), frames.begin() + static_cast<std::ptrdiff_t>(3 + lost),
                        frames.end());
        EXPECT_EQ(BytesOf(ReadAll(*file.mReader)), expected) << lost;
    }
}

TEST(FLACStream, BrokenHeaderOfTheLastFrameLeavesTheOneBefore)
{
    const FLACShape shape;
    std::vector<Bytes> frames = Frames(shape, 0, 4);
    frames[3][4] ^= 0x40;
    Opened file = Open(kFLAC, Whole(FLACHead(shape), frames));
    ASSERT_EQ(file.mStatus, noErr);
    const std::vector<Bytes> expected = {frames[0], frames[1], frames[2]};
    EXPECT_EQ(BytesOf(ReadAll(*file.mReader)), expected);
}

TEST(FLACStream, NoPacketIsLargerThanTheBound)
{
    FLACShape shape;
    shape.mLargestPacket = 400;
    Opened file = Open(kFLAC, Whole(FLACHead(shape), Frames(shape, 0, 6)));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mPacketSizeUpperBound, 400u);
    for (const Packet& packet : ReadAll(*file.mReader))
        EXPECT_LE(packet.mBytes.size(), 400u);
}

TEST(FLACStream, UnstatedBoundIsWhatTheSamplesCouldTake)
{
    const FLACShape shape;
    const Opened file = Open(kFLAC, Whole(FLACHead(shape), Frames(shape, 0, 3)));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mPacketSizeUpperBound, 4096u * 2 * 17 / 8 + 64);
    FLACShape lying;
    lying.mLargestPacket = 0xFFFFFF;
    const Opened other = Open(kFLAC, Whole(FLACHead(lying), Frames(lying, 0, 3)));
    ASSERT_EQ(other.mStatus, noErr);
    EXPECT_EQ(other.Facts().mPacketSizeUpperBound, 4096u * 2 * 17 / 8 + 64);
}

TEST(FLACStream, FramesLargerThanTheWindowAreWhole)
{
    FLACShape shape;
    shape.mChannels = 6;
    shape.mBits = 24;
    const std::vector<Bytes> frames = Frames(shape, 0, 5, 72000);
    Opened file = Open(kFLAC, Whole(FLACHead(shape), frames));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(BytesOf(ReadAll(*file.mReader)), frames);
}

TEST(FLACStream, UnknownLengthHasNoTable)
{
    const FLACShape shape;
    const Opened small = Open(kFLAC, Whole(FLACHead(shape), Frames(shape, 0, 5)));
    ASSERT_EQ(small.mStatus, noErr);
    EXPECT_FALSE(small.Facts().mPacketTable);
    EXPECT_EQ(small.Facts().mPacketCount, 5u);
    EXPECT_EQ(static_cast<SInt64>(small.Facts().mEstimatedDuration * 44100), 5 * 4096);

    const Opened large = Open(kFLAC, Whole(FLACHead(shape), Frames(shape, 0, 200)));
    ASSERT_EQ(large.mStatus, noErr);
    EXPECT_FALSE(large.Facts().mPacketCount);
    EXPECT_NEAR(large.Facts().mEstimatedDuration, 200 * 4096 / 44100.0, 0.1);
}

TEST(FLACStream, LengthThatTheFileCannotHoldIsNotBelieved)
{
    FLACShape shape;
    shape.mAllFrames = 0xFFFFFFFFF;
    const Opened file = Open(kFLAC, Whole(FLACHead(shape), Frames(shape, 0, 200)));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_FALSE(file.Facts().mPacketTable);
    EXPECT_NEAR(file.Facts().mEstimatedDuration, 200 * 4096 / 44100.0, 0.1);
}

TEST(FLACStream, LongFileIsStatedWithoutAWalk)
{
    FLACShape shape;
    shape.mAllFrames = 200 * 4096 - 100;
    const Opened file = Open(kFLAC, Whole(FLACHead(shape), Frames(shape, 0, 200)));
    ASSERT_EQ(file.mStatus, noErr);
    ASSERT_TRUE(file.Facts().mPacketTable);
    EXPECT_EQ(file.Facts().mPacketTable->mNumberValidFrames, 200 * 4096 - 100);
    EXPECT_EQ(file.Facts().mPacketTable->mRemainderFrames, 100);
    EXPECT_EQ(file.Facts().mPacketCount, 200u);
}

TEST(FLACStream, DamagedMetadataIsRefused)
{
    const FLACShape shape;
    const std::vector<Bytes> frames = Frames(shape, 0, 3);
    const Bytes good = FLACHead(shape);
    EXPECT_EQ(Open(kFLAC, Bytes(good.begin(), good.begin() + 3)).mStatus,
              kAudioFileUnsupportedFileTypeError);
    for (std::size_t size = 4; size < good.size(); ++size)
        EXPECT_EQ(Open(kFLAC, Bytes(good.begin(), good.begin() + static_cast<long>(size))).mStatus,
                  kAudioFileInvalidFileError)
            << size;
    EXPECT_EQ(Open(kFLAC, good).mStatus, noErr);  // empty, but whole

    FLACShape bad = shape;
    bad.mSampleRate = 0;
    EXPECT_EQ(Open(kFLAC, Whole(FLACHead(bad), frames)).mStatus, kAudioFileInvalidFileError);
    bad = shape;
    bad.mSmallestBlock = 8192;
    EXPECT_EQ(Open(kFLAC, Whole(FLACHead(bad), frames)).mStatus, kAudioFileInvalidFileError);
    bad = shape;
    bad.mBits = 3;
    EXPECT_EQ(Open(kFLAC, Whole(FLACHead(bad), frames)).mStatus, kAudioFileInvalidFileError);
    bad = shape;
    bad.mChannels = 6;  // the frames say 2
    EXPECT_EQ(Open(kFLAC, Whole(FLACHead(bad), frames)).mStatus, kAudioFileInvalidFileError);
    const Bytes twice = Join({FLACHead(shape, false), FLACBlock(0, true, Bytes(34, 0x10))});
    EXPECT_EQ(Open(kFLAC, Whole(twice, frames)).mStatus, kAudioFileInvalidFileError);
    const Bytes beyond = Join({FLACHead(shape, false), {0x81, 0xFF, 0xFF, 0xFF}});
    EXPECT_EQ(Open(kFLAC, Whole(beyond, frames)).mStatus, kAudioFileInvalidFileError);
}

TEST(FLACStream, EndlessMetadataIsRefused)
{
    Bytes head = FLACHead(FLACShape(), false);
    for (int i = 0; i < 20000; ++i)
        head.insert(head.end(), {1, 0, 0, 0});
    EXPECT_EQ(Open(kFLAC, head).mStatus, kAudioFileInvalidFileError);
}

TEST(FLACStream, DamagedLastFrameIsNotDelivered)
{
    const FLACShape shape;
    std::vector<Bytes> frames = Frames(shape, 0, 5);
    frames.back()[500] ^= 1;
    Opened file = Open(kFLAC, Whole(FLACHead(shape), frames));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(ReadAll(*file.mReader).size(), 4u);
}

}  // namespace
