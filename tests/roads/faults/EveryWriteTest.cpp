// A short export whose every call to the system fails in its turn: what the user is told, and that
// nothing is left.
#include "host/OutputFile.h"
#include "tests/roads/faults/FaultsFixture.h"

#include <cerrno>
#include <set>

namespace
{

using namespace faults;
using faulty_system::Call;
using faulty_system::Plan;

struct ErrorRow
{
    int mError;
    const char* mStatus;  // in the plug-in's text
    const char* mText;    // in the host's
};

constexpr ErrorRow kErrors[] = {
    {ENOSPC, "-34", "No space left on device"},
    {EDQUOT, "-34", "Disk quota exceeded"},
    {EIO, "-36", "Input/output error"},
};

class EveryWrite : public FaultsFixture
{
protected:
    void Choose(const TypeRow& inRow)
    {
        mOptions.mWish.mType = inRow.mType;
        mOptions.mWish.mFormat = inRow.mFormat;
        MakeSource(mSource, inRow.mFrames, 2, true);
    }

    // The texts that there are for a call that failed; the plug-in's and then the host's.
    std::set<std::string> TextsFor(Call inCall, const ErrorRow& inError, const TypeRow& inRow) const
    {
        const std::string code = std::string("\nError Code: ") + inError.mStatus;
        const std::string closing = "Error closing the file." + code;
        switch (inCall)
        {
            case Call::kWrite:
                return {"Error writing samples to the file" + code, closing};
            case Call::kTruncate:
                return {"Apple AudioToolbox cannot create the specified file." + code, closing};
            case Call::kClose:
                return {closing};
            default:
                return {Out(inRow.mName) + ": cannot write: " + inError.mText};
        }
    }

    void ExpectRefusal(const TypeRow& inRow, const ErrorRow& inError,
                       const std::optional<host::Failure>& inFailure)
    {
        ASSERT_TRUE(inFailure) << "a silent success";
        EXPECT_EQ(inFailure->mExitCode, host::kExitOutput);
        const bool isPlugIns = mTold.mHit != Call::kSync && mTold.mHit != Call::kRename;
        EXPECT_EQ(inFailure->mResult, isPlugIns ? -1 : 0);
        EXPECT_EQ(TextsFor(mTold.mHit, inError, inRow).count(inFailure->what()), 1u)
            << inFailure->what();
        EXPECT_EQ(FilesLeft(), 0);
    }

    // Fails the calls one after the other until there is no further one; answers their number.
    int FailEach(const TypeRow& inRow, const ErrorRow& inError, bool inLasts)
    {
        for (int at = 1; at < 1000; ++at)
        {
            SCOPED_TRACE(std::string(inRow.mName) + ", call " + std::to_string(at) + ", error " +
                         std::to_string(inError.mError));
            Plan plan;
            plan.mFolder = mOut.c_str();
            plan.mAt = at;
            plan.mError = inError.mError;
            plan.mLasts = inLasts;
            const std::optional<host::Failure> failure = Convert(inRow.mName, plan);
            mHits.insert(mTold.mHit);
            if (mTold.mHit == Call::kNone)
            {
                EXPECT_FALSE(failure) << failure->what();
                EXPECT_EQ(FilesLeft(), 1);
                fs::remove(Out(inRow.mName));
                return at - 1;
            }
            ExpectRefusal(inRow, inError, failure);
            if (HasFailure())
                break;
        }
        return 0;
    }

    std::set<Call> mHits;
};

TEST_F(EveryWrite, ThatFailsOnceIsToldAndLeavesNothing)
{
    (void)Bundle();
    for (const TypeRow& row : kTypes)
    {
        Choose(row);
        // It is created, begun, written to, completed, closed, synced and renamed at the least.
        EXPECT_GE(FailEach(row, kErrors[0], false), 7) << row.mName;
        const std::set<Call> all = {Call::kNone, Call::kWrite,  Call::kTruncate,
                                    Call::kSync, Call::kRename, Call::kClose};
        EXPECT_EQ(mHits, all) << row.mName;
    }
}

TEST_F(EveryWrite, ThatKeepsFailingIsToldAndLeavesNothing)
{
    for (const TypeRow& row : kTypes)
    {
        Choose(row);
        EXPECT_GE(FailEach(row, kErrors[1], true), 7) << row.mName;
    }
}

TEST_F(EveryWrite, ThatTheDiskCannotDoIsToldAsSuch)
{
    for (const char* name : {"wave.wav", "a.flac", "aac.m4a"})
        for (const TypeRow& row : kTypes)
            if (row.mName == std::string(name))
            {
                Choose(row);
                EXPECT_GE(FailEach(row, kErrors[2], false), 7) << row.mName;
            }
}

TEST_F(EveryWrite, LeavesNoDescriptorOpen)
{
    (void)Bundle();
    Choose(kTypes[0]);
    ASSERT_FALSE(Convert("first.wav"));
    fs::remove(Out("first.wav"));
    const std::ptrdiff_t before = OpenDescriptors();
    EXPECT_GE(FailEach(kTypes[0], kErrors[0], false), 7);
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(EveryWrite, LeavesAnOldTargetAsItWas)
{
    mOptions.mMayReplace = true;
    Choose(kTypes[0]);
    std::ofstream(Out("wave.wav")) << "old";
    Plan plan;
    plan.mFolder = mOut.c_str();
    plan.mError = ENOSPC;
    for (plan.mAt = 1; Convert("wave.wav", plan); ++plan.mAt)
    {
        ASSERT_EQ(Bytes(Out("wave.wav")), "old") << plan.mAt;
        ASSERT_EQ(FilesLeft(), 1) << plan.mAt;
    }
    EXPECT_GE(plan.mAt, 8);
    EXPECT_EQ(fs::file_size(Out("wave.wav")), kManyFrames * 4 + 44);
}

TEST_F(EveryWrite, ThatTakesLessThanItWasGivenIsGoneOnWith)
{
    for (const TypeRow& row : kTypes)
    {
        Choose(row);
        ASSERT_FALSE(Convert(row.mName)) << row.mName;
        const std::string whole = Bytes(Out(row.mName));
        fs::remove(Out(row.mName));
        Plan plan;
        plan.mFolder = mOut.c_str();
        plan.mMostBytes = 997;
        ASSERT_FALSE(Convert(row.mName, plan)) << row.mName;
        EXPECT_GE(mTold.mCount, static_cast<int>(whole.size() / 997)) << row.mName;
        EXPECT_TRUE(Bytes(Out(row.mName)) == whole) << row.mName;
        fs::remove(Out(row.mName));
    }
}

TEST_F(EveryWrite, ThatIsInterruptedIsDoneAgain)
{
    for (const TypeRow& row : kTypes)
    {
        Choose(row);
        ASSERT_FALSE(Convert(row.mName)) << row.mName;
        const std::string whole = Bytes(Out(row.mName));
        fs::remove(Out(row.mName));
        Plan plan;
        plan.mFolder = mOut.c_str();
        plan.mInterrupts = true;
        plan.mMostBytes = 40000;
        const auto failure = Convert(row.mName, plan);
        ASSERT_FALSE(failure) << row.mName << ": " << failure->what();
        EXPECT_TRUE(Bytes(Out(row.mName)) == whole) << row.mName;
        fs::remove(Out(row.mName));
    }
}

TEST_F(EveryWrite, OfDecodedSamplesIsDoneAgainToo)
{
    Plan plan;
    plan.mFolder = mOut.c_str();
    plan.mInterrupts = true;
    plan.mMostBytes = 3;
    faulty_system::Follow(plan);
    host::OutputFile file(Out("samples.raw"), false, mSource);
    file.Write("0123456789", 10);
    file.Commit();
    EXPECT_EQ(faulty_system::Told().mCount, 8);  // 4 writes, 2 syncs, the close and the new name
    EXPECT_EQ(Bytes(Out("samples.raw")), "0123456789");
}

}  // namespace
