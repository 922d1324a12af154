// Files beyond 4 GiB and beyond 32 bits of frames, without their bytes.
#include "WriterUse.h"
#include "file/Endian.h"
#include "file/write/mpeg4/SampleIndex.h"
#include "file/write/mpeg4/SampleTables.h"

#include <limits>

namespace
{

using namespace writer_use;
using audiotoolbox::PacketWriterPtr;
using audiotoolbox::ReadBE32;
using audiotoolbox::ReadBE64;
using audiotoolbox::mpeg4writer::SampleIndex;

/// Keeps the front and what is written behind the audio; audio is only counted.
class PretendingSink : public audiotoolbox::ByteSink
{
public:
    OSStatus Append(std::span<const UInt8> inBytes) override
    {
        if (!mIsAudio)
            mKept.insert(mKept.end(), inBytes.begin(), inBytes.end());
        mSize += static_cast<SInt64>(inBytes.size());
        return noErr;
    }
    OSStatus Patch(SInt64 inPosition, std::span<const UInt8> inBytes) override
    {
        std::copy(inBytes.begin(), inBytes.end(), mKept.begin() + inPosition);
        return noErr;
    }
    SInt64 Size() const override { return mSize; }
    OSStatus Truncate(SInt64) override { return kAudioFilePositionError; }
    OSStatus Close() override { return noErr; }

    bool mIsAudio = false;
    Bytes mKept;

private:
    SInt64 mSize = 0;
};

/// A source of the same bytes, zeros for the audio that was not kept.
class PretendedSource : public audiotoolbox::ByteSource
{
public:
    PretendedSource(const PretendingSink& inSink, SInt64 inFront)
        : mKept(inSink.mKept), mSize(inSink.Size()), mFront(inFront)
    {
    }
    OSStatus ReadAt(SInt64 inPosition, UInt32 inCount, void* outBytes, UInt32* outCount) override
    {
        const SInt64 hole = mSize - static_cast<SInt64>(mKept.size());
        *outCount = static_cast<UInt32>(
            std::clamp<SInt64>(mSize - inPosition, 0, static_cast<SInt64>(inCount)));
        for (UInt32 i = 0; i < *outCount; ++i)
        {
            const SInt64 place = inPosition + i;
            const bool isHole = place >= mFront && place < mFront + hole;
            const SInt64 kept = place < mFront ? place : place - hole;
            static_cast<UInt8*>(outBytes)[i] =
                isHole ? UInt8{0} : mKept[static_cast<std::size_t>(kept)];
        }
        return noErr;
    }
    SInt64 Size() const override { return mSize; }

private:
    Bytes mKept;
    SInt64 mSize;
    SInt64 mFront;
};

constexpr SInt64 kFront = 32 + 16;

/// inPackets packets of inBytes bytes, the last one 100 bytes longer.
audiotoolbox::PacketReaderPtr Pretend(UInt32 inPackets, UInt32 inBytes, SInt64 inValidFrames,
                                      PretendingSink& ioSink)
{
    const Stream stream = Encode(MakeAudio(kAudioFormatAppleLossless, 2, 5000));
    PacketWriterPtr writer;
    EXPECT_EQ(audiotoolbox::MakeMPEG4Writer(RequestOf(kAudioFileM4AType, stream), writer), noErr);
    EXPECT_EQ(writer->Start(ioSink, StartOf(stream)), noErr);
    EXPECT_EQ(ioSink.Size(), kFront);
    ioSink.mIsAudio = true;
    constexpr UInt32 kAtOnce = 100;
    const Bytes bytes(std::size_t{inBytes} * kAtOnce);
    const std::vector<AudioStreamPacketDescription> packets(kAtOnce, {0, 0, inBytes});
    OSStatus status = noErr;
    for (UInt32 packet = 0; packet + kAtOnce < inPackets && status == noErr; packet += kAtOnce)
        status = writer->Write(bytes, packets);
    const UInt32 rest = (inPackets - 1) % kAtOnce;
    if (status == noErr && rest > 0)
        status = writer->Write(std::span(bytes).first(std::size_t{inBytes} * rest),
                               std::span(packets).first(rest));
    const AudioStreamPacketDescription last = {0, 0, inBytes + 100};
    if (status == noErr)
        status = writer->Write(Bytes(inBytes + 100), {&last, 1});
    EXPECT_EQ(status, noErr);
    ioSink.mIsAudio = false;
    EXPECT_EQ(writer->Finish(EndOf(stream, inValidFrames)), noErr);

    audiotoolbox::ByteSourcePtr source = std::make_unique<PretendedSource>(ioSink, kFront);
    audiotoolbox::PacketReaderPtr reader;
    EXPECT_EQ(audiotoolbox::OpenAudio(0, source, reader), noErr);
    return reader;
}

TEST(LargeMPEG4Files, BeyondFourGiBSizesAndOffsetsHave64Bits)
{
    constexpr UInt32 kPackets = 70001;
    constexpr UInt32 kPacketBytes = 64000;
    constexpr SInt64 kAudioBytes = SInt64{kPackets} * kPacketBytes + 100;
    PretendingSink sink;
    const auto reader = Pretend(kPackets, kPacketBytes, SInt64{kPackets} * 4096 - 7, sink);
    ASSERT_TRUE(reader);
    EXPECT_EQ(ReadBE32(sink.mKept.data() + 32), 1u);
    EXPECT_EQ(Find(sink.mKept, "mdat"), 36u);
    EXPECT_EQ(ReadBE64(sink.mKept.data() + 40), 16u + UInt64{kAudioBytes});
    EXPECT_EQ(Find(sink.mKept, "stco"), std::string::npos);

    // 5 packets of 4096 frames are half a second and a little less.
    const Bytes offsets = BodyOf(sink.mKept, "co64");
    ASSERT_EQ(offsets.size(), 8 + 8 * std::size_t{14001});
    EXPECT_EQ(ReadBE32(offsets.data() + 4), 14001u);
    EXPECT_EQ(ReadBE64(offsets.data() + 8), 48u);
    EXPECT_EQ(ReadBE64(offsets.data() + 16), 48u + 5 * 64000);
    EXPECT_EQ(ReadBE64(offsets.data() + offsets.size() - 8), 48 + UInt64{70000} * 64000);
    EXPECT_EQ(BodyOf(sink.mKept, "stsc"), (Bytes{0, 0, 0, 0, 0, 0, 0,    2,     //
                                                 0, 0, 0, 1, 0, 0, 0,    5,     //
                                                 0, 0, 0, 1, 0, 0, 0x36, 0xB1,  //
                                                 0, 0, 0, 1, 0, 0, 0,    1}));

    EXPECT_EQ(reader->Facts().mPacketCount, kPackets);
    EXPECT_EQ(reader->Facts().mDataByteCount, kAudioBytes);
    EXPECT_EQ(reader->Facts().mPacketTable->mNumberValidFrames, SInt64{kPackets} * 4096 - 7);
    Bytes room(64100);
    AudioStreamPacketDescription packet = {};
    UInt32 bytes = 64100;
    UInt32 count = 1;
    EXPECT_EQ(reader->ReadPackets(70000, &bytes, &count, &packet, room.data()), noErr);
    EXPECT_EQ(bytes, 64100u);
}

TEST(LargeMPEG4Files, BelowFourGiBTheyHave32Bits)
{
    PretendingSink sink;
    // 65536 bytes of it less than 4 GiB, all in all.
    const auto reader = Pretend(65535, 65536 - 1, 1000, sink);
    ASSERT_TRUE(reader);
    EXPECT_EQ(Find(sink.mKept, "free"), 36u);
    EXPECT_EQ(Find(sink.mKept, "mdat"), 44u);
    EXPECT_EQ(ReadBE32(sink.mKept.data() + 40), 8 + 65535u * 65535 + 100);
    EXPECT_NE(Find(sink.mKept, "stco"), std::string::npos);
    EXPECT_EQ(Find(sink.mKept, "co64"), std::string::npos);
    EXPECT_EQ(reader->Facts().mPacketCount, 65535u);
}

TEST(LargeMPEG4Files, MoreFramesThan32BitsAreCounted)
{
    constexpr UInt32 kPackets = 1200000;
    constexpr SInt64 kValid = SInt64{kPackets} * 4096 - 1;
    PretendingSink sink;
    const auto reader = Pretend(kPackets, 3, kValid, sink);
    ASSERT_TRUE(reader);
    const Bytes media = BodyOf(sink.mKept, "mdhd");
    ASSERT_EQ(media.size(), 36u);
    EXPECT_EQ(media[0], 1);
    EXPECT_EQ(ReadBE64(media.data() + 24), UInt64{kPackets} * 4096);
    EXPECT_EQ(BodyOf(sink.mKept, "mvhd")[0], 1);
    EXPECT_EQ(ReadBE64(BodyOf(sink.mKept, "mvhd").data() + 24), UInt64{kValid});
    EXPECT_EQ(BodyOf(sink.mKept, "tkhd").size(), 96u);
    EXPECT_EQ(ReadBE64(BodyOf(sink.mKept, "tkhd").data() + 28), UInt64{kValid});
    EXPECT_EQ(BodyOf(sink.mKept, "elst").size(), 28u);
    EXPECT_EQ(reader->Facts().mPacketTable->mNumberValidFrames, kValid);
    EXPECT_EQ(reader->Facts().mPacketTable->mRemainderFrames, 1);
}

TEST(PacketIndexOfWriting, AnHourTakesTwoBytesAPacket)
{
    SampleIndex index;
    for (UInt32 packet = 0; packet < 155040; ++packet)
        index.Add(300 + packet % 100, 1024);
    EXPECT_EQ(index.Count(), 155040u);
    EXPECT_EQ(index.TotalFrames(), UInt64{155040} * 1024);
    EXPECT_EQ(index.SizeOf(0), 300u);
    EXPECT_EQ(index.SizeOf(155039), 339u);
    EXPECT_EQ(index.BytesHeld(), 2 * 155040u + 8);
}

TEST(PacketIndexOfWriting, PacketsOfOneSizeTakeNothing)
{
    SampleIndex index;
    for (UInt32 packet = 0; packet < 1000; ++packet)
        index.Add(418, 1152);
    EXPECT_EQ(index.BytesHeld(), 8u);
    EXPECT_EQ(index.ConstantSize(), 418u);
    index.Add(417, 1152);
    EXPECT_EQ(index.ConstantSize(), 0u);
    EXPECT_EQ(index.SizeOf(0), 418u);
    EXPECT_EQ(index.SizeOf(999), 418u);
    EXPECT_EQ(index.SizeOf(1000), 417u);
}

TEST(PacketIndexOfWriting, LargePacketsAreKeptWherever)
{
    for (const std::size_t large : {0u, 1u, 5u, 9u})
    {
        SampleIndex index;
        for (std::size_t packet = 0; packet < 10; ++packet)
            index.Add(packet == large ? 0x12345678 : 7, 1024);
        for (UInt32 packet = 0; packet < 10; ++packet)
            EXPECT_EQ(index.SizeOf(packet), packet == large ? 0x12345678u : 7u) << large;
        EXPECT_EQ(index.LargestSize(), 0x12345678u);
        EXPECT_EQ(index.TotalBytes(), 0x12345678u + 63);
        EXPECT_EQ(index.BytesHeld(), 4 * 10u + 8);
    }
    SampleIndex same;
    same.Add(70000, 1024);
    same.Add(70000, 1024);
    same.Add(1, 1024);
    EXPECT_EQ(same.SizeOf(1), 70000u);
    EXPECT_EQ(same.SizeOf(2), 1u);
}

TEST(PacketIndexOfWriting, BitRatesAreThoseOfAllAndOfTheFullestSecond)
{
    SampleIndex index;
    for (UInt32 packet = 0; packet < 300; ++packet)
        index.Add(packet / 100 == 1 ? 200 : 100, 480);
    EXPECT_EQ(AverageBitRate(index, 48000), 106667u);
    EXPECT_EQ(PeakBitRate(index, 48000), 160000u);
    EXPECT_EQ(AverageBitRate(SampleIndex(), 48000), 0u);
    EXPECT_EQ(PeakBitRate(SampleIndex(), 48000), 0u);
}

TEST(PacketIndexOfWriting, ChunksHoldHalfASecond)
{
    using audiotoolbox::mpeg4writer::PacketsPerChunk;
    EXPECT_EQ(PacketsPerChunk(44100, 1024), 21u);
    EXPECT_EQ(PacketsPerChunk(48000, 960), 25u);
    EXPECT_EQ(PacketsPerChunk(8000, 4096), 1u);
}

}  // namespace
