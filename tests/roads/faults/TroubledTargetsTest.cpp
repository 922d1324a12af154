// Targets that cannot be, and those that come to grief while they are written.
#include "tests/roads/faults/FaultsFixture.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using namespace faults;
using faulty_system::Call;
using faulty_system::Plan;

constexpr int kCannotTry = 77;

// What a process of its own ends with that does the work; 0 when the work holds.
int CodeOfChild(const std::function<int()>& inWork)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(inWork());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// A page of room, for this process alone. Whoever has no privileges may mount among names of his
// own, where he has to tell who he is.
bool MountSmallDisk(const std::string& inFolder)
{
    const std::string user = std::to_string(geteuid());
    const std::string group = std::to_string(getegid());
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
        return false;
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << user << " " << user << " 1";
    std::ofstream("/proc/self/gid_map") << group << " " << group << " 1";
    return mount("tmpfs", inFolder.c_str(), "tmpfs", 0, "size=4k") == 0;
}

class TroubledTarget : public FaultsFixture
{
protected:
    std::string CannotWrite(const std::string& inName, const char* inReason) const
    {
        return Out(inName) + ": cannot write: " + inReason;
    }

    // Whether it is refused as a full disk and nothing is left; tells what is not so.
    bool IsRefusedForRoom(const TypeRow& inRow)
    {
        mOptions.mWish.mType = inRow.mType;
        mOptions.mWish.mFormat = inRow.mFormat;
        const auto failure = Convert(inRow.mName);
        const std::string text = failure ? failure->what() : "a success";
        const bool isTold = text.find("\nError Code: -34") != std::string::npos;
        if (isTold && FilesLeft() == 0)
            return true;
        std::fprintf(stderr, "%s: %s, files left: %td\n", inRow.mName, text.c_str(), FilesLeft());
        return false;
    }
};

TEST_F(TroubledTarget, WhoseFolderVanishesIsToldAtTheEndAtTheLatest)
{
    const auto vanish = [](int, void* inFolder)
    { fs::remove_all(*static_cast<const std::string*>(inFolder)); };
    for (int at = 1;; ++at)
    {
        fs::create_directories(mOut);
        Plan plan;
        plan.mFolder = mOut.c_str();
        plan.mAt = at;
        plan.mAction = vanish;
        plan.mData = &mOut;
        const auto failure = Convert("a.wav", plan);
        if (mTold.mHit == Call::kNone)
        {
            EXPECT_GE(at, 8);
            return;
        }
        ASSERT_TRUE(failure) << at;
        EXPECT_EQ(failure->mExitCode, host::kExitOutput);
        EXPECT_EQ(failure->what(), CannotWrite("a.wav", "No such file or directory")) << at;
        EXPECT_FALSE(fs::exists(mOut)) << at;
    }
}

TEST_F(TroubledTarget, WhoseDescriptorSomebodyClosesIsTold)
{
    MakeSource(mSource, kFewFrames, 2, true);
    const auto closes = [](int inDescriptor, void*) { (void)syscall(SYS_close, inDescriptor); };
    for (const char* name : {"a.wav", "a.m4a", "a.flac"})
        for (const Call call : {Call::kWrite, Call::kClose})
        {
            int at = 1;
            for (;; ++at)
            {
                Plan plan;
                plan.mFolder = mOut.c_str();
                plan.mOnly = call;
                plan.mAt = at;
                plan.mAction = closes;
                const auto failure = Convert(name, plan);
                if (mTold.mHit == Call::kNone)
                    break;
                ASSERT_TRUE(failure) << name << at;
                EXPECT_EQ(failure->mExitCode, host::kExitOutput);
                EXPECT_NE(std::string(failure->what()).find("\nError Code: -36"), std::string::npos)
                    << failure->what();
                EXPECT_EQ(FilesLeft(), 0) << name << at;
            }
            EXPECT_GE(at, 2) << name;
            fs::remove(Out(name));
        }
}

TEST_F(TroubledTarget, InAFolderThatMayOnlyBeReadIsRefused)
{
    constexpr uid_t kNobody = 65534;
    fs::permissions(mFolder, fs::perms{0755});
    fs::permissions(mSource, fs::perms{0644});
    fs::permissions(mOut, fs::perms{0555});
    (void)Bundle();
    // Root may do everything, so the work is done as somebody else.
    const int code = CodeOfChild(
        [this]
        {
        if (geteuid() == 0 && seteuid(kNobody) != 0)
            return kCannotTry;
        const auto failure = Convert("a.wav");
        return failure && failure->mExitCode == host::kExitOutput &&
                       failure->what() == CannotWrite("a.wav", "Permission denied")
                   ? 0
                   : 1;
    });
    if (code == kCannotTry)
        GTEST_SKIP() << "nobody else to be";
    EXPECT_EQ(code, 0);
    EXPECT_EQ(FilesLeft(), 0);
}

TEST_F(TroubledTarget, ThatIsNoFileIsRefusedAndStaysWhatItIs)
{
    ASSERT_EQ(mkfifo(Out("pipe.wav").c_str(), 0600), 0);
    fs::create_directory(Out("folder.wav"));
    fs::create_symlink(Out("nowhere"), Out("dangling.wav"));
    fs::create_symlink(Out("loop.wav"), Out("loop.wav"));
    fs::create_symlink("/dev/full", Out("full.wav"));
    const struct
    {
        const char* mName;
        const char* mReason;
    } rows[] = {{"pipe.wav", "is no regular file"},
                {"full.wav", "is no regular file"},
                {"folder.wav", "cannot write: Is a directory"},
                {"dangling.wav", "cannot write: No such file or directory"},
                {"loop.wav", "cannot write: Too many levels of symbolic links"}};
    for (const bool mayReplace : {false, true})
        for (const auto& row : rows)
        {
            mOptions.mMayReplace = mayReplace;
            const auto failure = Convert(row.mName);
            ASSERT_TRUE(failure) << row.mName;
            EXPECT_EQ(failure->mExitCode, host::kExitOutput) << row.mName;
            EXPECT_EQ(failure->what(), Out(row.mName) + ": " + row.mReason);
        }
    EXPECT_EQ(FilesLeft(), 5);
    EXPECT_TRUE(fs::is_fifo(Out("pipe.wav")));
    EXPECT_TRUE(fs::is_directory(Out("folder.wav")));
    EXPECT_TRUE(fs::is_symlink(Out("dangling.wav")));
    EXPECT_TRUE(fs::is_symlink(Out("loop.wav")));
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

// The host of this process leaves the signal of the limit alone, which would end it.
TEST_F(TroubledTarget, BeyondTheSizeLimitOfAProcessIsToldForEveryType)
{
    (void)Bundle();
    const int code = CodeOfChild(
        [this]
        {
        constexpr rlim_t kMost = 900;
        const rlimit limit = {kMost, kMost};
        MakeSource(mSource, kFewFrames, 2, true);
        (void)std::signal(SIGXFSZ, SIG_DFL);
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return kCannotTry;
        int wrong = 0;
        for (const TypeRow& row : kTypes)
            wrong += IsRefusedForRoom(row) ? 0 : 1;
        return wrong;
    });
    EXPECT_EQ(code, 0);
}

TEST_F(TroubledTarget, OnADiskThatIsTooSmallIsToldForEveryType)
{
    (void)Bundle();
    const int code = CodeOfChild(
        [this]
        {
        if (!MountSmallDisk(mOut))
            return kCannotTry;
        MakeSource(mSource, 2 * kFewFrames, 2, true);
        int wrong = 0;
        for (const TypeRow& row : kTypes)
            wrong += IsRefusedForRoom(row) ? 0 : 1;
        return wrong;
    });
    if (code == kCannotTry)
        GTEST_SKIP() << "no file system of one's own can be mounted here";
    EXPECT_EQ(code, 0);
    EXPECT_EQ(FilesLeft(), 0);
}

}  // namespace
