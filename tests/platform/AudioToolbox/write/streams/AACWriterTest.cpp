// ADTS and LOAS: their heads, their limits, and what others read.
#include "StreamWriting.h"

using namespace stream_writing;

namespace
{

// A packet for heads alone; it is no audio.
Stream Packets(const Kind& inKind, std::initializer_list<std::size_t> inSizes,
               const Bytes& inCookie = {0x12, 0x10})
{
    Stream stream;
    stream.mFormat = converter_use::Compressed(kAudioFormatMPEG4AAC, inKind.mRate, 2, 1024);
    stream.mCookie = inCookie;
    for (const std::size_t size : inSizes)
    {
        stream.mPackets.emplace_back(size, static_cast<UInt8>(0x21 + size % 7));
        stream.mFrames.push_back(0);
    }
    return stream;
}

TEST(ADTSWriter, PutsTheHeadThatTheStandardGives)
{
    // 44.1 kHz stereo of low complexity; 7 + 500 bytes; a variable rate.
    const Bytes bytes = Written(kADTS, Packets(kADTS, {500}), 1024);
    ASSERT_EQ(bytes.size(), 507u);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 7),
              (Bytes{0xFF, 0xF1, 0x50, 0x80, 0x3F, 0x7F, 0xFC}));
}

TEST(ADTSWriter, TellsTheReservoirOfAConstantRate)
{
    // 128000 bits per second are 2972.15 bits a packet; the reservoir has 12288 less that.
    const Stream stream = Packets(kADTS, {300, 600, 100});
    File file(kADTS, stream, 3072);
    file.mStart.mIsConstantBitRate = true;
    file.mStart.mBitRate = 128000;
    testing_support::MemorySink sink;
    ASSERT_EQ(file.Run(sink), noErr);
    const Bytes& bytes = sink.Bytes();
    const auto fullness = [&bytes](std::size_t inAt)
    { return (bytes[inAt + 5] & 0x1Fu) << 6 | bytes[inAt + 6] >> 2; };
    EXPECT_EQ(fullness(0), 145u);    // full: 9315.85 bits
    EXPECT_EQ(fullness(307), 117u);  // 1827.85 less
    EXPECT_EQ(fullness(914), 145u);  // no fuller than full
}

TEST(ADTSWriter, LeavesNothingOfAPacketThatIsTooLarge)
{
    testing_support::MemorySink sink;
    const Stream fits = Packets(kADTS, {8184});
    EXPECT_EQ(File(kADTS, fits, 1024).Run(sink), noErr);
    EXPECT_EQ(sink.Size(), 8191);
    testing_support::MemorySink other;
    const Stream large = Packets(kADTS, {500, 8185, 500});
    EXPECT_EQ(File(kADTS, large, 3072).Run(other), kAudioFileUnsupportedDataFormatError);
    EXPECT_EQ(other.Size(), 507);
}

TEST(LOASWriter, LeavesNothingOfAPacketThatIsTooLarge)
{
    // 45 bits of configuration and 32 bytes of length in front make it 8191 bytes.
    testing_support::MemorySink sink;
    const Stream fits = Packets(kLOAS, {8153});
    EXPECT_EQ(File(kLOAS, fits, 1024).Run(sink), noErr);
    EXPECT_EQ(sink.Size(), 3 + 8191);
    testing_support::MemorySink other;
    const Stream large = Packets(kLOAS, {500, 8192, 500});
    EXPECT_EQ(File(kLOAS, large, 3072).Run(other), kAudioFileUnsupportedDataFormatError);
    testing_support::MemorySink third;
    const Stream barely = Packets(kLOAS, {8154});
    EXPECT_EQ(File(kLOAS, barely, 1024).Run(third), kAudioFileUnsupportedDataFormatError);
    EXPECT_EQ(third.Size(), 0);
}

TEST(LOASWriter, RepeatsTheConfigurationEverySixteenPackets)
{
    const Stream stream = EncodeTones(kLOAS, 2, 60000);
    const Bytes bytes = Written(kLOAS, stream, 60000);
    std::vector<std::size_t> places;
    std::size_t element = 0;
    for (std::size_t at = 0; at + 3 < bytes.size(); ++element)
    {
        if ((bytes[at + 3] & 0x80) == 0)
            places.push_back(element);
        at += 3 + ((bytes[at + 1] & 0x1Fu) << 8 | bytes[at + 2]);
    }
    EXPECT_EQ(element, stream.mPackets.size());
    EXPECT_EQ(places, (std::vector<std::size_t>{0, 16, 32, 48}));
}

TEST(LOASWriter, SaysRatesThatHaveNoIndex)
{
    Kind odd = kLOAS;
    odd.mRate = 44056;
    // Object type 2, rate 15 + 24 bits, 2 channels, three flags.
    const Stream stream = Packets(odd, {100, 90}, {0x17, 0x80, 0x56, 0x0C, 0x10});
    auto file = OpenByContent(Written(odd, stream, 2048));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mDataFormat.mSampleRate, 44056.0);
    EXPECT_EQ(PacketsOf(file), stream.mPackets);
}

TEST(AACStreams, RefuseConfigurationsThatTheirHeadsCannotSay)
{
    const Bytes cookies[] = {
        {},                              // none
        {0x12},                          // cut off
        {0x12, 0x00},                    // a program config that is not there
        {0x11, 0x90},                    // 48 kHz instead of 44.1
        {0x12, 0x08},                    // mono instead of stereo
        {0x12, 0x14},                    // 960 frames
        {0x2B, 0x92, 0x08, 0x00},        // layers: 22.05 kHz doubled
        {0x8A, 0x10, 0x00, 0x00, 0x00},  // error resilient
    };
    for (const Kind& kind : {kADTS, kLOAS})
        for (const Bytes& cookie : cookies)
        {
            testing_support::MemorySink sink;
            const Stream stream = Packets(kind, {100}, cookie);
            EXPECT_EQ(File(kind, stream, 1024).Run(sink), kAudioFileUnsupportedDataFormatError)
                << kind.mName << " " << (&cookie - cookies);
            EXPECT_EQ(sink.Size(), 0);
        }
}

TEST(AACStreams, TakeTheConfigurationOutOfAnESDescriptor)
{
    // As Core Audio Format stores it: descriptor, decoder config, decoder info.
    const Bytes descriptor = {0x03, 0x19, 0, 0, 0, 0x04, 0x11, 0x40, 0x15, 0,    0,    0, 0, 0,
                              0,    0,    0, 0, 0, 0,    0x05, 0x02, 0x12, 0x10, 0x06, 1, 2};
    for (const Kind& kind : {kADTS, kLOAS})
    {
        auto file = OpenByContent(Written(kind, Packets(kind, {300, 310}, descriptor), 2048));
        ASSERT_EQ(file.mStatus, noErr) << kind.mName;
        EXPECT_EQ(PacketsOf(file).size(), 2u);
    }
}

// Encoders are late by 1024 frames; the streams cannot say so.
void ExpectAudio(const std::vector<float>& inAll, const std::vector<float>& inWanted,
                 UInt32 inChannels, std::size_t inDelay, const std::string& inWhat)
{
    const std::size_t skipped = inDelay * inChannels;
    ASSERT_GE(inAll.size(), skipped + inWanted.size()) << inWhat;
    const std::vector<float> got(inAll.begin() + static_cast<std::ptrdiff_t>(skipped), inAll.end());
    EXPECT_GT(encoder_use::SignalToNoise(inWanted, got), 20.0) << inWhat;
}

TEST(AACStreams, AreDecodedByOthers)
{
    for (const Kind& kind : {kADTS, kLOAS})
        for (const UInt32 channels : kind.mChannels)
        {
            const std::string what = kind.mName + std::to_string(channels);
            const std::string extension = kind.mType == kADTS.mType ? "aac" : "loas";
            auto audio = encoder_use::Tones(30000, channels, kind.mRate);
            for (std::size_t i = 3; channels == 8 && i < audio.size(); i += 8)
                audio[i] = 0;  // low frequencies alone have room there
            const Stream stream = Encode(kind, channels, audio);
            const Bytes bytes = Written(kind, stream, 30000);
            const auto ffmpeg = FloatsOf(bytes, extension, kFFmpegFloats);
            EXPECT_EQ(ffmpeg.size(), stream.mPackets.size() * 1024 * channels) << what;
            ExpectAudio(ffmpeg, audio, channels, 1024, what + " ffmpeg");
        }
}

// With the configuration that the reader hands out.
TEST(AACStreams, OfLOASAreDecodedByTheConverter)
{
    for (const UInt32 channels : {1u, 2u, 6u})
    {
        const auto audio = encoder_use::Tones(30000, channels, 44100);
        Stream stream = Encode(kLOAS, channels, audio);
        auto file = OpenByContent(Written(kLOAS, stream, 30000));
        ASSERT_EQ(file.mStatus, noErr);
        stream.mFormat = file.Facts().mDataFormat;
        stream.mCookie = file.Facts().mCookie;
        stream.mPackets = PacketsOf(file);
        stream.mPrime = {};
        const auto got = converter_use::As<float>(
            encoder_use::DecodeAll(stream, converter_use::Floats(44100, channels)));
        EXPECT_EQ(got.size(), stream.mPackets.size() * 1024 * channels);
        ExpectAudio(got, audio, channels, 1024, std::to_string(channels) + " channels");
    }
}

// It drops the first packet, and makes two channels of one.
TEST(AACStreams, OfADTSAreDecodedByFAAD)
{
    for (const UInt32 channels : {1u, 2u})
    {
        const auto audio = encoder_use::Tones(30000, channels, 44100);
        const Stream stream = Encode(kADTS, channels, audio);
        auto got =
            FloatsOf(Written(kADTS, stream, 30000), "aac", "faad -q -b 4 -f 2 -w % 2>/dev/null");
        EXPECT_EQ(got.size(), (stream.mPackets.size() - 1) * 1024 * 2);
        for (std::size_t i = 0; channels == 1 && i < got.size() / 2; ++i)
            got[i] = got[2 * i];
        ExpectAudio(got, audio, channels, 0, std::to_string(channels) + " channels");
    }
}

}  // namespace
