// What is written comes back through our own parser: every fact, every packet.
#include "WriterUse.h"
#include "file/Endian.h"
#include "tables/Encoders.h"
#include "tables/WritableTypes.h"

namespace
{

using namespace writer_use;
using audiotoolbox::FileFacts;

constexpr std::size_t kFrames = 30011;

bool Takes(AudioFormatID inFormat, UInt32 inChannels)
{
    return audiotoolbox::TakesChannels(*audiotoolbox::FindEncoder(inFormat), inChannels);
}

SInt64 FramesInPackets(const Stream& inStream)
{
    return static_cast<SInt64>(inStream.mPackets.size() * inStream.mFormat.mFramesPerPacket);
}

void ExpectTable(const FileFacts& inFacts, const Stream& inStream, SInt64 inValidFrames)
{
    ASSERT_TRUE(inFacts.mPacketTable.has_value());
    const SInt32 priming = static_cast<SInt32>(inStream.mPrime.leadingFrames);
    EXPECT_EQ(inFacts.mPacketTable->mPrimingFrames, priming);
    EXPECT_EQ(inFacts.mPacketTable->mNumberValidFrames, inValidFrames);
    EXPECT_EQ(inFacts.mPacketTable->mRemainderFrames,
              FramesInPackets(inStream) - priming - inValidFrames);
}

void ExpectFacts(const FileFacts& inFacts, AudioFileTypeID inType, const Stream& inStream,
                 SInt64 inValidFrames)
{
    EXPECT_EQ(inFacts.mFileType, inType);
    EXPECT_EQ(inFacts.mDataFormat.mFormatID, inStream.mFormat.mFormatID);
    EXPECT_EQ(inFacts.mDataFormat.mSampleRate, inStream.mFormat.mSampleRate);
    EXPECT_EQ(inFacts.mDataFormat.mChannelsPerFrame, inStream.mFormat.mChannelsPerFrame);
    EXPECT_EQ(inFacts.mDataFormat.mFramesPerPacket, inStream.mFormat.mFramesPerPacket);
    EXPECT_EQ(inFacts.mDataFormat.mFormatFlags, DepthFlags(inStream.mFormat.mFormatID));
    EXPECT_EQ(inFacts.mPacketCount, inStream.mPackets.size());
    EXPECT_EQ(inFacts.mDataByteCount, static_cast<SInt64>(inStream.ByteCount()));
    const double rate = inStream.mFormat.mSampleRate;
    EXPECT_EQ(static_cast<SInt64>(inFacts.mEstimatedDuration * rate), inValidFrames);
    EXPECT_NEAR(
        inFacts.mBitRate,
        static_cast<double>(inStream.ByteCount()) * 8 * rate / static_cast<double>(inValidFrames),
        1.0);
    ExpectTable(inFacts, inStream, inValidFrames);
}

// A cookie's own form differs from the encoder's only in how it is wrapped.
void ExpectCookie(const FileFacts& inFacts, const Stream& inStream)
{
    EXPECT_EQ(inFacts.mCookie, inStream.mCookie);
}

// The tags whose channels stand in the decoders' order, by those channels.
const struct
{
    UInt32 mTag;
    std::vector<UInt32> mLabels;
} kTags[] = {
    {kAudioChannelLayoutTag_Mono, {3}},
    {kAudioChannelLayoutTag_Stereo, {1, 2}},
    {kAudioChannelLayoutTag_MPEG_3_0_A, {1, 2, 3}},
    {kAudioChannelLayoutTag_MPEG_4_0_A, {1, 2, 3, 9}},
    {kAudioChannelLayoutTag_MPEG_5_0_A, {1, 2, 3, 5, 6}},
    {kAudioChannelLayoutTag_MPEG_5_1_A, {1, 2, 3, 4, 5, 6}},
    {kAudioChannelLayoutTag_MPEG_6_1_A, {1, 2, 3, 4, 5, 6, 9}},
    {kAudioChannelLayoutTag_MPEG_7_1_A, {1, 2, 3, 4, 5, 6, 7, 8}},
};

std::vector<UInt32> LabelsOf(const FileFacts& inFacts)
{
    UInt32 tag = 0;
    std::memcpy(&tag, inFacts.mChannelLayout.data(), sizeof(tag));
    for (const auto& row : kTags)
        if (row.mTag == tag)
            return row.mLabels;
    std::vector<UInt32> labels;
    for (std::size_t place = 12; place + 20 <= inFacts.mChannelLayout.size(); place += 20)
    {
        labels.push_back(0);
        std::memcpy(&labels.back(), inFacts.mChannelLayout.data() + place, sizeof(UInt32));
    }
    return labels;
}

TEST(MPEG4Writing, TheListedPairsAreAllThatTheFamilyIsWrittenWith)
{
    std::size_t count = 0;
    for (const AudioFileTypeID type : {kAudioFileM4AType, kAudioFileM4BType, kAudioFileMPEG4Type,
                                       kAudioFile3GPType, kAudioFile3GP2Type})
        for (const audiotoolbox::EncoderRow& row : audiotoolbox::AllEncoders())
            count += audiotoolbox::CanWrite(type, row.mFormatID) ? 1 : 0;
    EXPECT_EQ(count, std::size(kPairs));
    for (const Pair& pair : kPairs)
        EXPECT_TRUE(audiotoolbox::CanWrite(pair.mType, pair.mFormat)) << Name(pair);
}

TEST(MPEG4Writing, EveryPairComesBackWithItsFactsAndPackets)
{
    for (const Pair& pair : kPairs)
        for (const UInt32 channels : {1u, 2u, 6u, 8u})
        {
            if (!Takes(pair.mFormat, channels))
                continue;
            SCOPED_TRACE(Name(pair) + ", channels " + std::to_string(channels));
            const Audio audio = MakeAudio(pair.mFormat, channels, kFrames);
            const Stream stream = Encode(audio);
            const auto reader = Opened(Written(pair.mType, stream, audio.Frames()));
            ASSERT_TRUE(reader);
            ExpectFacts(reader->Facts(), pair.mType, stream, audio.Frames());
            ExpectCookie(reader->Facts(), stream);
            EXPECT_TRUE(AllPackets(*reader) == stream.mPackets);
        }
}

TEST(MPEG4Writing, EveryChannelComesBackUnderItsLabel)
{
    struct
    {
        AudioFormatID mFormat;
        std::vector<UInt32> mLabels;
    } const rows[] = {
        {kAudioFormatMPEG4AAC, {3}},
        {kAudioFormatMPEG4AAC, {1, 2}},
        {kAudioFormatMPEG4AAC, {1, 2, 3, 4, 5, 6}},
        {kAudioFormatMPEG4AAC, {1, 2, 3, 4, 33, 34, 5, 6}},
        {kAudioFormatAppleLossless, {1, 2, 3}},
        {kAudioFormatAppleLossless, {1, 2, 3, 9}},
        {kAudioFormatAppleLossless, {1, 2, 3, 5, 6}},
        {kAudioFormatAppleLossless, {1, 2, 3, 4, 5, 6}},
        {kAudioFormatAppleLossless, {1, 2, 3, 4, 5, 6, 9}},
        {kAudioFormatAppleLossless, {1, 2, 3, 4, 5, 6, 7, 8}},
        {kAudioFormatAC3, {1, 2, 3, 9}},
        {kAudioFormatAC3, {1, 2, 3, 5, 6}},
        {kAudioFormatAC3, {1, 2, 3, 4, 5, 6}},
        {kAudioFormatEnhancedAC3, {1, 2, 3, 4, 5, 6}},
        {kAudioFormatFLAC, {1, 2, 3, 4, 5, 6}},
        {kAudioFormatFLAC, {1, 2, 3, 4, 33, 34, 5, 6}},
        {kAudioFormatOpus, {1, 2, 3, 4, 5, 6}},
        {kAudioFormatOpus, {1, 2, 3, 4, 33, 34, 5, 6}},
    };
    for (const auto& row : rows)
    {
        const UInt32 channels = static_cast<UInt32>(row.mLabels.size());
        SCOPED_TRACE(CodeText(row.mFormat) + ", channels " + std::to_string(channels));
        const Audio audio = MakeAudio(row.mFormat, channels, 5000);
        const auto reader = Opened(Written(kAudioFileMPEG4Type, Encode(audio), audio.Frames()));
        ASSERT_TRUE(reader);
        ASSERT_GE(reader->Facts().mChannelLayout.size(), 12u);
        EXPECT_EQ(LabelsOf(reader->Facts()), row.mLabels);
    }
}

TEST(MPEG4Writing, LengthsAroundACodecFrameAreExact)
{
    for (const AudioFormatID format :
         {kAudioFormatMPEGLayer3, kAudioFormatMPEG4AAC, kAudioFormatAC3, kAudioFormatAppleLossless,
          kAudioFormatEnhancedAC3, kAudioFormatFLAC, kAudioFormatOpus})
    {
        const Stream any = Encode(MakeAudio(format, 2, 20000));
        const std::size_t frame = any.mFormat.mFramesPerPacket;
        for (const std::size_t frames : {std::size_t{1}, frame - 1, frame, frame + 1})
        {
            SCOPED_TRACE(CodeText(format) + ", frames " + std::to_string(frames));
            const Audio audio = MakeAudio(format, 2, frames);
            const Stream stream = Encode(audio);
            const auto reader = Opened(Written(kAudioFileMPEG4Type, stream, audio.Frames()));
            ASSERT_TRUE(reader);
            ExpectFacts(reader->Facts(), kAudioFileMPEG4Type, stream, audio.Frames());
            EXPECT_TRUE(AllPackets(*reader) == stream.mPackets);
        }
    }
}

TEST(MPEG4Writing, AFileWithoutPacketsOpensWithNoFrames)
{
    for (const Pair& pair : kPairs)
        for (const UInt32 channels : {1u, 2u, 4u, 6u})
        {
            if (!Takes(pair.mFormat, channels))
                continue;
            SCOPED_TRACE(Name(pair) + ", channels " + std::to_string(channels));
            Stream stream = Encode(MakeAudio(pair.mFormat, channels, 5000));
            stream.mPackets.clear();
            stream.mFrames.clear();
            const auto reader = Opened(Written(pair.mType, stream, 0));
            ASSERT_TRUE(reader);
            EXPECT_EQ(reader->Facts().mFileType, pair.mType);
            EXPECT_EQ(reader->Facts().mPacketCount, 0u);
            EXPECT_EQ(reader->Facts().mEstimatedDuration, 0.0);
            EXPECT_EQ(reader->Facts().mDataFormat.mFormatID, pair.mFormat);
            EXPECT_EQ(reader->Facts().mDataFormat.mSampleRate, stream.mFormat.mSampleRate);
            EXPECT_EQ(reader->Facts().mDataFormat.mChannelsPerFrame, channels);
            EXPECT_TRUE(AllPackets(*reader).empty());
        }
}

TEST(MPEG4Writing, RatesComeBackWhereTheEntryHasNoRoomForThem)
{
    struct
    {
        AudioFormatID mFormat;
        double mRate;
        UInt32 mEntryRate;
    } const rows[] = {
        {kAudioFormatMPEG4AAC, 8000, 8000},        {kAudioFormatMPEG4AAC, 96000, 0},
        {kAudioFormatMPEGLayer3, 22050, 22050},    {kAudioFormatMPEGLayer3, 8000, 8000},
        {kAudioFormatAppleLossless, 65535, 65535}, {kAudioFormatAppleLossless, 65536, 0},
        {kAudioFormatAppleLossless, 192000, 0},    {kAudioFormatAppleLossless, 11127, 11127},
        {kAudioFormatFLAC, 88200, 44100},          {kAudioFormatFLAC, 192000, 48000},
        {kAudioFormatAC3, 32000, 32000},           {kAudioFormatEnhancedAC3, 48000, 48000},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(CodeText(row.mFormat) + " at " + std::to_string(row.mRate));
        Audio audio = MakeAudio(row.mFormat, 2, 20000);
        audio.mRate = row.mRate;
        const Stream stream = Encode(audio);
        const Bytes bytes = Written(kAudioFileMPEG4Type, stream, audio.Frames());
        const auto reader = Opened(bytes);
        ASSERT_TRUE(reader);
        EXPECT_EQ(reader->Facts().mDataFormat.mSampleRate, row.mRate);
        ExpectTable(reader->Facts(), stream, audio.Frames());
        const Bytes descriptions = BodyOf(bytes, "stsd");
        ASSERT_GT(descriptions.size(), 44u);
        EXPECT_EQ(audiotoolbox::ReadBE32(descriptions.data() + 40), row.mEntryRate << 16);
        EXPECT_EQ(audiotoolbox::ReadBE32(BodyOf(bytes, "mdhd").data() + 12), row.mRate);
        EXPECT_EQ(audiotoolbox::ReadBE32(BodyOf(bytes, "mvhd").data() + 12), row.mRate);
    }
}

TEST(MPEG4Writing, PacketsOfOneSizeNeedNoDescriptions)
{
    Stream stream = Encode(MakeAudio(kAudioFormatMPEG4AAC, 2, 20000));
    stream.mFormat.mBytesPerPacket = 10;
    audiotoolbox::PacketWriterPtr writer;
    testing_support::MemorySink sink;
    ASSERT_EQ(audiotoolbox::MakeMPEG4Writer(RequestOf(kAudioFileM4AType, stream), writer), noErr);
    ASSERT_EQ(writer->Start(sink, StartOf(stream)), noErr);
    EXPECT_EQ(writer->Write(Bytes(95, 7), {}), kAudio_ParamError);
    EXPECT_EQ(writer->Write(Bytes(90, 7), {}), noErr);
    EXPECT_EQ(writer->Write({}, {}), noErr);
    ASSERT_EQ(writer->Finish(EndOf(stream, 5000)), noErr);
    const auto reader = Opened(sink.Bytes());
    ASSERT_TRUE(reader);
    EXPECT_EQ(reader->Facts().mPacketCount, 9u);
    EXPECT_EQ(reader->Facts().mPacketTable->mNumberValidFrames, 5000);
    EXPECT_EQ(AllPackets(*reader), std::vector<Bytes>(9, Bytes(10, 7)));
    EXPECT_EQ(BodyOf(sink.Bytes(), "stsz"), (Bytes{0, 0, 0, 0, 0, 0, 0, 10, 0, 0, 0, 9}));
}

TEST(MPEG4Writing, TheCookieOfTheEndIsTheOneInTheFile)
{
    const Audio audio = MakeAudio(kAudioFormatFLAC, 2, 20000);
    const Stream stream = Encode(audio);
    Stream early = stream;
    std::fill(early.mCookie.begin() + 18, early.mCookie.end(), UInt8{0});  // the checksum
    ASSERT_NE(early.mCookie, stream.mCookie);
    audiotoolbox::PacketWriterPtr writer;
    testing_support::MemorySink sink;
    ASSERT_EQ(audiotoolbox::MakeMPEG4Writer(RequestOf(kAudioFileMPEG4Type, stream), writer), noErr);
    ASSERT_EQ(writer->Start(sink, StartOf(early)), noErr);
    ASSERT_EQ(WritePackets(stream, *writer), noErr);
    ASSERT_EQ(writer->Finish(EndOf(stream, audio.Frames())), noErr);
    EXPECT_EQ(Opened(sink.Bytes())->Facts().mCookie, stream.mCookie);
}

TEST(MPEG4Writing, MoreFramesThanWereWrittenAreNotClaimed)
{
    const Stream stream = Encode(MakeAudio(kAudioFormatMPEG4AAC, 2, 20000));
    const auto reader = Opened(Written(kAudioFileM4AType, stream, 1000000));
    ASSERT_TRUE(reader);
    EXPECT_EQ(reader->Facts().mPacketTable->mNumberValidFrames, FramesInPackets(stream) - 1024);
    EXPECT_EQ(reader->Facts().mPacketTable->mRemainderFrames, 0);
}

TEST(MPEG4Writing, PrimingAloneIsNoAudio)
{
    Stream stream = Encode(MakeAudio(kAudioFormatMPEG4AAC, 2, 20000));
    stream.mPackets.resize(3);
    stream.mFrames.resize(3);
    const auto reader = Opened(Written(kAudioFileM4AType, stream, 0));
    ASSERT_TRUE(reader);
    EXPECT_EQ(reader->Facts().mPacketCount, 3u);
    EXPECT_EQ(reader->Facts().mPacketTable->mNumberValidFrames, 0);
    EXPECT_EQ(reader->Facts().mEstimatedDuration, 0.0);
}

}  // namespace
