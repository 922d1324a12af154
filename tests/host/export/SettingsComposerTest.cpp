#include "host/export/SettingsComposer.h"

#include "host/Failure.h"
#include "host/StoredSettings.h"

#include <gtest/gtest.h>

namespace host
{

namespace
{

constexpr std::uint32_t kWAVE = 0x57415645;
constexpr std::uint32_t kAIFF = 0x41494646;
constexpr std::uint32_t kMP3 = 0x4D504733;
constexpr std::uint32_t kM4A = 0x6D346166;
constexpr std::uint32_t kFLAC = 0x666C6163;
constexpr std::uint32_t kAC3 = 0x61632D33;

// 44100 Hz stereo, PCM of that width and kind.
ExportSource PCM(int inBits, bool inIsFloat = false)
{
    ExportSource source;
    source.mShape.mSampleRate = 44100;
    source.mShape.mSampleType = inBits > 24 ? 40 : inBits / 8 * 10;
    source.mShape.mFrameCount = 44100;
    source.mShape.mLabels = {100, 101};
    source.mSettings = "FormatID:0:1819304813;BitsPerChannel:0:" + std::to_string(inBits) +
                       ";FormatFlags:0:" + (inIsFloat ? "9" : "12") + ";";
    return source;
}

ExportSource Coded(const std::string& inFormat, const std::string& inFlags)
{
    ExportSource source = PCM(16);
    source.mSettings =
        "FormatID:0:" + inFormat + ";BitsPerChannel:0:0;FormatFlags:0:" + inFlags + ";";
    return source;
}

ComposedSettings Compose(const ExportWish& inWish, const ExportSource& inSource,
                         std::uint32_t inType, std::int32_t inRate = 44100,
                         std::uint32_t inChannels = 2)
{
    return SettingsComposer(inWish, inSource, inType).Compose({inRate, inChannels});
}

std::string RefusalOf(const ExportWish& inWish, std::uint32_t inType)
{
    try
    {
        (void)Compose(inWish, PCM(16), inType);
        return "none";
    }
    catch (const Failure& failure)
    {
        EXPECT_EQ(failure.mExitCode, kExitSettings);
        return failure.what();
    }
}

TEST(DefaultDepth, IsTheSourcesOwnForPCM)
{
    for (const auto& [bits, type] : {std::pair{8, 10}, {16, 20}, {24, 30}, {32, 40}})
    {
        const ComposedSettings settings = Compose({}, PCM(bits), kWAVE);
        EXPECT_EQ(settings.mRecord.GetBitsPerChannel(), static_cast<UInt32>(bits));
        EXPECT_EQ(settings.mSampleType, type);
        EXPECT_TRUE(settings.mChanges.empty()) << bits;
    }
}

TEST(DefaultDepth, KeepsTheKindOfWideSamples)
{
    EXPECT_EQ(Compose({}, PCM(32, true), kWAVE).mRecord.GetFormatFlags() & 1, 1u);
    EXPECT_EQ(Compose({}, PCM(32, false), kWAVE).mRecord.GetFormatFlags() & 1, 0u);
}

TEST(DefaultDepth, ComesFromTheFlagsForLosslessSources)
{
    // flac and alac, with flags 1 to 4.
    for (const char* format : {"1718378851", "1634492771"})
    {
        EXPECT_EQ(DepthOfSource(Coded(format, "1")).mBits, 16u);
        EXPECT_EQ(DepthOfSource(Coded(format, "2")).mBits, 20u);
        EXPECT_EQ(DepthOfSource(Coded(format, "3")).mBits, 24u);
        EXPECT_EQ(DepthOfSource(Coded(format, "4")).mBits, 32u);
        EXPECT_EQ(DepthOfSource(Coded(format, "99")).mBits, 24u);
    }
    EXPECT_EQ(Compose({}, Coded("1718378851", "1"), kWAVE).mRecord.GetBitsPerChannel(), 16u);
    EXPECT_EQ(Compose({}, Coded("1718378851", "2"), kWAVE).mRecord.GetBitsPerChannel(), 24u);
}

TEST(DefaultDepth, Is24BitsForLossySources)
{
    const ComposedSettings settings = Compose({}, Coded("1633772320", "0"), kWAVE);  // aac
    EXPECT_EQ(settings.mRecord.GetBitsPerChannel(), 24u);
    EXPECT_EQ(settings.mSampleType, 30);
}

TEST(DefaultDepth, OfDoublesIsTheWidestThatIsHandedOver)
{
    const ComposedSettings settings = Compose({}, PCM(64, true), kWAVE);
    EXPECT_EQ(settings.mRecord.GetBitsPerChannel(), 32u);
    EXPECT_EQ(settings.mRecord.GetFormatFlags() & 1, 1u);
    EXPECT_EQ(settings.mChanges, std::vector<std::string>{"depth 64f is not available: 32f"});
}

TEST(Depth, OfFLACGoesIntoTheFlags)
{
    const ComposedSettings deep = Compose({.mDepth = SampleDepth{24, {}}}, PCM(16), kFLAC);
    EXPECT_EQ(deep.mRecord.GetFormatFlags(), 3u);
    EXPECT_EQ(deep.mSampleType, 30);
    const ComposedSettings plain = Compose({}, PCM(16), kFLAC);
    EXPECT_EQ(plain.mRecord.GetFormatFlags(), 0u);
    EXPECT_EQ(plain.mSampleType, 20);
    const ComposedSettings narrowed = Compose({}, PCM(32, true), kFLAC);
    EXPECT_EQ(narrowed.mSampleType, 30);
    EXPECT_EQ(narrowed.mChanges, std::vector<std::string>{"depth 32f is not available: 24"});
}

TEST(Depth, ThatTheTypeLacksIsRefusedWithThoseThatItHas)
{
    EXPECT_EQ(
        RefusalOf({.mDepth = SampleDepth{20, {}}}, kWAVE),
        "depth 20 is not possible for Linear PCM in WAVE files; possible: 8, 16, 24, 32f, 32");
    EXPECT_EQ(RefusalOf({.mDepth = SampleDepth{32, true}}, kAIFF),
              "depth 32f is not possible for Linear PCM in AIFF files; possible: 8, 16, 24, 32");
}

TEST(PCMSettings, StateBytesThatFitTheChannels)
{
    const ComposedSettings settings = Compose({}, PCM(24), kWAVE, 48000, 6);
    EXPECT_EQ(settings.mRecord.GetSampleRate(), 48000.0);
    EXPECT_EQ(settings.mRecord.GetChannelsPerFrame(), 6u);
    EXPECT_EQ(settings.mRecord.GetBytesPerFrame(), 18u);
    EXPECT_EQ(settings.mRecord.GetBytesPerPacket(), 18u);
    EXPECT_EQ(settings.mRecord.GetFramesPerPacket(), 1u);
}

TEST(BitrateTest, OfFormatsWithoutModesIsTheirSize)
{
    EXPECT_EQ(Compose({}, PCM(16), kWAVE).mRecord.GetBitrate(), 1411200u);
    EXPECT_EQ(Compose({}, PCM(16), kFLAC).mRecord.GetBitrate(), 1411200u);
    // 4 bits a sample for A-law and 7.71 for Apple Lossless, as the plug-in estimates.
    EXPECT_EQ(Compose({.mFormat = "alaw"}, PCM(16), kWAVE).mRecord.GetBitrate(), 352800u);
    EXPECT_EQ(Compose({.mFormat = "alac"}, PCM(16), kM4A).mRecord.GetBitrate(), 680022u);
    // 4.25 for ADPCM and 1.625 for GSM, of which the plug-in knows none.
    EXPECT_EQ(Compose({.mFormat = "ms-adpcm"}, PCM(16), kWAVE).mRecord.GetBitrate(), 374850u);
    EXPECT_EQ(Compose({.mFormat = "gsm"}, PCM(16), kWAVE, 8000, 1).mRecord.GetBitrate(), 13000u);
}

TEST(BitrateTest, IsTheListedOneNearestTo64000AChannel)
{
    EXPECT_EQ(Compose({}, PCM(16), kMP3).mRecord.GetBitrate(), 128000u);
    EXPECT_EQ(Compose({}, PCM(16), kMP3, 44100, 1).mRecord.GetBitrate(), 64000u);
    EXPECT_EQ(Compose({}, PCM(16), kMP3, 8000, 2).mRecord.GetBitrate(), 64000u);
    EXPECT_EQ(Compose({}, PCM(16), kAC3, 48000, 6).mRecord.GetBitrate(), 384000u);
}

TEST(BitrateTest, ThatIsNotListedIsRefusedWithThoseThatAre)
{
    EXPECT_EQ(RefusalOf({.mBitrate = 191000}, kMP3),
              "bit rate 191 kbit/s is not possible for MPEG Layer 3 of 44100 Hz and 2 channels; "
              "possible: 32k, 40k, 48k, 56k, 64k, 80k, 96k, 112k, 128k, 160k, 192k, 224k, 256k, "
              "320k");
    EXPECT_EQ(Compose({.mBitrate = 192000}, PCM(16), kMP3).mRecord.GetBitrate(), 192000u);
}

TEST(ModeTest, IsTheFirstOfTheFormatOrTheOneAskedFor)
{
    EXPECT_EQ(Compose({}, PCM(16), kMP3).mRecord.GetBitrateMode(), 0u);
    EXPECT_EQ(Compose({.mMode = kModeAverage}, PCM(16), kMP3).mRecord.GetBitrateMode(), 1u);
    const ComposedSettings variable = Compose({.mQuality = 32}, PCM(16), kMP3);
    EXPECT_EQ(variable.mRecord.GetBitrateMode(), 3u);
    EXPECT_EQ(variable.mRecord.GetVBRQuality(), 32u);
}

TEST(ModeTest, ThatTheFormatLacksIsRefused)
{
    EXPECT_EQ(RefusalOf({.mMode = kModeVariable}, kAC3),
              "mode vbr is not possible for AC-3; possible: cbr");
    EXPECT_EQ(RefusalOf({.mQuality = 96}, kAC3),
              "mode vbr is not possible for AC-3; possible: cbr");
    EXPECT_EQ(RefusalOf({.mBitrate = 64000}, kFLAC), "FLAC has no bit rate to choose");
}

class StoredSettingsTest : public testing::Test
{
protected:
    StoredSettingsTest()
    {
        mStored = Compose({.mBitrate = 320000, .mMode = kModeAverage}, PCM(16), kMP3).Text();
    }
    std::string mStored;
};

TEST_F(StoredSettingsTest, StayUnlessAnOptionChangesThem)
{
    const ComposedSettings same = Compose({.mSettings = mStored}, PCM(16), kMP3);
    EXPECT_EQ(same.Text(), mStored);
    const ComposedSettings edited =
        Compose({.mBitrate = 128000, .mSettings = mStored}, PCM(16), kMP3);
    EXPECT_EQ(edited.mRecord.GetBitrate(), 128000u);
    EXPECT_EQ(edited.mRecord.GetBitrateMode(), 1u);
}

TEST_F(StoredSettingsTest, TakeTheAudiosRateAndChannels)
{
    const ComposedSettings settings = Compose({.mSettings = mStored}, PCM(16), kMP3, 8000, 1);
    EXPECT_EQ(settings.mRecord.GetSampleRate(), 8000.0);
    EXPECT_EQ(settings.mRecord.GetChannelsPerFrame(), 1u);
    EXPECT_EQ(settings.mRecord.GetBitrate(), 64000u);
    EXPECT_EQ(settings.mChanges,
              std::vector<std::string>{"bit rate 320 kbit/s is not available: 64 kbit/s"});
}

TEST_F(StoredSettingsTest, KeepTheirOwnRateWhereTheyAreNotToBeFitted)
{
    for (const RepairMode repair : {RepairMode::kNone, RepairMode::kStored})
    {
        const ComposedSettings settings =
            Compose({.mSettings = mStored, .mRepair = repair}, PCM(16), kMP3, 8000, 1);
        EXPECT_EQ(settings.mRecord.GetSampleRate(), 44100.0);
        EXPECT_EQ(settings.mRecord.GetChannelsPerFrame(), 2u);
    }
}

TEST_F(StoredSettingsTest, GoIntoAnotherTypeWithWhatItHolds)
{
    const ComposedSettings settings = Compose({.mSettings = mStored}, PCM(16), 0x6D703466);
    EXPECT_EQ(settings.mRecord.GetFormatID(), 0x2E6D7033u);  // MP3 in MP4
    EXPECT_EQ(Compose({.mSettings = mStored}, PCM(16), kWAVE).mRecord.GetFormatID(), 0x6C70636Du);
}

TEST_F(StoredSettingsTest, OfAnyContentMakeAText)
{
    for (const char* text : {"", ":", ";;;;", "FormatID:0:-1;", "ChannelsPerFrame:0:-1;",
                             "BitsPerChannel:0:-1;BytesPerFrame:0:-1;",
                             "SampleRateHigh:0:2146959360;SampleRateLow:0:0;",  // NaN
                             "BitrateMode:0:77;Bitrate:0:-1;VBRQuality:0:-1;"})
    {
        ExportWish wish;
        wish.mSettings = text;
        for (const std::uint32_t type : {kWAVE, kMP3, kFLAC, 0x63616666u, 0u})
            EXPECT_FALSE(Compose(wish, PCM(16), type).Text().empty()) << text << " " << type;
    }
}

}  // namespace

}  // namespace host
