// Selector 7: how a request for samples goes to the reader and back.
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATInterface.h"

#include "tests/TarvoSDK/RecordingHost.h"
#include "tests/Tarvo_PlugIns/TarvoAT/FakeReader.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace
{

using namespace testing_support;

struct ReadSamplesTest : testing::Test
{
    ReadSamplesTest()
    {
        mRequest.mCount = 10;
        mRequest.mBufferSize = 20;
        mRequest.mStart = 1000;
        mRequest.mBuffers = {mLeft, mRight};
        mReader.mDelivers = 10;
    }

    std::int32_t Read()
    {
        mLog.clear();
        appleaudiotoolbox::ATReader& reader = mReader;
        return tarvo::TarvoATInterface().EntryPoint(7, &reader, &mRequest);
    }

    char mLeft[20] = {};
    char mRight[20] = {};
    CallLog mLog;
    RecordingReadSamples mRequest{mLog};
    FakeReader mReader;
};

// The count that is divided by may be read before or behind the size.
const CallLog kBeforeTheRead = {"GetSampleCount",     "SetSamplesRead 0", "GetChannelBuffer 0",
                                "GetChannelBuffer 1", "GetStartSample",   "GetBufferSize",
                                "GetSampleCount"};

CallLog BeforeTheReadAnd(std::initializer_list<std::string> inLines)
{
    CallLog log = kBeforeTheRead;
    log.insert(log.end(), inLines);
    return log;
}

TEST_F(ReadSamplesTest, BeforeTheEndTellsTheFramesAndNoTotal)
{
    mReader.mTotal = 10;
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(mLog, BeforeTheReadAnd({"SetSamplesRead 10"}));
}

TEST_F(ReadSamplesTest, AtTheEndTellsTheTotalToo)
{
    mReader.mDelivers = 4;
    mReader.mAtEnd = true;
    mReader.mTotal = 5000000000;
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(mLog, BeforeTheReadAnd({"SetSamplesRead 4", "SetTotalSampleCount 5000000000"}));
}

TEST_F(ReadSamplesTest, PassesTheRequestAndTheHostsOwnBuffers)
{
    mRequest.mStart = 0x123456789;
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(mReader.mAskedStart, 0x123456789);
    EXPECT_EQ(mReader.mAskedFrames, 10);
    EXPECT_EQ(mReader.mAskedWidth, 2u);
    EXPECT_EQ(mReader.mAskedChannels, (std::vector<char*>{mLeft, mRight}));
}

TEST_F(ReadSamplesTest, TheWidthIsTheQuotientOfSizeAndCount)
{
    struct Row
    {
        std::int64_t mSize;
        std::int64_t mCount;
        unsigned long mWidth;
    };
    for (const Row& row : {Row{10, 10, 1}, Row{30, 10, 3}, Row{40, 10, 4}, Row{39, 10, 3},
                           Row{8, 1, 8}, Row{0x300000000, 0x100000000, 3}})
    {
        mRequest.mBufferSize = row.mSize;
        mRequest.mCount = row.mCount;
        EXPECT_EQ(Read(), 0);
        EXPECT_EQ(mReader.mAskedWidth, row.mWidth) << row.mSize << " / " << row.mCount;
    }
}

TEST_F(ReadSamplesTest, TheCountThatIsReadIsTheLow32Bits)
{
    mRequest.mCount = 0x100000005;
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(mReader.mAskedFrames, 5);
}

TEST_F(ReadSamplesTest, TheDeliveredCountKeepsItsSign)
{
    mReader.mDelivers = -3;
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(mLog.back(), "SetSamplesRead -3");
}

TEST_F(ReadSamplesTest, ACountOf0DoesNotDivide)
{
    mRequest.mCount = 0;
    mReader.mFails = true;
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(mLog, kBeforeTheRead);
}

TEST_F(ReadSamplesTest, AsksForOneBufferPerChannel)
{
    char third[20];
    mReader.mFormat.mChannelsPerFrame = 3;
    mRequest.mBuffers = {mLeft, mRight, third};
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(mReader.mAskedChannels, (std::vector<char*>{mLeft, mRight, third}));

    mReader.mFormat.mChannelsPerFrame = 0;
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(mLog, (CallLog{"GetSampleCount", "SetSamplesRead 0", "GetStartSample",
                             "GetBufferSize", "GetSampleCount", "SetSamplesRead 10"}));
}

TEST_F(ReadSamplesTest, AFailureGivesTheSitesResultAndLeaves0Frames)
{
    using namespace appleaudiotoolbox;
    struct Row
    {
        ATErrorSite mSite;
        std::int32_t mResult;
    };
    mReader.mFails = true;
    mReader.mAtEnd = true;
    for (const Row& row :
         {Row{kATError_None, 0}, Row{kATError_General, -1},
          Row{kATError_AudioConverterFillComplexBuffer, -1}, Row{kATError_AudioConverterNew, -4}})
    {
        mReader.mSite = row.mSite;
        EXPECT_EQ(Read(), row.mResult) << "site " << row.mSite;
        EXPECT_EQ(mLog, kBeforeTheRead) << "site " << row.mSite;
    }
}

}  // namespace
