// Conversions through the built bundle: a file that libsndfile wrote, converted by the host
// library, verified by it and read again by libsndfile.
#include "host/Conversion.h"
#include "host/ExportSettings.h"
#include "host/Failure.h"
#include "host/Registration.h"
#include "host/TargetFile.h"
#include "host/Verification.h"
#include "host/WriteSession.h"

#include <sndfile.h>

#include <gtest/gtest.h>

#include <bit>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace
{

namespace fs = std::filesystem;
using namespace host;

constexpr std::uint32_t kWAVE = 0x57415645;
constexpr std::uint32_t kAIFF = 0x41494646;
constexpr std::uint32_t kCAF = 0x63616666;
constexpr std::uint32_t kFLACFile = 0x666C6163;
constexpr std::uint32_t kM4A = 0x6D346166;
constexpr std::uint32_t kADTS = 0x61647473;
constexpr std::uint32_t kPCM = 0x6C70636D;
constexpr std::uint32_t kFLAC = 0x666C6163;
constexpr std::uint32_t kALAC = 0x616C6163;
constexpr std::uint32_t kAAC = 0x61616320;

constexpr std::size_t kFrames = 70000;

struct Form
{
    std::uint32_t mType;
    std::uint32_t mFormat;
    std::uint32_t mFlags;
    std::uint32_t mBits;
    std::int32_t mSampleType;
};

std::string SettingsOf(const Form& inForm, double inRate, std::size_t inChannels)
{
    const auto rate = std::bit_cast<std::uint64_t>(inRate);
    const bool isPCM = inForm.mFormat == kPCM;
    const std::uint64_t frameBytes = isPCM ? inChannels * inForm.mBits / 8 : 0;
    std::string text;
    const auto add = [&](const char* inKey, std::uint64_t inValue)
    {
        const auto number = static_cast<std::int32_t>(static_cast<std::uint32_t>(inValue));
        text += std::string(inKey) + ":0:" + std::to_string(number) + ";";
    };
    add("AudioFileTypeID", inForm.mType);
    add("Bitrate", 128000);
    add("BitsPerChannel", isPCM ? inForm.mBits : 0);
    add("BytesPerFrame", frameBytes);
    add("BytesPerPacket", frameBytes);
    add("ChannelsPerFrame", inChannels);
    add("FormatFlags", inForm.mFlags);
    add("FormatID", inForm.mFormat);
    add("FramesPerPacket", isPCM ? 1 : 0);
    add("SampleRateHigh", rate >> 32);
    add("SampleRateLow", rate & 0xFFFFFFFF);
    return text;
}

class ConversionRoadTest : public testing::Test
{
protected:
    ConversionRoadTest()
    {
        std::string name = (fs::temp_directory_path() / "conversion-XXXXXX").string();
        mFolder = mkdtemp(name.data());
        (void)Register(mPlugIn);
    }
    ~ConversionRoadTest() override { fs::remove_all(mFolder); }

    std::string Path(const char* inName) const { return (mFolder / inName).string(); }

    // Noise in 24 bits, or in the highest 16 of them.
    void MakeSource(int inChannels, int inSubtype)
    {
        SF_INFO info = {};
        info.samplerate = 44100;
        info.channels = inChannels;
        info.format = SF_FORMAT_WAV | inSubtype;
        SNDFILE* file = sf_open(Path("in.wav").c_str(), SFM_WRITE, &info);
        ASSERT_TRUE(file);
        std::vector<int> noise(kFrames * static_cast<std::size_t>(inChannels));
        std::uint32_t state = 1;
        for (int& sample : noise)
        {
            state = state * 1664525 + 1013904223;
            sample =
                static_cast<int>(state & (inSubtype == SF_FORMAT_PCM_16 ? 0xFFFF0000 : ~0xFFu));
        }
        sf_writef_int(file, noise.data(), static_cast<sf_count_t>(kFrames));
        sf_close(file);
    }

    // All that libsndfile reads; floats hold 24 bits exactly.
    std::vector<float> ReadBack(const char* inName)
    {
        SF_INFO info = {};
        SNDFILE* file = sf_open(Path(inName).c_str(), SFM_READ, &info);
        EXPECT_TRUE(file) << sf_strerror(nullptr);
        if (!file)
            return {};
        std::vector<float> samples(static_cast<std::size_t>(info.frames * info.channels));
        sf_readf_float(file, samples.data(), info.frames);
        sf_close(file);
        return samples;
    }

    ConversionResult Convert(const char* inName, const Form& inForm, std::int32_t inRate = 44100,
                             std::size_t inChannels = 0)
    {
        ReadSession source(mPlugIn, Path("in.wav"));
        AudioShape shape = ShapeOf(source.Info());
        shape.mSampleType = inForm.mSampleType;
        shape.mSampleRate = inRate;
        shape.mLabels =
            LabelsForCount(shape.mLabels, inChannels ? inChannels : shape.ChannelCount());
        mRequest = {Path("in.wav"), Path(inName), {}, false};
        mRequest.mConversion.mTarget = shape;
        const ExportAnswer answer = AskExportSettings(
            mPlugIn,
            {shape, SettingsOf(inForm, inRate, shape.ChannelCount()), "", RepairMode::kNone});
        EXPECT_EQ(answer.mResult, 0) << answer.mSettings;
        EXPECT_EQ(answer.mAudio, shape);
        mRequest.mIsLossy = inForm.mFormat == kAAC;

        TargetFile file(Path(inName), false, Path("in.wav"));
        WriteSession target(mPlugIn, {file.TemporaryPath(), file.Name()}, shape, answer.mSettings);
        const Conversion conversion(source.Info(), mRequest.mConversion);
        const ConversionResult result = conversion.Run(source, target);
        target.Finish();
        file.Commit();
        return result;
    }
    VerificationResult Verify() { return VerifyCopy(mPlugIn, mRequest); }
    std::ptrdiff_t FileCount() const
    {
        return std::distance(fs::directory_iterator(mFolder), fs::directory_iterator());
    }

    const PlugIn mPlugIn{""};
    fs::path mFolder;
    VerificationRequest mRequest;
};

TEST_F(ConversionRoadTest, KeepsEveryBitOf16)
{
    MakeSource(2, SF_FORMAT_PCM_16);
    const std::vector<float> source = ReadBack("in.wav");
    const Form forms[] = {{kWAVE, kPCM, 12, 16, 20},
                          {kAIFF, kPCM, 14, 16, 20},
                          {kAIFF, kPCM, 14, 24, 30},
                          {kCAF, kPCM, 9, 32, 40},
                          {kFLACFile, kFLAC, 1, 16, 20}};
    for (const Form& form : forms)
    {
        fs::remove(Path("out"));
        EXPECT_EQ(Convert("out", form).mFramesWritten, 70000);
        EXPECT_TRUE(Verify().IsExact()) << form.mType << " " << form.mBits;
        EXPECT_EQ(ReadBack("out"), source) << form.mType << " " << form.mBits;
    }
}

TEST_F(ConversionRoadTest, KeepsEveryBitOf24InSixChannels)
{
    MakeSource(6, SF_FORMAT_PCM_24);
    const std::vector<float> source = ReadBack("in.wav");
    const Form forms[] = {
        {kWAVE, kPCM, 12, 24, 30}, {kCAF, kPCM, 14, 24, 30}, {kCAF, kPCM, 9, 32, 40}};
    for (const Form& form : forms)
    {
        fs::remove(Path("out"));
        Convert("out", form);
        EXPECT_TRUE(Verify().IsExact()) << form.mType << " " << form.mBits;
        EXPECT_EQ(ReadBack("out"), source) << form.mType << " " << form.mBits;
    }
}

TEST_F(ConversionRoadTest, VerifiesALosslessCodec)
{
    MakeSource(2, SF_FORMAT_PCM_24);
    Convert("out", {kM4A, kALAC, 3, 24, 30});
    const VerificationResult result = Verify();
    EXPECT_TRUE(result.IsExact());
    EXPECT_EQ(result.mFramesFound, 70000);
}

TEST_F(ConversionRoadTest, ResamplesAndMixesToTheComputedLength)
{
    MakeSource(2, SF_FORMAT_PCM_16);
    EXPECT_EQ(Convert("out", {kWAVE, kPCM, 12, 16, 20}, 48000, 1).mFramesWritten, 76190);
    EXPECT_TRUE(Verify().IsExact());
    EXPECT_EQ(ReadBack("out").size(), 76190u);
}

TEST_F(ConversionRoadTest, FindsTheDelayOfARawAACStream)
{
    MakeSource(1, SF_FORMAT_PCM_16);
    Convert("out", {kADTS, kAAC, 0, 0, 20});
    EXPECT_EQ(Verify().mDelay, 1024);
    Convert("aligned", {kM4A, kAAC, 0, 0, 20});
    const VerificationResult aligned = Verify();
    EXPECT_EQ(aligned.mDelay, 0);
    EXPECT_TRUE(aligned.IsLengthRight());
}

TEST_F(ConversionRoadTest, LeavesNothingWhereTheDiskEnds)
{
    MakeSource(2, SF_FORMAT_PCM_16);
    (void)std::signal(SIGXFSZ, SIG_IGN);
    rlimit old = {};
    getrlimit(RLIMIT_FSIZE, &old);
    for (const rlim_t size : {1, 40, 100000})
    {
        const rlimit small = {size, old.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
        std::string text;
        try
        {
            Convert("out", {kWAVE, kPCM, 12, 16, 20});
        }
        catch (const Failure& failure)
        {
            EXPECT_EQ(failure.mExitCode, kExitOutput);
            text = failure.what();
        }
        setrlimit(RLIMIT_FSIZE, &old);
        EXPECT_FALSE(text.empty()) << size;
        EXPECT_EQ(text.find(".tarvo-"), std::string::npos) << text;
        EXPECT_EQ(FileCount(), 1) << size;
    }
}

}  // namespace
