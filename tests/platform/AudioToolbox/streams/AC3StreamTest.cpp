// Streams of AC-3 and E-AC-3.
#include "ProbedPackets.h"
#include "StreamMakers.h"

#include <gtest/gtest.h>

using namespace stream_testing;

namespace
{

TEST(AC3Stream, PacketsAreThoseThatFFprobeFinds)
{
    for (const char* const name :
         {"streams/48000-51.ac3", "streams/44100-stereo.ac3", "streams/48000-stereo.eac3"})
    {
        const std::vector<Bytes> expected = ProbedPackets(DataPath(name));
        ASSERT_FALSE(expected.empty()) << name;
        Opened file = Open(kAC3, LoadData(name));
        ASSERT_EQ(file.mStatus, noErr) << name;
        std::vector<Bytes> found;
        for (const Packet& packet : ReadAll(*file.mReader))
            found.push_back(packet.mBytes);
        EXPECT_EQ(found, expected) << name;
        EXPECT_EQ(file.Facts().mPacketCount, expected.size()) << name;
    }
}

TEST(AC3Stream, FactsOfSixChannels)
{
    const Opened file = Open(kAC3, LoadData("streams/48000-51.ac3"));
    ASSERT_EQ(file.mStatus, noErr);
    const audiotoolbox::FileFacts& facts = file.Facts();
    EXPECT_EQ(facts.mFileType, UInt32{kAudioFileAC3Type});
    EXPECT_EQ(facts.mDataFormat.mFormatID, UInt32{kAudioFormatAC3});
    EXPECT_EQ(facts.mDataFormat.mSampleRate, 48000);
    EXPECT_EQ(facts.mDataFormat.mChannelsPerFrame, 6u);
    EXPECT_EQ(facts.mDataFormat.mFramesPerPacket, 1536u);
    EXPECT_EQ(facts.mDataFormat.mBitsPerChannel, 0u);
    EXPECT_EQ(TagOf(facts), kAudioChannelLayoutTag_UseChannelBitmap);
    EXPECT_EQ(BitmapOf(facts), 0x3Fu);
    EXPECT_FALSE(facts.mPacketTable);
    EXPECT_TRUE(facts.mCookie.empty());
    EXPECT_EQ(facts.mPacketSizeUpperBound, 3840u);
    EXPECT_EQ(facts.mBitRate, 192000u);
    EXPECT_EQ(static_cast<SInt64>(facts.mEstimatedDuration * 48000), 10 * 1536);
}

TEST(AC3Stream, SizesAlternateAtRatesThatDoNotDivide)
{
    Opened file = Open(kAC3, LoadData("streams/44100-stereo.ac3"));
    ASSERT_EQ(file.mStatus, noErr);
    const std::vector<UInt32> sizes = SizesOf(ReadAll(*file.mReader));
    EXPECT_EQ(std::vector<UInt32>(sizes.begin(), sizes.begin() + 3),
              (std::vector<UInt32>{278, 280, 278}));
    EXPECT_EQ(TagOf(file.Facts()), kAudioChannelLayoutTag_Stereo);
    EXPECT_EQ(file.Facts().mBitRate, 64000u);
}

TEST(AC3Stream, ModesNameTheirChannelsInTheDecodersOrder)
{
    struct Row
    {
        UInt32 mMode;
        bool mHasLFE;
        UInt32 mChannels;
        UInt32 mTag;
        UInt32 mBitmap;
    };
    constexpr UInt32 kBitmap = kAudioChannelLayoutTag_UseChannelBitmap;
    constexpr Row kRows[] = {
        {0, false, 2, kAudioChannelLayoutTag_Stereo, 0},
        {1, false, 1, kAudioChannelLayoutTag_Mono, 0},
        {1, true, 2, kBitmap, 0xC},
        {2, false, 2, kAudioChannelLayoutTag_Stereo, 0},
        {2, true, 3, kBitmap, 0xB},
        {3, false, 3, kBitmap, 0x7},
        {4, false, 3, kBitmap, 0x103},
        {5, true, 5, kBitmap, 0x10F},
        {6, false, 4, kBitmap, 0x33},
        {7, false, 5, kBitmap, 0x37},
        {7, true, 6, kBitmap, 0x3F},
    };
    for (const Row& row : kRows)
    {
        const Bytes frame = EAC3Frame(0, 0, row.mMode, row.mHasLFE, 200);
        const Opened file = Open(kEAC3, Join({frame, frame, frame}));
        ASSERT_EQ(file.mStatus, noErr) << row.mMode;
        EXPECT_EQ(file.Facts().mDataFormat.mChannelsPerFrame, row.mChannels) << row.mMode;
        EXPECT_EQ(TagOf(file.Facts()), row.mTag) << row.mMode;
        EXPECT_EQ(BitmapOf(file.Facts()), row.mBitmap) << row.mMode;
    }
}

TEST(EAC3Stream, FactsOfAStream)
{
    const Opened file = Open(kEAC3, LoadData("streams/48000-stereo.eac3"));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mFileType, UInt32{kAudioFileEAC3Type});
    EXPECT_EQ(file.Facts().mDataFormat.mFormatID, UInt32{kAudioFormatEnhancedAC3});
    EXPECT_EQ(file.Facts().mDataFormat.mFramesPerPacket, 1536u);
    EXPECT_EQ(file.Facts().mPacketSizeUpperBound, 4096u);
    EXPECT_EQ(file.Facts().mBitRate, 64000u);
}

TEST(EAC3Stream, BlocksMakeTheFramesOfAPacket)
{
    constexpr UInt32 kFrames[] = {256, 512, 768, 1536};
    for (UInt32 code = 0; code < 4; ++code)
    {
        const Bytes frame = EAC3Frame(0, 0, 2, false, 200, code);
        const Opened file = Open(kEAC3, Join({frame, frame, frame}));
        ASSERT_EQ(file.mStatus, noErr);
        EXPECT_EQ(file.Facts().mDataFormat.mFramesPerPacket, kFrames[code]);
    }
}

TEST(EAC3Stream, DifferingBlocksAreToldByThePacket)
{
    const Bytes six = EAC3Frame(0, 0, 2, false, 200, 3);
    const Bytes one = EAC3Frame(0, 0, 2, false, 100, 0);
    Opened file = Open(kEAC3, Join({six, one, six}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mDataFormat.mFramesPerPacket, 0u);
    EXPECT_EQ(ReadAll(*file.mReader), (std::vector<Packet>{{six, 1536}, {one, 256}, {six, 1536}}));
}

TEST(EAC3Stream, DependentFramesBelongToThePacketAndAddChannels)
{
    const Bytes core = EAC3Frame(0, 0, 7, true, 400);
    const Bytes added = EAC3Frame(1, 0, 6, false, 300, 3, 0x1A00);  // surrounds and rear surrounds
    const Bytes packet = Join({core, added});
    Opened file = Open(kEAC3, Join({packet, packet, packet}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(ReadAll(*file.mReader), std::vector<Packet>(3, Packet{packet, 0}));
    EXPECT_EQ(file.Facts().mDataFormat.mChannelsPerFrame, 8u);
    EXPECT_EQ(LabelsOf(file.Facts()), (std::vector<UInt32>{1, 2, 3, 4, 33, 34, 5, 6}));
    EXPECT_EQ(file.Facts().mPacketSizeUpperBound, 8192u);
    EXPECT_EQ(file.Facts().mPacketCount, 3u);
}

TEST(EAC3Stream, OtherProgrammesArePassedOver)
{
    const Bytes first = EAC3Frame(0, 0, 2, false, 400);
    const Bytes second = Join({EAC3Frame(0, 1, 7, true, 300), EAC3Frame(1, 0, 6, false, 100)});
    Opened file = Open(kEAC3, Join({second, first, second, first, second}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(ReadAll(*file.mReader), std::vector<Packet>(2, Packet{first, 0}));
    EXPECT_EQ(file.Facts().mDataFormat.mChannelsPerFrame, 2u);
}

TEST(EAC3Stream, PacketWithoutItsLastDependentFrameIsNotWhole)
{
    const Bytes core = EAC3Frame(0, 0, 7, true, 400);
    const Bytes added = EAC3Frame(1, 0, 6, false, 300, 3, 0x1A00);
    const Bytes packet = Join({core, added});
    Bytes stream = Join({packet, packet, packet});
    stream.resize(stream.size() - 1);
    Opened file = Open(kEAC3, stream);
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mPacketCount, 2u);
    EXPECT_EQ(ReadAll(*file.mReader).size(), 2u);
}

TEST(AC3Stream, ExtensionsOfAnAC3StreamArePassedOver)
{
    const Bytes file = LoadData("streams/48000-51.ac3");
    const Bytes one(file.begin(), file.begin() + 768);
    const Bytes extension = EAC3Frame(1, 0, 6, false, 300, 3, 0x1A00);
    Opened stream = Open(kAC3, Join({one, extension, one, extension, one}));
    ASSERT_EQ(stream.mStatus, noErr);
    EXPECT_EQ(stream.Facts().mFileType, UInt32{kAudioFileAC3Type});
    EXPECT_EQ(stream.Facts().mDataFormat.mChannelsPerFrame, 6u);
    EXPECT_EQ(ReadAll(*stream.mReader), std::vector<Packet>(3, Packet{one, 0}));
}

TEST(AC3Stream, NoFramesAreToldApartByTheFirstBytes)
{
    Bytes cut = LoadData("streams/48000-51.ac3");
    cut.resize(700);
    EXPECT_EQ(Open(kAC3, cut).mStatus, kAudioFileInvalidFileError);
    EXPECT_EQ(Open(kAC3, NoiseWithoutSync(3000, 1)).mStatus, kAudioFileUnsupportedFileTypeError);
    EXPECT_EQ(Open(kAC3, {}).mStatus, kAudioFileUnsupportedFileTypeError);
}

}  // namespace
