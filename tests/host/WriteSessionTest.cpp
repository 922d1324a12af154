#include "host/WriteSession.h"

#include "host/Failure.h"
#include "tests/host/FakeAudioFiles.h"

#include <gtest/gtest.h>

#include <optional>

namespace
{

using host::AudioShape;
using host::Failure;
using host::WriteSession;
using testing_support::FakeAudioEntry;
using testing_support::FakeAudioFiles;
using testing_support::sFakeAudioFiles;

class WriteSessionTest : public testing::Test
{
protected:
    WriteSessionTest() { sFakeAudioFiles = &mFiles; }
    ~WriteSessionTest() override
    {
        mSession.reset();
        EXPECT_EQ(mFiles.mOpenWriters, 0);
        sFakeAudioFiles = nullptr;
    }

    void Open() { mSession.emplace(mPlugIn, mTarget, mAudio, "Key:0:1;"); }
    void Write(std::int64_t inFrames)
    {
        const std::string plane(static_cast<std::size_t>(inFrames) * 2, 'x');
        const char* channels[] = {plane.data(), plane.data()};
        mSession->Write(channels, inFrames);
    }
    // What a piece of work fails with; none when it does not.
    template <typename Work>
    static std::optional<Failure> FailureOf(Work inWork)
    {
        try
        {
            inWork();
        }
        catch (const Failure& failure)
        {
            return failure;
        }
        return {};
    }

    FakeAudioFiles mFiles;
    host::PlugIn mPlugIn{&FakeAudioEntry};
    host::WriteTarget mTarget{"folder/.temporary", "folder/out.wav"};
    AudioShape mAudio{48000, 20, 1234, {100, 101}};
    std::optional<WriteSession> mSession;
};

TEST_F(WriteSessionTest, TellsThePlugInWhatComes)
{
    Open();
    mSession->Finish();
    EXPECT_EQ(mFiles.mWrittenName, "folder/.temporary");
    EXPECT_EQ(mFiles.mWrittenSettings, u"Key:0:1;");
    EXPECT_EQ(mFiles.mWrittenToldFrames, 1234);
    const testing_support::FakeAudio& audio = mFiles.mFiles["folder/.temporary"];
    EXPECT_EQ(audio.mRate, 48000);
    EXPECT_EQ(audio.mType, 20);
    EXPECT_EQ(audio.mLabels, (std::vector<std::uint32_t>{100, 101}));
    EXPECT_EQ(mSession->Description(), "What was written");
}

TEST_F(WriteSessionTest, CountsTheFramesOfItsBlocks)
{
    Open();
    Write(100);
    Write(7);
    EXPECT_EQ(mSession->FramesWritten(), 107);
    mSession->Finish();
    EXPECT_EQ(mFiles.mBlockStarts, (std::vector<std::int64_t>{0, 100}));
    EXPECT_EQ(mFiles.mBlockCounts, (std::vector<std::int64_t>{100, 7}));
}

TEST_F(WriteSessionTest, ClosesWithoutAnyBlock)
{
    Open();
    mSession->Finish();
    mSession.reset();
    EXPECT_EQ(mFiles.mCloses, 1);
}

TEST_F(WriteSessionTest, ClosesWhenItIsGivenUp)
{
    Open();
    Write(5);
    mSession.reset();
    EXPECT_EQ(mFiles.mCloses, 1);
}

TEST_F(WriteSessionTest, NamesTheUsersFileInAFailureToCreateIt)
{
    mFiles.mStartResult = kTarvoResultFailed;
    mFiles.mErrorText = u"Error creating file folder/.temporary.  Again: folder/.temporary";
    const auto failure = FailureOf([this] { Open(); });
    ASSERT_TRUE(failure);
    EXPECT_STREQ(failure->what(), "Error creating file folder/out.wav.  Again: folder/out.wav");
    EXPECT_EQ(failure->mExitCode, host::kExitOutput);
    EXPECT_EQ(failure->mResult, -1);
    EXPECT_EQ(mFiles.mCloses, 0);
}

TEST_F(WriteSessionTest, FailsWithWordsOfItsOwnWhereThePlugInHasNone)
{
    mFiles.mStartResult = kTarvoResultUnsupportedFormat;
    const auto failure = FailureOf([this] { Open(); });
    ASSERT_TRUE(failure);
    EXPECT_STREQ(failure->what(),
                 "folder/out.wav: The plug-in cannot create the file. (result -8)");
    EXPECT_EQ(failure->mExitCode, host::kExitSettings);
}

TEST_F(WriteSessionTest, TakesAMissingHandleForAFailure)
{
    mFiles.mGivesHandle = false;
    mFiles.mErrorText = u"quiet";
    const auto failure = FailureOf([this] { Open(); });
    ASSERT_TRUE(failure);
    EXPECT_STREQ(failure->what(), "quiet");
    EXPECT_EQ(failure->mResult, 0);
}

TEST_F(WriteSessionTest, ClosesAfterABlockThatFails)
{
    mFiles.mFailingBlock = 1;
    mFiles.mErrorText = u"Error writing samples";
    Open();
    Write(10);
    const auto failure = FailureOf([this] { Write(10); });
    ASSERT_TRUE(failure);
    EXPECT_STREQ(failure->what(), "Error writing samples");
    EXPECT_EQ(failure->mExitCode, host::kExitOutput);
    EXPECT_EQ(mSession->FramesWritten(), 10);
    mSession.reset();
    EXPECT_EQ(mFiles.mCloses, 1);
}

TEST_F(WriteSessionTest, ClosesASecondTimeAfterACloseThatFails)
{
    mFiles.mFailingCloses = 1;
    mFiles.mErrorText = u"Error closing the file.";
    Open();
    const auto failure = FailureOf([this] { mSession->Finish(); });
    ASSERT_TRUE(failure);
    EXPECT_STREQ(failure->what(), "Error closing the file.");
    EXPECT_EQ(mFiles.mCloses, 2);
    mSession.reset();
    EXPECT_EQ(mFiles.mCloses, 2);
}

TEST_F(WriteSessionTest, FreesAGivenUpFileWhoseCloseFails)
{
    mFiles.mFailingCloses = 1;
    Open();
    mSession.reset();
    EXPECT_EQ(mFiles.mCloses, 2);
}

TEST_F(WriteSessionTest, RefusesANameThatCannotCrossTheInterface)
{
    mTarget = {
        "fol\xFF"
        "der/.temporary",
        "out.wav"};
    const auto failure = FailureOf([this] { Open(); });
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->mExitCode, host::kExitOutput);
    EXPECT_TRUE(mFiles.mFiles.empty());
}

}  // namespace
