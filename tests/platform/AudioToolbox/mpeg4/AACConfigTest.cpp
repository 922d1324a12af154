// Configurations of AAC as files carry them, and what they say of the layers.
#include "file/AACConfig.h"

#include "file/mpeg4/BitReader.h"

#include <gtest/gtest.h>

#include <cstring>

namespace audiotoolbox
{
namespace
{

using Bytes = std::vector<UInt8>;

AACConfig Parsed(const Bytes& inBytes)
{
    AACConfig config;
    EXPECT_TRUE(ParseAudioSpecificConfig(inBytes, config));
    return config;
}

bool Parses(const Bytes& inBytes)
{
    AACConfig config;
    return ParseAudioSpecificConfig(inBytes, config);
}

// Writes bit fields, so that a test can spell a configuration field by field.
class BitText
{
public:
    BitText& Put(UInt32 inValue, unsigned inBits)
    {
        for (unsigned bit = inBits; bit > 0; --bit)
            PutBit((inValue >> (bit - 1)) & 1u);
        return *this;
    }

    BitText& Align()
    {
        mUsed = 0;
        return *this;
    }

    const Bytes& Get() const { return mBytes; }

private:
    void PutBit(UInt32 inBit)
    {
        if (mUsed == 0)
            mBytes.push_back(0);
        mBytes.back() = static_cast<UInt8>(mBytes.back() | (inBit << (7 - mUsed)));
        mUsed = (mUsed + 1) % 8;
    }

    Bytes mBytes;
    unsigned mUsed = 0;
};

UInt32 LayoutTag(const FileFacts& inFacts)
{
    UInt32 tag = 0xDEADBEEF;
    if (inFacts.mChannelLayout.size() >= sizeof(tag))
        std::memcpy(&tag, inFacts.mChannelLayout.data(), sizeof(tag));
    return tag;
}

TEST(BitReader, GivesZerosBehindTheEndAndRemembers)
{
    const Bytes bytes = {0xA5};
    mpeg4::BitReader bits(bytes);
    EXPECT_EQ(bits.Read(4), 0xAu);
    EXPECT_EQ(bits.Read(8), 0x50u);
    EXPECT_TRUE(bits.IsPastEnd());
    EXPECT_EQ(bits.BitsLeft(), 0u);
}

TEST(AudioSpecificConfig, PlainLowComplexityStereo)
{
    const AACConfig config = Parsed({0x12, 0x10});
    EXPECT_EQ(config.mObjectType, 2u);
    EXPECT_EQ(config.mSampleRate, 44100u);
    EXPECT_EQ(config.mChannelConfig, 2u);
    EXPECT_EQ(config.mChannelCount, 2u);
    EXPECT_EQ(config.mFramesPerPacket, 1024u);
    EXPECT_FALSE(config.mHasSBR);
    EXPECT_FALSE(config.mHasPS);
}

TEST(AudioSpecificConfig, CompatibleExtensionAnnouncesSBR)
{
    const AACConfig config = Parsed({0x13, 0x90, 0x56, 0xE5, 0xA0});
    EXPECT_EQ(config.mSampleRate, 22050u);
    EXPECT_EQ(config.mExtendedRate, 44100u);
    EXPECT_TRUE(config.mHasSBR);
    EXPECT_FALSE(config.mHasPS);
}

TEST(AudioSpecificConfig, CompatibleExtensionAnnouncesPS)
{
    const AACConfig config = Parsed({0x13, 0x88, 0x56, 0xE5, 0xA5, 0x48, 0x80});
    EXPECT_EQ(config.mChannelCount, 1u);
    EXPECT_TRUE(config.mHasSBR);
    EXPECT_TRUE(config.mHasPS);
}

TEST(AudioSpecificConfig, CompatibleExtensionWithFlagClearedIsPlain)
{
    const AACConfig config = Parsed({0x13, 0x90, 0x56, 0xE5, 0x00});
    EXPECT_FALSE(config.mHasSBR);
    EXPECT_EQ(config.mExtendedRate, 0u);
}

TEST(AudioSpecificConfig, ExplicitSBRTellsTheCoreBehindTheExtendedRate)
{
    const Bytes bytes = BitText().Put(5, 5).Put(7, 4).Put(2, 4).Put(4, 4).Put(2, 5).Put(0, 3).Get();
    const AACConfig config = Parsed(bytes);
    EXPECT_EQ(config.mObjectType, 2u);
    EXPECT_EQ(config.mSampleRate, 22050u);
    EXPECT_EQ(config.mExtendedRate, 44100u);
    EXPECT_TRUE(config.mHasSBR);
    EXPECT_FALSE(config.mHasPS);
}

TEST(AudioSpecificConfig, ExplicitPSIsSBRToo)
{
    const Bytes bytes =
        BitText().Put(29, 5).Put(6, 4).Put(1, 4).Put(3, 4).Put(2, 5).Put(0, 3).Get();
    const AACConfig config = Parsed(bytes);
    EXPECT_TRUE(config.mHasSBR);
    EXPECT_TRUE(config.mHasPS);
    EXPECT_EQ(config.mSampleRate, 24000u);
    EXPECT_EQ(config.mExtendedRate, 48000u);
}

TEST(AudioSpecificConfig, EscapedObjectTypeOfLowDelay)
{
    const Bytes bytes =
        BitText().Put(31, 5).Put(39 - 32, 6).Put(3, 4).Put(2, 4).Put(1, 1).Put(0, 12).Get();
    const AACConfig config = Parsed(bytes);
    EXPECT_EQ(config.mObjectType, 39u);
    EXPECT_EQ(config.mFramesPerPacket, 480u);
}

TEST(AudioSpecificConfig, ExplicitRateOf24Bits)
{
    const Bytes bytes = BitText().Put(2, 5).Put(15, 4).Put(37800, 24).Put(1, 4).Put(0, 3).Get();
    const AACConfig config = Parsed(bytes);
    EXPECT_EQ(config.mSampleRate, 37800u);
    EXPECT_EQ(config.mChannelCount, 1u);
}

TEST(AudioSpecificConfig, ShortFramesOf960)
{
    EXPECT_EQ(Parsed({0x12, 0x14}).mFramesPerPacket, 960u);
}

TEST(AudioSpecificConfig, ProgramConfigCountsItsElements)
{
    BitText bits;
    bits.Put(2, 5).Put(4, 4).Put(0, 4).Put(0, 3);  // type, rate, configuration, general flags
    bits.Put(0, 4).Put(1, 2).Put(4, 4);            // instance, object type, rate
    bits.Put(2, 4).Put(0, 4).Put(1, 4).Put(1, 2).Put(1, 3).Put(0, 4).Put(0, 3);
    bits.Put(0, 5).Put(0x10, 5).Put(0x11, 5);  // centre, front pair, back pair
    bits.Put(0, 4).Put(0, 4).Align();          // LFE, data element
    bits.Put(3, 8).Put(0x616263, 24);          // comment
    bits.Put(0x2B7, 11).Put(5, 5).Put(1, 1).Put(3, 4);
    const AACConfig config = Parsed(bits.Get());
    EXPECT_EQ(config.mChannelConfig, 0u);
    EXPECT_EQ(config.mChannelCount, 6u);
    EXPECT_TRUE(config.mHasSBR) << "the extension stands behind the element's comment";
}

TEST(AudioSpecificConfig, RefusesWhatIsNoAAC)
{
    EXPECT_FALSE(Parses({}));
    EXPECT_FALSE(Parses({0x12}));
    EXPECT_FALSE(Parses({0x00, 0x00})) << "object type 0";
    EXPECT_FALSE(Parses({0x16, 0x90})) << "reserved rate 13";
    EXPECT_FALSE(Parses(BitText().Put(31, 5).Put(4, 6).Put(4, 4).Put(2, 4).Put(0, 8).Get()))
        << "lossless object type 36";
    EXPECT_FALSE(Parses(BitText().Put(2, 5).Put(15, 4).Put(0, 24).Put(1, 4).Put(0, 3).Get()))
        << "rate 0";
    EXPECT_FALSE(Parses({0x12, 0x00})) << "program config element missing";
}

TEST(AudioSpecificConfig, ExtensionCutShortIsNone)
{
    const AACConfig config = Parsed({0x13, 0x90, 0x56, 0xE5});
    EXPECT_FALSE(config.mHasSBR);
}

TEST(AudioSpecificConfig, ComesOutOfEveryFormOfCookie)
{
    const Bytes config = {0x12, 0x10};
    const Bytes descriptor = {0x03, 0x19, 0, 1, 0, 0x04, 0x11, 0x40, 0x15, 0,    0,    0,    0, 0,
                              0,    0,    0, 0, 0, 0,    0x05, 0x02, 0x12, 0x10, 0x06, 0x01, 2};
    Bytes body = {0, 0, 0, 0};
    body.insert(body.end(), descriptor.begin(), descriptor.end());
    EXPECT_EQ(AudioSpecificConfigOfCookie(config), config);
    EXPECT_EQ(AudioSpecificConfigOfCookie(descriptor), config);
    EXPECT_EQ(AudioSpecificConfigOfCookie(body), config);
}

TEST(AudioSpecificConfig, ComesOutOfADescriptorWithLongLengthsAndOptionalFields)
{
    const Bytes descriptor = {0x03, 0x80, 0x80, 0x80, 0x26, 0,    1,    0xE0, 9,    9,    2,
                              'a',  'b',  7,    7,    0x04, 0x80, 0x80, 0x80, 0x17, 0x40, 0x15,
                              0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,
                              0x05, 0x80, 0x80, 0x80, 0x05, 0x13, 0x90, 0x56, 0xE5, 0xA0};
    EXPECT_EQ(AudioSpecificConfigOfCookie(descriptor), (Bytes{0x13, 0x90, 0x56, 0xE5, 0xA0}));
}

TEST(AudioSpecificConfig, IsMissingInDamagedCookies)
{
    const Bytes descriptor = {0x03, 0x19, 0, 1, 0, 0x04, 0x11, 0x40, 0x15, 0,    0,    0,
                              0,    0,    0, 0, 0, 0,    0,    0,    0x05, 0x02, 0x12, 0x10};
    for (std::size_t length = 0; length + 1 < descriptor.size(); ++length)
    {
        const Bytes cut(descriptor.begin(), descriptor.begin() + static_cast<long>(length));
        EXPECT_TRUE(AudioSpecificConfigOfCookie(cut).empty()) << length << " bytes";
    }
    EXPECT_TRUE(AudioSpecificConfigOfCookie(Bytes{0, 0, 0, 0, 0}).empty());
}

TEST(AACLayers, PlainStreamIsOneFormat)
{
    FileFacts facts;
    DescribeAAC(Parsed({0x12, 0x10}), facts);
    ASSERT_EQ(facts.mFormats.size(), 1u);
    EXPECT_EQ(facts.mDataFormat.mFormatID, kAudioFormatMPEG4AAC);
    EXPECT_EQ(facts.mDataFormat.mSampleRate, 44100.0);
    EXPECT_EQ(facts.mDataFormat.mFramesPerPacket, 1024u);
    EXPECT_EQ(facts.mDataFormat.mChannelsPerFrame, 2u);
    EXPECT_EQ(facts.mDataFormat.mBitsPerChannel, 0u);
    EXPECT_EQ(facts.mFormats[0].mChannelLayoutTag, kAudioChannelLayoutTag_Stereo);
    EXPECT_EQ(LayoutTag(facts), kAudioChannelLayoutTag_Stereo);
}

TEST(AACLayers, SBRListsTheExtendedFormatFirst)
{
    FileFacts facts;
    DescribeAAC(Parsed({0x13, 0x90, 0x56, 0xE5, 0xA0}), facts);
    ASSERT_EQ(facts.mFormats.size(), 2u);
    EXPECT_EQ(facts.mFormats[0].mASBD.mFormatID, kAudioFormatMPEG4AAC_HE);
    EXPECT_EQ(facts.mFormats[0].mASBD.mSampleRate, 44100.0);
    EXPECT_EQ(facts.mFormats[0].mASBD.mFramesPerPacket, 2048u);
    EXPECT_EQ(facts.mFormats[1].mASBD.mFormatID, kAudioFormatMPEG4AAC);
    EXPECT_EQ(facts.mDataFormat.mFormatID, kAudioFormatMPEG4AAC);
    EXPECT_EQ(facts.mDataFormat.mSampleRate, 22050.0);
    EXPECT_EQ(facts.mDataFormat.mFramesPerPacket, 1024u);
}

TEST(AACLayers, PSListsStereoInFrontOfMono)
{
    FileFacts facts;
    DescribeAAC(Parsed({0x13, 0x88, 0x56, 0xE5, 0xA5, 0x48, 0x80}), facts);
    ASSERT_EQ(facts.mFormats.size(), 3u);
    EXPECT_EQ(facts.mFormats[0].mASBD.mFormatID, kAudioFormatMPEG4AAC_HE_V2);
    EXPECT_EQ(facts.mFormats[0].mASBD.mChannelsPerFrame, 2u);
    EXPECT_EQ(facts.mFormats[0].mASBD.mSampleRate, 44100.0);
    EXPECT_EQ(facts.mFormats[0].mChannelLayoutTag, kAudioChannelLayoutTag_Stereo);
    EXPECT_EQ(facts.mFormats[1].mASBD.mFormatID, kAudioFormatMPEG4AAC_HE);
    EXPECT_EQ(facts.mFormats[1].mASBD.mChannelsPerFrame, 1u);
    EXPECT_EQ(facts.mFormats[2].mASBD.mFormatID, kAudioFormatMPEG4AAC);
    EXPECT_EQ(facts.mDataFormat.mChannelsPerFrame, 1u);
    EXPECT_EQ(LayoutTag(facts), kAudioChannelLayoutTag_Stereo);
}

TEST(AACLayers, ShortFramesDoubleToo)
{
    AACConfig config = Parsed({0x13, 0x90, 0x56, 0xE5, 0xA0});
    config.mFramesPerPacket = 960;
    FileFacts facts;
    DescribeAAC(config, facts);
    EXPECT_EQ(facts.mFormats[0].mASBD.mFramesPerPacket, 1920u);
}

TEST(AACLayers, OtherObjectTypesStayPlain)
{
    AACConfig config = Parsed({0x13, 0x90, 0x56, 0xE5, 0xA0});
    config.mObjectType = 1;
    FileFacts facts;
    DescribeAAC(config, facts);
    ASSERT_EQ(facts.mFormats.size(), 1u);
    EXPECT_EQ(facts.mFormats[0].mASBD.mFormatID, kAudioFormatMPEG4AAC);
}

TEST(AACLayers, SurroundStandsInTheDecodersOrder)
{
    FileFacts facts;
    DescribeAAC(Parsed({0x12, 0x30}), facts);
    EXPECT_EQ(facts.mDataFormat.mChannelsPerFrame, 6u);
    EXPECT_EQ(LayoutTag(facts), kAudioChannelLayoutTag_MPEG_5_1_A);
}

TEST(AACLayers, SevenOneIsDescribedByLabels)
{
    FileFacts facts;
    DescribeAAC(Parsed({0x12, 0x38}), facts);
    EXPECT_EQ(facts.mDataFormat.mChannelsPerFrame, 8u);
    EXPECT_EQ(LayoutTag(facts), kAudioChannelLayoutTag_UseChannelDescriptions);
    ASSERT_EQ(facts.mChannelLayout.size(), 12u + 8 * 20);
    const UInt32 labels[] = {1, 2, 3, 4, 33, 34, 5, 6};
    for (std::size_t index = 0; index < 8; ++index)
    {
        UInt32 label = 0;
        std::memcpy(&label, facts.mChannelLayout.data() + 12 + index * 20, sizeof(label));
        EXPECT_EQ(label, labels[index]) << "channel " << index;
    }
}

TEST(AACCoreConfig, EndsWhereTheCoreDoes)
{
    struct Row
    {
        std::vector<UInt8> mBytes;
        std::size_t mBits;
        double mRate;
    };
    const Row rows[] = {
        {{0x12, 0x10, 0x56, 0xE5, 0x80}, 16, 44100},        // an extension or whatever follows
        {{0x17, 0x80, 0x56, 0x0C, 0x10, 0xFF}, 40, 44056},  // a rate of its own
        {{0xEB, 0x09, 0x88, 0x00, 0xFF}, 25, 24000},        // parametric stereo in front
    };
    for (const Row& row : rows)
    {
        AACConfig config;
        std::size_t bits = 0;
        ASSERT_TRUE(ParseCoreConfig(row.mBytes, config, bits)) << row.mRate;
        EXPECT_EQ(bits, row.mBits) << row.mRate;
        EXPECT_EQ(config.mSampleRate, row.mRate);
    }
    AACConfig config;
    std::size_t bits = 0;
    EXPECT_FALSE(ParseCoreConfig(std::vector<UInt8>{0x12}, config, bits));
}

}  // namespace
}  // namespace audiotoolbox
