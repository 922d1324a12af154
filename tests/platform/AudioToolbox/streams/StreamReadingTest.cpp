// Reading packets in any order, with any room, from sources that fail.
#include "StreamMakers.h"
#include "tests/support/MemorySource.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace stream_testing;

namespace
{

// Frames that differ from one another, so that a wrong one shows.
Bytes NumberedADTS(UInt32 inFrames)
{
    Bytes stream;
    for (UInt32 i = 0; i < inFrames; ++i)
    {
        Bytes frame = ADTSFrame(4, 2, 40 + i % 30);
        for (std::size_t byte = 0; byte < 4; ++byte)
            frame[10 + byte] = static_cast<UInt8>(i >> (7 * byte) & 0x7F);
        stream.insert(stream.end(), frame.begin(), frame.end());
    }
    return stream;
}

UInt32 NumberOf(const UInt8* inFrame)
{
    UInt32 number = 0;
    for (std::size_t byte = 0; byte < 4; ++byte)
        number |= UInt32{inFrame[10 + byte]} << (7 * byte);
    return number;
}

// The number of the packet at inStart; -1 at the end.
SInt64 NumberAt(audiotoolbox::PacketReader& inReader, SInt64 inStart)
{
    UInt8 buffer[8192];
    AudioStreamPacketDescription description;
    UInt32 bytes = sizeof(buffer);
    UInt32 packets = 1;
    EXPECT_EQ(inReader.ReadPackets(inStart, &bytes, &packets, &description, buffer), noErr);
    return packets == 1 ? SInt64{NumberOf(buffer)} : -1;
}

TEST(StreamReading, AnyOrderGivesTheRightPackets)
{
    // More packets than the index has entries at its first distance, so that it is thinned.
    constexpr UInt32 kPackets = 200000;
    Opened file = Open(kADTS, NumberedADTS(kPackets));
    ASSERT_EQ(file.mStatus, noErr);
    for (const SInt64 start : {SInt64{0}, SInt64{1}, SInt64{63}, SInt64{64}, SInt64{65}, SInt64{0},
                               SInt64{100000}, SInt64{65535}, SInt64{65536}, SInt64{199999},
                               SInt64{131072}, SInt64{131071}, SInt64{5}, SInt64{199999}})
        EXPECT_EQ(NumberAt(*file.mReader, start), start);
    UInt32 state = 1;
    for (int i = 0; i < 300; ++i)
    {
        state = state * 1664525u + 1013904223u;
        EXPECT_EQ(NumberAt(*file.mReader, state % kPackets), SInt64{state % kPackets});
    }
    EXPECT_EQ(NumberAt(*file.mReader, kPackets), -1);
    EXPECT_EQ(NumberAt(*file.mReader, SInt64{1} << 62), -1);
    EXPECT_EQ(NumberAt(*file.mReader, kPackets - 1), SInt64{kPackets - 1});
}

TEST(StreamReading, JumpBehindTheEndFirstAnswersTheEnd)
{
    Opened file = Open(kADTS, NumberedADTS(500));
    EXPECT_EQ(NumberAt(*file.mReader, 100000), -1);
    EXPECT_EQ(NumberAt(*file.mReader, 499), 499);
    EXPECT_EQ(NumberAt(*file.mReader, 500), -1);
}

TEST(StreamReading, RoomForSomePacketsGivesThose)
{
    const Bytes stream = NumberedADTS(10);  // 40, 41, 42, .. bytes
    Opened file = Open(kADTS, stream);
    UInt8 buffer[125];
    AudioStreamPacketDescription descriptions[10];
    UInt32 bytes = sizeof(buffer);
    UInt32 packets = 10;
    ASSERT_EQ(file.mReader->ReadPackets(0, &bytes, &packets, descriptions, buffer), noErr);
    EXPECT_EQ(packets, 3u);
    EXPECT_EQ(bytes, 123u);
    EXPECT_EQ(descriptions[2].mStartOffset, 81);
    EXPECT_EQ(descriptions[2].mDataByteSize, 42u);
    EXPECT_EQ(descriptions[2].mVariableFramesInPacket, 0u);
    EXPECT_TRUE(std::equal(buffer, buffer + 123, stream.begin()));
}

TEST(StreamReading, PacketWithoutRoomIsAFailureAndStaysReadable)
{
    Opened file = Open(kADTS, NumberedADTS(10));
    UInt8 buffer[39];
    AudioStreamPacketDescription description;
    UInt32 bytes = sizeof(buffer);
    UInt32 packets = 1;
    EXPECT_EQ(file.mReader->ReadPackets(0, &bytes, &packets, &description, buffer),
              kAudioFileBadPropertySizeError);
    EXPECT_EQ(bytes, 0u);
    EXPECT_EQ(packets, 0u);
    EXPECT_EQ(NumberAt(*file.mReader, 0), 0);
}

TEST(StreamReading, NoPacketsWantedGivesNone)
{
    Opened file = Open(kADTS, NumberedADTS(10));
    UInt8 buffer[100];
    AudioStreamPacketDescription description;
    UInt32 bytes = sizeof(buffer);
    UInt32 packets = 0;
    EXPECT_EQ(file.mReader->ReadPackets(3, &bytes, &packets, &description, buffer), noErr);
    EXPECT_EQ(bytes, 0u);
    EXPECT_EQ(packets, 0u);
}

TEST(StreamReading, MissingDescriptionsAndNegativeStartsAreRefused)
{
    Opened file = Open(kADTS, NumberedADTS(10));
    UInt8 buffer[100];
    AudioStreamPacketDescription description;
    UInt32 bytes = sizeof(buffer);
    UInt32 packets = 1;
    EXPECT_EQ(file.mReader->ReadPackets(0, &bytes, &packets, nullptr, buffer), kAudio_ParamError);
    EXPECT_EQ(packets, 0u);
    bytes = sizeof(buffer);
    packets = 1;
    EXPECT_EQ(file.mReader->ReadPackets(-1, &bytes, &packets, &description, buffer),
              kAudioFileInvalidPacketOffsetError);
    EXPECT_EQ(bytes, 0u);
    EXPECT_EQ(packets, 0u);
}

TEST(StreamReading, OnePacketACallGivesTheSamePackets)
{
    Opened file = Open(kADTS, NumberedADTS(3000));
    const std::vector<Packet> many = ReadAll(*file.mReader, 0, 500);
    EXPECT_EQ(many.size(), 3000u);
    EXPECT_EQ(ReadAll(*file.mReader, 0, 1), many);
}

// Fails from a position on, while it is told to.
class FailingSource : public testing_support::MemorySource
{
public:
    FailingSource(Bytes inBytes, const SInt64& inFailsFrom, int& ioReads)
        : MemorySource(std::move(inBytes)), mFailsFrom(inFailsFrom), mReads(ioReads)
    {
    }
    OSStatus ReadAt(SInt64 inPosition, UInt32 inCount, void* outBytes, UInt32* outCount) override
    {
        ++mReads;
        *outCount = 0;
        if (inPosition + inCount > mFailsFrom)
            return kAudio_IOError;
        return MemorySource::ReadAt(inPosition, inCount, outBytes, outCount);
    }

private:
    const SInt64& mFailsFrom;
    int& mReads;
};

TEST(StreamReading, FailingReadIsTheAnswerAndReadingGoesOnAfterwards)
{
    const Bytes stream = NumberedADTS(10000);
    SInt64 failsFrom = static_cast<SInt64>(stream.size());
    int reads = 0;
    audiotoolbox::ByteSourcePtr source = std::make_unique<FailingSource>(stream, failsFrom, reads);
    audiotoolbox::PacketReaderPtr reader;
    ASSERT_EQ(audiotoolbox::OpenADTS(kAudioFileAAC_ADTSType, source, reader), noErr);
    failsFrom = 200000;
    OSStatus status = noErr;
    const std::vector<Packet> before = ReadAll(*reader, 0, 16, &status);
    EXPECT_EQ(status, kAudio_IOError);
    EXPECT_GT(before.size(), 1000u);
    EXPECT_LT(before.size(), 5000u);
    failsFrom = static_cast<SInt64>(stream.size());
    EXPECT_EQ(before.size() + ReadAll(*reader, static_cast<SInt64>(before.size())).size(), 10000u);
}

TEST(StreamReading, FailingReadWhileOpeningIsTheAnswer)
{
    for (const StreamKind& kind : {kMPEG, kADTS, kAC3, kAMR, kFLAC})
    {
        const SInt64 failsFrom = 0;
        int reads = 0;
        audiotoolbox::ByteSourcePtr source =
            std::make_unique<FailingSource>(NumberedADTS(50), failsFrom, reads);
        audiotoolbox::PacketReaderPtr reader;
        EXPECT_EQ(kind.mOpen(kind.mType, source, reader), kAudio_IOError);
        EXPECT_NE(source, nullptr);
        EXPECT_EQ(reader, nullptr);
    }
}

TEST(StreamReading, OpeningReadsNoMoreOfALongFile)
{
    const auto readsToOpen = [](UInt32 inFrames)
    {
        const Bytes stream = NumberedADTS(inFrames);
        const SInt64 failsFrom = static_cast<SInt64>(stream.size());
        int reads = 0;
        audiotoolbox::ByteSourcePtr source =
            std::make_unique<FailingSource>(stream, failsFrom, reads);
        audiotoolbox::PacketReaderPtr reader;
        EXPECT_EQ(audiotoolbox::OpenADTS(kAudioFileAAC_ADTSType, source, reader), noErr);
        return reads;
    };
    EXPECT_EQ(readsToOpen(3000), readsToOpen(60000));
    EXPECT_LE(readsToOpen(60000), 4);
}

// Says that it is larger than it is, as a file does that is cut while it is read.
class BoastingSource : public audiotoolbox::ByteSource
{
public:
    explicit BoastingSource(Bytes inBytes) : mSource(std::move(inBytes)) {}
    SInt64 Size() const override { return SInt64{1} << 62; }
    OSStatus ReadAt(SInt64 inPosition, UInt32 inCount, void* outBytes, UInt32* outCount) override
    {
        return mSource.ReadAt(inPosition, inCount, outBytes, outCount);
    }

private:
    testing_support::MemorySource mSource;
};

TEST(StreamReading, SourceThatEndsBeforeItsSizeEndsTheStream)
{
    for (const auto& [kind, name] :
         {std::pair{kMPEG, "streams/untagged-44100-stereo.mp3"},
          std::pair{kADTS, "streams/44100-stereo.aac"}, std::pair{kAC3, "streams/48000-51.ac3"},
          std::pair{kFLAC, "streams/48000-51-24.flac"}})
    {
        Opened honest = Open(kind, LoadData(name));
        audiotoolbox::ByteSourcePtr source = std::make_unique<BoastingSource>(LoadData(name));
        audiotoolbox::PacketReaderPtr reader;
        ASSERT_EQ(kind.mOpen(kind.mType, source, reader), noErr) << name;
        EXPECT_EQ(ReadAll(*reader), ReadAll(*honest.mReader)) << name;
    }
}

}  // namespace
