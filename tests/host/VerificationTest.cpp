#include "host/Verification.h"

#include "host/DelaySearch.h"
#include "host/Failure.h"
#include "tests/host/FakeAudioFiles.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

namespace
{

using host::VerificationRequest;
using host::VerificationResult;
using testing_support::Bytes;
using testing_support::FakeAudio;
using testing_support::FakeAudioEntry;
using testing_support::FakeAudioFiles;
using testing_support::sFakeAudioFiles;

// Noise that is the same each time, 16 bits.
std::vector<std::int16_t> Noise(std::size_t inFrames, std::uint32_t inSeed)
{
    std::vector<std::int16_t> noise(inFrames);
    for (std::int16_t& sample : noise)
    {
        inSeed = inSeed * 1664525 + 1013904223;
        sample = static_cast<std::int16_t>(inSeed >> 16);
    }
    return noise;
}

std::vector<float> ToFloats(const std::vector<std::int16_t>& inSamples, float inGain = 1.0F)
{
    std::vector<float> floats;
    for (const std::int16_t sample : inSamples)
        floats.push_back(static_cast<float>(sample) / 32768 * inGain);
    return floats;
}

class VerificationTest : public testing::Test
{
protected:
    VerificationTest()
    {
        sFakeAudioFiles = &mFiles;
        mRequest = {"in", "copy", {}, false};
        mRequest.mConversion.mTarget = {44100, 20, 0, {100, 101}};
        Put("in", {Noise(150000, 1), Noise(150000, 2)});
        mFiles.mFiles["copy"] = mFiles.mFiles["in"];
    }
    ~VerificationTest() override
    {
        EXPECT_EQ(mFiles.mOpenReaders, 0);
        sFakeAudioFiles = nullptr;
    }

    void Put(const char* inName, const std::vector<std::vector<std::int16_t>>& inChannels)
    {
        FakeAudio& audio = mFiles.mFiles[inName];
        audio.mLabels = {100, 101};
        audio.mPlanes.clear();
        for (const std::vector<std::int16_t>& samples : inChannels)
            audio.mPlanes.push_back(Bytes(samples));
    }
    // A mono source of floats, and what its copy holds.
    void PutFloats(const std::vector<float>& inSource, const std::vector<float>& inCopy)
    {
        for (const auto& [name, samples] : {std::pair("in", inSource), std::pair("copy", inCopy)})
        {
            FakeAudio& audio = mFiles.mFiles[name];
            audio.mType = 40;
            audio.mLabels = {0};
            audio.mPlanes = {Bytes(samples)};
        }
        mRequest.mConversion.mTarget = {44100, 40, 0, {0}};
    }
    FakeAudio& Copy() { return mFiles.mFiles["copy"]; }
    VerificationResult Verify() { return host::VerifyCopy(mPlugIn, mRequest); }

    // A mono copy, later than its source by inDelay frames and a little softer.
    void PutLateCopy(std::size_t inSilence, std::int64_t inDelay)
    {
        std::vector<std::int16_t> sound(inSilence, 0);
        const std::vector<std::int16_t> noise = Noise(100000, 5);
        sound.insert(sound.end(), noise.begin(), noise.end());
        Put("in", {sound});
        mFiles.mFiles["in"].mLabels = {0};
        std::vector<float> copy = ToFloats(sound, 0.99F);
        if (inDelay >= 0)
            copy.insert(copy.begin(), static_cast<std::size_t>(inDelay), 0.0F);
        else
            copy.erase(copy.begin(), copy.begin() - inDelay);
        Copy().mType = 40;
        Copy().mLabels = {0};
        Copy().mPlanes = {Bytes(copy)};
        mRequest.mConversion.mTarget.mLabels = {0};
        mRequest.mIsLossy = true;
    }

    FakeAudioFiles mFiles;
    host::PlugIn mPlugIn{&FakeAudioEntry};
    VerificationRequest mRequest;
};

TEST_F(VerificationTest, FindsAnExactCopyExact)
{
    const VerificationResult result = Verify();
    EXPECT_TRUE(result.IsExact());
    EXPECT_EQ(result.mFramesExpected, 150000);
    EXPECT_EQ(result.mFramesFound, 150000);
    EXPECT_EQ(result.mFirstDifference, -1);
    EXPECT_TRUE(std::isinf(result.mSignalToNoise));
}

TEST_F(VerificationTest, ComparesAcrossWidths)
{
    Copy().mType = 40;
    Copy().mPlanes = {Bytes(ToFloats(Noise(150000, 1))), Bytes(ToFloats(Noise(150000, 2)))};
    EXPECT_TRUE(Verify().IsExact());
}

TEST_F(VerificationTest, FindsTheFirstWrongSample)
{
    Copy().mPlanes[1][2 * 149999] ^= 1;
    Copy().mPlanes[0][2 * 80000] ^= 1;
    const VerificationResult result = Verify();
    EXPECT_FALSE(result.IsExact());
    EXPECT_TRUE(result.IsLengthRight());
    EXPECT_EQ(result.mFirstDifference, 80000);
    EXPECT_GT(result.mSignalToNoise, 100.0);
    EXPECT_LT(result.mSignalToNoise, 200.0);
}

TEST_F(VerificationTest, FindsAWrongLength)
{
    for (std::string& plane : Copy().mPlanes)
        plane.resize(2 * 149999);
    VerificationResult result = Verify();
    EXPECT_FALSE(result.IsExact());
    EXPECT_EQ(result.mFramesFound, 149999);
    EXPECT_EQ(result.mFirstDifference, -1);

    for (std::string& plane : Copy().mPlanes)
        plane.resize(2 * 400000);
    result = Verify();
    EXPECT_FALSE(result.IsExact());
    EXPECT_EQ(result.mFramesFound, 400000);
}

TEST_F(VerificationTest, FindsAnEmptyCopy)
{
    Copy().mPlanes.assign(2, "");
    const VerificationResult result = Verify();
    EXPECT_FALSE(result.IsExact());
    EXPECT_EQ(result.mFramesFound, 0);
}

TEST_F(VerificationTest, TakesAnEmptyCopyOfNothingForExact)
{
    Put("in", {{}, {}});
    Copy() = mFiles.mFiles["in"];
    EXPECT_TRUE(Verify().IsExact());
}

TEST_F(VerificationTest, ComparesChannelsByName)
{
    std::swap(Copy().mPlanes[0], Copy().mPlanes[1]);
    EXPECT_FALSE(Verify().IsExact());
    Copy().mLabels = {101, 100};
    EXPECT_TRUE(Verify().IsExact());
}

TEST_F(VerificationTest, ConvertsTheSourceLikeTheCopy)
{
    mRequest.mConversion.mTarget = {48000, 10, 0, {0}};
    mRequest.mConversion.mDither = host::Dither::kTPDF;
    Copy().mPlanes.clear();
    Copy().mLabels = {0};
    Copy().mRate = 48000;
    Copy().mType = 10;
    struct Keep : host::BlockSink
    {
        void Write(const char* const* inChannels, std::int64_t inCount) override
        {
            mPlane.append(inChannels[0], static_cast<std::size_t>(inCount));
        }
        std::string mPlane;
    } keep;
    host::ReadSession source(mPlugIn, "in");
    host::Conversion(source.Info(), mRequest.mConversion).Run(source, keep);
    Copy().mPlanes.push_back(keep.mPlane);
    EXPECT_TRUE(Verify().IsExact());
    Copy().mPlanes[0][1000] ^= 1;
    EXPECT_EQ(Verify().mFirstDifference, 1000);
}

TEST_F(VerificationTest, TakesFloatsThatWereRoundedTo32BitIntegersForExact)
{
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    PutFloats({0.5F, 1e-5F, -3.3e-7F, 2.5F, -2.5F, kNaN, kInfinity, -kInfinity},
              {0.5F, 21475.0F / 2147483648, -709.0F / 2147483648, 1.0F, -1.0F, 0.0F, 1.0F, -1.0F});
    EXPECT_FALSE(Verify().IsExact());
    mRequest.mIsRounded = true;
    EXPECT_TRUE(Verify().IsExact());
}

TEST_F(VerificationTest, FindsTheFirstWrongOneOfRoundedFloats)
{
    mRequest.mIsRounded = true;
    PutFloats({0.0F, 0.0F, 2.5F}, {0.0F, 2.0F / 2147483648, 0.9F});
    const VerificationResult result = Verify();
    EXPECT_FALSE(result.IsExact());
    EXPECT_EQ(result.mFirstDifference, 1);
}

TEST_F(VerificationTest, FindsNoiseThatIsNoNumber)
{
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    mRequest.mIsLossy = true;
    PutFloats({0.5F, 0.25F, -0.5F}, {0.5F, kNaN, -0.5F});
    EXPECT_LT(Verify().mSignalToNoise, 0.0);
}

TEST_F(VerificationTest, JudgesALossyCopyOfWhatIsNoNumberByTheRest)
{
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    mRequest.mIsLossy = true;
    PutFloats({0.5F, kNaN, -0.5F}, {0.45F, 0.0F, -0.45F});
    EXPECT_NEAR(Verify().mSignalToNoise, 20.0, 0.01);
}

TEST_F(VerificationTest, RefusesACopyOfAnotherForm)
{
    Copy().mRate = 48000;
    EXPECT_THROW(Verify(), host::Failure);
    Copy().mRate = 44100;
    Copy().mLabels = {0};
    Copy().mPlanes.resize(1);
    EXPECT_THROW(Verify(), host::Failure);
    mRequest.mCopy = "missing";
    EXPECT_THROW(Verify(), host::Failure);
}

TEST_F(VerificationTest, FindsTheDelayOfALossyCopy)
{
    for (const std::int64_t delay : {0, 1, 481, 2112, 4608})
    {
        PutLateCopy(3000, delay);
        const VerificationResult result = Verify();
        EXPECT_EQ(result.mDelay, delay);
        EXPECT_EQ(result.mFramesExpected, 103000);
        EXPECT_EQ(result.mFramesFound, 103000 + delay);
        EXPECT_NEAR(result.mSignalToNoise, 40.0, 0.1) << delay;
    }
}

TEST_F(VerificationTest, FindsALossyCopyThatComesEarly)
{
    PutLateCopy(3000, -700);
    const VerificationResult result = Verify();
    EXPECT_EQ(result.mDelay, -700);
    EXPECT_NEAR(result.mSignalToNoise, 40.0, 0.1);
}

TEST_F(VerificationTest, WaitsForTheSoundOfALossyCopy)
{
    PutLateCopy(300000, 1024);
    const VerificationResult result = Verify();
    EXPECT_EQ(result.mDelay, 1024);
    EXPECT_NEAR(result.mSignalToNoise, 40.0, 0.1);
}

TEST_F(VerificationTest, TakesALossyCopyOfSilenceAsItIs)
{
    Put("in", {std::vector<std::int16_t>(70000, 0), std::vector<std::int16_t>(70000, 0)});
    Copy() = mFiles.mFiles["in"];
    mRequest.mIsLossy = true;
    const VerificationResult result = Verify();
    EXPECT_TRUE(result.IsExact());
    EXPECT_EQ(result.mDelay, 0);
}

TEST_F(VerificationTest, TellsOfALossyCopyThatIsSomethingElse)
{
    PutLateCopy(0, 0);
    Copy().mPlanes = {Bytes(ToFloats(Noise(100000, 77)))};
    EXPECT_LT(Verify().mSignalToNoise, 0.0);
}

// A codec blurs the beginning, so that the tone is more like itself some periods late.
TEST(DelaySearch, FindsTheDelayOfATone)
{
    std::vector<float> tone(20000);
    for (std::size_t frame = 0; frame < tone.size(); ++frame)
        tone[frame] = std::sin(0.1425F * static_cast<float>(frame));
    for (const std::int64_t delay : {0, 256, 1024, 2112})
    {
        std::vector<float> copy(static_cast<std::size_t>(delay), 0.0F);
        copy.insert(copy.end(), tone.begin(), tone.end());
        for (std::size_t frame = 0; frame < 30; ++frame)
            copy[static_cast<std::size_t>(delay) + frame] *= static_cast<float>(frame) / 30;
        EXPECT_EQ(host::FindDelay(tone, copy, 0), delay);
    }
}

TEST(DelaySearch, FindsNoDelayInSilence)
{
    EXPECT_EQ(host::FindDelay(std::vector<float>(9000, 0.5F), std::vector<float>(9000), 0), 0);
    EXPECT_EQ(host::FindDelay(std::vector<float>(9000, 0.5F), {}, 0), 0);
}

TEST(DelaySearch, FindsTheOnset)
{
    EXPECT_EQ(host::FindOnset(std::vector<float>{0, 0, 0.5F}), 2);
    EXPECT_EQ(host::FindOnset(std::vector<float>{0, 1e-6F}), -1);
    EXPECT_EQ(host::FindOnset({}), -1);
}

}  // namespace
