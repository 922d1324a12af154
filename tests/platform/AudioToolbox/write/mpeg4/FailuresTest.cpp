// Sinks that run out of room or fail, and requests that no file can fulfil.
#include "WriterUse.h"

namespace
{

using namespace writer_use;
using audiotoolbox::MakeMPEG4Writer;
using audiotoolbox::PacketWriterPtr;
using testing_support::MemorySink;

constexpr OSStatus kNoFormat = kAudioFileUnsupportedDataFormatError;

Stream ShortStream(AudioFormatID inFormat)
{
    return Encode(MakeAudio(inFormat, 2, 5000));
}

TEST(MPEG4Failures, EveryRoomBelowTheWholeFileIsAStatus)
{
    const Stream stream = ShortStream(kAudioFormatMPEG4AAC);
    const SInt64 whole = static_cast<SInt64>(Written(kAudioFileM4AType, stream, 5000).size());
    for (SInt64 room = 0; room < whole; ++room)
    {
        MemorySink sink(room);
        ASSERT_EQ(WriteFile(kAudioFileM4AType, stream, 5000, sink), kAudio_DiskFullError) << room;
        ASSERT_LE(sink.Size(), room);
    }
    MemorySink sink(whole);
    EXPECT_EQ(WriteFile(kAudioFileM4AType, stream, 5000, sink), noErr);
}

TEST(MPEG4Failures, NothingFollowsAWriteThatFailed)
{
    const Stream stream = ShortStream(kAudioFormatAppleLossless);
    PacketWriterPtr writer;
    MemorySink sink(200);
    ASSERT_EQ(MakeMPEG4Writer(RequestOf(kAudioFileM4AType, stream), writer), noErr);
    ASSERT_EQ(writer->Start(sink, StartOf(stream)), noErr);
    EXPECT_EQ(WritePackets(stream, *writer), kAudio_DiskFullError);
    EXPECT_EQ(WritePackets(stream, *writer), kAudio_DiskFullError);
    EXPECT_EQ(writer->Finish(EndOf(stream, 5000)), kAudio_DiskFullError);
}

// Takes no more than some bytes of audio; what comes behind has room.
class TightForAudio : public MemorySink
{
public:
    explicit TightForAudio(std::size_t inBytes) : mLeft(inBytes) {}

    OSStatus Append(std::span<const UInt8> inBytes) override
    {
        const std::size_t count = mHasFailed ? inBytes.size() : std::min(inBytes.size(), mLeft);
        mLeft -= std::min(count, mLeft);
        (void)MemorySink::Append(inBytes.first(count));
        mHasFailed = mHasFailed || count < inBytes.size();
        return count == inBytes.size() ? OSStatus{noErr} : kAudio_DiskFullError;
    }

private:
    std::size_t mLeft;
    bool mHasFailed = false;
};

TEST(MPEG4Failures, ThePacketsThatAreWholeMakeAFile)
{
    const Stream stream = Encode(MakeAudio(kAudioFormatMPEG4AAC, 2, 30011));
    std::size_t packetBytes = 0;
    for (std::size_t i = 0; i < 11; ++i)
        packetBytes += stream.mPackets[i].size();
    constexpr std::size_t kFront = 32 + 16;
    for (const std::size_t more : {std::size_t{0}, std::size_t{1}, std::size_t{20}})
    {
        TightForAudio sink(kFront + packetBytes + more);
        PacketWriterPtr writer;
        ASSERT_EQ(MakeMPEG4Writer(RequestOf(kAudioFileM4AType, stream), writer), noErr);
        ASSERT_EQ(writer->Start(sink, StartOf(stream)), noErr);
        EXPECT_EQ(WritePackets(stream, *writer), kAudio_DiskFullError);
        EXPECT_EQ(writer->Finish(EndOf(stream, 30011)), noErr);
        const auto reader = Opened(sink.Bytes());
        ASSERT_TRUE(reader);
        EXPECT_TRUE(AllPackets(*reader) ==
                    std::vector<Bytes>(stream.mPackets.begin(), stream.mPackets.begin() + 11));
        EXPECT_EQ(reader->Facts().mPacketTable->mNumberValidFrames, 10 * 1024);
    }
}

TEST(MPEG4Failures, APatchThatFailsIsAStatusOfTheFinish)
{
    const Stream stream = ShortStream(kAudioFormatMPEG4AAC);
    MemorySink sink;
    sink.mPatchStatus = kAudio_IOError;
    EXPECT_EQ(WriteFile(kAudioFileM4AType, stream, 5000, sink), kAudio_IOError);
}

TEST(MPEG4Failures, WritingBeforeTheStartIsRefused)
{
    const Stream stream = ShortStream(kAudioFormatMPEG4AAC);
    PacketWriterPtr writer;
    ASSERT_EQ(MakeMPEG4Writer(RequestOf(kAudioFileM4AType, stream), writer), noErr);
    EXPECT_EQ(WritePackets(stream, *writer), kAudioFileNotOpenError);
    EXPECT_EQ(writer->Finish(EndOf(stream, 5000)), kAudioFileNotOpenError);
}

TEST(MPEG4Failures, BytesThatAreNotThoseOfThePacketsAreRefused)
{
    const Stream stream = ShortStream(kAudioFormatMPEG4AAC);
    PacketWriterPtr writer;
    MemorySink sink;
    ASSERT_EQ(MakeMPEG4Writer(RequestOf(kAudioFileM4AType, stream), writer), noErr);
    ASSERT_EQ(writer->Start(sink, StartOf(stream)), noErr);
    const SInt64 before = sink.Size();
    const AudioStreamPacketDescription packets[] = {{0, 0, 40}, {40, 0, 0xFFFFFFFF}};
    EXPECT_EQ(writer->Write(Bytes(39), packets), kAudio_ParamError);
    EXPECT_EQ(writer->Write(Bytes(41), std::span(packets).first(1)), kAudio_ParamError);
    EXPECT_EQ(writer->Write(Bytes(39), {}), kAudio_ParamError);
    EXPECT_EQ(sink.Size(), before);
}

TEST(MPEG4Failures, FormatsThatTheTypeDoesNotHoldAreRefused)
{
    const Pair rows[] = {
        {kAudioFileM4AType, kAudioFormatMPEGLayer3},
        {kAudioFileM4AType, kAudioFormatLinearPCM},
        {kAudioFileM4AType, kAudioFormatEnhancedAC3},
        {kAudioFileM4BType, kAudioFormatFLAC},
        {kAudioFile3GPType, kAudioFormatAC3},
        {kAudioFile3GP2Type, kAudioFormatOpus},
        {kAudioFileMPEG4Type, kAudioFormatMPEGLayer2},
        {kAudioFileMPEG4Type, kAudioFormatALaw},
        {kAudioFileMPEG4Type, kAudioFormatMPEG4AAC_HE},
        {kAudioFileCAFType, kAudioFormatMPEG4AAC},
        {kAudioFileAAC_ADTSType, kAudioFormatMPEG4AAC},
        {0, kAudioFormatMPEG4AAC},
        {kAudioFileM4AType, 0},
    };
    for (const Pair& row : rows)
    {
        PacketWriterPtr writer;
        const audiotoolbox::WriteRequest request = {
            row.mType, {44100.0, row.mFormat, 0, 0, 1024, 0, 2, 0, 0}, {}};
        EXPECT_EQ(MakeMPEG4Writer(request, writer), kNoFormat) << Name(row);
        EXPECT_EQ(writer, nullptr);
    }
}

TEST(MPEG4Failures, RatesChannelsAndPacketsThatCannotBeAreRefused)
{
    const double kNaN = std::nan("");
    const AudioStreamBasicDescription rows[] = {
        {44100.0, kAudioFormatMPEG4AAC, 0, 0, 1024, 0, 0, 0, 0},
        {44100.0, kAudioFormatMPEG4AAC, 0, 0, 1024, 0, 7, 0, 0},
        {44100.0, kAudioFormatMPEG4AAC, 0, 0, 1024, 0, 0xFFFFFFFF, 0, 0},
        {44100.0, kAudioFormatMPEG4AAC, 0, 0, 0, 0, 2, 0, 0},
        {0.0, kAudioFormatMPEG4AAC, 0, 0, 1024, 0, 2, 0, 0},
        {-44100.0, kAudioFormatMPEG4AAC, 0, 0, 1024, 0, 2, 0, 0},
        {44100.5, kAudioFormatMPEG4AAC, 0, 0, 1024, 0, 2, 0, 0},
        {kNaN, kAudioFormatMPEG4AAC, 0, 0, 1024, 0, 2, 0, 0},
        {1e300, kAudioFormatAppleLossless, 1, 0, 4096, 0, 2, 0, 0},
        {44101.0, kAudioFormatAC3, 0, 0, 1536, 0, 2, 0, 0},
        {48000.0, kAudioFormatAC3, 0, 0, 1536, 0, 8, 0, 0},
    };
    for (const AudioStreamBasicDescription& format : rows)
    {
        PacketWriterPtr writer;
        EXPECT_EQ(MakeMPEG4Writer({kAudioFileM4AType, format, {}}, writer), kNoFormat)
            << format.mSampleRate << ", " << format.mChannelsPerFrame;
    }
}

TEST(MPEG4Failures, ACookieThatIsMissingDamagedOrOfOtherAudioIsRefusedAtTheStart)
{
    for (const AudioFormatID format :
         {kAudioFormatMPEG4AAC, kAudioFormatAppleLossless, kAudioFormatFLAC, kAudioFormatOpus})
    {
        const Stream stream = ShortStream(format);
        const Stream other = Encode(MakeAudio(format, 1, 5000));
        const Bytes& whole = stream.mCookie;
        for (const Bytes& cookie : {Bytes(), Bytes{0x12}, Bytes(whole.size(), 0xFF),
                                    Bytes(whole.begin(), whole.end() - 1), other.mCookie})
        {
            // What a shorter configuration of AAC leaves out is an extension.
            if (format == kAudioFormatMPEG4AAC && cookie.size() == whole.size() - 1)
                continue;
            PacketWriterPtr writer;
            MemorySink sink;
            ASSERT_EQ(MakeMPEG4Writer(RequestOf(kAudioFileMPEG4Type, stream), writer), noErr);
            audiotoolbox::StreamStart start = StartOf(stream);
            start.mCookie = cookie;
            EXPECT_EQ(writer->Start(sink, start), kNoFormat)
                << CodeText(format) << ", bytes " << cookie.size();
            EXPECT_EQ(sink.Size(), 0);
        }
    }
}

TEST(MPEG4Failures, CookiesInTheirWrappingsAreUnderstood)
{
    struct
    {
        AudioFormatID mFormat;
        Bytes mFront;
        std::size_t mDropped;  // bytes of the encoder's own cookie
    } const rows[] = {
        {kAudioFormatAppleLossless, {}, 12},
        {kAudioFormatAppleLossless, {0, 0, 0, 12, 'f', 'r', 'm', 'a', 'a', 'l', 'a', 'c'}, 0},
        {kAudioFormatFLAC, {0x80, 0, 0, 34}, 0},
        {kAudioFormatFLAC, {'f', 'L', 'a', 'C', 0x80, 0, 0, 34}, 0},
    };
    for (const auto& row : rows)
    {
        const Stream stream = ShortStream(row.mFormat);
        Stream wrapped = stream;
        wrapped.mCookie.erase(wrapped.mCookie.begin(),
                              wrapped.mCookie.begin() + static_cast<std::ptrdiff_t>(row.mDropped));
        wrapped.mCookie.insert(wrapped.mCookie.begin(), row.mFront.begin(), row.mFront.end());
        const auto reader = Opened(Written(kAudioFileMPEG4Type, wrapped, 5000));
        ASSERT_TRUE(reader);
        EXPECT_EQ(reader->Facts().mCookie, stream.mCookie);
    }
}

TEST(MPEG4Failures, ACookieOfOtherAudioAtTheEndIsAStatus)
{
    const Stream stream = ShortStream(kAudioFormatFLAC);
    PacketWriterPtr writer;
    MemorySink sink;
    ASSERT_EQ(MakeMPEG4Writer(RequestOf(kAudioFileMPEG4Type, stream), writer), noErr);
    ASSERT_EQ(writer->Start(sink, StartOf(stream)), noErr);
    ASSERT_EQ(WritePackets(stream, *writer), noErr);
    audiotoolbox::StreamEnd end = EndOf(stream, 5000);
    end.mCookie.resize(5);
    EXPECT_EQ(writer->Finish(end), kNoFormat);
}

}  // namespace
