// What each writer writes, read back by our own parsers.
#include "StreamWriting.h"

using namespace stream_writing;

namespace
{

TEST(WrittenStreams, ReadBackWithTheirFactsAndPackets)
{
    for (const Kind& kind : kKinds)
        for (const UInt32 channels : kind.mChannels)
            for (const UInt32 frames : {1u, kind.mFramesPerPacket - 1, kind.mFramesPerPacket,
                                        kind.mFramesPerPacket + 1, 20000u})
            {
                const std::string what = std::string(kind.mName) + ", " + std::to_string(channels) +
                                         " channels, " + std::to_string(frames) + " frames";
                const Stream stream = EncodeTones(kind, channels, frames);
                auto file = OpenByContent(Written(kind, stream, frames));
                ASSERT_EQ(file.mStatus, noErr) << what;
                const audiotoolbox::FileFacts& facts = file.Facts();
                EXPECT_EQ(facts.mFileType, kind.mType) << what;
                EXPECT_EQ(facts.mDataFormat.mFormatID, kind.mFormat) << what;
                EXPECT_EQ(facts.mDataFormat.mSampleRate, kind.mRate) << what;
                EXPECT_EQ(facts.mDataFormat.mChannelsPerFrame, channels) << what;
                EXPECT_EQ(facts.mDataFormat.mFramesPerPacket, stream.mFormat.mFramesPerPacket)
                    << what;
                EXPECT_EQ(facts.mFormats.size(), 1u) << what;
                const std::size_t head = kind.mType == kAudioFileAAC_ADTSType ? 7 : 0;
                std::vector<Bytes> packets = PacketsOf(file);
                for (Bytes& packet : packets)
                    packet.erase(packet.begin(),
                                 packet.begin() + static_cast<std::ptrdiff_t>(head));
                EXPECT_EQ(packets, stream.mPackets) << what;
                EXPECT_EQ(facts.mPacketCount, stream.mPackets.size()) << what;
            }
}

TEST(WrittenStreams, StateTheirExactLengthWhereTheFormatCan)
{
    for (const Kind& kind : {kMP3, kMP3Low, kFLAC})
        for (const int frames : {1, 575, 576, 577, 1151, 1152, 1153, 4607, 4608, 4609, 9217, 44101})
        {
            const Stream stream = EncodeTones(kind, 2, static_cast<std::size_t>(frames));
            auto file = OpenByContent(Written(kind, stream, frames));
            ASSERT_EQ(file.mStatus, noErr);
            ASSERT_TRUE(file.Facts().mPacketTable) << kind.mName << " " << frames;
            EXPECT_EQ(file.Facts().mPacketTable->mNumberValidFrames, frames) << kind.mName;
            EXPECT_EQ(file.Facts().mPacketTable->mPrimingFrames,
                      kind.mFormat == kAudioFormatFLAC ? 0 : 1105);
        }
}

TEST(WrittenStreams, WithoutAudioAreTheirHeadAlone)
{
    for (const Kind& kind : kKinds)
    {
        const Stream stream = EncodeTones(kind, 2, 0);
        ASSERT_TRUE(stream.mPackets.empty());
        const Bytes bytes = Written(kind, stream, 0);
        EXPECT_EQ(static_cast<SInt64>(bytes.size()), kind.mEmptyBytes) << kind.mName;
        if (bytes.empty())
            continue;
        auto file = OpenByContent(bytes);
        ASSERT_EQ(file.mStatus, noErr) << kind.mName;
        EXPECT_EQ(file.Facts().mFileType, kind.mType);
        EXPECT_EQ(file.Facts().mPacketCount, 0u) << kind.mName;
        EXPECT_EQ(file.Facts().mEstimatedDuration, 0.0) << kind.mName;
        EXPECT_TRUE(PacketsOf(file).empty());
    }
}

TEST(WrittenStreams, DoNotDependOnHowManyPacketsComeAtOnce)
{
    for (const Kind& kind : kKinds)
    {
        const Stream stream = EncodeTones(kind, 2, 30000);
        testing_support::MemorySink single;
        testing_support::MemorySink all;
        ASSERT_EQ(File(kind, stream, 30000).Run(single, 1), noErr);
        ASSERT_EQ(File(kind, stream, 30000).Run(all, 1000), noErr);
        EXPECT_EQ(single.Bytes(), all.Bytes()) << kind.mName;
    }
}

TEST(WrittenStreams, DeclineWhatTheyCannotHold)
{
    for (const Kind& kind : kKinds)
    {
        const Stream stream = EncodeTones(kind, 2, 3000);
        const File good(kind, stream, 3000);
        std::vector<audiotoolbox::WriteRequest> bad(5, good.mRequest);
        bad[0].mFormat.mFormatID = kAudioFormatLinearPCM;
        bad[1].mFormat.mFormatID = kAudioFormatAppleLossless;
        bad[2].mFormat.mSampleRate = 0;
        bad[3].mFormat.mSampleRate = std::nan("");
        bad[4].mFormat.mChannelsPerFrame = 0;
        for (const audiotoolbox::WriteRequest& request : bad)
        {
            audiotoolbox::PacketWriterPtr writer;
            EXPECT_EQ(kind.mMake(request, writer), kAudioFileUnsupportedDataFormatError)
                << kind.mName << " " << (&request - bad.data());
            EXPECT_EQ(writer, nullptr);
        }
    }
}

TEST(WrittenStreams, DeclineChannelsAndRatesThatTheirHeadsCannotSay)
{
    struct Row
    {
        const Kind& mKind;
        double mRate;
        UInt32 mChannels;
    };
    const Row rows[] = {{kADTS, 44100, 7},  {kADTS, 44101, 2},   {kADTS, 44100.5, 2},
                        {kADTS, 192000, 2}, {kLOAS, 44100, 7},   {kLOAS, 44100.5, 2},
                        {kLOAS, 2e7, 2},    {kMP3, 44100, 3},    {kMP3, 96000, 2},
                        {kMP3, 44101, 2},   {kFLAC, 44100, 9},   {kFLAC, 1048576, 2},
                        {kFLAC, 1e300, 2},  {kADTS, 44100, 2000}};
    for (const Row& row : rows)
    {
        const Stream stream = EncodeTones(row.mKind, 2, 3000);
        File file(row.mKind, stream, 3000);
        file.mRequest.mFormat.mSampleRate = row.mRate;
        file.mRequest.mFormat.mChannelsPerFrame = row.mChannels;
        testing_support::MemorySink sink;
        EXPECT_EQ(file.Run(sink), kAudioFileUnsupportedDataFormatError)
            << row.mKind.mName << " " << row.mRate << " " << row.mChannels;
        EXPECT_EQ(sink.Size(), 0);
    }
}

TEST(WrittenStreams, DeclineABareTypeWithAnothersFormat)
{
    const Stream stream = EncodeTones(kAC3, 2, 3000);
    File file(kAC3, stream, 3000);
    file.mRequest.mType = kAudioFileEAC3Type;
    testing_support::MemorySink sink;
    EXPECT_EQ(file.Run(sink), kAudioFileUnsupportedDataFormatError);
}

}  // namespace
