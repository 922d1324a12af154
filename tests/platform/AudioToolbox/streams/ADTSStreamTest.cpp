// Streams of raw AAC.
#include "ProbedPackets.h"
#include "ScriptedProbe.h"
#include "StreamMakers.h"

#include <gtest/gtest.h>

using namespace stream_testing;

namespace
{

Bytes FivePlainFrames()
{
    const Bytes frame = ADTSFrame(4, 2, 200);
    return Join({frame, frame, frame, frame, frame});
}

TEST(ADTSStream, PacketsAreThoseThatFFprobeFinds)
{
    for (const char* const name :
         {"streams/44100-stereo.aac", "streams/22050-mono.aac", "streams/48000-51.aac",
          "streams/48000-program-config.aac", "he-aac/he5.aac", "he-aac/he29.aac"})
    {
        const std::vector<Bytes> expected = ProbedPackets(DataPath(name));
        ASSERT_FALSE(expected.empty()) << name;
        Opened file = Open(kADTS, LoadData(name));
        ASSERT_EQ(file.mStatus, noErr) << name;
        std::vector<Bytes> found;
        for (const Packet& packet : ReadAll(*file.mReader))
        {
            found.push_back(packet.mBytes);
            EXPECT_EQ(packet.mFrames, 0u);
        }
        EXPECT_EQ(found, expected) << name;
        EXPECT_EQ(file.Facts().mPacketCount, expected.size()) << name;
    }
}

TEST(ADTSStream, FactsOfAPlainStream)
{
    ScriptedProbe probe(true, true);
    const Opened file = Open(kADTS, LoadData("streams/44100-stereo.aac"));
    ASSERT_EQ(file.mStatus, noErr);
    const audiotoolbox::FileFacts& facts = file.Facts();
    EXPECT_EQ(facts.mFileType, UInt32{kAudioFileAAC_ADTSType});
    EXPECT_EQ(facts.mDataFormat.mFormatID, UInt32{kAudioFormatMPEG4AAC});
    EXPECT_EQ(facts.mDataFormat.mSampleRate, 44100);
    EXPECT_EQ(facts.mDataFormat.mChannelsPerFrame, 2u);
    EXPECT_EQ(facts.mDataFormat.mFramesPerPacket, 1024u);
    EXPECT_EQ(facts.mFormats.size(), 1u);
    EXPECT_TRUE(facts.mCookie.empty());
    EXPECT_FALSE(facts.mPacketTable);
    EXPECT_EQ(facts.mPacketCount, 19u);
    EXPECT_EQ(static_cast<SInt64>(facts.mEstimatedDuration * 44100), 19 * 1024);
    EXPECT_EQ(facts.mBitRate, 43683u);  // 2409 bytes in 19456 frames
    EXPECT_EQ(facts.mPacketSizeUpperBound, 8191u);
    EXPECT_EQ(facts.mDataOffset, 0);
    EXPECT_EQ(facts.mDataByteCount, 2409);
    EXPECT_EQ(probe.mCalls, 0) << "no layers above 24 kHz, so the decoder need not be loaded";
}

TEST(ADTSStream, LowCoreRateAsksTheDecoderForLayers)
{
    ScriptedProbe probe(true, false);
    const Bytes bytes = LoadData("he-aac/he5.aac");
    const Opened file = Open(kADTS, bytes);
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(probe.mCalls, 1);
    ASSERT_GT(probe.mFrames.size(), 7u);
    EXPECT_TRUE(std::equal(probe.mFrames.begin(), probe.mFrames.end(), bytes.begin()));
    ASSERT_EQ(file.Facts().mFormats.size(), 2u);
    EXPECT_EQ(file.Facts().mFormats[0].mASBD.mFormatID, UInt32{kAudioFormatMPEG4AAC_HE});
    EXPECT_EQ(file.Facts().mFormats[0].mASBD.mFramesPerPacket, 2048u);
    EXPECT_EQ(file.Facts().mFormats[1].mASBD.mFormatID, UInt32{kAudioFormatMPEG4AAC});
    EXPECT_EQ(file.Facts().mFormats[0].mASBD.mSampleRate, 2 * file.Facts().mDataFormat.mSampleRate);
}

TEST(ADTSStream, ParametricStereoListsThreeFormats)
{
    ScriptedProbe probe(true, true);
    const Opened file = Open(kADTS, LoadData("he-aac/he29.aac"));
    ASSERT_EQ(file.mStatus, noErr);
    ASSERT_EQ(file.Facts().mFormats.size(), 3u);
    EXPECT_EQ(file.Facts().mFormats[0].mASBD.mFormatID, UInt32{kAudioFormatMPEG4AAC_HE_V2});
    EXPECT_EQ(file.Facts().mFormats[0].mASBD.mChannelsPerFrame, 2u);
    EXPECT_EQ(file.Facts().mDataFormat.mChannelsPerFrame, 1u);
}

TEST(ADTSStream, WithoutAnAnswerTheStreamIsPlain)
{
    const Opened file = Open(kADTS, LoadData("streams/22050-mono.aac"));
    ASSERT_EQ(file.mStatus, noErr);
    ASSERT_EQ(file.Facts().mFormats.size(), 1u);
    EXPECT_EQ(file.Facts().mDataFormat.mSampleRate, 22050);
}

TEST(ADTSStream, ProgramConfigTellsTheChannels)
{
    const Bytes bytes = LoadData("streams/48000-program-config.aac");
    ASSERT_EQ((bytes[2] & 1) << 2 | bytes[3] >> 6, 0) << "the header itself tells nothing";
    const Opened file = Open(kADTS, bytes);
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mDataFormat.mChannelsPerFrame, 3u);
}

TEST(ADTSStream, WithoutChannelsTheStreamIsDamaged)
{
    Bytes frame = ADTSFrame(4, 0, 200);
    frame[7] = 0;  // begins with a single channel, not with a program config
    EXPECT_EQ(Open(kADTS, Join({frame, frame, frame})).mStatus, kAudioFileInvalidFileError);
}

TEST(ADTSStream, FramesWithChecksumsAreWholePackets)
{
    const Bytes frame = ADTSFrame(3, 2, 300, 1, true);
    Opened file = Open(kADTS, Join({frame, frame, frame}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(ReadAll(*file.mReader), std::vector<Packet>(3, Packet{frame, 0}));
}

TEST(ADTSStream, SeveralBlocksInAFrameMakePacketsOfSeveralLengths)
{
    const Bytes one = ADTSFrame(3, 2, 300);
    const Bytes four = ADTSFrame(3, 2, 1200, 4);
    Opened file = Open(kADTS, Join({one, four, one}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mDataFormat.mFramesPerPacket, 0u);
    EXPECT_EQ(file.Facts().mFormats.back().mASBD.mFramesPerPacket, 0u);
    EXPECT_EQ(ReadAll(*file.mReader),
              (std::vector<Packet>{{one, 1024}, {four, 4096}, {one, 1024}}));
    EXPECT_EQ(static_cast<SInt64>(file.Facts().mEstimatedDuration * 48000), 6 * 1024);
}

TEST(ADTSStream, HeadersMayChangeOnTheWay)
{
    const Bytes mono = ADTSFrame(4, 1, 100);
    const Bytes slower = ADTSFrame(5, 2, 100);
    Opened file = Open(kADTS, Join({FivePlainFrames(), mono, slower, FivePlainFrames()}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(ReadAll(*file.mReader).size(), 12u);
}

TEST(ADTSStream, StreamJoinedWithinAFrameBeginsAtTheNextOne)
{
    Opened file = Open(kADTS, Join({NoiseWithoutSync(150, 3), FivePlainFrames()}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mDataOffset, 150);
    EXPECT_EQ(ReadAll(*file.mReader).size(), 5u);
}

TEST(ADTSStream, FirstFrameBeyondTheSearchIsNotFound)
{
    EXPECT_EQ(Open(kADTS, Join({NoiseWithoutSync(65535, 3), FivePlainFrames()})).mStatus, noErr);
    EXPECT_EQ(Open(kADTS, Join({NoiseWithoutSync(65536, 3), FivePlainFrames()})).mStatus,
              kAudioFileUnsupportedFileTypeError);
}

TEST(ADTSStream, LoneHeadersInDamagedDataAreNotTaken)
{
    // After the loss a header follows whose frame ends in noise; then the stream goes on.
    Opened file =
        Open(kADTS, Join({FivePlainFrames(), NoiseWithoutSync(50, 1), ADTSFrame(4, 2, 180),
                          NoiseWithoutSync(31, 2), FivePlainFrames()}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(SizesOf(ReadAll(*file.mReader)), std::vector<UInt32>(10, 200));
}

}  // namespace
