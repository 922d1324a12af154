// Encoding: what comes back from the packets, settings, and the rules of a fill.
#include "EncoderUse.h"
#include "TestTones.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{

using namespace encoder_use;
using converter_use::As;
using converter_use::BytesOf;
using converter_use::Floats;
using converter_use::kSigned;
using converter_use::Linear;
using converter_use::New;

struct LossyRow
{
    AudioFormatID mFormat;
    double mRate;
    UInt32 mChannels;
    double mDecibels;  // signal to noise, at the encoder's default
};
constexpr LossyRow kLossy[] = {
    {kAudioFormatMPEG4AAC, 44100, 2, 20},
    {kAudioFormatMPEG4AAC, 48000, 6, 20},
    {kAudioFormatMPEGLayer3, 44100, 2, 20},
    {kAudioFormatMPEGLayer3, 22050, 1, 20},
    {kAudioFormatMPEGLayer2, 48000, 2, 20},
    {kAudioFormatAC3, 48000, 2, 20},
    {kAudioFormatAC3, 48000, 6, 20},
    {kAudioFormatEnhancedAC3, 48000, 2, 20},
    {kAudioFormatOpus, 48000, 2, 15},
    {kAudioFormatAppleIMA4, 44100, 2, 20},
    {kAudioFormatMicrosoftADPCM, 44100, 2, 20},
    {kAudioFormatDVIIntelIMA, 44100, 2, 20},
    {kAudioFormatMicrosoftGSM, 8000, 1, 5},
    {kAudioFormatALaw, 44100, 2, 30},
    {kAudioFormatULaw, 44100, 3, 30},
};

TEST(Encoding, LossyAudioComesBackInItsPlaceAndLength)
{
    for (const LossyRow& row : kLossy)
        for (const std::size_t frames : {1u, 1536u, 30000u})
        {
            SCOPED_TRACE(std::to_string(row.mFormat) + " " + std::to_string(row.mRate) + " " +
                         std::to_string(frames));
            const auto audio = Tones(frames, row.mChannels, row.mRate);
            const auto client = Floats(row.mRate, row.mChannels);
            const ConverterPtr converter =
                New(client, Destination(row.mFormat, row.mRate, row.mChannels));
            ASSERT_NE(converter, nullptr);
            Memory input(audio, row.mChannels);
            const Stream stream = EncodeAll(converter.get(), input);
            ASSERT_EQ(stream.mStatus, noErr);
            const auto back = As<float>(DecodeAll(stream, client));
            EXPECT_EQ(back.size() / row.mChannels, frames);
            EXPECT_GT(SignalToNoise(audio, back), frames > 10000 ? row.mDecibels : -100.0);
        }
}

struct LosslessRow
{
    AudioFormatID mFormat;
    UInt32 mChannels;
    UInt32 mBits;
    UInt32 mFlags;     // of the destination
    UInt32 mResolved;  // flags that it tells
};
constexpr LosslessRow kLossless[] = {
    {kAudioFormatAppleLossless, 2, 16, 0, 1}, {kAudioFormatAppleLossless, 2, 24, 0, 3},
    {kAudioFormatAppleLossless, 1, 24, 3, 3}, {kAudioFormatAppleLossless, 6, 24, 0, 3},
    {kAudioFormatAppleLossless, 8, 16, 0, 1}, {kAudioFormatFLAC, 2, 16, 0, 1},
    {kAudioFormatFLAC, 2, 24, 0, 3},          {kAudioFormatFLAC, 8, 24, 0, 3},
    {kAudioFormatFLAC, 3, 16, 1, 1},
};

TEST(Encoding, LosslessAudioComesBackBitForBitInPacketsBelow64KiB)
{
    for (const LosslessRow& row : kLossless)
        for (const std::size_t frames : {1u, 4608u, 20001u})
        {
            SCOPED_TRACE(std::to_string(row.mFormat) + " " + std::to_string(row.mChannels) + " " +
                         std::to_string(row.mBits) + " " + std::to_string(frames));
            const auto client = Linear(48000, kSigned, row.mBits, row.mChannels);
            std::mt19937 generator(3);
            Bytes audio(frames * client.mBytesPerFrame);
            for (UInt8& byte : audio)
                byte = static_cast<UInt8>(generator());
            const ConverterPtr converter =
                New(client, Destination(row.mFormat, 48000, row.mChannels, row.mFlags));
            ASSERT_NE(converter, nullptr);
            Input input = Input::Constant(audio, client.mBytesPerFrame);
            const Stream stream = EncodeAll(converter.get(), input);
            ASSERT_EQ(stream.mStatus, noErr);
            EXPECT_EQ(stream.mFormat.mFormatFlags, row.mResolved);
            for (const Bytes& packet : stream.mPackets)
                EXPECT_LT(packet.size(), 65536u);
            EXPECT_TRUE(DecodeAll(stream, client) == audio);
        }
}

TEST(Encoding, LosslessDepthFollowsTheClientAndUnknownOnesAreRefused)
{
    for (const AudioFormatID format : {kAudioFormatAppleLossless, kAudioFormatFLAC})
    {
        const auto flags = [=](const AudioStreamBasicDescription& inClient)
        {
            const ConverterPtr converter = New(inClient, Destination(format, 44100, 2));
            return Get<AudioStreamBasicDescription>(converter.get(),
                                                    kAudioConverterCurrentOutputStreamDescription)
                ->mFormatFlags;
        };
        EXPECT_EQ(flags(Linear(44100, kAudioFormatFlagIsPacked, 8, 2)), 1u);
        EXPECT_EQ(flags(Linear(44100, kSigned, 32, 2)), 3u);
        EXPECT_EQ(flags(Floats(44100, 2)), 3u);
        for (const UInt32 refused : {2u, 4u, 5u})
            EXPECT_EQ(New(Floats(44100, 2), Destination(format, 44100, 2, refused)), nullptr);
    }
}

TEST(Encoding, TheLastCookieOfFLACTellsTheWholeStream)
{
    const ConverterPtr converter =
        New(Linear(44100, kSigned, 16, 2), Destination(kAudioFormatFLAC, 44100, 2));
    Input input = Input::Constant(Bytes(4 * 10000, 0x11), 4);
    const Stream stream = EncodeAll(converter.get(), input);
    ASSERT_EQ(stream.mCookie.size(), 34u);
    EXPECT_EQ(stream.mCookie[17], 10000 & 0xFF) << "low byte of the frame count";
    EXPECT_EQ(stream.mFrames.back(), 10000u - 2 * 4608);
}

TEST(Encoding, FillsOfAnySizeGiveTheSamePackets)
{
    const auto audio = Tones(20000, 2, 44100);
    std::vector<Bytes> first;
    for (const UInt32 perFill : {1u, 2u, 100u})
    {
        const ConverterPtr converter =
            New(Floats(44100, 2), Destination(kAudioFormatMPEG4AAC, 44100, 2));
        Input input = Input::Constant(BytesOf(audio), 8);
        input.mMostPerCall = 777;
        const Stream stream = EncodeAll(converter.get(), input, perFill);
        if (first.empty())
            first = stream.mPackets;
        EXPECT_EQ(first.size(), 21u);
        EXPECT_TRUE(stream.mPackets == first) << perFill;
        EXPECT_EQ(stream.mPrime.leadingFrames, 1024u);
        EXPECT_EQ(stream.mPrime.trailingFrames, 21u * 1024 - 1024 - 20000);
    }
}

TEST(Encoding, AStatusOfTheProcedureComesBackAndNoFrameIsLost)
{
    const auto audio = Tones(10000, 1, 44100);
    const auto encode = [&](std::size_t inFailBefore, int& outFailures)
    {
        const ConverterPtr converter =
            New(Floats(44100, 1), Destination(kAudioFormatMPEG4AAC, 44100, 1));
        Input input = Input::Constant(BytesOf(audio), 4);
        input.mFailBefore = inFailBefore;
        input.mFailure = 4711;
        Stream stream = EncodeAll(converter.get(), input, 2);
        outFailures = stream.mStatus == 4711 ? 1 : 0;
        if (outFailures == 0)
            return stream.mPackets;
        Stream rest = EncodeAll(converter.get(), input, 2);
        EXPECT_EQ(rest.mStatus, noErr);
        stream.mPackets.insert(stream.mPackets.end(), rest.mPackets.begin(), rest.mPackets.end());
        return stream.mPackets;
    };
    int failures = 0;
    const std::vector<Bytes> whole = encode(static_cast<std::size_t>(-1), failures);
    EXPECT_EQ(failures, 0);
    const std::vector<Bytes> interrupted = encode(3333, failures);
    EXPECT_EQ(failures, 1);
    EXPECT_TRUE(interrupted == whole);
}

TEST(Encoding, NoAudioMakesNoPacketAndAResetStartsAnew)
{
    const ConverterPtr converter =
        New(Floats(44100, 2), Destination(kAudioFormatMPEGLayer3, 44100, 2));
    Input none = Input::Constant({}, 8);
    EXPECT_TRUE(EncodeAll(converter.get(), none).mPackets.empty());
    std::vector<Bytes> first;
    for (int round = 0; round < 2; ++round)
    {
        ASSERT_EQ(AudioConverterReset(converter.get()), noErr);
        const auto audio = Tones(5000, 2, 44100);
        Memory input(audio, 2);
        const Stream stream = EncodeAll(converter.get(), input);
        EXPECT_EQ(stream.mStatus, noErr);
        EXPECT_FALSE(stream.mPackets.empty());
        EXPECT_EQ(stream.mPackets == first, round == 1);
        first = stream.mPackets;
    }
}

TEST(Encoding, WhatIsNoNumberOrFarTooLoudNeverReachesAnEncoder)
{
    for (const AudioFormatID format : {kAudioFormatMPEG4AAC, kAudioFormatMPEGLayer3,
                                       kAudioFormatAC3, kAudioFormatOpus, kAudioFormatFLAC})
    {
        std::vector<float> audio = Tones(9600, 2, 48000);
        for (std::size_t i = 0; i < audio.size(); i += 7)
            audio[i] = i % 3 == 0   ? std::numeric_limits<float>::quiet_NaN()
                       : i % 3 == 1 ? std::numeric_limits<float>::infinity()
                                    : -1e30f;
        const ConverterPtr converter = New(Floats(48000, 2), Destination(format, 48000, 2));
        Memory input(audio, 2);
        const Stream stream = EncodeAll(converter.get(), input);
        EXPECT_EQ(stream.mStatus, noErr) << format;
        const auto back = As<float>(DecodeAll(stream, Floats(48000, 2)));
        EXPECT_EQ(back.size(), audio.size()) << format;
        for (const float sample : back)
            ASSERT_TRUE(std::isfinite(sample)) << format;
    }
}

TEST(Encoding, ASingleSampleThatIsNoNumberOrTooLoudIsTamedWhereverItStands)
{
    const float infinity = std::numeric_limits<float>::infinity();
    for (const float bad : {std::numeric_limits<float>::quiet_NaN(), infinity, -infinity, -1e30f})
    {
        for (const std::size_t place : {std::size_t{0}, std::size_t{2047}, std::size_t{9599}})
        {
            std::vector<float> audio = Tones(4800, 2, 48000);
            audio[place] = bad;
            const ConverterPtr converter =
                New(Floats(48000, 2), Destination(kAudioFormatMPEG4AAC, 48000, 2));
            Memory input(audio, 2);
            const Stream stream = EncodeAll(converter.get(), input);
            EXPECT_EQ(stream.mStatus, noErr) << bad << " at " << place;
            const auto back = As<float>(DecodeAll(stream, Floats(48000, 2)));
            EXPECT_EQ(back.size(), audio.size()) << bad << " at " << place;
        }
    }
}

TEST(Encoding, AFillWithoutRoomOrDescriptionsFailsAndLosesNothing)
{
    const ConverterPtr converter =
        New(Floats(44100, 1), Destination(kAudioFormatMPEG4AAC, 44100, 1));
    const auto audio = Tones(3000, 1, 44100);
    Memory input(audio, 1);
    UInt8 room[2000];
    AudioStreamPacketDescription description = {};
    const auto fill = [&](UInt32 inRoom, AudioStreamPacketDescription* outDescription)
    {
        AudioBufferList list = {1, {{0, inRoom, room}}};
        UInt32 packets = 1;
        return AudioConverterFillComplexBuffer(converter.get(), &Memory::Proc, &input, &packets,
                                               &list, outDescription);
    };
    EXPECT_EQ(fill(2000, nullptr), kAudioConverterErr_RequiresPacketDescriptionsError);
    EXPECT_EQ(fill(1, &description), kAudioConverterErr_InvalidOutputSize);
    std::size_t packets = 0;
    while (fill(2000, &description) == noErr && description.mDataByteSize > 0 && packets < 10)
    {
        description = {};
        ++packets;
    }
    EXPECT_GE(packets, 4u);
}

TEST(EncoderSettings, ModesRatesAndQualitiesAreCheckedAgainstTheTables)
{
    const ConverterPtr converter =
        New(Floats(44100, 2), Destination(kAudioFormatMPEG4AAC, 44100, 2));
    const AudioConverterRef aac = converter.get();
    constexpr AudioConverterPropertyID kMode = kAudioCodecPropertyBitRateControlMode;
    EXPECT_EQ(Set(aac, kMode, 2), -50);
    EXPECT_EQ(Set(aac, kMode, 4), -50);
    ASSERT_EQ(Set(aac, kMode, 1), noErr);
    EXPECT_EQ(*Get<UInt32>(aac, kAudioConverterEncodeBitRate), 128000u);
    EXPECT_EQ(BitRates(aac).front(), 28000u);
    EXPECT_EQ(BitRates(aac).back(), 384000u);
    EXPECT_EQ(Set(aac, kAudioConverterEncodeBitRate, 96000), noErr);
    EXPECT_EQ(Set(aac, kAudioConverterEncodeBitRate, 96001), -50);
    EXPECT_EQ(*Get<UInt32>(aac, kAudioConverterEncodeBitRate), 96000u);
    ASSERT_EQ(Set(aac, kMode, 0), noErr);
    EXPECT_EQ(*Get<UInt32>(aac, kAudioConverterEncodeBitRate), 128000u);
    EXPECT_EQ(BitRates(aac).back(), 512000u);
    ASSERT_EQ(Set(aac, kMode, 3), noErr);
    EXPECT_FALSE(BitRates(aac).empty());
    EXPECT_EQ(Set(aac, kAudioConverterEncodeBitRate, 128000), -50);
    for (const float quality : {0.0f, 100.0f, 127.0f})
        EXPECT_EQ(
            AudioConverterSetProperty(aac, kAudioCodecPropertySoundQualityForVBR, 4, &quality),
            noErr);
    for (const float quality : {-1.0f, 127.5f, std::numeric_limits<float>::quiet_NaN()})
        EXPECT_EQ(
            AudioConverterSetProperty(aac, kAudioCodecPropertySoundQualityForVBR, 4, &quality),
            -50);
    const UInt64 wide = 0;
    EXPECT_EQ(AudioConverterSetProperty(aac, kMode, 8, &wide),
              kAudioConverterErr_BadPropertySizeError);
}

TEST(EncoderSettings, FormatsWithoutBitRatesRefuseThemAll)
{
    for (const AudioFormatID format :
         {kAudioFormatALaw, kAudioFormatULaw, kAudioFormatAppleIMA4, kAudioFormatMicrosoftADPCM,
          kAudioFormatDVIIntelIMA, kAudioFormatAppleLossless, kAudioFormatFLAC})
    {
        const ConverterPtr converter = New(Floats(44100, 2), Destination(format, 44100, 2));
        ASSERT_NE(converter, nullptr);
        for (UInt32 mode = 0; mode < 4; ++mode)
            EXPECT_EQ(Set(converter.get(), kAudioCodecPropertyBitRateControlMode, mode),
                      kAudioConverterErr_PropertyNotSupported);
        EXPECT_TRUE(BitRates(converter.get()).empty());
    }
    const ConverterPtr linear = New(Floats(44100, 2), Linear(44100, kSigned, 16, 2));
    EXPECT_EQ(Set(linear.get(), kAudioCodecPropertyBitRateControlMode, 0),
              kAudioConverterErr_PropertyNotSupported);
}

TEST(EncoderSettings, AreFrozenOnceTheEncoderWorks)
{
    const ConverterPtr converter =
        New(Floats(44100, 2), Destination(kAudioFormatMPEGLayer3, 44100, 2));
    const auto audio = Tones(5000, 2, 44100);
    Memory input(audio, 2);
    (void)EncodeAll(converter.get(), input);
    EXPECT_EQ(Set(converter.get(), kAudioConverterEncodeBitRate, 192000),
              kAudioConverterErr_OperationNotSupported);
}

TEST(EncoderSettings, ABetterQualityTakesMoreBytes)
{
    for (const AudioFormatID format : {kAudioFormatMPEG4AAC, kAudioFormatMPEGLayer3})
    {
        std::size_t last = 0;
        for (const float quality : {0.0f, 64.0f, 127.0f})
        {
            const ConverterPtr converter = New(Floats(44100, 2), Destination(format, 44100, 2));
            ASSERT_EQ(Set(converter.get(), kAudioCodecPropertyBitRateControlMode, 3), noErr);
            ASSERT_EQ(AudioConverterSetProperty(converter.get(),
                                                kAudioCodecPropertySoundQualityForVBR, 4, &quality),
                      noErr);
            const auto audio = Noise(44100, 2, 0.5f);
            Memory input(audio, 2);
            const std::size_t bytes = EncodeAll(converter.get(), input).ByteCount();
            EXPECT_GT(bytes, last + last / 5) << format << " " << quality;
            last = bytes;
        }
    }
}

TEST(EncoderSettings, AListIsCutToWholeRanges)
{
    const ConverterPtr converter =
        New(Floats(44100, 2), Destination(kAudioFormatMPEGLayer3, 44100, 2));
    AudioValueRange ranges[2] = {};
    UInt32 size = 31;
    EXPECT_EQ(AudioConverterGetProperty(converter.get(), kAudioConverterApplicableEncodeBitRates,
                                        &size, ranges),
              noErr);
    EXPECT_EQ(size, 16u);
    EXPECT_EQ(ranges[0].mMaximum, 32000.0);
    EXPECT_EQ(ranges[1].mMaximum, 0.0);
}

}  // namespace
