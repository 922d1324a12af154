// FLAC: the description that is completed at the end, comments, and what others read.
#include "StreamWriting.h"

#include <cmath>

using namespace stream_writing;

namespace
{

constexpr UInt32 k16 = kAppleLosslessFormatFlag_16BitSourceData;
constexpr UInt32 k24 = kAppleLosslessFormatFlag_24BitSourceData;
constexpr std::size_t kInfoAt = 8;

UInt64 StatedFrames(const Bytes& inFile)
{
    UInt64 frames = inFile[kInfoAt + 13] & 0x0F;
    for (std::size_t i = 14; i < 18; ++i)
        frames = frames << 8 | inFile[kInfoAt + i];
    return frames;
}

bool HasAudioChecksum(const Bytes& inFile)
{
    const auto from = inFile.begin() + kInfoAt + 18;
    return std::any_of(from, from + 16, [](UInt8 inByte) { return inByte != 0; });
}

bool HasText(const Bytes& inFile, const std::string& inText)
{
    return std::search(inFile.begin(), inFile.end(), inText.begin(), inText.end()) != inFile.end();
}

bool PassesTest(const Bytes& inFile)
{
    return OutputOf(inFile, "flac", "flac -t --totally-silent --warnings-as-errors %").has_value();
}

// Samples that the depth holds exactly.
std::vector<float> Quantised(std::vector<float> inSamples, int inBits)
{
    for (float& sample : inSamples)
        sample = static_cast<float>(
            std::ldexp(std::nearbyint(std::ldexp(sample, inBits - 1)), 1 - inBits));
    return inSamples;
}

TEST(FLACWriter, WritesWhatFLACTestsAndDecodesBitForBit)
{
    for (const UInt32 flags : {k16, k24})
        for (const UInt32 channels : {1u, 2u, 3u, 6u, 8u})
            for (const std::size_t frames : {1, 15, 16, 2303, 4607, 4608, 4609, 30000})
            {
                const int bits = flags == k16 ? 16 : 24;
                const std::string what = std::to_string(channels) + " channels, " +
                                         std::to_string(bits) + " bits, " + std::to_string(frames) +
                                         " frames";
                const auto audio =
                    Quantised(encoder_use::Tones(frames, channels, kFLAC.mRate), bits);
                const Stream stream = Encode(kFLAC, channels, audio, {flags, {}, 0});
                const Bytes bytes = Written(kFLAC, stream, static_cast<SInt64>(frames));
                EXPECT_EQ(StatedFrames(bytes), frames) << what;
                EXPECT_TRUE(HasAudioChecksum(bytes)) << what;
                EXPECT_TRUE(PassesTest(bytes)) << what;
                if (frames < 4608 || (frames < 30000 && channels > 2))
                    continue;
                const auto decoded =
                    OutputOf(bytes, "flac",
                             "flac -d -c -s --force-raw-format --endian=little --sign=signed %");
                ASSERT_TRUE(decoded) << what;
                const std::size_t size = static_cast<std::size_t>(bits) / 8;
                ASSERT_EQ(decoded->size(), audio.size() * size) << what;
                for (std::size_t i = 0; i < audio.size(); ++i)
                {
                    UInt32 word = 0;
                    for (std::size_t byte = 0; byte < size; ++byte)
                        word |= UInt32{(*decoded)[i * size + byte]}
                                << (32 - bits + 8 * static_cast<int>(byte));
                    ASSERT_EQ(std::ldexp(static_cast<double>(static_cast<SInt32>(word)), -31),
                              static_cast<double>(audio[i]))
                        << what << ", sample " << i;
                }
            }
}

TEST(FLACWriter, WithoutAudioIsTakenByOthers)
{
    const Bytes bytes = Written(kFLAC, EncodeTones(kFLAC, 2, 0), 0);
    EXPECT_EQ(StatedFrames(bytes), 0u);
    EXPECT_TRUE(OutputOf(bytes, "flac", "flac -t --totally-silent %"));
    const auto raw =
        OutputOf(bytes, "flac", "flac -d -c -s --force-raw-format --endian=little --sign=signed %");
    ASSERT_TRUE(raw);
    EXPECT_TRUE(raw->empty());
}

TEST(FLACWriter, HasNoPacketBeyond65535BytesEvenOfNoise)
{
    for (const UInt32 channels : {6u, 8u})
    {
        const auto noise = encoder_use::Noise(20000, channels, 0.999f);
        const Stream stream = Encode(kFLAC, channels, noise, {k24, {}, 0});
        const Bytes bytes = Written(kFLAC, stream, 20000);
        EXPECT_TRUE(PassesTest(bytes));
        auto file = OpenByContent(bytes);
        ASSERT_EQ(file.mStatus, noErr);
        EXPECT_EQ(PacketsOf(file), stream.mPackets);
        EXPECT_LT(file.Facts().mPacketSizeUpperBound, 65536u);
        EXPECT_GT(file.Facts().mPacketSizeUpperBound, 30000u);  // noise it is
    }
}

TEST(FLACWriter, NamesItselfAndNoChannelsThatAreTheFormatsOwn)
{
    const std::vector<std::vector<AudioChannelLabel>> own = {
        {},    {1, 2, 3, 4, 5, 6}, {1, 2, 3, 4, 33, 34}, {6, 5, 4, 3, 2, 1}, {1, 2, 3, 4, 5, 400},
        {1, 2}};
    const Stream stream = EncodeTones(kFLAC, 6, 5000);
    for (const auto& labels : own)
    {
        File file(kFLAC, stream, 5000);
        file.mRequest.mLabels = labels;
        testing_support::MemorySink sink;
        ASSERT_EQ(file.Run(sink), noErr);
        EXPECT_TRUE(HasText(sink.Bytes(), "TarvoAT"));
        EXPECT_FALSE(HasText(sink.Bytes(), "CHANNEL_MASK"));
        EXPECT_EQ(stream_testing::BitmapOf(OpenByContent(sink.Bytes()).Facts()), 0x3Fu);
    }
}

TEST(FLACWriter, StatesTheMaskOfOtherChannels)
{
    struct Row
    {
        std::vector<AudioChannelLabel> mLabels;
        UInt32 mMask;
        const char* mText;
    };
    const Row rows[] = {
        {{1, 2, 3, 4, 10, 11}, 0x60F, "WAVEFORMATEXTENSIBLE_CHANNEL_MASK=0x060F"},
        {{1, 2, 5, 6, 7, 8}, 0xF3, "WAVEFORMATEXTENSIBLE_CHANNEL_MASK=0x00F3"},
    };
    const Stream stream = EncodeTones(kFLAC, 6, 5000);
    for (const Row& row : rows)
    {
        File file(kFLAC, stream, 5000);
        file.mRequest.mLabels = row.mLabels;
        testing_support::MemorySink sink;
        ASSERT_EQ(file.Run(sink), noErr);
        EXPECT_TRUE(HasText(sink.Bytes(), row.mText)) << row.mText;
        EXPECT_TRUE(PassesTest(sink.Bytes()));
        EXPECT_EQ(stream_testing::BitmapOf(OpenByContent(sink.Bytes()).Facts()), row.mMask);
    }
}

TEST(FLACWriter, LetsOthersSeekByItsTable)
{
    const auto audio = Quantised(encoder_use::Noise(700000, 1), 16);
    const Stream stream = Encode(kFLAC, 1, audio, {k16, {}, 0});
    const Bytes bytes = Written(kFLAC, stream, 700000);
    EXPECT_TRUE(PassesTest(bytes));
    const auto rest = OutputOf(bytes, "flac",
                               "flac -d -c -s --skip=612345 --force-raw-format --endian=little "
                               "--sign=signed %");
    ASSERT_TRUE(rest);
    const auto samples = converter_use::As<SInt16>(*rest);
    ASSERT_EQ(samples.size(), 700000u - 612345u);
    EXPECT_EQ(samples[0] / 32768.0f, audio[612345]);
    const auto points = OutputOf(bytes, "flac", "metaflac --list --block-type=SEEKTABLE %");
    ASSERT_TRUE(points);
    EXPECT_TRUE(HasText(*points, "seek points: 100"));
    EXPECT_FALSE(HasText(*points, "PLACEHOLDER"));
}

TEST(FLACWriter, KnowsTheLengthWithoutTheEncodersLastWord)
{
    const Stream stream = EncodeTones(kFLAC, 2, 10000);
    for (const Bytes& cookie : {Bytes(), Bytes(34), File(kFLAC, stream, 0).mStart.mCookie})
    {
        File file(kFLAC, stream, 10000);
        file.mEnd.mCookie = cookie;
        if (cookie == stream.mCookie)
            file.mEnd.mCookie[17] ^= 1;  // another length
        testing_support::MemorySink sink;
        ASSERT_EQ(file.Run(sink), noErr);
        EXPECT_EQ(StatedFrames(sink.Bytes()), 10000u);
        EXPECT_FALSE(HasAudioChecksum(sink.Bytes()));
        // Without a checksum it warns and passes.
        EXPECT_TRUE(OutputOf(sink.Bytes(), "flac", "flac -t --totally-silent %"));
    }
}

TEST(FLACWriter, RefusesACookieThatIsNoneOrOfAnotherStream)
{
    const Stream stream = EncodeTones(kFLAC, 2, 10000);
    const Stream mono = EncodeTones(kFLAC, 1, 10000);
    for (const Bytes& cookie : {Bytes(), Bytes(34), Bytes(33, 1), mono.mCookie})
    {
        File file(kFLAC, stream, 10000);
        file.mStart.mCookie = cookie;
        testing_support::MemorySink sink;
        EXPECT_EQ(file.Run(sink), kAudioFileUnsupportedDataFormatError);
        EXPECT_EQ(sink.Size(), 0);
    }
}

TEST(FLACWriter, RefusesPacketsThatAreNone)
{
    Stream stream = EncodeTones(kFLAC, 2, 10000);
    stream.mPackets[1][0] = 0;
    testing_support::MemorySink sink;
    File file(kFLAC, stream, 10000);
    EXPECT_EQ(file.Run(sink), kAudioFileUnsupportedDataFormatError);
    EXPECT_EQ(file.mFinished, noErr);
    EXPECT_EQ(StatedFrames(sink.Bytes()), 4608u);
}

}  // namespace
