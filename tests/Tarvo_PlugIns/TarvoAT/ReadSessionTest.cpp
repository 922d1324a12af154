// A whole read session, selectors 5, 6, 7, 12, on a scripted platform.
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATInterface.h"

#include "tests/TarvoSDK/RecordingHost.h"
#include "tests/support/ScriptedPlatform.h"

#include <gtest/gtest.h>

namespace
{

using namespace testing_support;

struct ReadSessionTest : testing::Test
{
    ReadSessionTest()
    {
        mPlatform.HoldFile(kAudioFileWAVEType,
                           {8000, kAudioFormatLinearPCM, 12, 4, 1, 4, 2, 16, 0});
        mPlatform.Answer(Family::File, kAudioFilePropertyEstimatedDuration,
                         PropertyAnswer::Value(0.000625));
        mPlatform.DeliverAudio(
            {1, 2, 11, 12, 3, 4, 13, 14, 5, 6, 15, 16, 7, 8, 17, 18, 9, 10, 19, 20});
        EXPECT_EQ(Call(5, nullptr, &mOpen), 0);
        mRequest.mBuffers = {mLeft.data(), mRight.data()};
    }

    static std::int32_t Call(int inSelector, void* inHandle, void* inHostObject)
    {
        return tarvo::TarvoATInterface().EntryPoint(inSelector, inHandle, inHostObject);
    }

    std::int32_t Read(std::int64_t inStart, std::int64_t inCount)
    {
        mLog.clear();
        mRequest.mStart = inStart;
        mRequest.mCount = inCount;
        mRequest.mBufferSize = 2 * inCount;
        return Call(7, mOpen.mHandle, &mRequest);
    }

    CallLog mLog;
    ScriptedPlatform mPlatform;
    RecordingOpen mOpen{mLog};
    RecordingReadSamples mRequest{mLog};
    std::string mLeft = std::string(8, '\0');
    std::string mRight = std::string(8, '\0');
};

TEST_F(ReadSessionTest, DeliversTheChannelsUpToTheEndAndThenTheTotal)
{
    EXPECT_EQ(Read(0, 4), 0);
    EXPECT_EQ(mLog.back(), "SetSamplesRead 4");
    EXPECT_EQ(mLeft, std::string("\1\2\3\4\5\6\7\10", 8));
    EXPECT_EQ(mRight, std::string("\13\14\15\16\17\20\21\22", 8));

    EXPECT_EQ(Read(4, 4), 0);
    EXPECT_EQ(mLog[mLog.size() - 2], "SetSamplesRead 1");
    EXPECT_EQ(mLog.back(), "SetTotalSampleCount 5");
    EXPECT_EQ(mLeft.substr(0, 2), "\11\12");
    EXPECT_EQ(mRight.substr(0, 2), "\23\24");

    EXPECT_EQ(Read(5, 4), 0);
    EXPECT_EQ(mLog[mLog.size() - 2], "SetSamplesRead 0");
    EXPECT_EQ(mLog.back(), "SetTotalSampleCount 5");
    EXPECT_EQ(Call(12, mOpen.mHandle, nullptr), 0);
    EXPECT_EQ(mPlatform.OpenHandles(), 0);
}

TEST_F(ReadSessionTest, TheFormatCanBeAskedAtAnyTimeAndChangesNothing)
{
    RecordingFormat format(mLog);
    EXPECT_EQ(Read(0, 2), 0);
    mLog.clear();
    EXPECT_EQ(Call(6, mOpen.mHandle, &format), 0);
    const CallLog first = mLog;
    EXPECT_EQ(first[1], "SetChannelCount 2");
    EXPECT_EQ(first[2], "SetSampleRate 8000");
    EXPECT_EQ(first[3], "SetSampleType 20");
    EXPECT_EQ(first[4], "SetSampleCount 5");
    EXPECT_EQ(Read(2, 1), 0);
    EXPECT_EQ(mLeft.substr(0, 2), "\5\6");
    mLog.clear();
    EXPECT_EQ(Call(6, mOpen.mHandle, &format), 0);
    EXPECT_EQ(mLog, first);
    EXPECT_EQ(Call(12, mOpen.mHandle, nullptr), 0);
}

TEST_F(ReadSessionTest, AFailedReadLeavesTheSessionOpen)
{
    mPlatform.Fill({FillStep::Return(-50)});
    EXPECT_EQ(Read(0, 4), -1);
    EXPECT_EQ(mLog[1], "SetSamplesRead 0");
    EXPECT_EQ(mLog.back(), "GetSampleCount");
    EXPECT_EQ(mPlatform.OpenHandles(), 2);

    EXPECT_EQ(Read(0, 1), 0);
    EXPECT_EQ(mLog.back(), "SetSamplesRead 1");
    EXPECT_EQ(Call(12, mOpen.mHandle, nullptr), 0);
    EXPECT_EQ(mPlatform.OpenHandles(), 0);
}

TEST_F(ReadSessionTest, TwoSessionsDoNotMeet)
{
    RecordingOpen other(mLog);
    EXPECT_EQ(Call(5, nullptr, &other), 0);
    EXPECT_NE(other.mHandle, mOpen.mHandle);
    EXPECT_EQ(Call(12, mOpen.mHandle, nullptr), 0);
    RecordingFormat format(mLog);
    EXPECT_EQ(Call(6, other.mHandle, &format), 0);
    EXPECT_EQ(Call(12, other.mHandle, nullptr), 0);
    EXPECT_EQ(mPlatform.OpenHandles(), 0);
}

}  // namespace
