// Streams of MPEG audio: headers, length tags and what is told of a file.
#include "ProbedPackets.h"
#include "StreamMakers.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace stream_testing;

namespace
{

std::vector<Bytes> BytesOf(const std::vector<Packet>& inPackets)
{
    std::vector<Bytes> bytes;
    for (const Packet& packet : inPackets)
        bytes.push_back(packet.mBytes);
    return bytes;
}

Bytes Repeat(const Bytes& inPart, int inTimes)
{
    Bytes whole;
    for (int i = 0; i < inTimes; ++i)
        whole.insert(whole.end(), inPart.begin(), inPart.end());
    return whole;
}

void ExpectFormat(const audiotoolbox::FileFacts& inFacts, UInt32 inFormat, double inRate,
                  UInt32 inChannels, UInt32 inFrames)
{
    const AudioStreamBasicDescription& format = inFacts.mDataFormat;
    EXPECT_EQ(format.mFormatID, inFormat);
    EXPECT_EQ(format.mSampleRate, inRate);
    EXPECT_EQ(format.mChannelsPerFrame, inChannels);
    EXPECT_EQ(format.mFramesPerPacket, inFrames);
    EXPECT_EQ(format.mBytesPerPacket, 0u);
    EXPECT_EQ(format.mBytesPerFrame, 0u);
    EXPECT_EQ(format.mBitsPerChannel, 0u);
    EXPECT_EQ(format.mFormatFlags, 0u);
    ASSERT_EQ(inFacts.mFormats.size(), 1u);
    EXPECT_EQ(std::memcmp(&inFacts.mFormats[0].mASBD, &format, sizeof(format)), 0);
    EXPECT_TRUE(inFacts.mCookie.empty());
}

TEST(MPEGStream, PacketsAreThoseThatFFprobeFinds)
{
    for (const char* const name :
         {"info-44100-stereo.mp3", "untagged-44100-stereo.mp3", "untagged-22050-mono-id3v2.mp3",
          "xing-44100-mono.mp3", "48000-stereo.mp2"})
    {
        const std::string path = std::string("streams/") + name;
        const std::vector<Bytes> expected = ProbedPackets(DataPath(path));
        ASSERT_FALSE(expected.empty()) << name;
        Opened file = Open(kMPEG, LoadData(path));
        ASSERT_EQ(file.mStatus, noErr) << name;
        EXPECT_EQ(BytesOf(ReadAll(*file.mReader)), expected) << name;
        EXPECT_EQ(file.Facts().mPacketCount, expected.size()) << name;
    }
}

TEST(MPEGStream, InfoTagGivesTheTableOfTheAudio)
{
    const Opened file = Open(kMPEG, LoadData("streams/info-44100-stereo.mp3"));
    ASSERT_EQ(file.mStatus, noErr);
    ExpectFormat(file.Facts(), kAudioFormatMPEGLayer3, 44100, 2, 1152);
    EXPECT_EQ(file.Facts().mFileType, UInt32{kAudioFileMP3Type});
    EXPECT_EQ(TagOf(file.Facts()), kAudioChannelLayoutTag_Stereo);
    EXPECT_EQ(file.Facts().mFormats[0].mChannelLayoutTag, kAudioChannelLayoutTag_Stereo);
    ASSERT_TRUE(file.Facts().mPacketTable);
    EXPECT_EQ(file.Facts().mPacketTable->mPrimingFrames, 1105);
    EXPECT_EQ(file.Facts().mPacketTable->mNumberValidFrames, 17640);  // 0.4 s
    EXPECT_EQ(file.Facts().mPacketTable->mRemainderFrames, 17 * 1152 - 1105 - 17640);
    EXPECT_EQ(static_cast<SInt64>(file.Facts().mEstimatedDuration * 44100), 17640);
    EXPECT_EQ(file.Facts().mBitRate, 64000u);
    EXPECT_EQ(file.Facts().mDataOffset, 208);
    EXPECT_EQ(file.Facts().mDataByteCount, 3760 - 208);
    EXPECT_EQ(file.Facts().mPacketSizeUpperBound, 1045u);
}

TEST(MPEGStream, XingTagOfLAMEGivesTheTableAndTheAverageRate)
{
    const Opened file = Open(kMPEG, LoadData("streams/xing-44100-mono.mp3"));
    ASSERT_EQ(file.mStatus, noErr);
    ExpectFormat(file.Facts(), kAudioFormatMPEGLayer3, 44100, 1, 1152);
    EXPECT_EQ(TagOf(file.Facts()), kAudioChannelLayoutTag_Mono);
    ASSERT_TRUE(file.Facts().mPacketTable);
    EXPECT_EQ(file.Facts().mPacketTable->mPrimingFrames, 1105);
    EXPECT_EQ(file.Facts().mPacketTable->mNumberValidFrames, 22050);
    EXPECT_EQ(static_cast<SInt64>(file.Facts().mEstimatedDuration * 44100), 22050);
    EXPECT_EQ(file.Facts().mDataByteCount, 4893 - 417);
    EXPECT_EQ(file.Facts().mBitRate, 71616u);  // 4476 bytes in half a second
}

TEST(MPEGStream, UntaggedFileHasNoTableAndCountsItsPackets)
{
    const Opened file = Open(kMPEG, LoadData("streams/untagged-22050-mono-id3v2.mp3"));
    ASSERT_EQ(file.mStatus, noErr);
    ExpectFormat(file.Facts(), kAudioFormatMPEGLayer3, 22050, 1, 576);
    EXPECT_FALSE(file.Facts().mPacketTable);
    EXPECT_EQ(file.Facts().mDataOffset, 40);
    EXPECT_EQ(file.Facts().mPacketCount, 18u);
    EXPECT_EQ(file.Facts().mBitRate, 32000u);
    EXPECT_EQ(static_cast<SInt64>(file.Facts().mEstimatedDuration * 22050), 18 * 576);
}

TEST(MPEGStream, LayerDecidesTheFileType)
{
    struct Row
    {
        UInt32 mHeader;
        std::size_t mBytes;
        UInt32 mType;
        UInt32 mFormat;
        double mRate;
        UInt32 mChannels;
        UInt32 mFrames;
        UInt32 mBitRate;
    };
    constexpr Row kRows[] = {
        {0xFFFFC000, 416, kAudioFileMP1Type, kAudioFormatMPEGLayer1, 44100, 2, 384, 384000},
        {0xFFFD8400, 384, kAudioFileMP2Type, kAudioFormatMPEGLayer2, 48000, 2, 1152, 128000},
        {0xFFFB9000, 417, kAudioFileMP3Type, kAudioFormatMPEGLayer3, 44100, 2, 1152, 128000},
        {0xFFFB98C0, 576, kAudioFileMP3Type, kAudioFormatMPEGLayer3, 32000, 1, 1152, 128000},
        {0xFFF38400, 192, kAudioFileMP3Type, kAudioFormatMPEGLayer3, 24000, 2, 576, 64000},
        {0xFFE388C0, 576, kAudioFileMP3Type, kAudioFormatMPEGLayer3, 8000, 1, 576, 64000},
        {0xFFF58440, 384, kAudioFileMP2Type, kAudioFormatMPEGLayer2, 24000, 2, 1152, 64000},
        {0xFFF7E4C0, 512, kAudioFileMP1Type, kAudioFormatMPEGLayer1, 24000, 1, 384, 256000},
    };
    for (const Row& row : kRows)
    {
        Opened file = Open(kMPEG, Repeat(MPEGFrame(row.mHeader, row.mBytes), 5));
        ASSERT_EQ(file.mStatus, noErr) << std::hex << row.mHeader;
        SCOPED_TRACE(row.mHeader);
        ExpectFormat(file.Facts(), row.mFormat, row.mRate, row.mChannels, row.mFrames);
        EXPECT_EQ(file.Facts().mFileType, row.mType);
        EXPECT_EQ(file.Facts().mBitRate, row.mBitRate);
        EXPECT_EQ(SizesOf(ReadAll(*file.mReader)),
                  std::vector<UInt32>(5, static_cast<UInt32>(row.mBytes)));
        EXPECT_GE(file.Facts().mPacketSizeUpperBound, row.mBytes);
    }
}

TEST(MPEGStream, DelaysOfTheTagBecomeThePacketTable)
{
    const Opened file =
        Open(kMPEG, Join({MP3TagFrame("Info", 385, 417 * 386, "LAME3.100", 576, 792),
                          Repeat(MP3Frame(), 385)}));
    ASSERT_EQ(file.mStatus, noErr);
    ASSERT_TRUE(file.Facts().mPacketTable);
    EXPECT_EQ(file.Facts().mPacketTable->mPrimingFrames, 1105);
    EXPECT_EQ(file.Facts().mPacketTable->mRemainderFrames, 263);
    EXPECT_EQ(file.Facts().mPacketTable->mNumberValidFrames, 385 * 1152 - 576 - 792);
    EXPECT_EQ(file.Facts().mPacketCount, 385u);
    EXPECT_EQ(file.Facts().mBitRate, 128000u);
}

TEST(MPEGStream, TagOfAnUnknownEncoderGivesACountAndNoTable)
{
    const Opened file = Open(kMPEG, Join({MP3TagFrame("Xing", 385, 417 * 386, "ENCODER", 576, 792),
                                          Repeat(MP3Frame(), 385)}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_FALSE(file.Facts().mPacketTable);
    EXPECT_EQ(file.Facts().mPacketCount, 385u);
    EXPECT_EQ(static_cast<SInt64>(file.Facts().mEstimatedDuration * 44100), 385 * 1152);
}

TEST(MPEGStream, TagWithoutACountIsSkippedAllTheSame)
{
    Opened file = Open(
        kMPEG, Join({MP3TagFrame("Xing", -1, -1, "LAME3.100", 576, 792), Repeat(MP3Frame(), 6)}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_FALSE(file.Facts().mPacketTable);
    EXPECT_EQ(ReadAll(*file.mReader).size(), 6u);
    EXPECT_EQ(file.Facts().mDataOffset, 417);
}

TEST(MPEGStream, VBRIHeaderGivesTheCount)
{
    Bytes tag(417, 0);
    const Bytes frame = MP3Frame();
    std::copy_n(frame.begin(), 4, tag.begin());
    const Bytes fields = {'V', 'B', 'R', 'I', 0, 1, 0, 0, 0, 75, 0, 2, 0x73, 0xA1, 0, 0, 1, 0x80};
    std::copy(fields.begin(), fields.end(), tag.begin() + 36);  // 160673 bytes, 384 packets
    const Opened file = Open(kMPEG, Join({tag, Repeat(frame, 384)}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mPacketCount, 384u);
    EXPECT_FALSE(file.Facts().mPacketTable);
    EXPECT_EQ(static_cast<SInt64>(file.Facts().mEstimatedDuration * 44100), 384 * 1152);
}

TEST(MPEGStream, CutFileKeepsItsPrimingAndEstimatesItsLength)
{
    const Opened file =
        Open(kMPEG, Join({MP3TagFrame("Info", 1000, 417 * 1001, "LAME3.100", 576, 792),
                          Repeat(MP3Frame(), 400)}));
    ASSERT_EQ(file.mStatus, noErr);
    ASSERT_TRUE(file.Facts().mPacketTable);
    EXPECT_EQ(file.Facts().mPacketTable->mPrimingFrames, 1105);
    EXPECT_FALSE(file.Facts().mPacketCount);
    EXPECT_NEAR(file.Facts().mEstimatedDuration, 400 * 1152 / 44100.0, 0.05);
}

TEST(MPEGStream, JoinedFilesAreNotEndedByTheFirstOnesTag)
{
    const Bytes first =
        Join({MP3TagFrame("Info", 200, 417 * 201, "LAME3.100", 576, 792), Repeat(MP3Frame(), 200)});
    Opened file = Open(kMPEG, Join({first, first}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_FALSE(file.Facts().mPacketTable);
    EXPECT_FALSE(file.Facts().mPacketCount);
    EXPECT_NEAR(file.Facts().mEstimatedDuration, 401 * 1152 / 44100.0, 0.05);
    EXPECT_EQ(ReadAll(*file.mReader).size(), 401u);
}

TEST(MPEGStream, AbsurdCountsOfATagAreIgnored)
{
    for (const SInt64 count : {SInt64{0}, SInt64{0xFFFFFFFF}})
    {
        const Opened file =
            Open(kMPEG, Join({MP3TagFrame("Info", count, 417 * 301, "LAME3.100", 576, 792),
                              Repeat(MP3Frame(), 300)}));
        ASSERT_EQ(file.mStatus, noErr);
        EXPECT_FALSE(file.Facts().mPacketTable) << count;
        EXPECT_NEAR(file.Facts().mEstimatedDuration, 300 * 1152 / 44100.0, 0.05) << count;
    }
}

TEST(MPEGStream, DelaysLongerThanTheStreamGiveNoTable)
{
    const Opened file = Open(kMPEG, Join({MP3TagFrame("Info", 3, 417 * 4, "LAME3.100", 4095, 4095),
                                          Repeat(MP3Frame(), 3)}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_FALSE(file.Facts().mPacketTable);
    EXPECT_EQ(file.Facts().mPacketCount, 3u);
}

TEST(MPEGStream, ConstantRateWithoutATagIsEstimatedToThePacket)
{
    const Opened file = Open(kMPEG, Repeat(MPEGFrame(0xFFFD8400, 384), 5000));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_FALSE(file.Facts().mPacketCount);  // opening does not walk that far
    EXPECT_EQ(static_cast<SInt64>(file.Facts().mEstimatedDuration * 48000), 5000 * 1152);
    EXPECT_EQ(file.Facts().mBitRate, 128000u);
}

TEST(MPEGStream, StatedRateCountsForMoreThanTheFirstSizes)
{
    // Padding comes late here: the first frames alone would promise 5012 packets.
    const Opened file =
        Open(kMPEG, Join({Repeat(MP3Frame(), 156), Repeat(MPEGFrame(0xFFFB9200, 418), 4844)}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(static_cast<SInt64>(file.Facts().mEstimatedDuration * 44100), 5000 * 1152);
}

TEST(MPEGStream, FreeFormatIsAFormatThatNothingDecodes)
{
    EXPECT_EQ(Open(kMPEG, Repeat(MPEGFrame(0xFFFB0000, 417), 5)).mStatus,
              kAudioFileUnsupportedDataFormatError);
}

TEST(MPEGStream, NoFramesAreToldApartByTheFirstBytes)
{
    EXPECT_EQ(Open(kMPEG, MPEGFrame(0xFFFB9000, 300)).mStatus, kAudioFileInvalidFileError);
    EXPECT_EQ(Open(kMPEG, NoiseWithoutSync(3000, 1)).mStatus, kAudioFileUnsupportedFileTypeError);
    EXPECT_EQ(Open(kMPEG, {}).mStatus, kAudioFileUnsupportedFileTypeError);
    EXPECT_EQ(Open(kMPEG, {0xFF}).mStatus, kAudioFileUnsupportedFileTypeError);
}

TEST(MPEGStream, OneFrameIsAStream)
{
    Opened file = Open(kMPEG, MP3Frame());
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mPacketCount, 1u);
    EXPECT_EQ(ReadAll(*file.mReader).size(), 1u);
}

TEST(MPEGStream, FrameOfAnotherRateIsNoPacket)
{
    Opened file = Open(
        kMPEG, Join({Repeat(MP3Frame(), 3), MPEGFrame(0xFFFB9400, 384), Repeat(MP3Frame(), 3)}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(SizesOf(ReadAll(*file.mReader)), std::vector<UInt32>(6, 417));
}

}  // namespace
