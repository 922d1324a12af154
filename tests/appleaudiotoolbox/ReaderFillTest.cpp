// What fills do to a read: short ones, odd ones, the cut at the end of the audio, and the packets
// that they ask for.
#include "tests/appleaudiotoolbox/ReaderFixture.h"

#include <limits>

namespace
{

using namespace testing_support;

class ReaderFill : public DeliveryTest
{
protected:
    // Frames of one read of a file that has 1000 by its packet table and 1500 in its packets.
    int FramesOf1000()
    {
        OpenMonoAAC(1000);
        mPlatform.DeliverAudio(Bytes(4 * 1500, 1));
        std::vector<float> samples(1500);
        int count = 1500;
        EXPECT_TRUE(mReader->ReadSamplesInterleaved(
            0, &count, reinterpret_cast<char*>(samples.data()), 4, mInfo));
        return count;
    }
};

using Samples = std::vector<UInt16>;

TEST_F(ReaderFill, HandsTheFillTheCallersBuffer)
{
    OpenStereo16();
    mPlatform.DeliverAudio(Counting(1, 4));
    ASSERT_TRUE(Interleaved(4, 4));
    EXPECT_EQ(mPlatform.FillBuffer(), mFrames.data());
    EXPECT_EQ(mFrames, (Samples{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST_F(ReaderFill, BehindAShortFillOverwritesTheFirstFrames)
{
    OpenStereo16();
    mPlatform.Fill({FillStep::Deliver(3, Counting(1, 3))});
    mPlatform.Fill({FillStep::Deliver(2, Counting(101, 2))});
    ASSERT_TRUE(Interleaved(5, 5));
    EXPECT_EQ(mCount, 5);
    EXPECT_EQ(mFrames, (Samples{101, 102, 103, 104, 5, 6, 0xEEEE, 0xEEEE, 0xEEEE, 0xEEEE}));
    // The count is asked for anew, but the room is what the short fill made of it.
    EXPECT_EQ(mPlatform.Calls(),
              (Lines{"AudioConverterFillComplexBuffer packets 5 channels 2 bytes 20 descriptions "
                     "null",
                     "AudioConverterFillComplexBuffer packets 5 channels 2 bytes 12 descriptions "
                     "null"}));
}

TEST_F(ReaderFill, OfMoreFramesThanAskedTellsThemButCopiesNoMoreThanAsked)
{
    OpenStereo16();
    mPlatform.Fill({FillStep::Deliver(3, Counting(1, 3))});
    mPlatform.Fill({FillStep::Deliver(3, Counting(101, 3))});
    ASSERT_TRUE(Planes(4, 4));
    EXPECT_EQ(mCount, 6);
    EXPECT_EQ(Samples(mLeft.begin(), mLeft.begin() + 3), (Samples{101, 103, 105}));
    EXPECT_EQ(mReader->GetTotalSampleCount(), 6);
}

TEST_F(ReaderFill, SurvivesAConverterThatClaimsAnyNumberOfFrames)
{
    OpenStereo16();
    mPlatform.Fill({FillStep::Deliver(0xFFFFFFFF, Counting(1, 4))});
    ASSERT_TRUE(Planes(4, 4));
    EXPECT_EQ(mReader->GetTotalSampleCount(), 0xFFFFFFFFll);
}

TEST_F(ReaderFill, TakesAFullCodecBufferAsANormalFill)
{
    OpenStereo16();
    mPlatform.Fill({FillStep::Deliver(4, Counting(1, 4)),
                    FillStep::Return(kAudioCodecNotEnoughBufferSpaceError)});
    ASSERT_TRUE(Interleaved(4));
    EXPECT_EQ(mCount, 4);
    EXPECT_FALSE(mReader->IsAtEndOfFile());
    EXPECT_EQ(mInfo.mSite, appleaudiotoolbox::kATError_None);
}

TEST_F(ReaderFill, TakesAFullCodecBufferWithoutFramesAsTheEnd)
{
    OpenStereo16();
    mPlatform.Fill({FillStep::Return(kAudioCodecNotEnoughBufferSpaceError)});
    ASSERT_TRUE(Interleaved(4));
    EXPECT_EQ(mCount, 0);
    EXPECT_TRUE(mReader->IsAtEndOfFile());
}

TEST_F(ReaderFill, CutsOneCallThatSpansTheWholeFile)
{
    OpenMonoAAC(1000);
    mPlatform.Fill({FillStep::Deliver(2000, Bytes(8000, 1))});
    std::vector<float> samples(2000);
    char* planes[] = {reinterpret_cast<char*>(samples.data())};
    int count = 2000;
    ASSERT_TRUE(mReader->ReadSamples(0, &count, planes, 4, mInfo));
    EXPECT_EQ(count, 1000);
    EXPECT_TRUE(mReader->IsAtEndOfFile());
    EXPECT_EQ(mReader->GetTotalSampleCount(), 1000);
    EXPECT_EQ(mPlatform.Calls().at(1),
              "AudioConverterFillComplexBuffer packets 2000 channels 1 bytes 4000 descriptions "
              "null");
}

TEST_F(ReaderFill, CutsASingleFrameToo)
{
    OpenMonoAAC(1000);
    mPlatform.DeliverAudio(Bytes(4 * 1001, 1));
    std::vector<float> samples(1001);
    int count = 1001;
    ASSERT_TRUE(mReader->ReadSamplesInterleaved(0, &count, reinterpret_cast<char*>(samples.data()),
                                                4, mInfo));
    EXPECT_EQ(count, 1000);
}

TEST_F(ReaderFill, CutsAgainstTheFramesOfOneCallOnly)
{
    OpenMonoAAC(1000);
    std::vector<float> samples(600);
    mPlatform.DeliverAudio(Bytes(4 * 1800, 1));
    for (int call = 0; call < 3; ++call)
    {
        int count = 600;
        ASSERT_TRUE(mReader->ReadSamplesInterleaved(
            600 * call, &count, reinterpret_cast<char*>(samples.data()), 4, mInfo));
        EXPECT_EQ(count, 600);
    }
    EXPECT_EQ(mReader->GetTotalSampleCount(), 1800);
}

TEST_F(ReaderFill, CutsTheLaterPassesOfACallToNothing)
{
    OpenMonoAAC(1000);
    mPlatform.Fill({FillStep::Deliver(900, Bytes(3600, 1))});
    mPlatform.Fill({FillStep::Deliver(300, Bytes(1200, 2))});
    mPlatform.Fill({FillStep::Deliver(50, Bytes(200, 3))});
    std::vector<float> samples(2000);
    int count = 2000;
    ASSERT_TRUE(mReader->ReadSamplesInterleaved(0, &count, reinterpret_cast<char*>(samples.data()),
                                                4, mInfo));
    EXPECT_EQ(count, 1000);
    EXPECT_EQ(mPlatform.Calls(),
              (Lines{"AudioConverterFillComplexBuffer packets 2000 channels 1 bytes 8000 "
                     "descriptions null",
                     "AudioConverterFillComplexBuffer packets 2000 channels 1 bytes 3600 "
                     "descriptions null",
                     "AudioConverterFillComplexBuffer packets 2000 channels 1 bytes 400 "
                     "descriptions null",
                     "AudioConverterFillComplexBuffer packets 2000 channels 1 bytes 0 "
                     "descriptions null"}));
}

TEST_F(ReaderFill, CutsAFileThatClaimsFewerFramesThanNoneToNothing)
{
    OpenMonoAAC(std::numeric_limits<SInt64>::min());
    mPlatform.DeliverAudio(Bytes(4 * 3, 1));
    std::vector<float> samples(3);
    int count = 3;
    ASSERT_TRUE(mReader->ReadSamplesInterleaved(0, &count, reinterpret_cast<char*>(samples.data()),
                                                4, mInfo));
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(mReader->IsAtEndOfFile());
}

TEST_F(ReaderFill, DoesNotCutAFileOfUnknownLength)
{
    OpenMonoAAC(0);
    mPlatform.DeliverAudio(Bytes(4 * 500, 1));
    std::vector<float> samples(600);
    int count = 600;
    ASSERT_TRUE(mReader->ReadSamplesInterleaved(0, &count, reinterpret_cast<char*>(samples.data()),
                                                4, mInfo));
    EXPECT_EQ(count, 500);
}

TEST_F(ReaderFill, ScalesTheLengthOfALayeredFile)
{
    HoldLayeredFile();
    HoldPacketTable(500, 0);
    ASSERT_TRUE(Open());
    mPlatform.DeliverAudio(Bytes(8 * 1400, 1));
    std::vector<float> samples(2 * 1500);
    int count = 1500;
    ASSERT_TRUE(mReader->ReadSamplesInterleaved(0, &count, reinterpret_cast<char*>(samples.data()),
                                                4, mInfo));
    EXPECT_EQ(count, 1000);
}

TEST_F(ReaderFill, DoesNotScaleTheLengthByAnUnknownRateOfTheInput)
{
    AudioStreamBasicDescription input = kMonoAAC;
    input.mSampleRate = 0.0;
    mPlatform.Answer(Family::Converter, kAudioConverterCurrentInputStreamDescription,
                     PropertyAnswer::Value(input));
    EXPECT_EQ(FramesOf1000(), 1000);
}

TEST_F(ReaderFill, DoesNotScaleTheLengthByAnUnknownRateOfTheClient)
{
    const AudioStreamBasicDescription client = {0.0, kAudioFormatLinearPCM, 9, 4, 1, 4, 1, 32, 0};
    mPlatform.Answer(Family::Converter, kAudioConverterCurrentOutputStreamDescription,
                     PropertyAnswer::Value(client));
    EXPECT_EQ(FramesOf1000(), 1000);
}

TEST_F(ReaderFill, FeedsPacketsOfOneSizeFromOneReadOnwards)
{
    OpenStereo16();
    mPlatform.ReadPackets({{{1, 2, 3, 4, 5, 6, 7, 8}, 2}, {{9, 10, 11, 12}, 1}});
    mPlatform.Fill({FillStep::Pull(3), FillStep::Pull(1000000), FillStep::PullBare(1),
                    FillStep::Deliver(1, Counting(1, 1))});
    ASSERT_TRUE(Interleaved(1));
    EXPECT_EQ(mPlatform.CallsOf("AudioFileReadPacketData"),
              (Lines{"AudioFileReadPacketData cache 0 bytes 65536 descriptions null start 0 "
                     "packets 3",
                     "AudioFileReadPacketData cache 0 bytes 65536 descriptions null start 2 "
                     "packets 16384",
                     "AudioFileReadPacketData cache 0 bytes 65536 descriptions null start 3 "
                     "packets 1"}));

    const std::vector<PulledInput>& pulls = mPlatform.Pulls();
    ASSERT_EQ(pulls.size(), 3u);
    EXPECT_EQ(pulls[0].mPackets, 2u);
    EXPECT_EQ(pulls[0].mBytes, (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(pulls[0].mChannels, 2u);
    EXPECT_EQ(pulls[0].mBuffers, 1u);
    EXPECT_TRUE(pulls[0].mToldDescriptions);
    EXPECT_EQ(pulls[0].mDescriptions, nullptr);
    EXPECT_EQ(pulls[1].mPackets, 1u);
    EXPECT_EQ(pulls[1].mData, pulls[0].mData);
    EXPECT_EQ(pulls[2].mStatus, noErr);
    EXPECT_EQ(pulls[2].mPackets, 0u);
    EXPECT_FALSE(pulls[2].mToldDescriptions);
}

TEST_F(ReaderFill, FeedsPacketsOfVaryingSizeWithTheirDescriptions)
{
    mPlatform.HoldFile(kAudioFileM4AType, kAAC);
    ASSERT_TRUE(Open());
    mPlatform.ReadPackets({{{1, 2, 3}, 2, {{0, 0, 1}, {1, 0, 2}}}});
    mPlatform.Fill({FillStep::Pull(100)});
    float frames[2];
    int count = 1;
    ASSERT_TRUE(
        mReader->ReadSamplesInterleaved(0, &count, reinterpret_cast<char*>(frames), 4, mInfo));
    EXPECT_EQ(mPlatform.CallsOf("AudioFileReadPacketData"),
              (Lines{"AudioFileReadPacketData cache 0 bytes 65536 descriptions given start 0 "
                     "packets 16"}));
    ASSERT_EQ(mPlatform.Pulls().size(), 1u);
    const AudioStreamPacketDescription* descriptions = mPlatform.Pulls()[0].mDescriptions;
    ASSERT_NE(descriptions, nullptr);
    EXPECT_EQ(descriptions[1].mStartOffset, 1);
    EXPECT_EQ(descriptions[1].mDataByteSize, 2u);
}

TEST_F(ReaderFill, AsksForNoPacketsIfOneIsLargerThanTheBuffer)
{
    AudioStreamBasicDescription wide = kStereo16;
    wide.mBytesPerPacket = wide.mBytesPerFrame = 65538;
    wide.mChannelsPerFrame = 32769;
    mPlatform.HoldFile(kAudioFileWAVEType, wide);
    ASSERT_TRUE(Open());
    mPlatform.Fill({FillStep::Pull(5)});
    std::vector<char> frame(65538);
    int count = 1;
    ASSERT_TRUE(mReader->ReadSamplesInterleaved(0, &count, frame.data(), 2, mInfo));
    EXPECT_EQ(mPlatform.CallsOf("AudioFileReadPacketData"),
              (Lines{"AudioFileReadPacketData cache 0 bytes 65536 descriptions null start 0 "
                     "packets 0"}));
}

TEST_F(ReaderFill, PassesTheStatusOfAFailedReadOnUnchanged)
{
    OpenStereo16();
    mPlatform.ReadPackets({{{1, 2, 3, 4}, 1}, {{}, 0, {}, kAudioFileEndOfFileError}});
    mPlatform.Fill({FillStep::Pull(1), FillStep::Pull(1)});
    mPlatform.Fill({FillStep::Pull(1)});
    EXPECT_FALSE(Interleaved(4));
    EXPECT_EQ(mCount, 4);
    EXPECT_EQ(mInfo.mSite, appleaudiotoolbox::kATError_AudioConverterFillComplexBuffer);
    EXPECT_EQ(mInfo.mStatus, -39);
    EXPECT_EQ(mPlatform.Pulls().at(1).mStatus, -39);
    EXPECT_EQ(mPlatform.Pulls().at(1).mData, nullptr);

    ASSERT_TRUE(Interleaved(4));
    EXPECT_EQ(mPlatform.CallsOf("AudioFileReadPacketData").at(2),
              "AudioFileReadPacketData cache 0 bytes 65536 descriptions null start 1 packets 1");
}

}  // namespace
