// MP3: the frame that tells the length, and what others make of it.
#include "StreamWriting.h"

using namespace stream_writing;

namespace
{

constexpr std::size_t kStereoTagAt = 36;  // header and side information at 44.1 kHz

UInt32 NumberAt(const Bytes& inBytes, std::size_t inPlace, std::size_t inSize)
{
    UInt32 number = 0;
    for (std::size_t i = 0; i < inSize; ++i)
        number = number << 8 | inBytes[inPlace + i];
    return number;
}

std::string TextAt(const Bytes& inBytes, std::size_t inPlace, std::size_t inSize)
{
    return std::string(inBytes.begin() + static_cast<std::ptrdiff_t>(inPlace),
                       inBytes.begin() + static_cast<std::ptrdiff_t>(inPlace + inSize));
}

// Bit by bit, the polynomial 0x8005 with the lowest bit first.
UInt16 Checksum(const Bytes& inBytes, std::size_t inFrom, std::size_t inTo)
{
    UInt32 checksum = 0;
    for (std::size_t i = inFrom; i < inTo; ++i)
        for (int bit = 0; bit < 8; ++bit)
        {
            const UInt32 next = (inBytes[i] >> bit & 1u) ^ (checksum & 1u);
            checksum = checksum >> 1 ^ (next != 0 ? 0xA001u : 0u);
        }
    return static_cast<UInt16>(checksum);
}

struct Mode
{
    const char* mName;
    UInt32 mMode;
    UInt32 mBitRate;
    const char* mMagic;
    UInt8 mMethod;
    std::size_t mTagFrameBytes;  // 44.1 kHz, stereo
};
const Mode kModes[] = {
    {"constant 128", 0, 128000, "Info", 1, 417},
    {"constant 32", 0, 32000, "Info", 1, 208},  // its own frames have no room
    {"average 160", 1, 160000, "Xing", 2, 208},
    {"variable", 3, 0, "Xing", 4, 208},
};

Bytes WriteWithMode(const Mode& inMode, const Stream& inStream, SInt64 inFrames)
{
    File file(kMP3, inStream, inFrames);
    file.mStart.mIsConstantBitRate = inMode.mMode == 0;
    file.mStart.mBitRate = inMode.mBitRate;
    testing_support::MemorySink sink;
    EXPECT_EQ(file.Run(sink), noErr);
    return sink.Bytes();
}

TEST(MP3Writer, PutsATagInFrontThatTellsModeCountsAndDelays)
{
    for (const Mode& mode : kModes)
    {
        const Stream stream = EncodeTones(kMP3, 2, 44100, {0, mode.mMode, mode.mBitRate});
        const Bytes bytes = WriteWithMode(mode, stream, 44100);
        const std::size_t tagBytes = bytes.size() - stream.ByteCount();
        EXPECT_EQ(tagBytes, mode.mTagFrameBytes) << mode.mName;
        EXPECT_EQ(TextAt(bytes, kStereoTagAt, 4), mode.mMagic);
        EXPECT_EQ(NumberAt(bytes, kStereoTagAt + 4, 4), 15u);
        EXPECT_EQ(NumberAt(bytes, kStereoTagAt + 8, 4), stream.mPackets.size());
        EXPECT_EQ(NumberAt(bytes, kStereoTagAt + 12, 4), bytes.size());
        const std::size_t extension = kStereoTagAt + 120;
        EXPECT_EQ(TextAt(bytes, extension, 9), "LAME3.100");
        EXPECT_EQ(bytes[extension + 9], mode.mMethod) << mode.mName;
        const UInt32 delays = NumberAt(bytes, extension + 21, 3);
        EXPECT_EQ(delays >> 12, 576u);
        EXPECT_EQ(delays & 0xFFF, stream.mPackets.size() * 1152 - 576 - 44100);
        EXPECT_EQ(NumberAt(bytes, extension + 28, 4), bytes.size());
        EXPECT_EQ(NumberAt(bytes, extension + 32, 2), Checksum(bytes, tagBytes, bytes.size()));
        EXPECT_EQ(NumberAt(bytes, extension + 34, 2), Checksum(bytes, 0, extension + 34));
        // Version, layer, rate and stereo mode are the stream's.
        EXPECT_EQ(bytes[1], stream.mPackets[0][1] | 1);
        EXPECT_EQ(bytes[2] & 0x0C, stream.mPackets[0][2] & 0x0C);
        EXPECT_EQ(bytes[3] & 0xCF, stream.mPackets[0][3] & 0xCF);
    }
}

// Two seconds of silence, then noise: the bytes are in the second half.
TEST(MP3Writer, TellsWhereToSeekToWhenTheRateVaries)
{
    std::vector<float> audio(2 * 88200);
    const auto noise = encoder_use::Noise(88200, 2, 0.5f);
    audio.insert(audio.end(), noise.begin(), noise.end());
    const Stream stream = Encode(kMP3, 2, audio, {0, 3, 0});
    const Bytes bytes = WriteWithMode(kModes[3], stream, 2 * 88200);
    const std::size_t table = kStereoTagAt + 16;
    for (std::size_t percent = 0; percent < 100; ++percent)
    {
        std::size_t place = 208;
        for (std::size_t i = 0; i < stream.mPackets.size() * percent / 100; ++i)
            place += stream.mPackets[i].size();
        EXPECT_EQ(bytes[table + percent], place * 256 / bytes.size()) << percent;
    }
    EXPECT_LT(bytes[table + 50], 60);
}

TEST(MP3Writer, KeepsTheTableOfALongStreamWithinAHundredth)
{
    const Stream one = EncodeTones(kMP3, 2, 5000, {0, 0, 128000});
    Stream stream = one;
    for (int i = 0; i < 3000; ++i)
        stream.mPackets.push_back(one.mPackets[1]);
    stream.mFrames.assign(stream.mPackets.size(), 0);
    const Bytes bytes = WriteWithMode(kModes[0], stream, 3000000);
    for (std::size_t percent = 0; percent < 100; ++percent)
        EXPECT_NEAR(bytes[kStereoTagAt + 16 + percent], percent * 2.56, 2.0) << percent;
}

TEST(MP3Writer, SaysNoMoreThanItsPaddingFieldCan)
{
    // Seven packets of silence more than the encoder makes: 4095 frames at the most are told.
    Stream stream = EncodeTones(kMP3, 2, 5000);
    for (int i = 0; i < 7; ++i)
        stream.mPackets.push_back(stream.mPackets.back());
    stream.mFrames.assign(stream.mPackets.size(), 0);
    auto file = OpenByContent(Written(kMP3, stream, 5000));
    ASSERT_EQ(file.mStatus, noErr);
    const auto frames = static_cast<SInt64>(stream.mPackets.size()) * 1152;
    EXPECT_EQ(file.Facts().mPacketTable->mNumberValidFrames, frames - 576 - 4095);
    EXPECT_EQ(file.Facts().mPacketTable->mPrimingFrames, 1105);
}

TEST(MP3Writer, RefusesPacketsOfAnotherStream)
{
    const Stream mono = EncodeTones(kMP3, 1, 5000);
    const Stream layer2 = EncodeTones(kMP2, 2, 5000);
    const Stream low = EncodeTones(kMP3Low, 2, 5000);
    for (const Stream* stream : {&mono, &layer2, &low})
    {
        File file(kMP3, *stream, 5000);
        file.mRequest.mFormat = converter_use::Compressed(kAudioFormatMPEGLayer3, 44100, 2, 1152);
        testing_support::MemorySink sink;
        EXPECT_EQ(file.Run(sink), kAudioFileUnsupportedDataFormatError);
        EXPECT_EQ(sink.Size(), 208);
    }
}

void ExpectWholeAudio(const std::vector<float>& inGot, const std::vector<float>& inWanted,
                      const std::string& inWhat)
{
    EXPECT_EQ(inGot.size(), inWanted.size()) << inWhat;
    EXPECT_GT(encoder_use::SignalToNoise(inWanted, inGot), 12.0) << inWhat;
}

TEST(MP3Writer, OthersGiveExactlyTheAudioThatWentIn)
{
    for (const Kind& kind : {kMP3, kMP3Low})
        for (const UInt32 channels : {1u, 2u})
            for (const Mode& mode : kModes)
            {
                const std::size_t frames = 20000;
                const UInt32 bitRate = mode.mBitRate;
                const std::string what = std::string(kind.mName) + " " + mode.mName + ", " +
                                         std::to_string(channels) + " channels";
                const auto audio = encoder_use::Tones(frames, channels, kind.mRate);
                const Stream stream = Encode(kind, channels, audio, {0, mode.mMode, bitRate});
                const Bytes bytes = Written(kind, stream, static_cast<SInt64>(frames));
                ExpectWholeAudio(FloatsOf(bytes, "mp3", kMPG123Floats), audio, what + " mpg123");
                ExpectWholeAudio(FloatsOf(bytes, "mp3", kFFmpegFloats), audio, what + " ffmpeg");
            }
}

TEST(MP3Writer, OthersGiveExactlyAsManyFramesAsWentIn)
{
    for (const std::size_t frames : {1, 100, 575, 576, 577, 1151, 1152, 1153, 44964})
    {
        const Stream stream = EncodeTones(kMP3, 2, frames);
        const Bytes bytes = Written(kMP3, stream, static_cast<SInt64>(frames));
        EXPECT_EQ(FloatsOf(bytes, "mp3", kMPG123Floats).size(), frames * 2);
        EXPECT_EQ(FloatsOf(bytes, "mp3", kFFmpegFloats).size(), frames * 2);
    }
}

bool HasStreamForMPG123(const Bytes& inFile)
{
    const auto report = OutputOf(inFile, "mp3", "mpg123 -t -v % 2>&1");
    return report && TextAt(*report, 0, report->size()).find("Illegal") == std::string::npos;
}

TEST(MP3Writer, WithoutAudioIsAStreamForMPG123)
{
    for (const Kind& kind : {kMP3, kMP3Low})
        for (const UInt32 channels : {1u, 2u})
        {
            const Bytes bytes = Written(kind, EncodeTones(kind, channels, 0), 0);
            EXPECT_TRUE(HasStreamForMPG123(bytes)) << kind.mName << channels;
            EXPECT_TRUE(FloatsOf(bytes, "mp3", kMPG123Floats).empty());
        }
    EXPECT_FALSE(HasStreamForMPG123(Bytes(417)));
}

}  // namespace
