// How frames come out of an open reader, with all that fills do and fail to do.
#include "tests/appleaudiotoolbox/ReaderFixture.h"

#include <limits>
#include <numeric>

namespace
{

using namespace testing_support;

// Frames of 16-bit stereo from a first number on: 1 2 | 3 4 | ...
Bytes Counting(UInt16 inFirst, std::size_t inFrames)
{
    std::vector<UInt16> samples(2 * inFrames);
    std::iota(samples.begin(), samples.end(), inFirst);
    return BytesOf(samples);
}

class ReaderDelivery : public ReaderTest
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

using Samples = std::vector<UInt16>;

TEST_F(ReaderDelivery, SplitsFramesIntoChannels)
{
    OpenStereo16();
    mPlatform.DeliverAudio(Counting(1, 3));
    ASSERT_TRUE(Planes(3, 3));
    EXPECT_EQ(mCount, 3);
    EXPECT_EQ(mLeft, (Samples{1, 3, 5}));
    EXPECT_EQ(mRight, (Samples{2, 4, 6}));
    EXPECT_EQ(mPlatform.Calls(),
              (Lines{"AudioConverterFillComplexBuffer packets 3 channels 2 bytes 12 descriptions "
                     "null"}));
}

TEST_F(ReaderDelivery, OfNoFramesIntoChannelsFailsAndNotesNothing)
{
    OpenStereo16();
    for (const int count : {0, -1, -1000000, std::numeric_limits<int>::min()})
    {
        EXPECT_FALSE(Planes(count)) << count;
        EXPECT_EQ(mCount, count);
    }
    EXPECT_EQ(mInfo.mSite, appleaudiotoolbox::kATError_None);
    EXPECT_EQ(mPlatform.Calls(), Lines());
}

TEST_F(ReaderDelivery, OfMoreBytesThanThereAreFailsAndNotesNothing)
{
    OpenStereo16();
    char* planes[2] = {};
    for (const unsigned long bytes :
         {0x7FFFFFFFFFFFFFFFul, 0x4000000000000000ul, 0x8000000000000001ul, 0xFFFFFFFFFFFFFFFFul})
    {
        int count = std::numeric_limits<int>::max();
        EXPECT_FALSE(mReader->ReadSamples(0, &count, planes, bytes, mInfo)) << bytes;
        EXPECT_EQ(count, std::numeric_limits<int>::max());
    }
    EXPECT_EQ(mInfo.mSite, appleaudiotoolbox::kATError_None);
    EXPECT_EQ(mPlatform.Calls(), Lines());
}

TEST_F(ReaderDelivery, OfNoFramesInterleavedSucceedsWithoutAFill)
{
    OpenStereo16();
    for (const int count : {0, -1, std::numeric_limits<int>::min()})
    {
        EXPECT_TRUE(Interleaved(count, 1, 77)) << count;
        EXPECT_EQ(mCount, 0);
    }
    EXPECT_EQ(mReader->GetTotalSampleCount(), 77);
    EXPECT_FALSE(mReader->IsAtEndOfFile());
    EXPECT_EQ(mPlatform.Calls(), Lines());
}

TEST_F(ReaderDelivery, UpToTheLastFrameIsNotTheEnd)
{
    OpenStereo16();
    mPlatform.DeliverAudio(Counting(1, 5));
    ASSERT_TRUE(Planes(5));
    EXPECT_EQ(mCount, 5);
    EXPECT_FALSE(mReader->IsAtEndOfFile());

    ASSERT_TRUE(Planes(5, 100, 5));
    EXPECT_EQ(mCount, 0);
    EXPECT_TRUE(mReader->IsAtEndOfFile());
    EXPECT_EQ(mReader->GetTotalSampleCount(), 5);
}

TEST_F(ReaderDelivery, OfMoreThanThereIsEndsShort)
{
    OpenStereo16();
    mPlatform.DeliverAudio(Counting(1, 5));
    ASSERT_TRUE(Planes(8, 8));
    EXPECT_EQ(mCount, 5);
    EXPECT_EQ(mLeft, (Samples{1, 3, 5, 7, 9, 0xEEEE, 0xEEEE, 0xEEEE}));
    EXPECT_TRUE(mReader->IsAtEndOfFile());
    EXPECT_EQ(mReader->GetTotalSampleCount(), 5);
}

TEST_F(ReaderDelivery, GoesOnWhereItStoppedWhateverTheStart)
{
    OpenStereo16();
    mPlatform.DeliverAudio(Counting(1, 6));
    ASSERT_TRUE(Planes(2, 2, 1000));
    EXPECT_EQ(mReader->GetTotalSampleCount(), 1002);
    ASSERT_TRUE(Planes(2, 2, 0));
    EXPECT_EQ(mLeft, (Samples{5, 7}));
    EXPECT_EQ(mReader->GetTotalSampleCount(), 1002);
}

TEST_F(ReaderDelivery, SurvivesAStartBeyondAllBounds)
{
    OpenStereo16();
    mPlatform.DeliverAudio(Counting(1, 4));
    ASSERT_TRUE(Planes(2, 2, std::numeric_limits<long long>::max()));
    EXPECT_EQ(mReader->GetTotalSampleCount(), 0);
    ASSERT_TRUE(Planes(2, 2, std::numeric_limits<long long>::min()));
    EXPECT_EQ(mReader->GetTotalSampleCount(), 0);
}

TEST_F(ReaderDelivery, OfSamplesOf8BytesCopiesTheirFirst4)
{
    mPlatform.HoldFile(kAudioFileM4AType, kAAC);
    ASSERT_TRUE(Open());
    mPlatform.DeliverAudio(BytesOf<UInt32>({1, 2, 3, 4}));
    UInt32 left[4] = {9, 9, 9, 9};
    UInt32 right[4] = {9, 9, 9, 9};
    char* planes[] = {reinterpret_cast<char*>(left), reinterpret_cast<char*>(right)};
    int count = 2;
    ASSERT_TRUE(mReader->ReadSamples(0, &count, planes, 8, mInfo));
    EXPECT_EQ(std::vector<UInt32>(left, left + 4), (std::vector<UInt32>{1, 3, 9, 9}));
    EXPECT_EQ(std::vector<UInt32>(right, right + 4), (std::vector<UInt32>{2, 4, 9, 9}));
}

TEST_F(ReaderDelivery, OfSamplesSmallerThanTheClientsStaysWithinItsMemory)
{
    mPlatform.HoldFile(kAudioFileM4AType, kAAC);
    ASSERT_TRUE(Open());
    mPlatform.DeliverAudio(Bytes(8 * 50, 0x11));
    char left[50];
    char right[50];
    char* planes[] = {left, right};
    int count = 50;
    ASSERT_TRUE(mReader->ReadSamples(0, &count, planes, 1, mInfo));
    EXPECT_EQ(count, 50);
    EXPECT_EQ(left[49], 0x11);
}

TEST_F(ReaderDelivery, OfANarrowFormatUsesOneByteASample)
{
    mPlatform.HoldFile(kAudioFileWAVEType, kMono8);
    ASSERT_TRUE(Open());
    mPlatform.DeliverAudio({7, 8, 9});
    char samples[3];
    char* planes[] = {samples};
    int count = 3;
    ASSERT_TRUE(mReader->ReadSamples(0, &count, planes, 1, mInfo));
    EXPECT_EQ(std::string(samples, 3), "\x07\x08\x09");
}

TEST_F(ReaderDelivery, HandsTheFillTheCallersBuffer)
{
    OpenStereo16();
    mPlatform.DeliverAudio(Counting(1, 4));
    ASSERT_TRUE(Interleaved(4, 4));
    EXPECT_EQ(mPlatform.FillBuffer(), mFrames.data());
    EXPECT_EQ(mFrames, (Samples{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST_F(ReaderDelivery, BehindAShortFillOverwritesTheFirstFrames)
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

TEST_F(ReaderDelivery, OfMoreFramesThanAskedTellsThemButCopiesNoMoreThanAsked)
{
    OpenStereo16();
    mPlatform.Fill({FillStep::Deliver(3, Counting(1, 3))});
    mPlatform.Fill({FillStep::Deliver(3, Counting(101, 3))});
    ASSERT_TRUE(Planes(4, 4));
    EXPECT_EQ(mCount, 6);
    EXPECT_EQ(Samples(mLeft.begin(), mLeft.begin() + 3), (Samples{101, 103, 105}));
    EXPECT_EQ(mReader->GetTotalSampleCount(), 6);
}

TEST_F(ReaderDelivery, SurvivesAConverterThatClaimsAnyNumberOfFrames)
{
    OpenStereo16();
    mPlatform.Fill({FillStep::Deliver(0xFFFFFFFF, Counting(1, 4))});
    ASSERT_TRUE(Planes(4, 4));
    EXPECT_EQ(mReader->GetTotalSampleCount(), 0xFFFFFFFFll);
}

TEST_F(ReaderDelivery, TakesAFullCodecBufferAsANormalFill)
{
    OpenStereo16();
    mPlatform.Fill({FillStep::Deliver(4, Counting(1, 4)),
                    FillStep::Return(kAudioCodecNotEnoughBufferSpaceError)});
    ASSERT_TRUE(Interleaved(4));
    EXPECT_EQ(mCount, 4);
    EXPECT_FALSE(mReader->IsAtEndOfFile());
    EXPECT_EQ(mInfo.mSite, appleaudiotoolbox::kATError_None);
}

TEST_F(ReaderDelivery, TakesAFullCodecBufferWithoutFramesAsTheEnd)
{
    OpenStereo16();
    mPlatform.Fill({FillStep::Return(kAudioCodecNotEnoughBufferSpaceError)});
    ASSERT_TRUE(Interleaved(4));
    EXPECT_EQ(mCount, 0);
    EXPECT_TRUE(mReader->IsAtEndOfFile());
}

TEST_F(ReaderDelivery, ThatFailsNotesTheFillAndLeavesTheCount)
{
    OpenStereo16();
    mPlatform.DeliverAudio(Counting(1, 10));
    ASSERT_TRUE(Planes(2));
    mPlatform.Fill({FillStep::Deliver(2, Counting(1, 2)), FillStep::Return(-36)});
    EXPECT_FALSE(Planes(4, 100, 50));
    EXPECT_EQ(mCount, 4);
    EXPECT_EQ(mInfo.mSite, appleaudiotoolbox::kATError_AudioConverterFillComplexBuffer);
    EXPECT_EQ(mInfo.mStatus, -36);
    EXPECT_EQ(mReader->GetTotalSampleCount(), 2);
    EXPECT_FALSE(mReader->IsAtEndOfFile());
    EXPECT_EQ(mLeft[0], 0xEEEE);
    SetExtendedErrorString(mInfo);
    EXPECT_EQ(mInfo.mMessage,
              u"Apple AudioToolbox reported an error while processing this file.\nError Code: -36");
}

TEST_F(ReaderDelivery, ThatFailsOnASecondPassLeavesTheCountToo)
{
    OpenStereo16();
    mPlatform.Fill({FillStep::Deliver(2, Counting(1, 2))});
    mPlatform.Fill({FillStep::Return(-36)});
    EXPECT_FALSE(Interleaved(4));
    EXPECT_EQ(mCount, 4);
    EXPECT_EQ(mReader->GetTotalSampleCount(), 0);
}

TEST_F(ReaderDelivery, BehindAFailureGoesOn)
{
    OpenStereo16();
    mPlatform.DeliverAudio(Counting(1, 10));
    mPlatform.Fill({FillStep::Return(-36)});
    EXPECT_FALSE(Interleaved(2, 2));
    ASSERT_TRUE(Interleaved(2, 2));
    EXPECT_EQ(mFrames, (Samples{1, 2, 3, 4}));
}

TEST_F(ReaderDelivery, CutsOneCallThatSpansTheWholeFile)
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

TEST_F(ReaderDelivery, CutsASingleFrameToo)
{
    OpenMonoAAC(1000);
    mPlatform.DeliverAudio(Bytes(4 * 1001, 1));
    std::vector<float> samples(1001);
    int count = 1001;
    ASSERT_TRUE(mReader->ReadSamplesInterleaved(0, &count, reinterpret_cast<char*>(samples.data()),
                                                4, mInfo));
    EXPECT_EQ(count, 1000);
}

TEST_F(ReaderDelivery, CutsAgainstTheFramesOfOneCallOnly)
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

TEST_F(ReaderDelivery, CutsTheLaterPassesOfACallToNothing)
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

TEST_F(ReaderDelivery, DoesNotCutAFileOfUnknownLength)
{
    OpenMonoAAC(0);
    mPlatform.DeliverAudio(Bytes(4 * 500, 1));
    std::vector<float> samples(600);
    int count = 600;
    ASSERT_TRUE(mReader->ReadSamplesInterleaved(0, &count, reinterpret_cast<char*>(samples.data()),
                                                4, mInfo));
    EXPECT_EQ(count, 500);
}

TEST_F(ReaderDelivery, ScalesTheLengthOfALayeredFile)
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

TEST_F(ReaderDelivery, FeedsPacketsOfOneSizeFromOneReadOnwards)
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

TEST_F(ReaderDelivery, FeedsPacketsOfVaryingSizeWithTheirDescriptions)
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

TEST_F(ReaderDelivery, AsksForNoPacketsIfOneIsLargerThanTheBuffer)
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

TEST_F(ReaderDelivery, PassesTheStatusOfAFailedReadOnUnchanged)
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

TEST_F(ReaderDelivery, OfAClientFormatWithoutPacketBytesIsTheEnd)
{
    mPlatform.HoldFile(kAudioFileWAVEType, kStereo16);
    AudioStreamBasicDescription output = kStereo16;
    output.mBytesPerPacket = 0;
    mPlatform.Answer(Family::Converter, kAudioConverterCurrentOutputStreamDescription,
                     PropertyAnswer::Value(output));
    ASSERT_TRUE(Open());
    mPlatform.DeliverAudio(Counting(1, 4));
    ASSERT_TRUE(Interleaved(4));
    EXPECT_EQ(mCount, 0);
    EXPECT_TRUE(mReader->IsAtEndOfFile());
}

}  // namespace
