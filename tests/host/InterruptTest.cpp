// Signals, each case in a process of its own: what it ends with, and what it leaves behind.
#include "host/Interrupt.h"

#include "host/ExitCode.h"
#include "host/Failure.h"
#include "host/OutputFile.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using host::OutputFile;

class InterruptTest : public testing::Test
{
protected:
    InterruptTest()
    {
        std::string name = (fs::temp_directory_path() / "interrupt-test-XXXXXX").string();
        mFolder = mkdtemp(name.data());
    }
    ~InterruptTest() override { fs::remove_all(mFolder); }

    std::string Path(const char* inName) const { return (mFolder / inName).string(); }

    fs::path mFolder;
};

// What a child process ends with that does the work as tarvo does: 0 when it comes to its end.
template <typename Work>
int ExitCodeOf(Work inWork)
{
    const pid_t child = fork();
    if (child == 0)
    {
        try
        {
            host::WatchInterrupts();
            inWork();
            _exit(0);
        }
        catch (const host::Interrupted& interrupted)
        {
            _exit(host::kExitSignalBase + interrupted.mSignal);
        }
        catch (const host::Failure& failure)
        {
            _exit(failure.mExitCode);
        }
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

constexpr int kStillWaiting = 99;

// One signal while this process waits; it gives up when that does not end the wait.
void InterruptMainThread(int inSignal)
{
    const pthread_t target = pthread_self();
    std::thread(
        [target, inSignal]
        {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        pthread_kill(target, inSignal);
        std::this_thread::sleep_for(std::chrono::seconds(10));
        _exit(kStillWaiting);
    }).detach();
}

TEST_F(InterruptTest, ASignalIsSeenAtTheNextQuestion)
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        EXPECT_EQ(ExitCodeOf(
                      [signal]
                      {
            host::CheckInterrupt();
            raise(signal);
            host::CheckInterrupt();
        }),
                  128 + signal);
}

TEST_F(InterruptTest, AHangUpThatIsIgnoredStaysSo)
{
    const auto old = std::signal(SIGHUP, SIG_IGN);
    EXPECT_EQ(ExitCodeOf(
                  []
                  {
        raise(SIGHUP);
        host::CheckInterrupt();
    }),
              0);
    std::signal(SIGHUP, old);
}

TEST_F(InterruptTest, AnInterruptCountsForWhatAShellRunsInTheBackground)
{
    const auto old = std::signal(SIGINT, SIG_IGN);
    EXPECT_EQ(ExitCodeOf(
                  []
                  {
        raise(SIGINT);
        host::CheckInterrupt();
    }),
              130);
    std::signal(SIGINT, old);
}

TEST_F(InterruptTest, ASignalEndsTheWritingAndTheTemporaryFile)
{
    EXPECT_EQ(ExitCodeOf(
                  [this]
                  {
        OutputFile file(Path("out"), false, "");
        file.Write("data", 4);
        raise(SIGINT);
        file.Write("data", 4);
    }),
              130);
    EXPECT_TRUE(fs::is_empty(mFolder));
}

TEST_F(InterruptTest, ASecondSignalEndsTheProcessAtOnceAndRemovesTheTemporaryFileToo)
{
    EXPECT_EQ(ExitCodeOf(
                  [this]
                  {
        OutputFile file(Path("out"), false, "");
        file.Write("data", 4);
        raise(SIGINT);
        raise(SIGTERM);
    }),
              128 + SIGTERM);
    EXPECT_TRUE(fs::is_empty(mFolder));
}

TEST_F(InterruptTest, AFirstSignalEndsTheProcessAtOnceWhereNobodyAsks)
{
    EXPECT_EQ(ExitCodeOf(
                  [this]
                  {
        OutputFile file(Path("out"), false, "");
        const host::InterruptsEndProcess guard;
        raise(SIGTERM);
    }),
              128 + SIGTERM);
    EXPECT_TRUE(fs::is_empty(mFolder));
    EXPECT_EQ(ExitCodeOf(
                  []
                  {
        {
            const host::InterruptsEndProcess guard;
        }
        raise(SIGTERM);
    }),
              0);
}

TEST_F(InterruptTest, ASecondSignalLeavesAFileThatIsDone)
{
    EXPECT_EQ(ExitCodeOf(
                  [this]
                  {
        OutputFile file(Path("out"), false, "");
        file.Commit();
        raise(SIGINT);
        raise(SIGINT);
    }),
              130);
    EXPECT_TRUE(fs::exists(Path("out")));
}

TEST_F(InterruptTest, ASignalEndsTheWaitForAPipesReader)
{
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(ExitCodeOf(
                  [this]
                  {
        InterruptMainThread(SIGTERM);
        OutputFile file(Path("pipe"), false, "");
    }),
              128 + SIGTERM);
}

TEST_F(InterruptTest, ASignalEndsTheWaitForRoomInAPipe)
{
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(ExitCodeOf(
                  [this]
                  {
        const std::string data(1 << 20, 'x');
        std::thread([this] { (void)open(Path("pipe").c_str(), O_RDONLY); }).detach();
        OutputFile file(Path("pipe"), false, "");
        InterruptMainThread(SIGTERM);
        file.Write(data.data(), data.size());
    }),
              128 + SIGTERM);
}

}  // namespace
