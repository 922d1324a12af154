// The layers of AAC streams: which one decodes, by which configuration, and what the probe finds.
#include "EncodedAudio.h"

#include "convert/AACDecoderConfig.h"
#include "convert/AACProbe.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace
{

using namespace converter_use;
using encoded_audio::Encode;
using encoded_audio::Encoded;

Bytes WithADTSHead(const Bytes& inPacket, UInt32 inRateIndex, UInt32 inChannels)
{
    const UInt32 size = static_cast<UInt32>(inPacket.size()) + 7;
    Bytes framed = {0xFF,
                    0xF1,
                    static_cast<UInt8>(0x40 | inRateIndex << 2 | inChannels >> 2),
                    static_cast<UInt8>((inChannels & 3) << 6 | size >> 11),
                    static_cast<UInt8>(size >> 3),
                    static_cast<UInt8>((size & 7) << 5 | 0x1F),
                    0xFC};
    framed.insert(framed.end(), inPacket.begin(), inPacket.end());
    return framed;
}

TEST(ADTS, PacketsWithHeadsDecodeWithoutACookie)
{
    const Encoded encoded = Encode({"aac"});
    std::vector<Bytes> framed;
    for (const Bytes& packet : encoded.mPackets)
        framed.push_back(WithADTSHead(packet, 4, 2));
    const ConverterPtr bare =
        New(Compressed(kAudioFormatMPEG4AAC, 44100, 2, 1024), Floats(44100, 2));
    ASSERT_EQ(AudioConverterSetProperty(bare.get(), kAudioConverterDecompressionMagicCookie,
                                        static_cast<UInt32>(encoded.mCookie.size()),
                                        encoded.mCookie.data()),
              noErr);
    Input bareInput(encoded.mPackets);
    const ConverterPtr converter =
        New(Compressed(kAudioFormatMPEG4AAC, 44100, 2, 1024), Floats(44100, 2));
    Input input(framed);
    EXPECT_TRUE(FillAll(converter.get(), input, 8, 4096) ==
                FillAll(bare.get(), bareInput, 8, 4096));
}

Bytes ReadFile(const char* inName)
{
    std::ifstream file(std::string(HE_AAC_FOLDER "/") + inName, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<Bytes> SplitADTS(const Bytes& inBytes)
{
    std::vector<Bytes> packets;
    for (std::size_t at = 0; at + 7 < inBytes.size();)
    {
        const std::size_t size =
            (inBytes[at + 3] & 3u) << 11 | inBytes[at + 4] << 3 | inBytes[at + 5] >> 5;
        const auto begin = inBytes.begin() + static_cast<std::ptrdiff_t>(at);
        packets.emplace_back(begin, begin + static_cast<std::ptrdiff_t>(size));
        at += size;
    }
    return packets;
}

struct Layer
{
    const char* mFile;
    AudioFormatID mFormat;
    double mRate;
    UInt32 mChannels;
    UInt32 mFrames;
};

// he5: stereo core at 22050 Hz with SBR; he29: mono core at 22050 Hz with SBR and PS.
TEST(LayeredAAC, EveryLayerOfAnADTSStreamDecodesAtItsRateAndLength)
{
    for (const char* name : {"he5.aac", "he29.aac"})
    {
        const std::vector<Bytes> packets = SplitADTS(ReadFile(name));
        ASSERT_GT(packets.size(), 10u) << name;
        audiotoolbox::AACConfig core;
        UInt32 headBytes = 0;
        ASSERT_TRUE(audiotoolbox::ReadADTSHead(packets[0], core, headBytes));
        const bool hasPS = std::string(name) == "he29.aac";
        const Layer layers[] = {
            {name, kAudioFormatMPEG4AAC, double(core.mSampleRate), core.mChannelCount, 1024},
            {name, kAudioFormatMPEG4AAC_HE, 2.0 * core.mSampleRate, core.mChannelCount, 2048},
            {name, kAudioFormatMPEG4AAC_HE_V2, 2.0 * core.mSampleRate, 2, 2048}};
        for (const Layer& layer : layers)
        {
            if (layer.mFormat == kAudioFormatMPEG4AAC_HE_V2 && !hasPS)
                continue;
            const ConverterPtr converter =
                New(Compressed(layer.mFormat, layer.mRate, layer.mChannels, layer.mFrames),
                    Floats(layer.mRate, layer.mChannels));
            ASSERT_TRUE(converter);
            Input input(packets);
            OSStatus status = -1;
            const std::vector<float> samples =
                As<float>(FillAll(converter.get(), input, 4 * layer.mChannels, 4096, &status));
            EXPECT_EQ(status, noErr) << name << ' ' << layer.mFrames << ' ' << layer.mChannels;
            EXPECT_EQ(samples.size(), packets.size() * layer.mFrames * layer.mChannels) << name;
            double power = 0;
            for (const float sample : samples)
                power += double{sample} * sample;
            EXPECT_GT(power / static_cast<double>(samples.size()), 1e-4) << name;
        }
    }
}

TEST(LayeredAAC, TheProbeFindsTheLayersThatOnlyThePacketsTell)
{
    struct Expectation
    {
        const char* mFile;
        bool mHasPS;
    };
    for (const Expectation& row : {Expectation{"he5.aac", false}, Expectation{"he29.aac", true}})
    {
        const Bytes bytes = ReadFile(row.mFile);
        audiotoolbox::AACConfig config;
        UInt32 headBytes = 0;
        ASSERT_TRUE(audiotoolbox::ReadADTSHead(bytes, config, headBytes));
        const UInt32 coreRate = config.mSampleRate;
        ASSERT_TRUE(audiotoolbox::ProbeAACLayers(bytes, config));
        EXPECT_TRUE(config.mHasSBR) << row.mFile;
        EXPECT_EQ(config.mHasPS, row.mHasPS) << row.mFile;
        EXPECT_EQ(config.mExtendedRate, 2 * coreRate) << row.mFile;
        EXPECT_EQ(config.mSampleRate, coreRate) << row.mFile;
    }
}

TEST(LayeredAAC, TheProbeFindsNothingInPlainAACAndInNoise)
{
    Bytes plain;
    for (const Bytes& packet : Encode({"aac"}).mPackets)
    {
        const Bytes framed = WithADTSHead(packet, 4, 2);
        plain.insert(plain.end(), framed.begin(), framed.end());
    }
    audiotoolbox::AACConfig config;
    UInt32 headBytes = 0;
    ASSERT_TRUE(audiotoolbox::ReadADTSHead(plain, config, headBytes));
    EXPECT_TRUE(audiotoolbox::ProbeAACLayers(plain, config));
    EXPECT_FALSE(config.mHasSBR);
    EXPECT_EQ(config.mExtendedRate, 0u);
    const Bytes noise(4000, 0x37);
    EXPECT_FALSE(audiotoolbox::ProbeAACLayers(noise, config));
}

audiotoolbox::AACConfig CoreOf(UInt32 inRate, UInt32 inChannels)
{
    audiotoolbox::AACConfig config;
    config.mObjectType = 2;
    config.mSampleRate = inRate;
    config.mChannelConfig = config.mChannelCount = inChannels;
    config.mFramesPerPacket = 1024;
    return config;
}

TEST(AACDecoderConfig, SaysItsLayersInSoManyWords)
{
    const auto config = [](AudioFormatID inLayer)
    { return audiotoolbox::MakeAACDecoderConfig(CoreOf(22050, 1), {}, inLayer); };
    EXPECT_EQ(config(kAudioFormatMPEG4AAC), (Bytes{0x13, 0x88, 0x56, 0xE5, 0x00}));
    EXPECT_EQ(config(kAudioFormatMPEG4AAC_HE), (Bytes{0x13, 0x88, 0x56, 0xE5, 0xA5, 0x48, 0x00}));
    EXPECT_EQ(config(kAudioFormatMPEG4AAC_HE_V2),
              (Bytes{0x13, 0x88, 0x56, 0xE5, 0xA5, 0x48, 0x80}));
}

TEST(AACDecoderConfig, KeepsAConfigurationThatItCannotMakeItself)
{
    const Bytes bytes = {0x12, 0x00, 0x05, 0xC8};  // the channels stand in a program config
    EXPECT_EQ(audiotoolbox::MakeAACDecoderConfig(CoreOf(44100, 0), bytes, kAudioFormatMPEG4AAC),
              (Bytes{0x12, 0x00, 0x05, 0xC8, 0x56, 0xE5, 0x00}));
}

}  // namespace
