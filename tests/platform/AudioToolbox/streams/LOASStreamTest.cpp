// LOAS: multiplexes of every form, and what damage does to them.
#include "StreamMakers.h"
#include "platform/AudioToolbox/src/file/streams/LOASHeader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <memory>

using namespace stream_testing;

namespace
{

// Bits as text, with spaces for reading.
class Bits
{
public:
    Bits& Put(UInt64 inValue, int inCount)
    {
        while (inCount-- > 0)
            mBits.push_back((inValue >> inCount & 1) != 0);
        return *this;
    }
    Bits& Put(const Bytes& inBytes)
    {
        for (const UInt8 byte : inBytes)
            Put(byte, 8);
        return *this;
    }
    Bits& Put(const Bits& inOther)
    {
        mBits.insert(mBits.end(), inOther.mBits.begin(), inOther.mBits.end());
        return *this;
    }
    Bytes Take() const
    {
        Bytes bytes((mBits.size() + 7) / 8);
        for (std::size_t i = 0; i < mBits.size(); ++i)
            bytes[i / 8] = static_cast<UInt8>(bytes[i / 8] | (mBits[i] ? 0x80 >> i % 8 : 0));
        return bytes;
    }

private:
    std::vector<bool> mBits;
};

Bytes Frame(const Bits& inElement)
{
    const Bytes element = inElement.Take();
    const auto size = static_cast<UInt32>(element.size());
    return Join({Bits().Put(0x2B7, 11).Put(size, 13).Take(), element});
}

// 44.1 kHz stereo of low complexity.
Bits PlainConfig()
{
    return Bits().Put(2, 5).Put(4, 4).Put(2, 4).Put(0, 3);
}

// Version 0, one of everything.
Bits MuxConfig(const Bits& inDecoderConfig)
{
    return Bits()
        .Put(0b01, 2)
        .Put(0, 6 + 4 + 3)
        .Put(inDecoderConfig)
        .Put(0, 3)
        .Put(0xFF, 8)
        .Put(0, 2);
}

Bits Length(std::size_t inBytes)
{
    Bits bits;
    for (; inBytes >= 255; inBytes -= 255)
        bits.Put(255, 8);
    return bits.Put(static_cast<UInt32>(inBytes), 8);
}

Bytes FrameWithConfig(const Bits& inMuxConfig, const Bytes& inPayload)
{
    return Frame(Bits().Put(0, 1).Put(inMuxConfig).Put(Length(inPayload.size())).Put(inPayload));
}

Bytes FrameWithout(const Bytes& inPayload)
{
    return Frame(Bits().Put(1, 1).Put(Length(inPayload.size())).Put(inPayload));
}

std::vector<Bytes> Payloads(std::size_t inCount)
{
    std::vector<Bytes> payloads;
    for (std::size_t i = 0; i < inCount; ++i)
        payloads.push_back(NoiseWithoutSync(180 + 40 * (i % 5), static_cast<UInt32>(i) + 1));
    return payloads;
}

Bytes Stream(const std::vector<Bytes>& inPayloads, std::size_t inConfigEvery,
             const Bits& inMuxConfig = MuxConfig(PlainConfig()))
{
    Bytes stream;
    for (std::size_t i = 0; i < inPayloads.size(); ++i)
    {
        const Bytes frame = i % inConfigEvery == 0 ? FrameWithConfig(inMuxConfig, inPayloads[i])
                                                   : FrameWithout(inPayloads[i]);
        stream.insert(stream.end(), frame.begin(), frame.end());
    }
    return stream;
}

std::vector<Bytes> PacketsOf(Opened& ioFile, SInt64 inStart = 0, UInt32 inAtOnce = 16)
{
    std::vector<Bytes> packets;
    for (const Packet& packet : ReadAll(*ioFile.mReader, inStart, inAtOnce))
        packets.push_back(packet.mBytes);
    return packets;
}

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

TEST(LOASStream, DamagedElementKeepsItsPlace)
{
    const auto payloads = Payloads(12);
    Bytes stream = Stream(payloads, 20);
    std::size_t fifth = 0;
    for (int i = 0; i < 4; ++i)
        fifth += 3 + ((stream[fifth + 1] & 0x1Fu) << 8 | stream[fifth + 2]);
    for (const UInt8 value : {0x00, 0x7F, 0xFF})  // a configuration, or a length beyond the end
    {
        Bytes damaged = stream;
        std::fill_n(damaged.begin() + static_cast<long>(fifth) + 3, 60, value);
        Opened file = Open(kLOAS, damaged);
        ASSERT_EQ(file.mStatus, noErr);
        const auto packets = PacketsOf(file);
        ASSERT_EQ(packets.size(), 12u) << int{value};
        EXPECT_TRUE(std::equal(packets.begin() + 5, packets.end(), payloads.begin() + 5));
    }
}

TEST(LOASStream, StatesOfElementsThatReachBeyondTheirEndAreDamage)
{
    const Bytes whole =
        Bits().Put(0, 1).Put(MuxConfig(PlainConfig())).Put(Length(300)).Put(Noise(300, 3)).Take();
    audiotoolbox::streams::LOASElement element;
    for (std::size_t size = 0; size < whole.size(); ++size)
    {
        // A copy of its own, so that reading behind it shows.
        const Bytes cut(whole.begin(), whole.begin() + static_cast<long>(size));
        EXPECT_FALSE(audiotoolbox::streams::ParseLOASElement(cut, element, nullptr)) << size;
    }
    EXPECT_TRUE(audiotoolbox::streams::ParseLOASElement(whole, element, nullptr));
    EXPECT_EQ(element.mPayloadBytes, 300u);
}

TEST(LOASStream, GarbageOfSyncWordsIsRefusedInTime)
{
    for (const Bytes& unit : {Bytes{0x56, 0xE0, 0x02, 0, 0}, Bytes{0x56, 0xFF, 0xFF},
                              Bytes{0x56, 0xE0, 0x02, 0xFF, 0xFF}, Bytes{0x56, 0xE0}})
    {
        Bytes bytes;
        while (bytes.size() < 400000)
            bytes.insert(bytes.end(), unit.begin(), unit.end());
        EXPECT_NE(Open(kLOAS, bytes).mStatus, noErr);
    }
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

TEST(LOASStream, CutAnywhereDeliversItsWholePackets)
{
    const Bytes whole = LoadData("streams/44100-stereo.loas");
    Opened intact = Open(kLOAS, whole);
    const auto packets = PacketsOf(intact);
    std::size_t end = 0;
    std::size_t complete = 0;
    for (std::size_t size = 0; size < whole.size(); ++size)
    {
        Opened cut =
            Open(kLOAS, Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        for (std::size_t next = end; next + 3 <= size;)
        {
            next = end + 3 + ((whole[end + 1] & 0x1Fu) << 8 | whole[end + 2]);
            if (next > size)
                break;
            end = next;
            ++complete;
        }
        if (cut.mStatus != noErr)
        {
            ASSERT_LE(complete, 1u) << size;
            continue;
        }
        const auto left = PacketsOf(cut);
        ASSERT_EQ(left.size(), complete) << size;
        ASSERT_TRUE(std::equal(left.begin(), left.end(), packets.begin())) << size;
    }
    EXPECT_EQ(complete + 1, packets.size());
}

TEST(LOASStream, ChangedBytesNeverBreakTheReader)
{
    UInt32 state = 4711;
    const auto next = [&state]
    {
        state = state * 1664525u + 1013904223u;
        return state >> 8;
    };
    for (const Bytes& whole : {LoadData("streams/44100-stereo.loas"), Stream(Payloads(30), 2)})
        for (int round = 0; round < 3000; ++round)
        {
            Bytes bytes = whole;
            for (UInt32 changes = 1 + next() % 12; changes > 0; --changes)
            {
                const std::size_t reach = next() % 2 == 0 ? bytes.size() : 32;
                bytes[next() % reach] = static_cast<UInt8>(next());
            }
            if (next() % 4 == 0)
                bytes.resize(next() % bytes.size());
            Opened file = Open(kLOAS, bytes);
            if (file.mStatus != noErr)
                continue;
            EXPECT_GT(file.Facts().mDataFormat.mSampleRate, 0.0);
            EXPECT_GT(file.Facts().mDataFormat.mChannelsPerFrame, 0u);
            std::size_t total = 0;
            for (const Bytes& packet : PacketsOf(file))
            {
                EXPECT_GT(packet.size(), 0u);
                EXPECT_LE(packet.size(), file.Facts().mPacketSizeUpperBound);
                total += packet.size();
            }
            ASSERT_LE(total, bytes.size()) << round;
        }
}

TEST(LOASStream, DestroyedHeadsCostNoPacket)
{
    const Bytes whole = LoadData("streams/44100-stereo.loas");
    Opened intact = Open(kLOAS, whole);
    const auto packets = PacketsOf(intact);
    std::size_t place = 0;
    for (std::size_t i = 0; i + 2 < packets.size(); ++i)
    {
        for (std::size_t byte = 0; i > 1 && byte < 3; ++byte)
            for (const int flip : {0x01, 0x10, 0x80, 0xFF})
            {
                Bytes bytes = whole;
                bytes[place + byte] ^= static_cast<UInt8>(flip);
                Opened damaged = Open(kLOAS, bytes);
                ASSERT_EQ(damaged.mStatus, noErr);
                const auto left = PacketsOf(damaged);
                EXPECT_EQ(left, packets)
                    << "packet " << i << ", byte " << byte << ", " << flip;
            }
        place += 3 + ((whole[place + 1] & 0x1Fu) << 8 | whole[place + 2]);
    }
}

}  // namespace
