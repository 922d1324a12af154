// Linear PCM: every variant of every type comes back as it was handed over.
#include "OtherReaders.h"
#include "Written.h"

#include <cmath>

namespace
{

using namespace written;
using namespace other_readers;
using testing_support::Drain;
using testing_support::Open;

bool IsFloat(const AudioStreamBasicDescription& inFormat)
{
    return (inFormat.mFormatFlags & kAudioFormatFlagIsFloat) != 0;
}

// As libsndfile hands samples over: integers in the high bits of 32.
double SampleOf(const AudioStreamBasicDescription& inFormat, const UInt8* inBytes)
{
    const UInt32 word = inFormat.mBitsPerChannel / 8;
    const bool isBig = (inFormat.mFormatFlags & kAudioFormatFlagIsBigEndian) != 0;
    UInt64 bits = 0;
    for (UInt32 i = 0; i < word; ++i)
        bits = (bits << 8) | inBytes[isBig ? i : word - 1 - i];
    if (IsFloat(inFormat))
        return word == 8 ? std::bit_cast<double>(bits)
                         : double{std::bit_cast<float>(static_cast<UInt32>(bits))};
    if ((inFormat.mFormatFlags & kAudioFormatFlagIsSignedInteger) == 0)
        bits ^= 0x80;
    return static_cast<SInt32>(static_cast<UInt32>(bits) << (32 - inFormat.mBitsPerChannel));
}

std::vector<double> SamplesOf(const AudioStreamBasicDescription& inFormat, const Bytes& inBytes)
{
    std::vector<double> samples;
    for (std::size_t i = 0; i < inBytes.size(); i += inFormat.mBitsPerChannel / 8)
        samples.push_back(SampleOf(inFormat, inBytes.data() + i));
    return samples;
}

struct Case
{
    AudioFileTypeID mType;
    AudioStreamBasicDescription mFormat;
    std::size_t mFrames;

    std::string Text() const
    {
        return Code(mType) + " " + std::to_string(mFormat.mBitsPerChannel) + " bits flags " +
               std::to_string(mFormat.mFormatFlags) + " channels " +
               std::to_string(mFormat.mChannelsPerFrame) + " frames " + std::to_string(mFrames);
    }
};

std::vector<Case> EveryCase()
{
    std::vector<Case> cases;
    for (const AudioFileTypeID type : kTypes)
        for (const auto& variant : audiotoolbox::WritableVariants(type, kAudioFormatLinearPCM))
            for (const UInt32 channels : {1u, 2u, 3u, 6u, 8u})
                for (const std::size_t frames : {0u, 1u, 2u, 1001u})
                    cases.push_back({type, Complete(variant, 48000, channels), frames});
    return cases;
}

TEST(WrittenSamples, ComeBackFromOurOwnReaderWithEveryFact)
{
    ASSERT_EQ(EveryCase().size(), (4u * 6 + 4 + 9 + 6 + 11) * 5 * 4);
    for (const Case& row : EveryCase())
    {
        SCOPED_TRACE(row.Text());
        const Bytes samples = SomeSamples(row.mFormat, row.mFrames);
        const auto file = Open(WriteSamples(row.mType, row.mFormat, samples));
        ASSERT_EQ(file.mStatus, noErr);
        EXPECT_EQ(file.Facts().mFileType, row.mType);
        AudioStreamBasicDescription told = file.Format();
        if (told.mBitsPerChannel == 8)
            told.mFormatFlags &= ~kAudioFormatFlagIsBigEndian;  // single bytes have no order
        EXPECT_EQ(std::memcmp(&told, &row.mFormat, sizeof(told)), 0);
        EXPECT_EQ(file.Facts().mPacketCount, row.mFrames);
        EXPECT_EQ(FramesTold(file), row.mFrames);
        EXPECT_EQ(file.Facts().mBitRate, 48000 * 8 * row.mFormat.mBytesPerFrame);
        EXPECT_FALSE(file.Facts().mPacketTable.has_value());
        EXPECT_TRUE(Drain(*file.mReader).mBytes == samples);
    }
}

TEST(WrittenSamples, ComeBackFromLibsndfileBitForBit)
{
    int judged = 0;
    for (const Case& row : EveryCase())
    {
        if (row.mType == kAudioFileBW64Type)
            continue;  // it does not know that magic
        SCOPED_TRACE(row.Text());
        const Bytes samples = SomeSamples(row.mFormat, row.mFrames);
        const SndFile file =
            ReadWithSndFile(WriteSamples(row.mType, row.mFormat, samples), IsFloat(row.mFormat));
        ASSERT_TRUE(file.mIsOpen) << file.mError;
        EXPECT_EQ(file.mInfo.samplerate, 48000);
        EXPECT_EQ(file.mInfo.channels, static_cast<int>(row.mFormat.mChannelsPerFrame));
        EXPECT_EQ(file.mInfo.frames, static_cast<sf_count_t>(row.mFrames));
        EXPECT_TRUE(file.mSamples == SamplesOf(row.mFormat, samples));
        ++judged;
    }
    EXPECT_EQ(judged, (3 * 6 + 4 + 9 + 6 + 11) * 5 * 4);
}

TEST(WrittenSamples, ComeBackFromSoxAndFFmpeg)
{
    struct Row
    {
        AudioFileTypeID mType;
        const char* mExtension;
        bool mHasSox;
    };
    constexpr Row kRows[] = {
        {kAudioFileWAVEType, "wav", true},  {kAudioFileRF64Type, "wav", false},
        {kAudioFileBW64Type, "wav", false}, {kAudioFileWave64Type, "w64", true},
        {kAudioFileAIFFType, "aiff", true}, {kAudioFileAIFCType, "aifc", true},
        {kAudioFileCAFType, "caf", true},   {kAudioFileNextType, "au", true},
    };
    for (const Row& row : kRows)
        for (const auto& variant : audiotoolbox::WritableVariants(row.mType, kAudioFormatLinearPCM))
        {
            const auto format = Complete(variant, 48000, 2);
            const Case told = {row.mType, format, 777};
            SCOPED_TRACE(told.Text());
            const Bytes samples = SomeSamples(format, 777);
            const StoredFile file(WriteSamples(row.mType, format, samples), row.mExtension);
            // Through 64-bit floats nothing is lost.
            std::vector<double> wanted = SamplesOf(format, samples);
            if (!IsFloat(format))
                for (double& sample : wanted)
                    sample /= 2147483648.0;
            // ffmpeg takes every little-endian AIFF-C for 16 bits.
            const bool isTakenFor16 = row.mType == kAudioFileAIFCType &&
                                      format.mBitsPerChannel > 16 &&
                                      (format.mFormatFlags & kAudioFormatFlagIsBigEndian) == 0;
            const Bytes ffmpeg = OutputOf("ffmpeg -v error -i " + file.Path() + " -f f64le - 2>&1");
            EXPECT_EQ(converter_use::As<double>(ffmpeg) == wanted, !isTakenFor16);
            if (!row.mHasSox || IsFloat(format))
                continue;  // sox works in 32-bit integers
            const Bytes sox = OutputOf("sox -V1 " + file.Path() + " -t raw -e floating -b 64 -L -");
            EXPECT_TRUE(converter_use::As<double>(sox) == wanted) << "sox";
        }
}

TEST(WrittenSamples, KeepRatesThatAreNoWholeNumbersWhereTheHeaderCan)
{
    struct Row
    {
        AudioFileTypeID mType;
        double mRate;
    };
    for (const Row& row : {Row{kAudioFileAIFFType, 44099.75}, Row{kAudioFileAIFCType, 44099.75},
                           Row{kAudioFileCAFType, 44099.75}, Row{kAudioFileWAVEType, 44100},
                           Row{kAudioFileWave64Type, 44100}, Row{kAudioFileNextType, 44100}})
    {
        auto format = Complete(
            audiotoolbox::WritableVariants(row.mType, kAudioFormatLinearPCM).at(1), 44099.75, 1);
        EXPECT_EQ(
            Open(WriteSamples(row.mType, format, SomeSamples(format, 9))).Format().mSampleRate,
            row.mRate)
            << Code(row.mType);
    }
}

TEST(WrittenSamples, AreTheSameInHoweverManyWrites)
{
    for (const AudioFileTypeID type : kTypes)
    {
        const auto format =
            Complete(audiotoolbox::WritableVariants(type, kAudioFormatLinearPCM).at(0), 8000, 1);
        const Bytes samples = SomeSamples(format, 99);
        std::vector<Bytes> packets;
        for (const UInt8 byte : samples)
            packets.push_back({byte});
        MemorySink sink;
        const WriteRequest request = {type, format, {}};
        EXPECT_TRUE(Write(sink, request, {}, packets, {{}, 99, 0, 0}, 5).IsGood());
        EXPECT_TRUE(sink.Bytes() == WriteSamples(type, format, samples)) << Code(type);
    }
}

TEST(WrittenSamples, MakeAFileThatOpensBeforeItIsFinished)
{
    for (const AudioFileTypeID type : kTypes)
    {
        const auto format =
            Complete(audiotoolbox::WritableVariants(type, kAudioFormatLinearPCM).at(0), 8000, 1);
        PacketWriterPtr writer;
        ASSERT_EQ(MakeWriter({type, format, {}}, writer), noErr);
        MemorySink sink;
        ASSERT_EQ(writer->Start(sink, {}), noErr);
        const auto file = Open(sink.Bytes());
        ASSERT_EQ(file.mStatus, noErr) << Code(type);
        EXPECT_EQ(file.Facts().mPacketCount, 0u) << Code(type);
    }
}

}  // namespace
