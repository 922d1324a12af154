#include "host/ReadSession.h"

#include "host/Failure.h"
#include "tests/host/FakePlugIn.h"

#include <gtest/gtest.h>

namespace
{

using host::ReadSession;
using testing_support::FakeEntry;
using testing_support::FakeFile;
using testing_support::sFakeFile;

class ReadSessionTest : public testing::Test
{
protected:
    ReadSessionTest() { sFakeFile = &mFile; }
    ~ReadSessionTest() override { sFakeFile = nullptr; }

    host::Failure OpeningFailure()
    {
        try
        {
            const ReadSession session(mPlugIn, "name");
        }
        catch (const host::Failure& failure)
        {
            return failure;
        }
        ADD_FAILURE() << "opening succeeded";
        return host::Failure(host::kExitDone, 0, "");
    }

    FakeFile mFile;
    host::PlugIn mPlugIn{&FakeEntry};
};

TEST_F(ReadSessionTest, TellsWhatThePlugInToldAndClosesTheHandle)
{
    mFile.mToldFrames = 1000;
    {
        const ReadSession session(mPlugIn, "name");
        EXPECT_EQ(session.Info().mDescription, "Description");
        EXPECT_EQ(session.Info().mBitrate, 1411200u);
        EXPECT_EQ(session.Info().mSampleRate, 44100);
        EXPECT_EQ(session.Info().mSampleType, 20);
        EXPECT_EQ(session.Info().BytesPerSample(), 2u);
        EXPECT_EQ(session.Info().mFrameCount, 1000);
        EXPECT_EQ(session.Info().mLabels, (std::vector<std::uint32_t>{100, 101}));
        EXPECT_EQ(session.Info().mSettings, "FramesPerPacket:0:1024;");
        EXPECT_DOUBLE_EQ(session.Info().Seconds(), 1000.0 / 44100.0);
        EXPECT_EQ(mFile.mOpen, 1);
    }
    EXPECT_EQ(mFile.mOpen, 0);
}

TEST_F(ReadSessionTest, AFailedOpenCarriesThePlugInsTextAndResult)
{
    mFile.mOpenResult = kTarvoResultFailed;
    mFile.mErrorText = u"No \u00E4.\nError Code: 'typ?'";
    const host::Failure failure = OpeningFailure();
    EXPECT_STREQ(failure.what(), "No \xC3\xA4.\nError Code: 'typ?'");
    EXPECT_EQ(failure.mResult, -1);
    EXPECT_EQ(failure.mExitCode, host::kExitInput);
    EXPECT_EQ(mFile.mOpen, 0);
}

TEST_F(ReadSessionTest, SuccessWithoutAHandleIsAFailure)
{
    mFile.mGivesHandle = false;
    mFile.mErrorText = u"General";
    const host::Failure failure = OpeningFailure();
    EXPECT_STREQ(failure.what(), "General");
    EXPECT_EQ(failure.mResult, 0);
}

TEST_F(ReadSessionTest, AFailedFormatClosesTheHandle)
{
    mFile.mFormatResult = kTarvoResultFailed;
    EXPECT_EQ(OpeningFailure().mResult, -1);
    EXPECT_EQ(mFile.mOpen, 0);
}

TEST_F(ReadSessionTest, AFailedReadThrowsWithTheResult)
{
    mFile.mTrueFrames = 100;
    mFile.mFailingRead = 0;
    ReadSession session(mPlugIn, "name");
    std::vector<char> left(200), right(200);
    char* planes[] = {left.data(), right.data()};
    try
    {
        session.Read(planes, 100);
        FAIL() << "the read succeeded";
    }
    catch (const host::Failure& failure)
    {
        EXPECT_EQ(failure.mResult, -1);
        EXPECT_EQ(failure.mExitCode, host::kExitInput);
    }
}

}  // namespace
