// Files that the built bundle writes for a bare host, selectors 17 to 19, as libsndfile reads them.
#include "host/PlugIn.h"
#include "host/ReadSession.h"
#include "tests/TarvoSDK/RecordingHost.h"

#include <sndfile.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace
{

using namespace testing_support;

constexpr std::uint32_t kWAVE = 0x57415645;
constexpr std::uint32_t kAIFF = 0x41494646;
constexpr std::uint32_t kPCM = 0x6C70636D;

using Planes = std::vector<std::string>;  // [channel], samples packed at the session's width

struct PCM
{
    std::uint32_t mType;
    double mRate;
    std::uint32_t mChannels;
    std::uint32_t mBits;
    std::uint32_t mFlags;
};

std::u16string SettingsOf(const PCM& inFormat)
{
    const auto rate = std::bit_cast<std::uint64_t>(inFormat.mRate);
    const std::uint32_t frameBytes = inFormat.mChannels * inFormat.mBits / 8;
    std::string text;
    const auto add = [&](const char* key, std::uint64_t value)
    { text += std::string(key) + ":0:" + std::to_string(value) + ";"; };
    add("AudioFileTypeID", inFormat.mType);
    add("BitsPerChannel", inFormat.mBits);
    add("BytesPerFrame", frameBytes);
    add("BytesPerPacket", frameBytes);
    add("ChannelsPerFrame", inFormat.mChannels);
    add("FormatFlags", inFormat.mFlags);
    add("FormatID", kPCM);
    add("FramesPerPacket", 1);
    add("SampleRateHigh", rate >> 32);
    add("SampleRateLow", rate & 0xFFFFFFFF);
    return {text.begin(), text.end()};
}

// Stereo AAC of 44100 Hz in an MPEG-4 audio file, with a constant bit rate.
std::u16string AACSettings(std::uint32_t inBitsPerSecond)
{
    const std::string text =
        "AudioFileTypeID:0:1832149350;Bitrate:0:" + std::to_string(inBitsPerSecond) +
        ";BitrateMode:0:0;BitsPerChannel:0:0;BytesPerFrame:0:0;BytesPerPacket:0:0;"
        "ChannelsPerFrame:0:2;FormatFlags:0:0;FormatID:0:1633772320;FramesPerPacket:0:1024;"
        "SampleRateHigh:0:1088784512;SampleRateLow:0:0;VBRQuality:0:96;";
    return {text.begin(), text.end()};
}

// Every value of a byte in every place.
Planes Noise(std::size_t inChannels, std::size_t inBytes)
{
    Planes planes(inChannels, std::string(inBytes, '\0'));
    std::uint64_t state = 1;
    for (std::string& plane : planes)
        for (char& byte : plane)
        {
            state = state * 6364136223846793005u + 1442695040888963407u;
            byte = static_cast<char>(state >> 56);
        }
    return planes;
}

// What libsndfile makes of a file, as [frame][channel] in its own whole numbers.
struct Read
{
    SF_INFO mInfo = {};
    std::vector<std::int32_t> mSamples;  // full scale in 32 bits
};

Read ReadBack(const std::string& inPath)
{
    Read read;
    const std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> file(
        sf_open(inPath.c_str(), SFM_READ, &read.mInfo), &sf_close);
    if (!file)
        return {};
    read.mSamples.resize(static_cast<std::size_t>(read.mInfo.frames * read.mInfo.channels));
    EXPECT_EQ(sf_readf_int(file.get(), read.mSamples.data(), read.mInfo.frames), read.mInfo.frames);
    return read;
}

// The same of what was handed over; bytes are unsigned, wider samples signed.
std::vector<std::int32_t> Frames(const Planes& inPlanes, std::size_t inWidth)
{
    std::vector<std::int32_t> samples;
    for (std::size_t offset = 0; offset < inPlanes[0].size(); offset += inWidth)
        for (const std::string& plane : inPlanes)
        {
            std::uint32_t bits = 0;
            std::memcpy(reinterpret_cast<char*>(&bits) + 4 - inWidth, &plane[offset], inWidth);
            samples.push_back(static_cast<std::int32_t>(inWidth == 1 ? bits ^ 0x80000000 : bits));
        }
    return samples;
}

// Gives up, with the number of the operation, when it is asked for the time that it was told.
class ThrowingBlock : public RecordingWriteSamples
{
public:
    ThrowingBlock(CallLog& outLog, const RecordingWriteSamples& inBlock, int inThrowing)
        : RecordingWriteSamples(outLog), mThrowing(inThrowing)
    {
        mCount = inBlock.mCount;
        mBuffers = inBlock.mBuffers;
    }
    TarvoErrorInterface* GetErrorInterface() const override
    {
        Count();
        return nullptr;
    }
    std::int64_t GetStartSample() const override
    {
        Count();
        return mStart;
    }
    std::int64_t GetSampleCount() const override
    {
        Count();
        return mCount;
    }
    const char* GetChannelBuffer(std::int64_t inChannel) const override
    {
        Count();
        return mBuffers.at(static_cast<std::size_t>(inChannel));
    }

private:
    void Count() const
    {
        if (++mAsked == mThrowing)
            throw mThrowing;
    }
    int mThrowing;
    mutable int mAsked = 0;
};

class WriteSessionRoad : public testing::Test
{
protected:
    WriteSessionRoad()
    {
        std::string folder = testing::TempDir() + "TarvoATWriteSession.XXXXXX";
        mFolder = mkdtemp(folder.data());
        mFormat.mErrors = mStart.mErrors = mBlock.mErrors = mFinish.mErrors = &mErrors;
        mStart.mFormat = mFinish.mFormat = &mFormat;
    }
    ~WriteSessionRoad() override { std::filesystem::remove_all(mFolder); }

    std::int32_t Start(const std::u16string& inSettings, std::int32_t inSampleType,
                       const std::vector<std::uint32_t>& inLabels)
    {
        mStart.mPath = std::filesystem::path(mPath).u16string();
        mFormat.mPrivateSettings = inSettings;
        mFormat.mSampleType = inSampleType;
        mFormat.mLabels = inLabels;
        mFormat.mChannelCount = static_cast<std::int64_t>(inLabels.size());
        return mPlugIn.Call(17, nullptr, &mStart);
    }

    void Write(const Planes& inPlanes, std::size_t inWidth, std::size_t inBlockFrames)
    {
        const std::size_t frames = inPlanes[0].size() / inWidth;
        for (std::size_t first = 0; first < frames; first += inBlockFrames)
        {
            mBlock.mStart = static_cast<std::int64_t>(first);
            mBlock.mCount = static_cast<std::int64_t>(std::min(inBlockFrames, frames - first));
            mBlock.mBuffers.clear();
            for (const std::string& plane : inPlanes)
                mBlock.mBuffers.push_back(plane.data() + first * inWidth);
            ASSERT_EQ(mPlugIn.Call(18, mStart.mHandle, &mBlock), 0);
        }
    }

    std::int32_t Finish() { return mPlugIn.Call(19, mStart.mHandle, &mFinish); }

    // A whole session; the file's bytes are compared through libsndfile.
    void ExpectExact(const PCM& inFormat, const Planes& inPlanes,
                     const std::vector<std::uint32_t>& inLabels, int inSndfileFormat)
    {
        const std::size_t width = inFormat.mBits / 8;
        ASSERT_EQ(Start(SettingsOf(inFormat), static_cast<std::int32_t>(10 * width), inLabels), 0);
        Write(inPlanes, width, 1000);
        ASSERT_EQ(Finish(), 0);
        const Read read = ReadBack(mPath);
        EXPECT_EQ(read.mInfo.format & (SF_FORMAT_TYPEMASK | SF_FORMAT_SUBMASK), inSndfileFormat);
        EXPECT_EQ(read.mInfo.samplerate, static_cast<int>(inFormat.mRate));
        EXPECT_EQ(read.mInfo.channels, static_cast<int>(inFormat.mChannels));
        EXPECT_EQ(read.mInfo.frames, static_cast<sf_count_t>(inPlanes[0].size() / width));
        EXPECT_TRUE(read.mSamples == Frames(inPlanes, width));
    }

    const host::PlugIn mPlugIn{""};
    std::filesystem::path mFolder;
    std::string mPath = "unset";
    CallLog mLog;
    RecordingErrors mErrors{mLog};
    RecordingFormat mFormat{mLog};
    RecordingWriteStart mStart{mLog};
    RecordingWriteSamples mBlock{mLog};
    RecordingFinishWrite mFinish{mLog};
};

TEST_F(WriteSessionRoad, Wave16BitStereoComesBackBitForBit)
{
    mPath = mFolder / "stereo \xC3\xA4.wav";
    ExpectExact({kWAVE, 44100, 2, 16, 12}, Noise(2, 2 * 12345), {100, 101},
                SF_FORMAT_WAV | SF_FORMAT_PCM_16);
}

TEST_F(WriteSessionRoad, Wave24BitInSixChannelsComesBackBitForBit)
{
    mPath = mFolder / "surround.wav";
    ExpectExact({kWAVE, 48000, 6, 24, 12}, Noise(6, 3 * 7777), {100, 101, 102, 103, 104, 105},
                SF_FORMAT_WAVEX | SF_FORMAT_PCM_24);
}

TEST_F(WriteSessionRoad, Wave8BitMonoComesBackBitForBit)
{
    mPath = mFolder / "mono.wav";
    ExpectExact({kWAVE, 8000, 1, 8, 8}, Noise(1, 3001), {0}, SF_FORMAT_WAV | SF_FORMAT_PCM_U8);
}

TEST_F(WriteSessionRoad, AIFF16BitStereoIsSwappedOnTheWay)
{
    mPath = mFolder / "stereo.aif";
    ExpectExact({kAIFF, 96000, 2, 16, 14}, Noise(2, 2 * 5000), {100, 101},
                SF_FORMAT_AIFF | SF_FORMAT_PCM_16);
}

TEST_F(WriteSessionRoad, FloatsBecomeWhatTheFileStores)
{
    mPath = mFolder / "float.wav";
    const float left[] = {0.0f, 0.5f, -0.5f, -1.0f};
    const float right[] = {0.25f, 2.0f, -2.0f, 1.0f};
    ASSERT_EQ(Start(SettingsOf({kWAVE, 44100, 2, 16, 12}), 40, {100, 101}), 0);
    Write({std::string(reinterpret_cast<const char*>(left), sizeof(left)),
           std::string(reinterpret_cast<const char*>(right), sizeof(right))},
          4, 3);
    ASSERT_EQ(Finish(), 0);
    const Read read = ReadBack(mPath);
    std::vector<int> samples;
    for (const std::int32_t sample : read.mSamples)
        samples.push_back(sample >> 16);
    EXPECT_EQ(samples, (std::vector<int>{0, 8192, 16384, 32767, -16384, -32768, -32768, 32767}));
}

TEST_F(WriteSessionRoad, AnEmptyTextMakesACoreAudioFile)
{
    mPath = mFolder / "default.caf";
    const Planes planes = Noise(2, 2 * 100);
    ASSERT_EQ(Start(u"", 20, {100, 101}), 0);
    Write(planes, 2, 64);
    ASSERT_EQ(Finish(), 0);
    const Read read = ReadBack(mPath);
    EXPECT_EQ(read.mInfo.format & (SF_FORMAT_TYPEMASK | SF_FORMAT_SUBMASK),
              SF_FORMAT_CAF | SF_FORMAT_PCM_16);
    EXPECT_EQ(read.mInfo.samplerate, 44100);
    EXPECT_TRUE(read.mSamples == Frames(planes, 2));
}

TEST_F(WriteSessionRoad, NoFramesMakeAnEmptyFile)
{
    mPath = mFolder / "empty.wav";
    ASSERT_EQ(Start(SettingsOf({kWAVE, 44100, 2, 16, 12}), 20, {100, 101}), 0);
    mBlock.mBuffers = {nullptr, nullptr};
    EXPECT_EQ(mPlugIn.Call(18, mStart.mHandle, &mBlock), 0);
    ASSERT_EQ(Finish(), 0);
    const Read read = ReadBack(mPath);
    EXPECT_EQ(read.mInfo.channels, 2);
    EXPECT_EQ(read.mInfo.frames, 0);
}

TEST_F(WriteSessionRoad, NoBlockMakesAnEmptyFile)
{
    mPath = mFolder / "empty.aif";
    ASSERT_EQ(Start(SettingsOf({kAIFF, 44100, 2, 16, 14}), 20, {100, 101}), 0);
    ASSERT_EQ(Finish(), 0);
    const Read read = ReadBack(mPath);
    EXPECT_EQ(read.mInfo.channels, 2);
    EXPECT_EQ(read.mInfo.frames, 0);
}

TEST_F(WriteSessionRoad, OneBufferMayServeEveryChannel)
{
    mPath = mFolder / "same.wav";
    const std::string plane = Noise(1, 3 * 1000)[0];
    ASSERT_EQ(Start(SettingsOf({kWAVE, 44100, 3, 24, 12}), 30, {100, 101, 102}), 0);
    mBlock.mCount = 1000;
    mBlock.mBuffers = {plane.data(), plane.data(), plane.data()};
    EXPECT_EQ(mPlugIn.Call(18, mStart.mHandle, &mBlock), 0);
    ASSERT_EQ(Finish(), 0);
    EXPECT_TRUE(ReadBack(mPath).mSamples == Frames({plane, plane, plane}, 3));
}

TEST_F(WriteSessionRoad, TwoSessionsAtOnceDoNotMeet)
{
    const Planes stereo = Noise(2, 2 * 300);
    const Planes mono = Noise(1, 3 * 300);
    const std::string stereoPath = mFolder / "two \xF0\x9F\x8E\xB5.wav";
    const std::string monoPath = mFolder / "two.aif";
    mPath = stereoPath;
    ASSERT_EQ(Start(SettingsOf({kWAVE, 44100, 2, 16, 12}), 20, {100, 101}), 0);
    void* const stereoHandle = mStart.mHandle;
    mPath = monoPath;
    ASSERT_EQ(Start(SettingsOf({kAIFF, 96000, 1, 24, 14}), 30, {0}), 0);
    void* const monoHandle = mStart.mHandle;
    ASSERT_NE(stereoHandle, monoHandle);

    mBlock.mCount = 100;
    for (std::size_t first = 0; first < 300; first += 100)
    {
        mBlock.mBuffers = {stereo[0].data() + 2 * first, stereo[1].data() + 2 * first};
        EXPECT_EQ(mPlugIn.Call(18, stereoHandle, &mBlock), 0);
        mBlock.mBuffers = {mono[0].data() + 3 * first};
        EXPECT_EQ(mPlugIn.Call(18, monoHandle, &mBlock), 0);
    }
    EXPECT_EQ(mPlugIn.Call(19, stereoHandle, &mFinish), 0);
    EXPECT_EQ(mPlugIn.Call(19, monoHandle, &mFinish), 0);
    EXPECT_TRUE(ReadBack(stereoPath).mSamples == Frames(stereo, 2));
    EXPECT_TRUE(ReadBack(monoPath).mSamples == Frames(mono, 3));
}

// One block goes in, however often the host gives up before.
TEST_F(WriteSessionRoad, AnExceptionOfTheHostPassesAndTheSessionGoesOn)
{
    constexpr int kOperations = 5;  // error object, count, two buffers, start
    mPath = mFolder / "thrown.wav";
    const Planes planes = Noise(2, 2 * 100);
    ASSERT_EQ(Start(SettingsOf({kWAVE, 44100, 2, 16, 12}), 20, {100, 101}), 0);
    mBlock.mCount = 100;
    mBlock.mBuffers = {planes[0].data(), planes[1].data()};
    for (int operation = 1; operation <= kOperations; ++operation)
    {
        ThrowingBlock block(mLog, mBlock, operation);
        EXPECT_THROW(mPlugIn.Call(18, mStart.mHandle, &block), int) << operation;
    }
    ThrowingBlock whole(mLog, mBlock, kOperations + 1);
    EXPECT_EQ(mPlugIn.Call(18, mStart.mHandle, &whole), 0);
    ASSERT_EQ(Finish(), 0);
    EXPECT_TRUE(ReadBack(mPath).mSamples == Frames(planes, 2));
}

TEST_F(WriteSessionRoad, AnOldFileGivesWay)
{
    mPath = mFolder / "twice.wav";
    ExpectExact({kWAVE, 44100, 2, 16, 12}, Noise(2, 2 * 9000), {100, 101},
                SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    ExpectExact({kWAVE, 22050, 1, 16, 12}, Noise(1, 2 * 10), {0}, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
}

TEST_F(WriteSessionRoad, AnEncoderGetsItsBitRateAndEveryFrame)
{
    mPath = mFolder / "a.m4a";
    ASSERT_EQ(Start(AACSettings(96000), 20, {100, 101}), 0) << Quoted(mErrors.mText.c_str());
    Write(Noise(2, 2 * 441000), 2, 5000);
    ASSERT_EQ(Finish(), 0);
    const host::ReadSession session(mPlugIn, mPath);
    EXPECT_EQ(session.Info().mFrameCount, 441000);
    EXPECT_NEAR(session.Info().mBitrate, 96000, 960) << "the first packet comes on top";
}

TEST_F(WriteSessionRoad, ABitRateThatTheEncoderLacksIsTold)
{
    mPath = mFolder / "a.m4a";
    EXPECT_EQ(Start(AACSettings(12345), 20, {100, 101}), -1);
    EXPECT_EQ(mErrors.mText.rfind(u"Apple AudioToolbox was unable to set the encode bitrate to "
                                  u"convert the file.\nError Code: ",
                                  0),
              0u);
}

TEST_F(WriteSessionRoad, AFolderThatIsNotThereIsTold)
{
    mPath = mFolder / "missing" / "a.wav";
    EXPECT_EQ(Start(SettingsOf({kWAVE, 44100, 2, 16, 12}), 20, {100, 101}), -1);
    EXPECT_EQ(mErrors.mText.rfind(
                  u"Apple AudioToolbox cannot create the specified file.\nError Code: ", 0),
              0u);
    EXPECT_EQ(mStart.mHandle, nullptr);
    EXPECT_FALSE(std::filesystem::exists(mPath));
}

}  // namespace
