// Refusals, and files whose sink fails.
#include "Written.h"

#include <functional>

namespace
{

using namespace written;
using testing_support::Drain;
using testing_support::Open;

OSStatus Make(AudioFileTypeID inType, const AudioStreamBasicDescription& inFormat)
{
    PacketWriterPtr writer;
    const OSStatus status = MakeWriter({inType, inFormat, {}}, writer);
    EXPECT_EQ(writer != nullptr, status == noErr);
    return status;
}

TEST(WriterRefusals, MeetSamplesThatTheTypeDoesNotHold)
{
    const UInt32 kFloat = kAudioFormatFlagIsFloat | kAudioFormatFlagIsPacked;
    const UInt32 kBig = kAudioFormatFlagIsBigEndian;
    const struct
    {
        AudioFileTypeID mType;
        UInt32 mFlags;
        UInt32 mBits;
    } rows[] = {
        {kAudioFileAIFFType, kFloat | kBig, 32},
        {kAudioFileAIFFType, 12, 16},
        {kAudioFileAIFFType, 8, 8},
        {kAudioFileAIFCType, kFloat, 32},
        {kAudioFileAIFCType, 8, 8},
        {kAudioFileWAVEType, 12 | kBig, 16},
        {kAudioFileWAVEType, 12, 8},
        {kAudioFileWAVEType, 8, 16},
        {kAudioFileRF64Type, kFloat | kBig, 32},
        {kAudioFileNextType, 12, 16},
        {kAudioFileNextType, kFloat, 32},
        {kAudioFileCAFType, 8, 8},
        {kAudioFileCAFType, 12, 20},
        {kAudioFileWave64Type, kFloat, 16},
        {kAudioFileWAVEType, 12 | 32, 16},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Make(row.mType, converter_use::Linear(44100, row.mFlags, row.mBits, 2)),
                  kAudioFileUnsupportedDataFormatError)
            << Code(row.mType) << " " << row.mFlags << " " << row.mBits;
}

TEST(WriterRefusals, MeetDescriptionsThatDoNotFitThemselves)
{
    using Change = std::function<void(AudioStreamBasicDescription&)>;
    const Change changes[] = {
        [](auto& ioFormat) { ioFormat.mBytesPerFrame = 8; },
        [](auto& ioFormat) { ioFormat.mBytesPerPacket = 8; },
        [](auto& ioFormat) { ioFormat.mBytesPerFrame = ioFormat.mBytesPerPacket = 8; },
        [](auto& ioFormat) { ioFormat.mFramesPerPacket = 2; },
        [](auto& ioFormat) { ioFormat.mFramesPerPacket = 0; },
        [](auto& ioFormat) { ioFormat.mChannelsPerFrame = 0; },
        [](auto& ioFormat) { ioFormat.mChannelsPerFrame = 70000; },
        [](auto& ioFormat) { ioFormat.mSampleRate = 0; },
        [](auto& ioFormat) { ioFormat.mSampleRate = -44100; },
        [](auto& ioFormat) { ioFormat.mSampleRate = 1e300; },
        [](auto& ioFormat) { ioFormat.mSampleRate = std::nan(""); },
        [](auto& ioFormat) { ioFormat.mBitsPerChannel = 0; },
        [](auto& ioFormat) { ioFormat.mFormatID = kAudioFormatMPEGLayer3; },
    };
    for (const AudioFileTypeID type : kTypes)
        for (const Change& change : changes)
        {
            auto format = Complete(
                audiotoolbox::WritableVariants(type, kAudioFormatLinearPCM).at(2), 44100, 2);
            EXPECT_EQ(Make(type, format), noErr);
            change(format);
            EXPECT_EQ(Make(type, format), kAudioFileUnsupportedDataFormatError)
                << Code(type) << " change " << &change - changes;
        }
}

TEST(WriterRefusals, MeetBytesPerFrameOfTooManyChannels)
{
    auto format = Integers(16, 70000);
    for (const AudioFileTypeID type : {kAudioFileWAVEType, kAudioFileCAFType})
        EXPECT_EQ(Make(type, format), kAudioFileUnsupportedDataFormatError);
    EXPECT_EQ(Make(kAudioFileWAVEType, Integers(16, 1024)), noErr);
}

TEST(WriterRefusals, MeetPacketsOfAnotherShape)
{
    using converter_use::Compressed;
    const struct
    {
        AudioFileTypeID mType;
        AudioStreamBasicDescription mFormat;
    } rows[] = {
        {kAudioFileWAVEType, Compressed(kAudioFormatDVIIntelIMA, 44100, 2, 1016, 1024)},
        {kAudioFileWAVEType, Compressed(kAudioFormatDVIIntelIMA, 44100, 2, 1017, 0)},
        {kAudioFileWAVEType, Compressed(kAudioFormatMicrosoftADPCM, 44100, 2, 1011, 1024)},
        {kAudioFileWAVEType, Compressed(kAudioFormatMicrosoftADPCM, 44100, 2, 1012, 65536 + 1024)},
        {kAudioFileWave64Type, Compressed(kAudioFormatMicrosoftGSM, 8000, 2, 320, 65)},
        {kAudioFileWave64Type, Compressed(kAudioFormatMicrosoftGSM, 8000, 1, 160, 33)},
        {kAudioFileAIFCType, Compressed(kAudioFormatAppleIMA4, 44100, 2, 64, 34)},
        {kAudioFileCAFType, Compressed(kAudioFormatAppleIMA4, 44100, 2, 63, 68)},
        {kAudioFileNextType, Compressed(kAudioFormatALaw, 44100, 2, 1, 1)},
        {kAudioFileCAFType, Compressed(kAudioFormatMPEG4AAC, 44100, 2, 0)},
        {kAudioFileAIFFType, Compressed(kAudioFormatALaw, 44100, 1, 1, 1)},
        {kAudioFileWAVEType, Compressed(kAudioFormatMPEG4AAC, 44100, 2, 1024)},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Make(row.mType, row.mFormat), kAudioFileUnsupportedDataFormatError)
            << Code(row.mType) << " " << Code(row.mFormat.mFormatID) << " "
            << row.mFormat.mFramesPerPacket;
}

TEST(WriterRefusals, MeetTheTypesOfOtherWriters)
{
    PacketWriterPtr writer;
    const auto format = Integers(16, 2);
    EXPECT_NE(audiotoolbox::MakeRIFFWriter({kAudioFileWave64Type, format, {}}, writer), noErr);
    EXPECT_NE(audiotoolbox::MakeWave64Writer({kAudioFileWAVEType, format, {}}, writer), noErr);
    EXPECT_NE(audiotoolbox::MakeAIFFWriter({kAudioFileCAFType, format, {}}, writer), noErr);
    EXPECT_NE(audiotoolbox::MakeCAFWriter({kAudioFileAIFCType, format, {}}, writer), noErr);
    EXPECT_NE(audiotoolbox::MakeAUWriter({kAudioFileCAFType, format, {}}, writer), noErr);
    EXPECT_EQ(writer, nullptr);
}

TEST(WriterRefusals, MeetAStreamWithoutTheCookieThatItNeeds)
{
    for (const AudioFormatID id : {kAudioFormatMPEG4AAC, kAudioFormatAppleLossless})
        for (const Bytes& cookie : {Bytes{}, Bytes{0x03}, Bytes(11, 0)})
        {
            PacketWriterPtr writer;
            const auto format = converter_use::Compressed(id, 44100, 2, 1024);
            ASSERT_EQ(MakeWriter({kAudioFileCAFType, format, {}}, writer), noErr);
            MemorySink sink;
            StreamStart start;
            start.mCookie = cookie;
            EXPECT_EQ(writer->Start(sink, start), kAudioFileUnsupportedDataFormatError)
                << Code(id) << " " << cookie.size();
            EXPECT_EQ(sink.Size(), 0);
        }
}

TEST(WriterRefusals, MeetCallsOutOfOrderAndBrokenPackets)
{
    PacketWriterPtr writer;
    ASSERT_EQ(MakeWriter({kAudioFileWAVEType, Integers(16, 2), {}}, writer), noErr);
    MemorySink sink;
    const Bytes bytes(8);
    EXPECT_EQ(writer->Write(bytes, {}), kAudioFileNotOpenError);
    EXPECT_EQ(writer->Finish({}), kAudioFileNotOpenError);
    EXPECT_EQ(writer->Start(sink, {}), noErr);
    EXPECT_EQ(writer->Start(sink, {}), kAudioFileOperationNotSupportedError);
    EXPECT_EQ(writer->Write(std::span(bytes).first(7), {}), kAudio_ParamError);
    EXPECT_EQ(sink.Size(), 44);

    const EncodedTones tones = Encode(kAudioFormatAppleLossless, 1, 100);
    MemorySink described;
    ASSERT_EQ(MakeWriter({kAudioFileCAFType, tones.mStream.mFormat, {}}, writer), noErr);
    ASSERT_EQ(writer->Start(described, tones.mStart), noErr);
    const SInt64 size = described.Size();
    const Packets packets = {{0, 0, 7}};
    EXPECT_EQ(writer->Write(bytes, packets), kAudio_ParamError);
    EXPECT_EQ(writer->Write(bytes, {}), kAudio_ParamError);
    EXPECT_EQ(described.Size(), size);
}

struct StreamRow
{
    AudioFileTypeID mType;
    AudioStreamBasicDescription mFormat;
    StreamStart mStart;
    std::vector<Bytes> mPackets;
    StreamEnd mEnd;
};

// Odd sizes, so that padding is written; one of every type, and packets of many sizes.
std::vector<StreamRow> ShortStreams()
{
    std::vector<StreamRow> rows;
    for (const AudioFileTypeID type : kTypes)
    {
        const auto format =
            Complete(audiotoolbox::WritableVariants(type, kAudioFormatLinearPCM).at(2), 8000, 1);
        const Bytes samples = SomeSamples(format, 7);
        std::vector<Bytes> packets;
        for (auto at = samples.begin(); at != samples.end(); at += format.mBytesPerPacket)
            packets.emplace_back(at, at + format.mBytesPerPacket);
        rows.push_back({type, format, {}, packets, {{}, 7, 0, 0}});
    }
    const EncodedTones tones = Encode(kAudioFormatMPEG4AAC, 1, 5000);
    rows.push_back({kAudioFileCAFType, tones.mStream.mFormat, tones.mStart, tones.mStream.mPackets,
                    tones.mEnd});
    return rows;
}

Outcome WriteRow(ByteSink& ioSink, const StreamRow& inRow)
{
    return Write(ioSink, {inRow.mType, inRow.mFormat, {}}, inRow.mStart, inRow.mPackets,
                 inRow.mEnd);
}

TEST(FailingSinks, AreToldWhereverTheRoomEnds)
{
    for (const StreamRow& row : ShortStreams())
    {
        MemorySink whole;
        ASSERT_TRUE(WriteRow(whole, row).IsGood());
        for (SInt64 room = 0; room < whole.Size(); ++room)
        {
            MemorySink sink(room);
            const Outcome outcome = WriteRow(sink, row);
            EXPECT_TRUE(outcome.mStarted == kAudio_DiskFullError ||
                        outcome.mWritten == kAudio_DiskFullError ||
                        outcome.mFinished == kAudio_DiskFullError)
                << Code(row.mType) << " room " << room;
        }
        MemorySink enough(whole.Size());
        EXPECT_TRUE(WriteRow(enough, row).IsGood()) << Code(row.mType);
    }
}

// The packets that came back are the first ones; a table that found no room leaves none of them.
TEST(FailingSinks, LeaveAHeaderThatAgreesWithTheWholePacketsInTheFile)
{
    for (const StreamRow& row : ShortStreams())
    {
        MemorySink whole;
        ASSERT_TRUE(WriteRow(whole, row).IsGood());
        const Bytes audio = Joined(row.mPackets);
        for (SInt64 room = 0; room < whole.Size(); ++room)
        {
            SCOPED_TRACE(Code(row.mType) + " room " + std::to_string(room));
            MemorySink sink(room);
            const Outcome outcome = WriteRow(sink, row);
            if (outcome.mStarted != noErr || outcome.mFinished != noErr)
                continue;
            const auto file = Open(sink.Bytes());
            ASSERT_EQ(file.mStatus, noErr);
            const auto drained = Drain(*file.mReader);
            ASSERT_LE(drained.mBytes.size(), audio.size());
            EXPECT_TRUE(std::equal(drained.mBytes.begin(), drained.mBytes.end(), audio.begin()));
            EXPECT_EQ(file.Facts().mPacketCount, drained.mPackets.size());
            if (row.mFormat.mBytesPerPacket == 0)
                continue;  // a table follows
            const bool isPadded = row.mType != kAudioFileCAFType &&
                                  row.mType != kAudioFileNextType &&
                                  row.mType != kAudioFileWave64Type;
            const std::size_t padding = isPadded ? drained.mBytes.size() % 2 : 0;
            EXPECT_EQ(static_cast<std::size_t>(sink.Size() - file.Facts().mDataOffset),
                      drained.mBytes.size() + padding);
        }
    }
}

// Takes a part of the second append behind the header and answers -34, once.
class OnceFull : public MemorySink
{
public:
    explicit OnceFull(std::size_t inTaken) : mTaken(inTaken) {}

    OSStatus Append(std::span<const UInt8> inBytes) override
    {
        if (++mCalls != 3)
            return MemorySink::Append(inBytes);
        (void)MemorySink::Append(inBytes.first(mTaken));
        return kAudio_DiskFullError;
    }

private:
    std::size_t mTaken;
    int mCalls = 0;
};

TEST(FailingSinks, MayFindRoomAgainBehindAFailedWrite)
{
    PacketWriterPtr writer;
    ASSERT_EQ(MakeWriter({kAudioFileWAVEType, Integers(16, 1), {}}, writer), noErr);
    OnceFull sink(5);
    ASSERT_EQ(writer->Start(sink, {}), noErr);
    EXPECT_EQ(writer->Write(Bytes{1, 2, 3, 4}, {}), noErr);
    EXPECT_EQ(writer->Write(Bytes{5, 6, 7, 8, 9, 10, 11, 12}, {}), kAudio_DiskFullError);
    EXPECT_EQ(writer->Write(Bytes{21, 22}, {}), noErr);
    EXPECT_EQ(writer->Finish({}), noErr);
    EXPECT_EQ(Drain(*Open(sink.Bytes()).mReader).mBytes, (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 21, 22}));
}

TEST(FailingSinks, KeepTheWholeOnesOfPacketsOfManySizes)
{
    const EncodedTones tones = Encode(kAudioFormatAppleLossless, 1, 6 * 4096);
    const std::vector<Bytes>& packets = tones.mStream.mPackets;
    ASSERT_EQ(packets.size(), 6u);
    const std::size_t whole = packets[2].size() + packets[3].size();  // of the second write
    OnceFull sink(packets[2].size() + 1);
    const Outcome outcome = Write(sink, {kAudioFileCAFType, tones.mStream.mFormat, {}},
                                  tones.mStart, packets, tones.mEnd, 2);
    ASSERT_GT(whole, packets[2].size() + 1);
    EXPECT_EQ(outcome.mWritten, kAudio_DiskFullError);
    EXPECT_EQ(outcome.mFinished, noErr);
    const auto file = Open(sink.Bytes());
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_TRUE(Drain(*file.mReader).mBytes == Joined({packets[0], packets[1], packets[2]}));
    EXPECT_EQ(FramesTold(file), 3u * 4096);
}

TEST(FailingSinks, AreToldWhenTheHeaderCannotBePatched)
{
    for (const StreamRow& row : ShortStreams())
    {
        MemorySink sink;
        sink.mPatchStatus = kAudio_IOError;
        EXPECT_EQ(WriteRow(sink, row).mFinished, kAudio_IOError) << Code(row.mType);
    }
}

TEST(FailingSinks, AreToldWhenABrokenPacketCannotBeCut)
{
    class Uncut : public MemorySink
    {
    public:
        using MemorySink::MemorySink;
        OSStatus Truncate(SInt64) override { return kAudio_IOError; }
    };
    const WriteRequest request = {kAudioFileWAVEType, Integers(16, 2), {}};
    Uncut sink(44 + 6);
    const Outcome outcome = Write(sink, request, {}, {Bytes(4), Bytes(4)}, {{}, 2, 0, 0}, 1);
    EXPECT_EQ(outcome.mWritten, kAudio_DiskFullError);
    EXPECT_EQ(outcome.mFinished, kAudio_IOError);
}

TEST(FailingSinks, OfAnEncodedStreamLeaveTheLengthOfWhatIsThere)
{
    const EncodedTones tones = Encode(kAudioFormatDVIIntelIMA, 2, 5000);
    const WriteRequest request = {kAudioFileWAVEType, tones.mStream.mFormat, {}};
    MemorySink sink(60 + 2 * 1024 + 300);
    const Outcome outcome =
        Write(sink, request, tones.mStart, tones.mStream.mPackets, tones.mEnd, 1);
    EXPECT_EQ(outcome.mWritten, kAudio_DiskFullError);
    EXPECT_EQ(outcome.mFinished, noErr);
    const auto file = Open(sink.Bytes());
    EXPECT_EQ(file.Facts().mPacketCount, 2u);
    EXPECT_EQ(FramesTold(file), 2u * 1017);
}

}  // namespace
