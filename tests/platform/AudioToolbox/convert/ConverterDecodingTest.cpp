// Decoding through the real codec module, with packets from the codec library's own encoders.
#include "EncodedAudio.h"

#include <gtest/gtest.h>

namespace
{

using namespace converter_use;
using encoded_audio::Encode;
using encoded_audio::Encoded;
using encoded_audio::IntegerAt;
using encoded_audio::SampleAt;

struct Codec
{
    AudioFormatID mFormat;
    encoded_audio::Wish mWish;
    UInt32 mFramesPerPacket;  // of the description
    bool mIsConstant;
    int mDelay;        // frames before the first valid one
    double mDistance;  // root mean square of the difference that is allowed
};

void PrintTo(const Codec& inCodec, std::ostream* outStream)
{
    *outStream << inCodec.mWish.mEncoder << ' ' << inCodec.mWish.mRate << ' '
               << inCodec.mWish.mChannels;
}

AudioStreamBasicDescription SourceOf(const Codec& inCodec, const Encoded& inEncoded)
{
    return Compressed(inCodec.mFormat, inCodec.mWish.mRate,
                      static_cast<UInt32>(inCodec.mWish.mChannels), inCodec.mFramesPerPacket,
                      inCodec.mIsConstant ? static_cast<UInt32>(inEncoded.mPackets[0].size()) : 0);
}

ConverterPtr NewDecoder(const Codec& inCodec, const Encoded& inEncoded)
{
    ConverterPtr converter =
        New(SourceOf(inCodec, inEncoded),
            Floats(inCodec.mWish.mRate, static_cast<UInt32>(inCodec.mWish.mChannels)));
    if (converter && !inEncoded.mCookie.empty())
        (void)AudioConverterSetProperty(converter.get(), kAudioConverterDecompressionMagicCookie,
                                        static_cast<UInt32>(inEncoded.mCookie.size()),
                                        inEncoded.mCookie.data());
    return converter;
}

double Distance(const std::vector<float>& inSamples, const Codec& inCodec)
{
    const int channels = inCodec.mWish.mChannels;
    const int frames = static_cast<int>(inSamples.size()) / channels - inCodec.mDelay;
    const int compared = std::min(frames, inCodec.mWish.mFrameCount) - 2000;
    double sum = 0;
    for (int frame = 2000; frame < compared; ++frame)
        for (int channel = 0; channel < channels; ++channel)
        {
            const double heard =
                inSamples[static_cast<std::size_t>((frame + inCodec.mDelay) * channels + channel)];
            const double difference = heard - SampleAt(frame, channel, inCodec.mWish.mRate);
            sum += difference * difference;
        }
    return std::sqrt(sum / (std::max(compared - 2000, 1) * channels));
}

class EveryCodec : public testing::TestWithParam<Codec>
{
};

TEST_P(EveryCodec, GivesEveryFrameOfEveryPacketInItsPlace)
{
    const Encoded encoded = Encode(GetParam().mWish);
    const ConverterPtr converter = NewDecoder(GetParam(), encoded);
    ASSERT_TRUE(converter);
    Input input(encoded.mPackets);
    OSStatus status = -1;
    const UInt32 frameBytes = 4 * static_cast<UInt32>(GetParam().mWish.mChannels);
    const std::vector<float> samples =
        As<float>(FillAll(converter.get(), input, frameBytes, 4096, &status));
    EXPECT_EQ(status, noErr);
    const std::size_t frames = samples.size() * 4 / frameBytes;
    const std::size_t packetFrames = encoded.mPackets.size() * encoded.mFramesPerPacket;
    EXPECT_LE(frames, packetFrames);
    EXPECT_GT(frames + encoded.mFramesPerPacket, packetFrames);
    EXPECT_LT(Distance(samples, GetParam()), GetParam().mDistance);
    EXPECT_EQ(input.mCallsAfterEnd, 1);
}

TEST_P(EveryCodec, GivesTheSameForFillsOfAnySize)
{
    const Encoded encoded = Encode(GetParam().mWish);
    const UInt32 frameBytes = 4 * static_cast<UInt32>(GetParam().mWish.mChannels);
    Bytes first;
    for (const UInt32 fill : {500000u, 1u, 7u, 1024u, 65536u})
    {
        const ConverterPtr converter = NewDecoder(GetParam(), encoded);
        ASSERT_TRUE(converter);
        Input input(encoded.mPackets);
        input.mMostPerCall = 5;
        const Bytes bytes = FillAll(converter.get(), input, frameBytes, fill);
        if (first.empty())
            first = bytes;
        EXPECT_TRUE(bytes == first) << "fills of " << fill;
    }
    EXPECT_FALSE(first.empty());
}

TEST_P(EveryCodec, KeepsItsLengthWhenAPacketIsEmpty)
{
    Encoded encoded = Encode(GetParam().mWish);
    const UInt32 frameBytes = 4 * static_cast<UInt32>(GetParam().mWish.mChannels);
    if (GetParam().mIsConstant)
        GTEST_SKIP() << "constant packets cannot be empty";
    const ConverterPtr whole = NewDecoder(GetParam(), encoded);
    Input wholeInput(encoded.mPackets);
    const std::size_t length = FillAll(whole.get(), wholeInput, frameBytes, 4096).size();
    encoded.mPackets[encoded.mPackets.size() / 2].clear();
    const ConverterPtr converter = NewDecoder(GetParam(), encoded);
    Input input(encoded.mPackets);
    OSStatus status = -1;
    EXPECT_EQ(FillAll(converter.get(), input, frameBytes, 4096, &status).size(), length);
    EXPECT_EQ(status, noErr);
}

TEST_P(EveryCodec, StartsAnewAfterReset)
{
    const Encoded encoded = Encode(GetParam().mWish);
    const UInt32 frameBytes = 4 * static_cast<UInt32>(GetParam().mWish.mChannels);
    const ConverterPtr converter = NewDecoder(GetParam(), encoded);
    Input input(encoded.mPackets);
    const Bytes first = FillAll(converter.get(), input, frameBytes, 4096);
    ASSERT_EQ(AudioConverterReset(converter.get()), noErr);
    Input again(encoded.mPackets);
    EXPECT_EQ(FillAll(converter.get(), again, frameBytes, 4096).size(), first.size());
}

const Codec kCodecs[] = {
    {kAudioFormatMPEG4AAC, {"aac"}, 1024, false, 1024, 0.02},
    // The tone of the low-frequency channel lies above what that channel carries.
    {kAudioFormatMPEG4AAC, {"aac", 48000, 6}, 1024, false, 1024, 0.15},
    {kAudioFormatMPEG4AAC, {"aac", 22050, 1}, 1024, false, 1024, 0.02},
    {kAudioFormatMPEGLayer3, {"libmp3lame"}, 1152, false, 1105, 0.02},
    {kAudioFormatMPEGLayer3, {"libmp3lame", 22050, 1}, 576, false, 1105, 0.03},
    {kAudioFormatMPEGLayer2, {"mp2", 44100, 2, AV_SAMPLE_FMT_S16}, 1152, false, 481, 0.02},
    {kAudioFormatAC3, {"ac3", 48000, 2}, 1536, false, 256, 0.02},
    {kAudioFormatEnhancedAC3, {"eac3", 48000, 2}, 1536, false, 256, 0.02},
    {kAudioFormatOpus, {"libopus", 48000, 2, AV_SAMPLE_FMT_FLT}, 960, false, 312, 0.03},
    {kAudioFormatAppleLossless, {"alac", 44100, 2, AV_SAMPLE_FMT_S16P}, 4096, false, 0, 2e-5},
    {kAudioFormatFLAC, {"flac", 44100, 2, AV_SAMPLE_FMT_S16}, 4608, false, 0, 2e-5},
    {kAudioFormatAppleIMA4, {"adpcm_ima_qt", 44100, 2, AV_SAMPLE_FMT_S16P}, 64, true, 0, 0.02},
    {kAudioFormatDVIIntelIMA, {"adpcm_ima_wav", 44100, 2, AV_SAMPLE_FMT_S16P}, 1017, true, 0, 0.02},
    {kAudioFormatMicrosoftADPCM, {"adpcm_ms", 44100, 2, AV_SAMPLE_FMT_S16}, 1012, true, 0, 0.02},
    {kAudioFormatMicrosoftGSM, {"libgsm_ms", 8000, 1, AV_SAMPLE_FMT_S16, 16000}, 320, true, 0, 0.1},
};
INSTANTIATE_TEST_SUITE_P(Codecs, EveryCodec, testing::ValuesIn(kCodecs));

// The integers of a lossless stream, decoded into a client format of 16 or 24 bits or float.
template <typename Value>
void ExpectExact(AudioFormatID inFormat, const encoded_audio::Wish& inWish, UInt32 inBits,
                 const AudioStreamBasicDescription& inClient, Value inValueAt)
{
    const Encoded encoded = Encode(inWish);
    const ConverterPtr converter = New(Compressed(inFormat, inWish.mRate, 2, 0), inClient);
    ASSERT_TRUE(converter);
    ASSERT_EQ(AudioConverterSetProperty(converter.get(), kAudioConverterDecompressionMagicCookie,
                                        static_cast<UInt32>(encoded.mCookie.size()),
                                        encoded.mCookie.data()),
              noErr);
    Input input(encoded.mPackets);
    const Bytes bytes = FillAll(converter.get(), input, inClient.mBytesPerFrame, 4096);
    ASSERT_EQ(bytes.size(), std::size_t{inClient.mBytesPerFrame} * 44100);
    for (int i = 0; i < 44100 * 2; ++i)
        ASSERT_TRUE(inValueAt(bytes.data(), i, IntegerAt(i / 2, i % 2, 44100, int(inBits))))
            << "sample " << i;
}

bool IsFloat24(const UInt8* inBytes, int inIndex, SInt32 inInteger)
{
    float sample = 0;
    std::memcpy(&sample, inBytes + 4 * inIndex, 4);
    return sample == std::ldexp(static_cast<float>(inInteger), -23);
}

bool IsInteger16(const UInt8* inBytes, int inIndex, SInt32 inInteger)
{
    SInt16 sample = 0;
    std::memcpy(&sample, inBytes + 2 * inIndex, 2);
    return sample == inInteger;
}

bool IsBig24(const UInt8* inBytes, int inIndex, SInt32 inInteger)
{
    const UInt8* place = inBytes + 3 * inIndex;
    const UInt32 word = UInt32{place[0]} << 24 | UInt32{place[1]} << 16 | UInt32{place[2]} << 8;
    return static_cast<SInt32>(word) == inInteger * 256;
}

TEST(Lossless, TwentyFourBitsArriveAsTheirExactFloats)
{
    ExpectExact(kAudioFormatAppleLossless, {"alac", 44100, 2, AV_SAMPLE_FMT_S32P}, 24,
                Floats(44100, 2), IsFloat24);
    ExpectExact(kAudioFormatFLAC, {"flac", 44100, 2, AV_SAMPLE_FMT_S32}, 24, Floats(44100, 2),
                IsFloat24);
}

TEST(Lossless, IntegersArriveUnchangedInIntegerFormats)
{
    ExpectExact(kAudioFormatAppleLossless, {"alac", 44100, 2, AV_SAMPLE_FMT_S16P}, 16,
                Linear(44100, kSigned, 16, 2), IsInteger16);
    ExpectExact(kAudioFormatFLAC, {"flac", 44100, 2, AV_SAMPLE_FMT_S32}, 24,
                Linear(44100, kSigned | kAudioFormatFlagIsBigEndian, 24, 2), IsBig24);
    ExpectExact(kAudioFormatAppleLossless, {"alac", 44100, 2, AV_SAMPLE_FMT_S32P}, 24,
                Linear(44100, kSigned | kAudioFormatFlagIsBigEndian, 24, 2), IsBig24);
}

TEST(DamagedPackets, LeaveSilenceOfTheirLengthAndShiftNothing)
{
    const Encoded encoded = Encode({"flac", 44100, 2, AV_SAMPLE_FMT_S16});
    std::vector<Bytes> packets = encoded.mPackets;
    packets[3].assign(packets[3].size(), 0x55);
    const ConverterPtr converter =
        New(Compressed(kAudioFormatFLAC, 44100, 2, 4608), Linear(44100, kSigned, 16, 2));
    Input input(packets);
    const std::vector<SInt16> samples = As<SInt16>(FillAll(converter.get(), input, 4, 4096));
    ASSERT_EQ(samples.size(), 88200u);
    for (int i = 0; i < 88200; ++i)
    {
        const bool isLost = i / 2 / 4608 == 3;
        ASSERT_EQ(samples[static_cast<std::size_t>(i)],
                  isLost ? 0 : IntegerAt(i / 2, i % 2, 44100, 16))
            << "sample " << i;
    }
}

// An Opus packet tells its own length, so that a damaged one may decode to another.
TEST(DamagedPackets, OfAnotherLengthShiftNothing)
{
    const Encoded encoded = Encode({"libopus", 48000, 2, AV_SAMPLE_FMT_FLT});
    const AudioStreamBasicDescription source = Compressed(kAudioFormatOpus, 48000, 2, 960);
    const ConverterPtr intact = New(source, Floats(48000, 2));
    Input intactInput(encoded.mPackets);
    const std::vector<float> expected = As<float>(FillAll(intact.get(), intactInput, 8, 4096));
    for (const UInt8 head : {0xE4, 0x1C})  // 120 frames, 2880 frames
    {
        std::vector<Bytes> packets = encoded.mPackets;
        packets[9] = {head, 0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE};
        const ConverterPtr converter = New(source, Floats(48000, 2));
        Input input(packets);
        const std::vector<float> samples = As<float>(FillAll(converter.get(), input, 8, 4096));
        ASSERT_EQ(samples.size(), expected.size()) << int{head};
        double sum = 0;  // from a few packets behind the damage on
        for (std::size_t i = 20 * 1920; i < samples.size(); ++i)
            sum += std::abs(samples[i] - expected[i]);
        EXPECT_LT(sum / static_cast<double>(samples.size() - 20 * 1920), 0.001) << int{head};
    }
}

TEST(DamagedPackets, AtTheStartLeaveSilenceToo)
{
    const Encoded encoded = Encode({"flac", 44100, 2, AV_SAMPLE_FMT_S16});
    std::vector<Bytes> packets = encoded.mPackets;
    packets[0].assign(packets[0].size(), 0x55);
    const ConverterPtr converter =
        New(Compressed(kAudioFormatFLAC, 44100, 2, 4608), Linear(44100, kSigned, 16, 2));
    Input input(packets);
    const std::vector<SInt16> samples = As<SInt16>(FillAll(converter.get(), input, 4, 4096));
    ASSERT_EQ(samples.size(), 88200u);
    EXPECT_EQ(samples[9215], 0);
    EXPECT_EQ(samples[9216], IntegerAt(4608, 0, 44100, 16));
}

TEST(DamagedPackets, AStreamOfNothingElseEndsWithAStatus)
{
    const ConverterPtr converter =
        New(Compressed(kAudioFormatFLAC, 44100, 2, 4608), Floats(44100, 2));
    Input input(std::vector<Bytes>(40, Bytes(100, 0x55)));
    OSStatus status = noErr;
    EXPECT_TRUE(FillAll(converter.get(), input, 8, 4096, &status).empty());
    EXPECT_EQ(status, kAudioCodecBadDataError);
    Input few(std::vector<Bytes>(3, Bytes(100, 0x55)));
    const ConverterPtr second = New(Compressed(kAudioFormatFLAC, 44100, 2, 4608), Floats(44100, 2));
    EXPECT_TRUE(FillAll(second.get(), few, 8, 4096, &status).empty());
    EXPECT_EQ(status, kAudioCodecBadDataError);
}

TEST(DamagedPackets, AStreamOfAnotherChannelCountEndsWithAStatus)
{
    const Encoded encoded = Encode({"ac3", 48000, 6});
    const ConverterPtr converter =
        New(Compressed(kAudioFormatAC3, 48000, 2, 1536), Floats(48000, 2));
    Input input(encoded.mPackets);
    OSStatus status = noErr;
    EXPECT_TRUE(FillAll(converter.get(), input, 8, 4096, &status).empty());
    EXPECT_EQ(status, kAudioCodecBadDataError);
}

TEST(Priming, DropsLeadingAndTrailingFrames)
{
    const Encoded encoded = Encode({"aac"});
    const Codec codec = {kAudioFormatMPEG4AAC, {"aac"}, 1024, false, 0, 0.02};
    const ConverterPtr converter = NewDecoder(codec, encoded);
    const AudioConverterPrimeInfo prime = {1024, 10};
    ASSERT_EQ(
        AudioConverterSetProperty(converter.get(), kAudioConverterPrimeInfo, sizeof(prime), &prime),
        noErr);
    Input input(encoded.mPackets);
    const std::vector<float> samples = As<float>(FillAll(converter.get(), input, 8, 777));
    EXPECT_EQ(samples.size() / 2, encoded.mPackets.size() * 1024 - 1034);
    EXPECT_LT(Distance(samples, codec), 0.02);
}

TEST(RateChange, GivesTheRoundedNumberOfFrames)
{
    const Encoded encoded = Encode({"flac", 44100, 2, AV_SAMPLE_FMT_S16});
    const ConverterPtr converter =
        New(Compressed(kAudioFormatFLAC, 44100, 2, 4608), Floats(48000, 2));
    ASSERT_TRUE(converter);
    Input input(encoded.mPackets);
    const std::vector<float> samples = As<float>(FillAll(converter.get(), input, 8, 1000));
    ASSERT_EQ(samples.size(), 96000u);
    double sum = 0;
    for (int i = 1000; i < 47000; ++i)
    {
        const double tone = 0.45 * std::sin(2 * M_PI * 440.0 * i / 48000);
        sum += std::pow(samples[static_cast<std::size_t>(2 * i)] - tone, 2);
    }
    EXPECT_LT(std::sqrt(sum / 46000), 0.02);
}

OSStatus SetCookie(AudioFormatID inFormat, const Bytes& inCookie)
{
    const ConverterPtr converter = New(Compressed(inFormat, 44100, 2, 1024), Floats(44100, 2));
    return AudioConverterSetProperty(converter.get(), kAudioConverterDecompressionMagicCookie,
                                     static_cast<UInt32>(inCookie.size()), inCookie.data());
}

TEST(Cookies, OfLosslessAudioAreTakenBareAndWrapped)
{
    const Encoded encoded = Encode({"alac", 44100, 2, AV_SAMPLE_FMT_S16P});
    const Bytes& whole = encoded.mCookie;
    const Bytes bare(whole.begin() + 12, whole.end());
    Bytes wrapped = {0, 0, 0, 12, 'f', 'r', 'm', 'a', 'a', 'l', 'a', 'c'};
    wrapped.insert(wrapped.end(), whole.begin(), whole.end());
    Bytes first;
    for (const Bytes& cookie : {whole, bare, wrapped})
    {
        const ConverterPtr converter =
            New(Compressed(kAudioFormatAppleLossless, 44100, 2, 4096), Floats(44100, 2));
        ASSERT_EQ(
            AudioConverterSetProperty(converter.get(), kAudioConverterDecompressionMagicCookie,
                                      static_cast<UInt32>(cookie.size()), cookie.data()),
            noErr);
        Input input(encoded.mPackets);
        const Bytes bytes = FillAll(converter.get(), input, 8, 4096);
        EXPECT_EQ(bytes.size(), 8u * 44100);
        if (first.empty())
            first = bytes;
        EXPECT_TRUE(bytes == first);
    }
}

TEST(Cookies, ThatAreNoneAreRefusedWhenSet)
{
    EXPECT_EQ(SetCookie(kAudioFormatAppleLossless, Bytes(23, 0)),
              kAudioConverterErr_BadPropertySizeError);
    EXPECT_EQ(SetCookie(kAudioFormatFLAC, Bytes(33, 0)), kAudioConverterErr_BadPropertySizeError);
    EXPECT_EQ(SetCookie(kAudioFormatOpus, Bytes(19, 0)), kAudioCodecBadDataError);
    EXPECT_EQ(SetCookie(kAudioFormatMPEG4AAC, Bytes(1, 0)), kAudioCodecBadDataError);
    EXPECT_EQ(SetCookie(kAudioFormatMPEGLayer3, Bytes(4, 0)),
              kAudioConverterErr_PropertyNotSupported);
}

}  // namespace
