// Files of AMR speech.
#include "ProbedPackets.h"
#include "StreamMakers.h"

#include <gtest/gtest.h>

#include <string>

using namespace stream_testing;

namespace
{

constexpr std::size_t kNarrowSizes[] = {13, 14, 16, 18, 20, 21, 27, 32, 6};
constexpr std::size_t kWideSizes[] = {18, 24, 33, 37, 41, 47, 51, 59, 61, 6};

Bytes Text(const char* inText)
{
    const std::string text(inText);
    return Bytes(text.begin(), text.end());
}

template <std::size_t kCount>
Bytes EveryMode(const char* inMagic, const std::size_t (&inSizes)[kCount])
{
    Bytes file = Text(inMagic);
    for (std::size_t i = 0; i < kCount; ++i)
        file = Join({file, AMRFrame(static_cast<UInt32>(i), inSizes[i])});
    return Join({file, AMRFrame(15, 1), AMRFrame(0, inSizes[0])});
}

void ExpectProbedPackets(const Bytes& inFile)
{
    const std::vector<Bytes> expected = ProbedPacketsOf(inFile, ".amr");
    ASSERT_FALSE(expected.empty());
    Opened file = Open(kAMR, inFile);
    ASSERT_EQ(file.mStatus, noErr);
    std::vector<Bytes> found;
    for (const Packet& packet : ReadAll(*file.mReader))
        found.push_back(packet.mBytes);
    EXPECT_EQ(found, expected);
    EXPECT_EQ(file.Facts().mPacketCount, expected.size());
}

TEST(AMRStream, PacketsOfEveryModeAreThoseThatFFprobeFinds)
{
    ExpectProbedPackets(EveryMode("#!AMR\n", kNarrowSizes));
    ExpectProbedPackets(EveryMode("#!AMR-WB\n", kWideSizes));
}

TEST(AMRStream, FactsOfBothBands)
{
    const Opened narrow = Open(kAMR, EveryMode("#!AMR\n", kNarrowSizes));
    ASSERT_EQ(narrow.mStatus, noErr);
    EXPECT_EQ(narrow.Facts().mFileType, UInt32{kAudioFileAMRType});
    EXPECT_EQ(narrow.Facts().mDataFormat.mFormatID, UInt32{kAudioFormatAMR});
    EXPECT_EQ(narrow.Facts().mDataFormat.mSampleRate, 8000);
    EXPECT_EQ(narrow.Facts().mDataFormat.mFramesPerPacket, 160u);
    EXPECT_EQ(narrow.Facts().mDataFormat.mBytesPerPacket, 0u);
    EXPECT_EQ(narrow.Facts().mDataFormat.mChannelsPerFrame, 1u);
    EXPECT_EQ(narrow.Facts().mPacketSizeUpperBound, 32u);
    EXPECT_EQ(narrow.Facts().mDataOffset, 6);
    EXPECT_EQ(static_cast<SInt64>(narrow.Facts().mEstimatedDuration * 8000), 11 * 160);
    EXPECT_EQ(TagOf(narrow.Facts()), kAudioChannelLayoutTag_Mono);
    EXPECT_FALSE(narrow.Facts().mPacketTable);

    const Opened wide = Open(kAMR, EveryMode("#!AMR-WB\n", kWideSizes));
    ASSERT_EQ(wide.mStatus, noErr);
    EXPECT_EQ(wide.Facts().mDataFormat.mFormatID, UInt32{kAudioFormatAMR_WB});
    EXPECT_EQ(wide.Facts().mDataFormat.mSampleRate, 16000);
    EXPECT_EQ(wide.Facts().mDataFormat.mFramesPerPacket, 320u);
    EXPECT_EQ(wide.Facts().mPacketSizeUpperBound, 61u);
    EXPECT_EQ(wide.Facts().mDataOffset, 9);
}

TEST(AMRStream, LongFileIsEstimatedFromItsBeginning)
{
    Bytes file = Text("#!AMR\n");
    const Bytes frame = AMRFrame(7, 32);
    for (int i = 0; i < 5000; ++i)
        file.insert(file.end(), frame.begin(), frame.end());
    const Opened opened = Open(kAMR, file);
    ASSERT_EQ(opened.mStatus, noErr);
    EXPECT_FALSE(opened.Facts().mPacketCount);
    EXPECT_EQ(static_cast<SInt64>(opened.Facts().mEstimatedDuration * 8000), 5000 * 160);
    EXPECT_EQ(opened.Facts().mBitRate, 12800u);
}

TEST(AMRStream, SeveralChannelsAreAFormatThatNothingDecodes)
{
    EXPECT_EQ(Open(kAMR, Text("#!AMR_MC1.0\n....")).mStatus, kAudioFileUnsupportedDataFormatError);
    EXPECT_EQ(Open(kAMR, Text("#!AMR-WB_MC1.0\n....")).mStatus,
              kAudioFileUnsupportedDataFormatError);
    EXPECT_EQ(Open(kAMR, Text("#!AMX\n")).mStatus, kAudioFileUnsupportedFileTypeError);
    EXPECT_EQ(Open(kAMR, {}).mStatus, kAudioFileUnsupportedFileTypeError);
}

TEST(AMRStream, MagicAloneIsAnEmptyStream)
{
    Opened file = Open(kAMR, Text("#!AMR\n"));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mPacketCount, 0u);
    EXPECT_TRUE(ReadAll(*file.mReader).empty());
}

TEST(AMRStream, ReadsOnBehindDamage)
{
    const Bytes frame = AMRFrame(7, 32);
    const Bytes frames = Join({frame, frame, frame, frame, frame});
    Opened file = Open(kAMR, Join({Text("#!AMR\n"), frames, Bytes(100, 0xFF), frames}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(SizesOf(ReadAll(*file.mReader)), std::vector<UInt32>(10, 32));
}

}  // namespace
