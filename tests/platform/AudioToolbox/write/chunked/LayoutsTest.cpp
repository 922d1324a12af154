// Channel layouts: every label comes back in the container's own form.
#include "OtherReaders.h"
#include "Written.h"
#include "platform/AudioToolbox/src/file/Endian.h"
#include "platform/AudioToolbox/src/file/write/chunked/SpeakerMask.h"

namespace
{

using namespace written;
using namespace other_readers;
using audiotoolbox::SpeakerMaskOf;
using testing_support::LayoutWords;
using testing_support::Open;

using Words = std::vector<UInt32>;

Words LayoutIn(AudioFileTypeID inType, const Labels& inLabels, UInt32 inBits = 16)
{
    const bool isBig = inType == kAudioFileAIFFType || inType == kAudioFileAIFCType ||
                       inType == kAudioFileNextType;
    const auto format = Integers(inBits, static_cast<UInt32>(inLabels.size()),
                                 isBig ? kAudioFormatFlagIsBigEndian : 0);
    const Bytes file = WriteSamples(inType, format, SomeSamples(format, 10), inLabels);
    return LayoutWords(Open(file).Facts().mChannelLayout);
}

constexpr UInt32 kBitmapTag = 0x10000;

struct MaskRow
{
    Labels mLabels;
    UInt32 mMask;
};

TEST(WrittenLayouts, AreAChannelMaskInWAVE)
{
    const MaskRow rows[] = {
        {{1, 2, 3}, 0x7},
        {{1, 2, 3, 9}, 0x107},
        {{1, 2, 5, 6}, 0x33},
        {{1, 2, 33, 34}, 0x33},
        {{1, 2, 10, 11}, 0x603},
        {{1, 2, 3, 4, 5, 6}, 0x3F},
        {{1, 2, 3, 4, 10, 11}, 0x60F},
        {{1, 2, 3, 4, 5, 6, 7, 8}, 0xFF},
        {{1, 2, 3, 4, 33, 34, 5, 6}, 0x63F},
        {{1, 2, 3, 4, 5, 6, 10, 11}, 0x63F},
        {{1, 2, 3, 12, 13, 14, 15, 16, 17, 18}, 0x3F807},
        {{9}, 0x100},
        {{5, 6}, 0x30},
    };
    for (const AudioFileTypeID type :
         {kAudioFileWAVEType, kAudioFileRF64Type, kAudioFileBW64Type, kAudioFileWave64Type})
        for (const MaskRow& row : rows)
            EXPECT_EQ(LayoutIn(type, row.mLabels), (Words{kBitmapTag, row.mMask, 0}))
                << Code(type) << " mask " << row.mMask;
}

TEST(WrittenLayouts, AreNoMaskWhereALabelHasNoBitOrAnotherPlace)
{
    for (const Labels& labels :
         {Labels{1, 2, 400}, Labels{2, 1}, Labels{1, 1}, Labels{3, 1, 2, 5, 6, 4}, Labels{37, 1},
          Labels{1, 2, 5, 6, 33, 34}, Labels{1, 2, 33, 34, 5, 6, 10, 11}, Labels{200, 201, 202},
          Labels{0xFFFFFFFF, 1}, Labels{0}, Labels{}})
        EXPECT_EQ(SpeakerMaskOf(labels), 0u);
    EXPECT_EQ(LayoutIn(kAudioFileWAVEType, {2, 1}), Words());
    EXPECT_EQ(LayoutIn(kAudioFileWAVEType, {400, 400, 400}), Words());
}

TEST(WrittenLayouts, OfOneAndTwoChannelsAtSixteenBitsStayOutOfAPlainRecord)
{
    for (const Labels& labels : {Labels{42}, Labels{3}, Labels{1, 2}})
    {
        EXPECT_EQ(LayoutIn(kAudioFileWAVEType, labels), Words());
        const auto format = Integers(16, static_cast<UInt32>(labels.size()));
        const Bytes file = WriteSamples(kAudioFileWAVEType, format, {}, labels);
        EXPECT_EQ(file.size(), 44u);
        EXPECT_EQ(file[20], 1) << "format tag";
    }
    EXPECT_EQ(LayoutIn(kAudioFileWAVEType, {42}, 24), (Words{kBitmapTag, 0x4, 0}));
    EXPECT_EQ(LayoutIn(kAudioFileWAVEType, {1, 2}, 24), (Words{kBitmapTag, 0x3, 0}));
}

TEST(WrittenLayouts, AreARecordInAIFFAndCAF)
{
    const Labels sets[] = {
        {1, 2, 3},       {3, 1, 2, 5, 6, 4}, {2, 1}, {5}, {1, 2, 3, 4, 33, 34, 5, 6},
        {200, 201, 202}, {400, 401},
    };
    for (const AudioFileTypeID type : {kAudioFileAIFFType, kAudioFileAIFCType, kAudioFileCAFType})
        for (const Labels& labels : sets)
        {
            Words wanted = {0, 0, static_cast<UInt32>(labels.size())};
            wanted.insert(wanted.end(), labels.begin(), labels.end());
            EXPECT_EQ(LayoutIn(type, labels), wanted) << Code(type) << " " << labels[0];
        }
}

TEST(WrittenLayouts, OfMonoAndStereoAreATagInCAFAndNothingInAIFF)
{
    EXPECT_EQ(LayoutIn(kAudioFileCAFType, {42}), (Words{0x640001, 0, 0}));
    EXPECT_EQ(LayoutIn(kAudioFileCAFType, {1, 2}), (Words{0x650002, 0, 0}));
    for (const AudioFileTypeID type : {kAudioFileAIFFType, kAudioFileAIFCType})
    {
        EXPECT_EQ(LayoutIn(type, {42}), Words());
        EXPECT_EQ(LayoutIn(type, {1, 2}), Words());
    }
}

TEST(WrittenLayouts, OfBlocksHaveNoPlaceInWAVE)
{
    for (const AudioFormatID format : {kAudioFormatDVIIntelIMA, kAudioFormatMicrosoftADPCM})
    {
        const EncodedTones tones = Encode(format, 2, 100);
        EXPECT_TRUE(WriteEncoded(kAudioFileWAVEType, tones, {5, 6}) ==
                    WriteEncoded(kAudioFileWAVEType, tones));
    }
}

TEST(WrittenLayouts, OfLawsAreAMaskInWAVE)
{
    const Bytes file =
        WriteEncoded(kAudioFileWAVEType, Encode(kAudioFormatULaw, 3, 100), {1, 2, 3});
    EXPECT_EQ(LayoutWords(Open(file).Facts().mChannelLayout), (Words{kBitmapTag, 0x7, 0}));
}

TEST(WrittenLayouts, ThatAreNotKnownAreNotWritten)
{
    for (const AudioFileTypeID type :
         {kAudioFileAIFFType, kAudioFileCAFType, kAudioFileWAVEType, kAudioFileNextType})
    {
        EXPECT_EQ(LayoutIn(type, {1, 2, 0xFFFFFFFF}), Words()) << Code(type);
        const auto format =
            Complete(audiotoolbox::WritableVariants(type, kAudioFormatLinearPCM).at(1), 44100, 3);
        const Bytes file = WriteSamples(type, format, SomeSamples(format, 4), {1, 2});
        EXPECT_TRUE(Open(file).Facts().mChannelLayout.empty()) << "labels of another count";
    }
}

// The words of a CAF's layout record; where the codec decides, our reader does not look at it.
Words RecordIn(AudioFormatID inFormat, const Labels& inLabels)
{
    using testing_support::ByteBuilder;
    const auto channels = static_cast<UInt32>(inLabels.size());
    const Bytes file = WriteEncoded(kAudioFileCAFType, Encode(inFormat, channels, 100), inLabels);
    const Bytes name = ByteBuilder().Text("chan").Get();
    auto at = std::search(file.begin(), file.end(), name.begin(), name.end()) + 12;
    Words words;
    for (UInt32 i = 0; i < 3 + 5 * channels; ++i, at += 4)
        if (i < 3 || (i - 3) % 5 == 0)
            words.push_back(audiotoolbox::ReadBE32(&*at));
    return words;
}

TEST(WrittenLayouts, OfCodecsDescribeTheOrderOfTheirPackets)
{
    for (const AudioFormatID format : {kAudioFormatMPEG4AAC, kAudioFormatAppleLossless})
    {
        EXPECT_EQ(RecordIn(format, {1, 2, 3, 4, 5, 6}), (Words{0, 0, 6, 3, 1, 2, 5, 6, 4}));
        EXPECT_EQ(RecordIn(format, {1, 2, 3}), (Words{0, 0, 3, 3, 1, 2}));
        EXPECT_EQ(RecordIn(format, {400, 2, 3}), (Words{0, 0, 3, 400, 2, 3}));
        EXPECT_EQ(RecordIn(format, {2, 1}), (Words{0, 0, 2, 2, 1}));
    }
    EXPECT_EQ(RecordIn(kAudioFormatAppleLossless, {1, 2, 3, 4, 5, 6, 7, 8}),
              (Words{0, 0, 8, 3, 7, 8, 1, 2, 5, 6, 4}));
    EXPECT_EQ(RecordIn(kAudioFormatMPEG4AAC, {1, 2, 3, 4, 33, 34, 5, 6}),
              (Words{0, 0, 8, 3, 1, 2, 5, 6, 33, 34, 4}));
    EXPECT_EQ(RecordIn(kAudioFormatULaw, {1, 2, 3}), (Words{0, 0, 3, 1, 2, 3}));
}

TEST(WrittenLayouts, AreWhatFFmpegReadsToo)
{
    struct Row
    {
        AudioFileTypeID mType;
        const char* mExtension;
    };
    for (const Row& row : {Row{kAudioFileWAVEType, "wav"}, Row{kAudioFileRF64Type, "wav"},
                           Row{kAudioFileWave64Type, "w64"}, Row{kAudioFileAIFFType, "aiff"},
                           Row{kAudioFileCAFType, "caf"}})
    {
        const bool isBig = row.mType == kAudioFileAIFFType;
        const auto format = Integers(24, 6, isBig ? kAudioFormatFlagIsBigEndian : 0);
        const StoredFile file(
            WriteSamples(row.mType, format, SomeSamples(format, 99), {1, 2, 3, 4, 10, 11}),
            row.mExtension);
        EXPECT_EQ(TextOf("ffprobe -v error -of csv=p=0 -show_entries "
                         "stream=channels,channel_layout,duration_ts " +
                         file.Path()),
                  "6,5.1(side),99\n")
            << row.mExtension;
    }
}

// There libsndfile takes the extensible record for integers, so that floats without a layout have
// the plain one.
TEST(WrittenLayouts, OfFloatsInW64CostThePlainRecord)
{
    const auto format = Complete({0, kAudioFormatLinearPCM, 9, 0, 1, 0, 0, 32, 0}, 48000, 6);
    const Bytes samples = SomeSamples(format, 50);
    const Bytes plain = WriteSamples(kAudioFileWave64Type, format, samples);
    EXPECT_EQ(plain[64], 3) << "format tag";
    const Bytes told = WriteSamples(kAudioFileWave64Type, format, samples, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(told[64] + 256 * told[65], 0xFFFE);
    EXPECT_EQ(LayoutWords(Open(told).Facts().mChannelLayout), (Words{kBitmapTag, 0x3F, 0}));
    const StoredFile file(told, "w64");
    EXPECT_TRUE(OutputOf("ffmpeg -v error -i " + file.Path() + " -f f32le -") == samples);
}

}  // namespace
