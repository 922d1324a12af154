// What becomes of single bytes: the filling of constant AAC, and the codes of the two laws.
#include "EncoderUse.h"
#include "TestTones.h"
#include "convert/ConstantAAC.h"
#include "convert/LogLaw.h"

#include <gtest/gtest.h>

namespace
{

using namespace encoder_use;
using converter_use::As;
using converter_use::Floats;
using converter_use::New;

/// Mode 0 at 128000 against the plain packets of the same audio.
TEST(ConstantAAC, SilenceAndMusicFillTheRateAndDecode)
{
    for (const bool isSilent : {true, false})
    {
        auto audio = Tones(5 * 44100, 2, 44100);
        if (isSilent)
            std::fill(audio.begin(), audio.end(), 0.0f);
        const ConverterPtr converter =
            New(Floats(44100, 2), Destination(kAudioFormatMPEG4AAC, 44100, 2));
        ASSERT_EQ(Set(converter.get(), kAudioCodecPropertyBitRateControlMode, 0), noErr);
        Memory input(audio, 2);
        const Stream stream = EncodeAll(converter.get(), input);
        const double seconds = static_cast<double>(stream.mPackets.size()) * 1024 / 44100;
        EXPECT_NEAR(static_cast<double>(stream.ByteCount()) * 8 / seconds, 128000, 200);
        for (std::size_t first = 0; first + 43 <= stream.mPackets.size(); ++first)
        {
            std::size_t bytes = 0;
            for (std::size_t i = first; i < first + 43; ++i)
                bytes += stream.mPackets[i].size();
            ASSERT_NEAR(static_cast<double>(bytes) * 8 * 44100 / (43 * 1024), 128000, 5120)
                << first;
        }
        const auto back = As<float>(DecodeAll(stream, Floats(44100, 2)));
        EXPECT_EQ(back.size(), audio.size());
        EXPECT_GT(SignalToNoise(audio, back), isSilent ? -100.0 : 20.0);
    }
}

TEST(ConstantAAC, NoiseThatBreaksIntoSilenceDoesNotFloodTheSecond)
{
    auto audio = Noise(6 * 44100, 2, 0.8f);
    for (std::size_t second = 0; second < 6; second += 2)
        std::fill_n(audio.begin() + static_cast<std::ptrdiff_t>(second * 88200), 88200, 0.0f);
    const ConverterPtr converter =
        New(Floats(44100, 2), Destination(kAudioFormatMPEG4AAC, 44100, 2));
    ASSERT_EQ(Set(converter.get(), kAudioCodecPropertyBitRateControlMode, 0), noErr);
    Memory input(audio, 2);
    const Stream stream = EncodeAll(converter.get(), input);
    for (std::size_t first = 0; first + 43 <= stream.mPackets.size(); ++first)
    {
        std::size_t bytes = 0;
        for (std::size_t i = first; i < first + 43; ++i)
            bytes += stream.mPackets[i].size();
        ASSERT_NEAR(static_cast<double>(bytes) * 8 * 44100 / (43 * 1024), 128000, 5120) << first;
    }
}

TEST(ConstantAAC, FillingLeavesTheDecodedAudioAsItIs)
{
    const ConverterPtr converter =
        New(Floats(44100, 2), Destination(kAudioFormatMPEG4AAC, 44100, 2));
    const auto audio = Tones(30000, 2, 44100);
    Memory input(audio, 2);
    Stream stream = EncodeAll(converter.get(), input);
    const Bytes plain = DecodeAll(stream, Floats(44100, 2));
    std::size_t more = 0;
    for (Bytes& packet : stream.mPackets)
    {
        const std::size_t bytes = std::min<std::size_t>(packet.size() + more, 1536);
        audiotoolbox::FillPacket(bytes, packet);
        EXPECT_EQ(packet.size(), bytes);
        more = more < 40 ? more + 1 : more * 3 / 2;
    }
    EXPECT_TRUE(DecodeAll(stream, Floats(44100, 2)) == plain);
}

TEST(ConstantAAC, ElementsOfEveryLengthEndWhereTheyShould)
{
    for (std::size_t bytes = 2; bytes < 600; ++bytes)
    {
        Bytes packet = {0x01, 0xC0};  // seven zeros, then the end element
        audiotoolbox::FillPacket(bytes, packet);
        ASSERT_EQ(packet.size(), bytes);
        const auto read = [&](std::size_t& ioAt, std::size_t inBits)
        {
            UInt32 value = 0;
            for (; inBits > 0; --inBits, ++ioAt)
                value = value << 1 | (packet[ioAt / 8] >> (7 - ioAt % 8) & 1u);
            return value;
        };
        std::size_t at = 7;
        UInt32 element = read(at, 3);
        while (element == 6)
        {
            std::size_t count = read(at, 4);
            if (count == 15)
                count += read(at, 8) - 1;
            at += 8 * count;
            ASSERT_LE(at + 3, bytes * 8) << bytes;
            element = read(at, 3);
        }
        ASSERT_EQ(element, 7u) << bytes;
        ASSERT_GT(at + 8, bytes * 8) << bytes;
    }
    Bytes none = {0x00, 0x00};
    audiotoolbox::FillPacket(9, none);
    EXPECT_EQ(none.size(), 2u);
}

TEST(LogLaw, EveryValueGetsACodeWithinHalfAStep)
{
    using audiotoolbox::LogLaw;
    for (const LogLaw law : {LogLaw::A, LogLaw::Mu})
        for (int value = -32768; value < 32768; ++value)
        {
            const SInt16 sample = static_cast<SInt16>(value);
            UInt8 code = 0;
            audiotoolbox::CompressLogLaw(law, &sample, 1, &code);
            const int back = audiotoolbox::ExpandLogLaw(law, code);
            ASSERT_LE(std::abs(back - value), (std::abs(value) + 132) / 32 + 4) << value;
        }
}

TEST(LogLaw, EveryCodeComesBackAsItself)
{
    using audiotoolbox::LogLaw;
    for (const LogLaw law : {LogLaw::A, LogLaw::Mu})
        for (UInt32 code = 0; code < 256; ++code)
        {
            const SInt16 sample = audiotoolbox::ExpandLogLaw(law, static_cast<UInt8>(code));
            UInt8 back = 0;
            audiotoolbox::CompressLogLaw(law, &sample, 1, &back);
            const bool isSecondZero = law == LogLaw::Mu && code == 0x7F;
            EXPECT_EQ(back, isSecondZero ? 0xFF : code);
        }
}

}  // namespace
