// Files that run out of room, and calls in the wrong order: a status each time, and nothing half.
#include "StreamWriting.h"

using namespace stream_writing;

namespace
{

TEST(WriterFaults, TellOfEveryRoomThatIsTooSmall)
{
    for (const Kind& kind : kKinds)
    {
        const Stream stream = EncodeTones(kind, 2, kind.mFramesPerPacket * 2);
        const auto frames = static_cast<SInt64>(kind.mFramesPerPacket) * 2;
        const auto whole = static_cast<SInt64>(Written(kind, stream, frames).size());
        for (SInt64 room = 0; room < whole; ++room)
        {
            testing_support::MemorySink sink(room);
            ASSERT_EQ(File(kind, stream, frames).Run(sink), kAudio_DiskFullError)
                << kind.mName << ", room " << room;
        }
        testing_support::MemorySink enough(whole);
        EXPECT_EQ(File(kind, stream, frames).Run(enough), noErr);
    }
}

TEST(WriterFaults, LeaveAFileOfTheWholePacketsThatFit)
{
    for (const Kind& kind : kKinds)
    {
        const Stream stream = EncodeTones(kind, 2, 30000);
        const auto whole = static_cast<SInt64>(Written(kind, stream, 30000).size());
        for (SInt64 room = whole / 3; room < whole; room += 311)
        {
            testing_support::MemorySink sink(room);
            File written(kind, stream, 30000);
            ASSERT_EQ(written.Run(sink), kAudio_DiskFullError);
            ASSERT_EQ(written.mFinished, noErr);
            auto file = OpenByContent(sink.Bytes());
            ASSERT_EQ(file.mStatus, noErr) << kind.mName << " " << room;
            const std::vector<Bytes> packets = PacketsOf(file);
            ASSERT_FALSE(packets.empty());
            EXPECT_EQ(file.Facts().mPacketCount, packets.size()) << kind.mName << " " << room;
            std::size_t held = 0;
            for (const Bytes& packet : packets)
                held += packet.size();
            if (kind.mType != kAudioFileLATMInLOASType)
            {
                EXPECT_EQ(file.Facts().mDataOffset + static_cast<SInt64>(held), sink.Size());
            }
            if (kind.mFormat != kAudioFormatMPEGLayer3 && kind.mFormat != kAudioFormatFLAC)
                continue;
            const SInt64 priming = kind.mFormat == kAudioFormatFLAC ? 0 : 1105;
            const auto inPackets = static_cast<SInt64>(packets.size()) * kind.mFramesPerPacket;
            ASSERT_TRUE(file.Facts().mPacketTable);
            EXPECT_EQ(file.Facts().mPacketTable->mNumberValidFrames, inPackets - priming);
        }
    }
}

TEST(WriterFaults, OfCompletingTheHeadShow)
{
    for (const Kind& kind : {kMP3, kFLAC})
    {
        const Stream stream = EncodeTones(kind, 2, 10000);
        testing_support::MemorySink sink;
        sink.mPatchStatus = kAudio_IOError;
        EXPECT_EQ(File(kind, stream, 10000).Run(sink), kAudio_IOError) << kind.mName;
    }
}

TEST(WriterFaults, AreLastingOnceAPacketIsLost)
{
    for (const Kind& kind : kKinds)
    {
        const Stream stream = EncodeTones(kind, 2, 30000);
        const File file(kind, stream, 30000);
        testing_support::MemorySink sink(2500);
        audiotoolbox::PacketWriterPtr writer;
        ASSERT_EQ(kind.mMake(file.mRequest, writer), noErr);
        ASSERT_EQ(writer->Start(sink, file.mStart), noErr);
        EXPECT_EQ(file.WritePackets(*writer, 5), kAudio_DiskFullError);
        const SInt64 size = sink.Size();
        const Bytes small(stream.mPackets[0].begin(), stream.mPackets[0].begin() + 8);
        const AudioStreamPacketDescription packet = {0, 0, 8};
        EXPECT_EQ(writer->Write(small, {&packet, 1}), kAudio_DiskFullError) << kind.mName;
        EXPECT_EQ(sink.Size(), size);
    }
}

TEST(WriterFaults, OfTheCallerAreStatuses)
{
    for (const Kind& kind : kKinds)
    {
        const Stream stream = EncodeTones(kind, 2, 30000);
        const File file(kind, stream, 30000);
        const Bytes& bytes = stream.mPackets[0];
        const auto size = static_cast<UInt32>(bytes.size());
        audiotoolbox::PacketWriterPtr writer;
        ASSERT_EQ(kind.mMake(file.mRequest, writer), noErr);
        EXPECT_EQ(writer->Write({}, {}), kAudioFileNotOpenError);
        EXPECT_EQ(writer->Finish(file.mEnd), kAudioFileNotOpenError);

        testing_support::MemorySink sink;
        ASSERT_EQ(writer->Start(sink, file.mStart), noErr);
        EXPECT_EQ(writer->Write({}, {}), noErr);
        EXPECT_EQ(writer->Write(bytes, {}), kAudio_ParamError);
        const SInt64 before = sink.Size();
        for (const AudioStreamPacketDescription& bad :
             {AudioStreamPacketDescription{0, 0, size + 1},
              {-1, 0, 4},
              {1, 0, size},
              {SInt64{1} << 62, 0, 4},
              {0, 0, 0xFFFFFFFF},
              {0, 0, 0}})
            EXPECT_EQ(writer->Write(bytes, {&bad, 1}), kAudio_ParamError) << kind.mName;
        EXPECT_EQ(sink.Size(), before);
    }
}

}  // namespace
