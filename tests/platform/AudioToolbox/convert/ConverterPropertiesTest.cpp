// What a converter is refused for, and what it answers about itself.
#include "ConverterUse.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{

using namespace converter_use;

OSStatus NewStatus(const AudioStreamBasicDescription& inFrom,
                   const AudioStreamBasicDescription& inTo)
{
    AudioConverterRef converter = nullptr;
    const OSStatus status = AudioConverterNew(&inFrom, &inTo, &converter);
    EXPECT_EQ(converter != nullptr, status == noErr);
    const ConverterPtr owner(converter);
    return status;
}

TEST(New, RefusesNullArgumentsAndFormatsThatItCannotDo)
{
    const auto format = Linear(44100, kSigned, 16, 2);
    AudioConverterRef converter = nullptr;
    EXPECT_EQ(AudioConverterNew(nullptr, &format, &converter), -50);
    EXPECT_EQ(AudioConverterNew(&format, nullptr, &converter), -50);
    EXPECT_EQ(AudioConverterNew(&format, &format, nullptr), -50);
    EXPECT_EQ(AudioConverterDispose(nullptr), -50);
    const OSStatus refused = kAudioConverterErr_FormatNotSupported;
    const auto layered = Compressed(kAudioFormatMPEG4AAC_HE, 44100, 2, 2048);
    EXPECT_EQ(NewStatus(format, layered), refused) << "nothing encodes it";
    EXPECT_EQ(NewStatus(Compressed(kAudioFormatMACE3, 44100, 1, 6), format), refused);
    EXPECT_EQ(NewStatus(Compressed(0x3F3F3F3F, 44100, 2, 0), format), refused);
    EXPECT_EQ(NewStatus(Compressed(kAudioFormatAC3, 48000, 9, 1536), Floats(48000, 9)), refused);
    EXPECT_EQ(NewStatus(Compressed(kAudioFormatAC3, 48000, 0, 1536), Floats(48000, 0)), refused);
    for (const double rate : {0.0, -1.0, std::nan(""), HUGE_VAL, 1e30})
        EXPECT_EQ(NewStatus(Linear(rate, kSigned, 16, 2), format), refused) << rate;
    EXPECT_EQ(NewStatus(Linear(44100, kSigned, 16, 65), Linear(44100, kSigned, 16, 65)), refused);
    EXPECT_EQ(NewStatus(format, Linear(44100, kSigned, 16, 65)), refused);
}

TEST(New, TakesAnyOtherChannelCount)
{
    for (UInt32 from = 1; from <= 64; ++from)
        for (UInt32 to = 1; to <= 64; ++to)
            EXPECT_EQ(NewStatus(Linear(48000, kSigned, 16, from), Linear(44100, kSigned, 24, to)),
                      noErr)
                << from << " to " << to;
}

TEST(New, RefusesDescriptionsThatContradictThemselves)
{
    const OSStatus refused = kAudioConverterErr_FormatNotSupported;
    const auto client = Linear(44100, kSigned, 16, 2);
    auto bytes = client;
    bytes.mBytesPerFrame = bytes.mBytesPerPacket = 6;
    EXPECT_EQ(NewStatus(bytes, client), refused) << "packed with another word";
    bytes.mBytesPerFrame = bytes.mBytesPerPacket = 5;
    EXPECT_EQ(NewStatus(bytes, client), refused) << "no whole words";
    auto packet = client;
    packet.mBytesPerPacket = 8;
    EXPECT_EQ(NewStatus(client, packet), refused) << "packet is not a frame";
    auto frames = client;
    frames.mFramesPerPacket = 2;
    EXPECT_EQ(NewStatus(client, frames), refused);
    auto floats = Linear(44100, kSigned, 16, 2);
    floats.mFormatFlags = kAudioFormatFlagIsFloat | kAudioFormatFlagIsPacked;
    EXPECT_EQ(NewStatus(client, floats), refused) << "float of 16 bits";
    EXPECT_EQ(NewStatus(client, Linear(44100, kAudioFormatFlagIsPacked, 16, 2)), refused)
        << "unsigned of 16 bits";
    auto odd =
        Linear(44100, kAudioFormatFlagIsSignedInteger | kAudioFormatFlagIsAlignedHigh, 24, 2);
    odd.mBitsPerChannel = 20;
    EXPECT_EQ(NewStatus(odd, Linear(44100, kSigned, 24, 2)), noErr) << "20 bits in 24";
}

TEST(Properties, TellTheFormatsThatTheConverterWasMadeOf)
{
    const auto from = Compressed(kAudioFormatAC3, 48000, 6, 1536);
    const auto to = Floats(48000, 6);
    const ConverterPtr converter = New(from, to);
    UInt32 size = 0;
    Boolean isWritable = 1;
    ASSERT_EQ(
        AudioConverterGetPropertyInfo(converter.get(), kAudioConverterCurrentInputStreamDescription,
                                      &size, &isWritable),
        noErr);
    EXPECT_EQ(size, 40u);
    EXPECT_EQ(isWritable, 0);
    AudioStreamBasicDescription format = {};
    ASSERT_EQ(AudioConverterGetProperty(
                  converter.get(), kAudioConverterCurrentInputStreamDescription, &size, &format),
              noErr);
    EXPECT_EQ(std::memcmp(&format, &from, sizeof(from)), 0);
    ASSERT_EQ(AudioConverterGetProperty(
                  converter.get(), kAudioConverterCurrentOutputStreamDescription, &size, &format),
              noErr);
    EXPECT_EQ(std::memcmp(&format, &to, sizeof(to)), 0);
    size = 39;
    EXPECT_EQ(AudioConverterGetProperty(
                  converter.get(), kAudioConverterCurrentInputStreamDescription, &size, &format),
              kAudioConverterErr_BadPropertySizeError);
    EXPECT_EQ(AudioConverterGetPropertyInfo(converter.get(), 0x3F3F3F3F, &size, nullptr),
              kAudioConverterErr_PropertyNotSupported);
}

TEST(Properties, PrimeInfoIsWritableForCompressedSourcesAlone)
{
    UInt32 size = 0;
    Boolean isWritable = 0;
    for (const auto& from : {Compressed(kAudioFormatMPEGLayer3, 44100, 2, 1152),
                             Compressed(kAudioFormatULaw, 44100, 2, 1, 2)})
    {
        const ConverterPtr converter = New(from, Floats(44100, 2));
        EXPECT_EQ(AudioConverterGetPropertyInfo(converter.get(), kAudioConverterPrimeInfo, &size,
                                                &isWritable),
                  noErr);
        EXPECT_EQ(size, 8u);
        EXPECT_EQ(isWritable, 1);
        const UInt32 prime[3] = {};
        EXPECT_EQ(AudioConverterSetProperty(converter.get(), kAudioConverterPrimeInfo, 12, prime),
                  kAudioConverterErr_BadPropertySizeError);
    }
    const ConverterPtr linear = New(Linear(44100, kSigned, 16, 2), Floats(44100, 2));
    EXPECT_EQ(
        AudioConverterGetPropertyInfo(linear.get(), kAudioConverterPrimeInfo, &size, &isWritable),
        kAudioConverterErr_PropertyNotSupported);
}

TEST(Properties, ACookieIsTakenWhereADecoderTakesOne)
{
    UInt32 size = 99;
    Boolean isWritable = 0;
    const ConverterPtr lossless =
        New(Compressed(kAudioFormatAppleLossless, 44100, 2, 4096), Floats(44100, 2));
    EXPECT_EQ(AudioConverterGetPropertyInfo(lossless.get(), kAudioConverterDecompressionMagicCookie,
                                            &size, &isWritable),
              noErr);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(isWritable, 1);
    for (const auto& from :
         {Compressed(kAudioFormatALaw, 44100, 2, 1, 2),
          Compressed(kAudioFormatULaw, 44100, 2, 1, 2), Linear(44100, kSigned, 16, 2)})
    {
        const ConverterPtr converter = New(from, Floats(44100, 2));
        EXPECT_EQ(AudioConverterGetPropertyInfo(
                      converter.get(), kAudioConverterDecompressionMagicCookie, &size, &isWritable),
                  kAudioConverterErr_PropertyNotSupported);
    }
}

}  // namespace
