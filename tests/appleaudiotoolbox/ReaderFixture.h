// ReaderFixture: a reader on a scripted platform, and the formats that its tests speak of.
#ifndef TESTS_APPLEAUDIOTOOLBOX_READERFIXTURE_H
#define TESTS_APPLEAUDIOTOOLBOX_READERFIXTURE_H

#include "appleaudiotoolbox/ATReader.h"
#include "tests/support/ScriptedPlatform.h"

#include <gtest/gtest.h>

#include <memory>
#include <numeric>

namespace testing_support
{

using Lines = std::vector<std::string>;

inline constexpr AudioStreamBasicDescription kStereo16 = {
    44100.0, kAudioFormatLinearPCM, 12, 4, 1, 4, 2, 16, 0};
inline constexpr AudioStreamBasicDescription kMono8 = {
    44100.0, kAudioFormatLinearPCM, 8, 1, 1, 1, 1, 8, 0};
inline constexpr AudioStreamBasicDescription kAAC = {
    44100.0, kAudioFormatMPEG4AAC, 0, 0, 1024, 0, 2, 0, 0};
inline constexpr AudioStreamBasicDescription kMonoAAC = {
    44100.0, kAudioFormatMPEG4AAC, 0, 0, 1024, 0, 1, 0, 0};
// The layers of one stream, and its data format, which is that of the core.
inline constexpr AudioStreamBasicDescription kHighEfficiency = {
    44100.0, kAudioFormatMPEG4AAC_HE, 0, 0, 2048, 0, 2, 0, 0};
inline constexpr AudioStreamBasicDescription kCore = {
    22050.0, kAudioFormatMPEG4AAC, 0, 0, 1024, 0, 2, 0, 0};

class ReaderTest : public ::testing::Test
{
protected:
    ScriptedPlatform mPlatform;
    std::unique_ptr<appleaudiotoolbox::ATReader> mReader =
        std::make_unique<appleaudiotoolbox::ATReader>();
    appleaudiotoolbox::ExtendedErrorInfo mInfo;

    bool Open(bool inForceFloat = false)
    {
        return mReader->Initialize("/music/a.wav", mInfo, inForceFloat);
    }

    void HoldLayeredFile()
    {
        mPlatform.HoldFile(kAudioFileM4AType, kCore);
        mPlatform.Answer(Family::File, kAudioFilePropertyFormatList,
                         PropertyAnswer::List<AudioFormatListItem>(
                             {{kHighEfficiency, kAudioChannelLayoutTag_Stereo},
                              {kCore, kAudioChannelLayoutTag_Stereo}}));
        mPlatform.Answer(
            Family::Format, kAudioFormatProperty_DecodeFormatIDs,
            PropertyAnswer::List<UInt32>({kAudioFormatMPEG4AAC, kAudioFormatMPEG4AAC_HE}));
    }

    void HoldPacketTable(SInt64 inValid, SInt32 inPriming)
    {
        mPlatform.Answer(Family::File, kAudioFilePropertyPacketTableInfo,
                         PropertyAnswer::Value(AudioFilePacketTableInfo{inValid, inPriming, 0}));
    }

    void TearDown() override
    {
        mReader.reset();
        EXPECT_EQ(mPlatform.OpenHandles(), 0);
        EXPECT_EQ(mPlatform.Breaches(), Lines());
    }
};

// Frames of 16-bit stereo from a first number on: 1 2 | 3 4 | ...
inline Bytes Counting(UInt16 inFirst, std::size_t inFrames)
{
    std::vector<UInt16> samples(2 * inFrames);
    std::iota(samples.begin(), samples.end(), inFirst);
    return BytesOf(samples);
}

// A reader that is read from, with the buffers of its caller.
class DeliveryTest : public ReaderTest
{
protected:
    void OpenStereo16()
    {
        mPlatform.HoldFile(kAudioFileWAVEType, kStereo16);
        ASSERT_TRUE(Open());
        mPlatform.ForgetCalls();
    }

    // Client frames are one float.
    void OpenMonoAAC(SInt64 inValidFrames)
    {
        mPlatform.HoldFile(kAudioFileM4AType, kMonoAAC);
        HoldPacketTable(inValidFrames, 0);
        ASSERT_TRUE(Open());
        mPlatform.ForgetCalls();
    }

    // Room for inRoom frames of 16-bit stereo, of which inAsked are asked for.
    bool Interleaved(int inAsked, std::size_t inRoom = 100, long long inStart = 0)
    {
        mFrames.assign(2 * inRoom, 0xEEEE);
        mCount = inAsked;
        return mReader->ReadSamplesInterleaved(inStart, &mCount,
                                               reinterpret_cast<char*>(mFrames.data()), 2, mInfo);
    }

    bool Planes(int inAsked, std::size_t inRoom = 100, long long inStart = 0)
    {
        mLeft.assign(inRoom, 0xEEEE);
        mRight.assign(inRoom, 0xEEEE);
        char* planes[] = {reinterpret_cast<char*>(mLeft.data()),
                          reinterpret_cast<char*>(mRight.data())};
        mCount = inAsked;
        return mReader->ReadSamples(inStart, &mCount, planes, 2, mInfo);
    }

    std::vector<UInt16> mFrames;
    std::vector<UInt16> mLeft;
    std::vector<UInt16> mRight;
    int mCount = 0;
};

}  // namespace testing_support

#endif
