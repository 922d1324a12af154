#include "host/Conversion.h"

#include "host/Failure.h"
#include "host/Interrupt.h"
#include "host/WriteSession.h"
#include "tests/host/FakeAudioFiles.h"

#include <gtest/gtest.h>

#include <cmath>
#include <csignal>
#include <numbers>
#include <span>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using host::AudioInfo;
using host::AudioShape;
using host::ChannelLabels;
using host::Conversion;
using host::ConversionOptions;
using host::ConversionResult;
using host::Dither;
using testing_support::Bytes;
using testing_support::FakeAudio;
using testing_support::FakeAudioEntry;
using testing_support::FakeAudioFiles;
using testing_support::Samples;
using testing_support::sFakeAudioFiles;

std::vector<std::int16_t> Counting(std::size_t inFrames, int inStart)
{
    std::vector<std::int16_t> samples(inFrames);
    for (std::size_t frame = 0; frame < inFrames; ++frame)
        samples[frame] = static_cast<std::int16_t>(inStart + static_cast<int>(frame) * 7);
    return samples;
}

std::vector<std::int16_t> Tone(double inHertz, int inRate, std::size_t inFrames)
{
    std::vector<std::int16_t> tone(inFrames);
    for (std::size_t frame = 0; frame < inFrames; ++frame)
        tone[frame] = static_cast<std::int16_t>(
            std::lrint(16000 * std::sin(2 * std::numbers::pi * inHertz *
                                        static_cast<double>(frame) / inRate)));
    return tone;
}

// Amplitude of a tone, 1 for full scale of 16 bits.
double Level(std::span<const std::int16_t> inSamples, double inHertz, int inRate)
{
    double real = 0.0;
    double imaginary = 0.0;
    for (std::size_t frame = 0; frame < inSamples.size(); ++frame)
    {
        const double angle = 2 * std::numbers::pi * inHertz * static_cast<double>(frame) / inRate;
        real += inSamples[frame] * std::cos(angle);
        imaginary += inSamples[frame] * std::sin(angle);
    }
    return 2 * std::hypot(real, imaginary) / static_cast<double>(inSamples.size()) / 32768;
}

class ConversionTest : public testing::Test
{
protected:
    ConversionTest() { sFakeAudioFiles = &mFiles; }
    ~ConversionTest() override
    {
        EXPECT_EQ(mFiles.mOpenReaders, 0);
        EXPECT_EQ(mFiles.mOpenWriters, 0);
        sFakeAudioFiles = nullptr;
    }

    FakeAudio& Source() { return mFiles.mFiles["in"]; }
    const FakeAudio& Written() { return mFiles.mFiles["out"]; }

    void PutStereo(std::size_t inFrames)
    {
        Source().mLabels = {100, 101};
        Source().mPlanes = {Bytes(Counting(inFrames, 1)), Bytes(Counting(inFrames, -5))};
    }
    // One tone a channel: 400 Hz, 600 Hz and so on.
    void PutTones(const ChannelLabels& inLabels)
    {
        Source().mLabels = inLabels;
        Source().mPlanes.clear();
        for (std::size_t channel = 0; channel < inLabels.size(); ++channel)
            Source().mPlanes.push_back(
                Bytes(Tone(400.0 + 200.0 * static_cast<double>(channel), 44100, 44100)));
    }
    double WrittenLevel(std::size_t inChannel, double inHertz)
    {
        return Level(Samples<std::int16_t>(Written().mPlanes[inChannel]), inHertz, Written().mRate);
    }

    ConversionResult Convert(int inRate, int inType, const ChannelLabels& inLabels,
                             Dither inDither = Dither::kNone)
    {
        ConversionOptions options;
        options.mTarget = {inRate, inType, 0, inLabels};
        options.mDither = inDither;
        options.mMeasuresPeak = mMeasuresPeak;
        host::ReadSession source(mPlugIn, "in");
        host::WriteSession target(mPlugIn, {"out", "out"}, options.mTarget, "");
        const Conversion conversion(source.Info(), options);
        mWasUntouched = conversion.IsUntouched();
        mDithered = conversion.Dithers();
        const ConversionResult result = conversion.Run(
            source, target, [this](std::int64_t inFrames) { mProgress.push_back(inFrames); });
        target.Finish();
        return result;
    }

    FakeAudioFiles mFiles;
    host::PlugIn mPlugIn{&FakeAudioEntry};
    bool mMeasuresPeak = false;
    bool mWasUntouched = false;
    bool mDithered = false;
    std::vector<std::int64_t> mProgress;
};

TEST_F(ConversionTest, HandsOverWhatAgreesInAll)
{
    PutStereo(150000);
    const ConversionResult result = Convert(44100, 20, {100, 101}, Dither::kTPDF);
    EXPECT_TRUE(mWasUntouched);
    EXPECT_EQ(result.mFramesRead, 150000);
    EXPECT_EQ(result.mFramesWritten, 150000);
    EXPECT_FALSE(result.mPeak);
    EXPECT_EQ(Written().mPlanes, Source().mPlanes);
    EXPECT_EQ(mFiles.mBlockCounts, (std::vector<std::int64_t>{65536, 65536, 18928}));
    EXPECT_EQ(mProgress, (std::vector<std::int64_t>{65536, 131072, 150000}));
}

TEST_F(ConversionTest, CarriesFloatsBitForBit)
{
    Source().mType = 40;
    Source().mLabels = {0};
    Source().mPlanes = {Bytes(std::vector<float>{0.1F, -0.0F, std::nanf("1"), 1e30F, 1e-42F})};
    Convert(44100, 40, {0});
    EXPECT_EQ(Written().mPlanes, Source().mPlanes);
}

TEST_F(ConversionTest, WritesNoBlockOfNoAudio)
{
    PutStereo(0);
    EXPECT_EQ(Convert(44100, 20, {100, 101}).mFramesWritten, 0);
    EXPECT_EQ(Convert(48000, 30, {0}).mFramesWritten, 0);
    EXPECT_TRUE(mFiles.mBlockCounts.empty());
}

TEST_F(ConversionTest, OnlyMovesPointersToReorderChannels)
{
    PutStereo(1000);
    Convert(44100, 20, {101, 100});
    EXPECT_FALSE(mWasUntouched);
    EXPECT_EQ(Written().mPlanes[0], Source().mPlanes[1]);
    EXPECT_EQ(Written().mPlanes[1], Source().mPlanes[0]);
}

TEST_F(ConversionTest, GivesMonoToBothChannelsFromOneBuffer)
{
    Source().mLabels = {0};
    Source().mPlanes = {Bytes(Counting(1000, 3))};
    Convert(44100, 20, {100, 101});
    EXPECT_EQ(Written().mPlanes[0], Source().mPlanes[0]);
    EXPECT_EQ(Written().mPlanes[1], Source().mPlanes[0]);
    EXPECT_EQ(mFiles.mLastBuffers[0], mFiles.mLastBuffers[1]);
}

TEST_F(ConversionTest, WidensAndNarrowsExactly)
{
    PutStereo(70000);
    Convert(44100, 30, {100, 101}, Dither::kTPDF);
    EXPECT_FALSE(mDithered);
    const FakeAudio original = Source();
    Source() = Written();
    EXPECT_EQ(Source().mType, 30);
    Convert(44100, 20, {100, 101});
    EXPECT_EQ(Written().mPlanes, original.mPlanes);
}

TEST_F(ConversionTest, FillsMissingChannelsWithTheSilenceOfTheirWidth)
{
    PutStereo(3);
    Convert(44100, 10, {100, 101, 102});
    EXPECT_EQ(Written().mPlanes[2], "\x80\x80\x80");
}

TEST_F(ConversionTest, DithersOnlyWhatLosesBits)
{
    PutStereo(1000);
    Convert(44100, 20, {100, 101}, Dither::kTPDF);
    EXPECT_FALSE(mDithered);
    Convert(44100, 10, {100, 101}, Dither::kTPDF);
    EXPECT_TRUE(mDithered);
    Convert(44100, 10, {100, 101}, Dither::kNone);
    EXPECT_FALSE(mDithered);
    Convert(48000, 20, {100, 101}, Dither::kTPDF);
    EXPECT_TRUE(mDithered);
    Convert(44100, 20, {0}, Dither::kTPDF);
    EXPECT_TRUE(mDithered);
    Convert(48000, 30, {100, 101}, Dither::kTPDF);
    EXPECT_FALSE(mDithered);
}

TEST_F(ConversionTest, RepeatsItsDither)
{
    PutTones({100, 101});
    Convert(48000, 10, {100, 101}, Dither::kTPDF);
    const std::vector<std::string> first = Written().mPlanes;
    Convert(48000, 10, {100, 101}, Dither::kTPDF);
    EXPECT_EQ(Written().mPlanes, first);
    EXPECT_NE(first[0], first[1]);
}

TEST_F(ConversionTest, LeavesLosslessFloatsOf16BitsWithoutDither)
{
    std::vector<float> floats;
    for (const std::int16_t sample : Counting(60000, 0))
        floats.push_back(static_cast<float>(sample) / 32768);
    Source().mType = 40;
    Source().mLabels = {0};
    Source().mPlanes = {Bytes(floats)};
    Source().mSettings = u"FormatID:0:1718378851;FormatFlags:0:1;";  // flac, 16 bits
    Convert(44100, 20, {0}, Dither::kTPDF);
    EXPECT_FALSE(mDithered);
    EXPECT_EQ(Written().mPlanes[0], Bytes(Counting(60000, 0)));
}

TEST_F(ConversionTest, ResamplesToTheComputedLength)
{
    PutTones({100, 101});
    const ConversionResult result = Convert(48000, 20, {100, 101});
    EXPECT_EQ(result.mFramesRead, 44100);
    EXPECT_EQ(result.mFramesWritten, 48000);
    EXPECT_EQ(Written().FrameCount(), 48000);
    EXPECT_NEAR(WrittenLevel(0, 400.0), 16000.0 / 32768, 1e-3);
    EXPECT_NEAR(WrittenLevel(1, 600.0), 16000.0 / 32768, 1e-3);
}

TEST_F(ConversionTest, ResamplesLongAudioInBlocks)
{
    PutStereo(200000);
    EXPECT_EQ(Convert(96000, 30, {100, 101}).mFramesWritten, 435374);
    EXPECT_EQ(Written().FrameCount(), 435374);
    for (const std::int64_t count : mFiles.mBlockCounts)
        EXPECT_LE(count, 65536);
    EXPECT_EQ(Convert(8000, 20, {0}).mFramesWritten, 36281);
}

TEST_F(ConversionTest, BringsEachTonesChannelUnderItsName)
{
    PutTones({100, 101, 102, 103, 104, 105});
    Convert(44100, 20, {102, 100, 101, 104, 105, 103});
    const double hertz[] = {800, 400, 600, 1200, 1400, 1000};
    for (std::size_t channel = 0; channel < 6; ++channel)
        for (const double other : hertz)
            EXPECT_NEAR(WrittenLevel(channel, other),
                        other == hertz[channel] ? 16000.0 / 32768 : 0.0, 1e-3)
                << channel;
}

TEST_F(ConversionTest, MixesTonesToStereo)
{
    PutTones({100, 101, 102, 103, 104, 105});
    Convert(44100, 20, {100, 101});
    const double full = 16000.0 / 32768;
    const double left[] = {0.4142, 0, 0.2929, 0, 0.2929, 0};
    const double right[] = {0, 0.4142, 0.2929, 0, 0, 0.2929};
    for (std::size_t tone = 0; tone < 6; ++tone)
    {
        const double hertz = 400.0 + 200.0 * static_cast<double>(tone);
        EXPECT_NEAR(WrittenLevel(0, hertz), left[tone] * full, 1e-3) << tone;
        EXPECT_NEAR(WrittenLevel(1, hertz), right[tone] * full, 1e-3) << tone;
    }
}

TEST_F(ConversionTest, MixesAndResamplesTogether)
{
    PutTones({100, 101});
    Convert(48000, 20, {0}, Dither::kTPDF);
    EXPECT_NEAR(WrittenLevel(0, 400.0), 8000.0 / 32768, 1e-3);
    EXPECT_NEAR(WrittenLevel(0, 600.0), 8000.0 / 32768, 1e-3);
}

TEST_F(ConversionTest, MeasuresThePeakOfWhatIsWritten)
{
    mMeasuresPeak = true;
    Source().mLabels = {100, 101};
    Source().mPlanes = {Bytes(std::vector<std::int16_t>{0, 100}),
                        Bytes(std::vector<std::int16_t>{-16384, 5})};
    EXPECT_EQ(Convert(44100, 20, {100, 101}).mPeak, 0.5);
    EXPECT_EQ(Convert(44100, 30, {100, 101}).mPeak, 0.5);
}

TEST_F(ConversionTest, DropsPaddingLikeEveryReader)
{
    PutStereo(1000);
    Source().mSettings = u"FramesPerPacket:0:1024;";
    EXPECT_EQ(Convert(44100, 20, {100, 101}).mFramesWritten, 1000);
}

TEST_F(ConversionTest, StopsWhereTheSinkFails)
{
    PutStereo(150000);
    mFiles.mFailingBlock = 1;
    EXPECT_THROW(Convert(44100, 20, {100, 101}), host::Failure);
}

TEST_F(ConversionTest, StopsAtASignalAndClosesItsFiles)
{
    PutStereo(150000);
    const pid_t child = fork();
    if (child == 0)
    {
        host::WatchInterrupts();
        (void)std::raise(SIGTERM);
        int outcome = 0;
        try
        {
            Convert(44100, 20, {100, 101});
        }
        catch (const host::Interrupted& interrupted)
        {
            const bool areClosed = mFiles.mOpenReaders == 0 && mFiles.mOpenWriters == 0;
            outcome = areClosed && mFiles.mBlockCounts.empty() ? interrupted.mSignal : 1;
        }
        _exit(outcome);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), SIGTERM);
}

TEST_F(ConversionTest, RefusesWhatHasNoWay)
{
    PutStereo(10);
    EXPECT_THROW(Convert(44100, 25, {100, 101}), host::Failure);
    EXPECT_THROW(Convert(0, 20, {100, 101}), host::Failure);
    Source().mLabels = ChannelLabels(10, 0);
    Source().mPlanes.resize(10, Source().mPlanes[0]);
    EXPECT_THROW(Convert(44100, 20, {100, 101}), host::Failure);
}

TEST_F(ConversionTest, KeepsMemorySmallForManyChannels)
{
    const ChannelLabels labels(3000, 0);
    Source().mLabels = labels;
    Source().mPlanes.assign(3000, Bytes(Counting(9000, 11)));
    Convert(44100, 30, labels);
    EXPECT_EQ(Written().FrameCount(), 9000);
    EXPECT_LE(mFiles.mBlockCounts[0], 5592);
}

TEST(ResampledLength, RoundsToTheNearestFrame)
{
    using host::ResampledLength;
    EXPECT_EQ(ResampledLength(0, 44100, 48000), 0);
    EXPECT_EQ(ResampledLength(1, 44100, 48000), 1);
    EXPECT_EQ(ResampledLength(1, 44100, 22050), 1);
    EXPECT_EQ(ResampledLength(1, 48000, 8000), 0);
    EXPECT_EQ(ResampledLength(441, 44100, 48000), 480);
    EXPECT_EQ(ResampledLength(12345, 48000, 48000), 12345);
    EXPECT_EQ(ResampledLength(4410000000000000, 44100, 48000), 4800000000000000);
}

AudioInfo Info(int inType, const char* inSettings)
{
    AudioInfo info;
    info.mSampleType = inType;
    info.mSettings = inSettings;
    return info;
}

TEST(SourceBits, TellsWhatSamplesAreWorth)
{
    struct Row
    {
        int mType;
        const char* mSettings;
        int mBits;
    };
    const Row rows[] = {
        {10, "", 8},
        {20, "", 16},
        {30, "", 24},
        {40, "", 32},
        {20, "BitsPerChannel:0:12;FormatID:0:1819304813;", 12},
        {30, "BitsPerChannel:0:20;FormatID:0:1819304813;", 20},
        {40, "BitsPerChannel:0:64;FormatID:0:1819304813;", 32},
        {40, "FormatFlags:0:1;FormatID:0:1718378851;", 16},  // flac
        {40, "FormatFlags:0:3;FormatID:0:1718378851;", 24},
        {40, "FormatFlags:0:2;FormatID:0:1634492771;", 20},  // alac
        {40, "FormatFlags:0:4;FormatID:0:1634492771;", 32},
        {40, "FormatFlags:0:9;FormatID:0:1634492771;", 32},
        {40, "BitsPerChannel:0:0;FormatID:0:1633772320;", 32},  // aac
        {40, "FormatID:0:1970037111;", 16},                     // ulaw
        {40, "FormatID:0:1768775988;", 16},                     // ima4
    };
    for (const Row& row : rows)
        EXPECT_EQ(host::SourceBits(Info(row.mType, row.mSettings)), row.mBits) << row.mSettings;
}

}  // namespace
