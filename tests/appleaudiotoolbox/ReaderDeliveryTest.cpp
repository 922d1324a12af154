// How frames come out of an open reader, with all that fills do and fail to do.
#include "tests/appleaudiotoolbox/ReaderFixture.h"

#include <limits>

namespace
{

using namespace testing_support;

class ReaderDelivery : public DeliveryTest
{
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
