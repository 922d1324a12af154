// LOAS: multiplexes of every form, and the packets in them.
#include "LOASMaker.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace stream_testing;

namespace
{

TEST(LOASStream, DeliversBarePacketsAndTheConfiguration)
{
    const auto payloads = Payloads(20);
    Opened file = Open(kLOAS, Stream(payloads, 8));
    ASSERT_EQ(file.mStatus, noErr);
    const audiotoolbox::FileFacts& facts = file.Facts();
    EXPECT_EQ(facts.mFileType, kAudioFileLATMInLOASType);
    EXPECT_EQ(facts.mDataFormat.mFormatID, kAudioFormatMPEG4AAC);
    EXPECT_EQ(facts.mDataFormat.mSampleRate, 44100.0);
    EXPECT_EQ(facts.mDataFormat.mChannelsPerFrame, 2u);
    EXPECT_EQ(facts.mDataFormat.mFramesPerPacket, 1024u);
    EXPECT_EQ(facts.mCookie, (Bytes{0x12, 0x10}));
    EXPECT_EQ(TagOf(facts), kAudioChannelLayoutTag_Stereo);
    EXPECT_EQ(facts.mPacketCount, 20u);
    EXPECT_FALSE(facts.mPacketTable);
    EXPECT_DOUBLE_EQ(facts.mEstimatedDuration * 44100, 20480.0);
    EXPECT_EQ(facts.mDataOffset, 0);
    EXPECT_EQ(PacketsOf(file), payloads);
}

TEST(LOASStream, AnswersAnyPacketAndAnyRoom)
{
    const auto payloads = Payloads(300);
    Opened file = Open(kLOAS, Stream(payloads, 16));
    ASSERT_EQ(file.mStatus, noErr);
    for (const SInt64 start : {299, 0, 150, 149, 150, 64, 63, 300, 1000})
    {
        const auto first = payloads.begin() + std::min<SInt64>(start, 300);
        EXPECT_EQ(PacketsOf(file, start, 7), std::vector<Bytes>(first, payloads.end())) << start;
    }
    // The second does not fit behind the first, and fits alone.
    Bytes room(payloads[10].size() + payloads[11].size() - 1);
    AudioStreamPacketDescription packets[2];
    for (const SInt64 start : {10, 11})
    {
        auto bytes = static_cast<UInt32>(room.size());
        UInt32 count = start == 10 ? 2 : 1;
        ASSERT_EQ(file.mReader->ReadPackets(start, &bytes, &count, packets, room.data()), noErr);
        EXPECT_EQ(count, 1u);
        const Bytes& wanted = payloads[static_cast<std::size_t>(start)];
        EXPECT_EQ(Bytes(room.begin(), room.begin() + bytes), wanted);
    }
    UInt32 bytes = 10;
    UInt32 count = 1;
    EXPECT_EQ(file.mReader->ReadPackets(0, &bytes, &count, packets, room.data()),
              kAudioFileBadPropertySizeError);
    EXPECT_EQ(bytes, 0u);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(file.mReader->ReadPackets(0, &bytes, &count, nullptr, room.data()),
              kAudio_ParamError);
    EXPECT_EQ(file.mReader->ReadPackets(-1, &bytes, &count, packets, room.data()),
              kAudioFileInvalidPacketOffsetError);
}

TEST(LOASStream, BeginsAtTheFirstConfiguration)
{
    const auto payloads = Payloads(12);
    Bytes stream;
    for (std::size_t i = 0; i < 3; ++i)
        stream = Join({stream, FrameWithout(payloads[i])});
    const auto skipped = static_cast<SInt64>(stream.size());
    const std::vector<Bytes> rest(payloads.begin() + 3, payloads.end());
    Opened file = Open(kLOAS, Join({stream, Stream(rest, 4)}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mDataOffset, skipped);
    EXPECT_EQ(PacketsOf(file), rest);
    EXPECT_EQ(Open(kLOAS, stream).mStatus, kAudioFileInvalidFileError);
}

TEST(LOASStream, OpensByContentAlsoWhereItBeginsWithinAFrame)
{
    const Bytes stream = Stream(Payloads(40), 4);
    for (const long cut : {0L, 1L, 100L, 600L})
    {
        audiotoolbox::PacketReaderPtr reader;
        const auto open = [](AudioFileTypeID inType, audiotoolbox::ByteSourcePtr& ioSource,
                             audiotoolbox::PacketReaderPtr& outReader)
        { return audiotoolbox::OpenAudio(inType, ioSource, outReader); };
        Opened file = Open({open, 0}, Bytes(stream.begin() + cut, stream.end()));
        ASSERT_EQ(file.mStatus, noErr) << cut;
        EXPECT_EQ(file.Facts().mFileType, kAudioFileLATMInLOASType);
        EXPECT_GE(PacketsOf(file).size(), 36u) << cut;
    }
}

struct Form
{
    const char* mName;
    Bits mMuxConfig;
};

TEST(LOASStream, UnderstandsEveryFormOfOneProgramAndLayer)
{
    const Bits core = PlainConfig();
    const Form forms[] = {
        {"version 1 with a stated length",
         Bits().Put(0b10, 2).Put(0, 2 + 8).Put(1, 1).Put(0, 13).Put(0, 2).Put(16, 8).Put(core).Put(
             0, 3 + 8 + 2)},
        {"version 1 with a longer length and fill bits", Bits()
                                                             .Put(0b10, 2)
                                                             .Put(0, 2 + 8)
                                                             .Put(1, 1)
                                                             .Put(0, 13)
                                                             .Put(1, 2)
                                                             .Put(27, 16)
                                                             .Put(core)
                                                             .Put(0, 11)
                                                             .Put(0, 3 + 8 + 2)},
        {"other data in version 0", Bits()
                                        .Put(0b01, 2)
                                        .Put(0, 13)
                                        .Put(core)
                                        .Put(0, 3 + 8)
                                        .Put(1, 1)
                                        .Put(1, 1)
                                        .Put(1, 8)
                                        .Put(0, 1)
                                        .Put(7, 8)
                                        .Put(0, 1)},
        {"other data in version 1", Bits()
                                        .Put(0b10, 2)
                                        .Put(0, 2 + 8)
                                        .Put(1, 1)
                                        .Put(0, 13)
                                        .Put(0, 2)
                                        .Put(16, 8)
                                        .Put(core)
                                        .Put(0, 3 + 8)
                                        .Put(1, 1)
                                        .Put(0, 2)
                                        .Put(99, 8)
                                        .Put(0, 1)},
        {"a checksum",
         Bits().Put(0b01, 2).Put(0, 13).Put(core).Put(0, 3 + 8).Put(0, 1).Put(1, 1).Put(0xA5, 8)},
    };
    const auto payloads = Payloads(9);
    for (const Form& form : forms)
    {
        Opened file = Open(kLOAS, Stream(payloads, 3, form.mMuxConfig));
        ASSERT_EQ(file.mStatus, noErr) << form.mName;
        EXPECT_EQ(PacketsOf(file), payloads) << form.mName;
        EXPECT_EQ(file.Facts().mDataFormat.mSampleRate, 44100.0) << form.mName;
    }
}

TEST(LOASStream, RefusesMultiplexesOfMore)
{
    const Form forms[] = {
        {"another multiplex", Bits().Put(0b11, 2).Put(0, 40)},
        {"several timings", Bits().Put(0, 2).Put(0, 13).Put(PlainConfig()).Put(0, 13)},
        {"two packets", Bits().Put(0b01, 2).Put(1, 6).Put(0, 7).Put(PlainConfig()).Put(0, 13)},
        {"two programs", Bits().Put(0b01, 2).Put(1, 10).Put(0, 3).Put(PlainConfig()).Put(0, 13)},
        {"two layers", Bits().Put(0b01, 2).Put(1, 13).Put(PlainConfig()).Put(0, 13)},
        {"fixed lengths", Bits().Put(0b01, 2).Put(0, 13).Put(PlainConfig()).Put(1, 3).Put(0, 10)},
    };
    for (const Form& form : forms)
        EXPECT_EQ(Open(kLOAS, Stream(Payloads(9), 3, form.mMuxConfig)).mStatus,
                  kAudioFileUnsupportedDataFormatError)
            << form.mName;
}

TEST(LOASStream, TellsLayersBestFirst)
{
    // Parametric stereo over mono at 24 kHz, in front; and replication behind a core's config of
    // stated length.
    const Bits explicitPS = Bits().Put(29, 5).Put(6, 4).Put(1, 4).Put(3, 4).Put(2, 5).Put(0, 3);
    const Bits behind =
        Bits().Put(2, 5).Put(6, 4).Put(2, 4).Put(0, 3).Put(0x2B7, 11).Put(5, 5).Put(1, 1).Put(3, 4);
    Opened inFront = Open(kLOAS, Stream(Payloads(9), 3, MuxConfig(explicitPS)));
    ASSERT_EQ(inFront.mStatus, noErr);
    ASSERT_EQ(inFront.Facts().mFormats.size(), 3u);
    EXPECT_EQ(inFront.Facts().mFormats[0].mASBD.mFormatID, kAudioFormatMPEG4AAC_HE_V2);
    EXPECT_EQ(inFront.Facts().mFormats[0].mASBD.mChannelsPerFrame, 2u);
    EXPECT_EQ(inFront.Facts().mFormats[0].mASBD.mSampleRate, 48000.0);
    EXPECT_EQ(inFront.Facts().mDataFormat.mSampleRate, 24000.0);

    const Bits versionOne =
        Bits().Put(0b10, 2).Put(0, 2 + 8).Put(1, 1).Put(0, 13).Put(0, 2).Put(37, 8).Put(behind).Put(
            0, 3 + 8 + 2);
    Opened file = Open(kLOAS, Stream(Payloads(9), 3, versionOne));
    ASSERT_EQ(file.mStatus, noErr);
    ASSERT_EQ(file.Facts().mFormats.size(), 2u);
    EXPECT_EQ(file.Facts().mFormats[0].mASBD.mFormatID, kAudioFormatMPEG4AAC_HE);
    EXPECT_EQ(PacketsOf(file), Payloads(9));
}

TEST(LOASStream, TakesItsChannelsFromAProgramConfig)
{
    // Front: a single and a pair; back: a pair; one low frequency channel; a comment of 3 bytes.
    Bits program = Bits()
                       .Put(0, 4)
                       .Put(1, 2)
                       .Put(4, 4)
                       .Put(2, 4)
                       .Put(0, 4)
                       .Put(1, 4)
                       .Put(1, 2)
                       .Put(0, 3 + 4)
                       .Put(0, 3);
    program.Put(0, 5).Put(1, 1).Put(0, 4).Put(1, 1).Put(1, 4).Put(0, 4);
    Bits config = Bits().Put(2, 5).Put(4, 4).Put(0, 4).Put(0, 3).Put(program);
    // 16 + 34 + 5 + 5 + 5 + 4 = 69 bits; to the byte, the comment's length, the comment.
    config.Put(0, 3).Put(3, 8).Put({'a', 'b', 'c'});
    Opened file = Open(kLOAS, Stream(Payloads(9), 3, MuxConfig(config)));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mDataFormat.mChannelsPerFrame, 6u);
    EXPECT_EQ(file.Facts().mCookie, config.Take());
    EXPECT_EQ(PacketsOf(file), Payloads(9));
}

TEST(LOASStream, CountsFramesOf960)
{
    const Bits config = Bits().Put(2, 5).Put(3, 4).Put(2, 4).Put(0b100, 3);
    Opened file = Open(kLOAS, Stream(Payloads(10), 3, MuxConfig(config)));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mDataFormat.mFramesPerPacket, 960u);
    EXPECT_DOUBLE_EQ(file.Facts().mEstimatedDuration, 0.2);
}

// The same packets in both streams, put there by another writer.
TEST(LOASStream, OfAnotherWriterHasThePacketsOfTheSameADTS)
{
    Opened adts = Open(kADTS, LoadData("streams/44100-stereo.aac"));
    Opened loas = Open(kLOAS, LoadData("streams/44100-stereo.loas"));
    ASSERT_EQ(loas.mStatus, noErr);
    std::vector<Bytes> wanted = PacketsOf(adts);
    for (Bytes& packet : wanted)
        packet.erase(packet.begin(), packet.begin() + 7);
    EXPECT_EQ(PacketsOf(loas), wanted);
    EXPECT_EQ(loas.Facts().mDataFormat.mSampleRate, 44100.0);
    EXPECT_EQ(loas.Facts().mPacketCount, adts.Facts().mPacketCount);
}

}  // namespace
