// tarvo convert as a program, on a system that fails, ended by signals, and before a terminal.
#include "tests/roads/faults/FaultsFixture.h"
#include "tests/roads/tarvo/Program.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <poll.h>
#include <pty.h>
#include <regex>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace
{

using namespace faults;
using faulty_system::Call;
using faulty_system::Plan;
using testing_support::ProgramRun;
using testing_support::RunTarvo;

// Environment of the programs that this one starts.
class Variable
{
public:
    Variable(const char* inName, const std::string& inValue) : mName(inName)
    {
        if (const char* old = getenv(inName))
            mOld = old;
        setenv(inName, inValue.c_str(), 1);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable()
    {
        if (mOld)
            setenv(mName, mOld->c_str(), 1);
        else
            unsetenv(mName);
    }

private:
    const char* const mName;
    std::optional<std::string> mOld;
};

std::string TextOf(const Plan& inPlan)
{
    return std::to_string(inPlan.mAt) + " " + std::to_string(inPlan.mError) + " " +
           std::to_string(inPlan.mLasts) + " " + std::to_string(static_cast<int>(inPlan.mOnly)) +
           " " + std::to_string(inPlan.mMostBytes) + " " + std::to_string(inPlan.mInterrupts) +
           " " + std::to_string(inPlan.mDamages) + " " + inPlan.mFolder;
}

class FaultyProgram : public FaultsFixture
{
protected:
    ProgramRun ConvertWith(Plan inPlan, const std::string& inName,
                           const std::vector<std::string>& inOptions = {}) const
    {
        inPlan.mFolder = mOut.c_str();
        const Variable plan(faulty_system::kVariable, TextOf(inPlan));
        const Variable preload("LD_PRELOAD", TEST_FAULTY_SYSTEM);
        // The library stands in front of the sanitizer's, which does not mind.
        const Variable sanitizer("ASAN_OPTIONS", "verify_asan_link_order=0");
        std::vector<std::string> arguments = {"convert", mSource, Out(inName)};
        arguments.insert(arguments.end(), inOptions.begin(), inOptions.end());
        return RunTarvo(arguments);
    }
};

TEST_F(FaultyProgram, TellsEachKindOfFailureAndLeavesNothing)
{
    const std::string name = Out("a.wav");
    const struct
    {
        Call mCall;
        int mError;
        int mResult;
        std::string mText;
    } rows[] = {
        {Call::kWrite, ENOSPC, -1, "Error writing samples to the file\nError Code: -34"},
        {Call::kTruncate, EIO, -1,
         "Apple AudioToolbox cannot create the specified file.\nError Code: -36"},
        {Call::kClose, EDQUOT, -1, "Error closing the file.\nError Code: -34"},
        {Call::kSync, EIO, 0, name + ": cannot write: Input/output error"},
        {Call::kRename, EDQUOT, 0, name + ": cannot write: Disk quota exceeded"},
    };
    for (const auto& row : rows)
    {
        Plan plan;
        plan.mOnly = row.mCall;
        plan.mAt = 1;
        plan.mError = row.mError;
        const ProgramRun run = ConvertWith(plan, "a.wav", {"--json"});
        ASSERT_EQ(run.mExitCode, 4) << row.mText << run.mErrors;
        const auto object = nlohmann::json::parse(run.mOutput);
        EXPECT_EQ(object["error"]["text"], row.mText);
        EXPECT_EQ(object["error"]["result"], row.mResult) << row.mText;
        EXPECT_NE(run.mErrors.find(row.mText), std::string::npos) << run.mErrors;
        EXPECT_EQ(FilesLeft(), 0) << row.mText;
    }
}

TEST_F(FaultyProgram, GoesOnAfterShortAndInterruptedWrites)
{
    Plan plan;
    plan.mMostBytes = 5000;
    plan.mInterrupts = true;
    const ProgramRun run = ConvertWith(plan, "a.wav", {"--verify"});
    EXPECT_EQ(run.mExitCode, 0) << run.mErrors;
    EXPECT_NE(run.mOutput.find(", verified"), std::string::npos);
    EXPECT_TRUE(Bytes(Out("a.wav")) == Bytes(mSource));
}

TEST_F(FaultyProgram, FindsADamagedCopyOnlyWhenItVerifiesAndKeepsNothing)
{
    Plan plan;
    plan.mOnly = Call::kWrite;
    plan.mAt = 2;  // behind the header
    plan.mDamages = true;
    EXPECT_EQ(ConvertWith(plan, "damaged.wav").mExitCode, 0);
    EXPECT_FALSE(Bytes(Out("damaged.wav")) == Bytes(mSource));
    fs::remove(Out("damaged.wav"));

    const ProgramRun run = ConvertWith(plan, "a.wav", {"--verify"});
    EXPECT_EQ(run.mExitCode, 1);
    const std::string wanted =
        Out("a.wav") + ": does not hold what was handed over: 70000 frames for 70000, ";
    EXPECT_NE(run.mErrors.find(wanted), std::string::npos) << run.mErrors;
    EXPECT_EQ(run.mOutput, "");
    EXPECT_EQ(FilesLeft(), 0);

    std::ofstream(Out("old.wav")) << "old";
    EXPECT_EQ(ConvertWith(plan, "old.wav", {"--verify", "--force"}).mExitCode, 1);
    EXPECT_EQ(Bytes(Out("old.wav")), "old");
    EXPECT_EQ(FilesLeft(), 1);
}

// A program that is still running. ------------------------------------------------------------

class RunningProgram : public FaultsFixture
{
protected:
    RunningProgram()
    {
        // Ten minutes of silence, which take long to resample.
        for (const char* name : {"long.wav", "other.wav", "third.wav"})
            MakeSource((mFolder / name).string(), 44100 * 600, 2, false);
    }

    std::string Long(const char* inName = "long.wav") const { return (mFolder / inName).string(); }

    std::vector<std::string> ToFolder(std::vector<std::string> inOptions) const
    {
        inOptions.insert(inOptions.begin(), "convert");
        inOptions.insert(inOptions.end(),
                         {"--rate", "48000", "--type", "wav", "--out-dir", mOut, "--quiet"});
        return inOptions;
    }

    // In a group of processes of its own. inErrors: where standard error goes.
    static pid_t Start(std::vector<std::string> inArguments, int inErrors)
    {
        inArguments.insert(inArguments.begin(), TEST_TARVO);
        const pid_t child = fork();
        if (child != 0)
            return child;
        setpgid(0, 0);
        std::vector<char*> arguments;
        for (std::string& argument : inArguments)
            arguments.push_back(argument.data());
        arguments.push_back(nullptr);
        setenv("LSAN_OPTIONS", "print_suppressions=0", 1);
        dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
        dup2(inErrors, STDERR_FILENO);
        execv(TEST_TARVO, arguments.data());
        _exit(127);
    }

    static int Wait(pid_t inChild)
    {
        int status = 0;
        waitpid(inChild, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

    static bool WaitUntil(const std::function<bool()>& inHolds)
    {
        for (int tries = 0; tries < 4000 && !inHolds(); ++tries)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        return inHolds();
    }

    std::size_t BytesWritten() const
    {
        std::size_t bytes = 0;
        for (const auto& entry : fs::directory_iterator(mOut))
            bytes += fs::file_size(entry);
        return bytes;
    }
};

TEST_F(RunningProgram, EndsWithItsJobsByTheSignalThatATerminalSendsThemAll)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> errors(std::tmpfile(), &std::fclose);
    const pid_t child =
        Start(ToFolder({Long(), Long("other.wav"), Long("third.wav"), "--jobs", "2"}),
              fileno(errors.get()));
    EXPECT_TRUE(WaitUntil([this] { return FilesLeft() == 2 && BytesWritten() > 1000000; }));
    kill(-child, SIGINT);
    EXPECT_EQ(Wait(child), 128 + SIGINT);
    EXPECT_EQ(FilesLeft(), 0);
    EXPECT_EQ(lseek(fileno(errors.get()), 0, SEEK_END), 0) << "nothing is to be told";
}

TEST_F(RunningProgram, ThatIsKilledTakesItsJobsAlong)
{
    const pid_t child = Start(ToFolder({Long(), Long("other.wav"), "--jobs", "2"}),
                              open("/dev/null", O_WRONLY | O_CLOEXEC));
    EXPECT_TRUE(WaitUntil([this] { return FilesLeft() == 2 && BytesWritten() > 1000000; }));
    kill(child, SIGKILL);
    EXPECT_EQ(Wait(child), -SIGKILL);
    EXPECT_TRUE(WaitUntil([this] { return FilesLeft() == 0; })) << "its jobs go on";
}

TEST_F(RunningProgram, IsEndedWhileItVerifiesAndLeavesNothing)
{
    // Copying is over quickly; its end shows by the size.
    MakeSource(Long(), 44100 * 240, 2, false);
    const pid_t child = Start({"convert", Long(), Out("a.wav"), "--verify", "--quiet"},
                              open("/dev/null", O_WRONLY | O_CLOEXEC));
    const std::size_t whole = fs::file_size(Long());
    EXPECT_TRUE(WaitUntil([&] { return BytesWritten() >= whole; }));
    kill(child, SIGTERM);
    EXPECT_EQ(Wait(child), 128 + SIGTERM);
    EXPECT_EQ(FilesLeft(), 0);
}

TEST_F(RunningProgram, ShowsSpeedAndTimeLeftOnATerminalAndWipesThem)
{
    int master = -1;
    int terminal = -1;
    ASSERT_EQ(openpty(&master, &terminal, nullptr, nullptr, nullptr), 0);
    fcntl(master, F_SETFD, FD_CLOEXEC);
    const pid_t child =
        Start({"convert", Long(), Out("a.wav"), "--rate", "48000", "--type", "WAVE"}, terminal);
    close(terminal);
    // The line as it is drawn: wiped first, never ended.
    const std::regex line("\r\x1B\\[K" + Out("a.wav") + "  \\d+ %  \\d+x  \\d+:[0-5]\\d left");
    std::string shown;
    bool isShown = false;
    char part[4096];
    for (ssize_t count = 0; (count = read(master, part, sizeof(part))) > 0;)
    {
        shown.append(part, static_cast<std::size_t>(count));
        if (!isShown && std::regex_search(shown, line))
        {
            isShown = true;
            kill(child, SIGINT);
        }
    }
    close(master);
    EXPECT_EQ(Wait(child), 128 + SIGINT);
    EXPECT_TRUE(isShown) << shown;
    EXPECT_EQ(shown.find('\n'), std::string::npos) << shown;
    EXPECT_EQ(shown.substr(shown.size() - 4), "\r\x1B[K");
    EXPECT_EQ(FilesLeft(), 0);
}

TEST_F(RunningProgram, ShowsNothingInAPipe)
{
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const pid_t child =
        Start({"convert", Long(), Out("a.wav"), "--rate", "48000", "--type", "WAVE"}, ends[1]);
    close(ends[1]);
    EXPECT_TRUE(WaitUntil([this] { return BytesWritten() > 0; }));
    // On a terminal a line would be there by now.
    pollfd wait = {ends[0], POLLIN, 0};
    EXPECT_EQ(poll(&wait, 1, 600), 0);
    kill(child, SIGINT);
    char byte = 0;
    EXPECT_EQ(read(ends[0], &byte, 1), 0);
    close(ends[0]);
    EXPECT_EQ(Wait(child), 128 + SIGINT);
}

// Memory --------------------------------------------------------------------------------------

class ProgramMemory : public FaultsFixture
{
protected:
    // The most memory that a process has had so far, in KiB; 0 when it has ended.
    static long PeakSoFar(pid_t inProcess)
    {
        std::ifstream status("/proc/" + std::to_string(inProcess) + "/status");
        for (std::string word; status >> word;)
            if (long peak = 0; word == "VmHWM:" && status >> peak)
                return peak;
        return 0;
    }

    // KiB of memory at most, of a conversion of mono at 8 kHz. What the system tells of an ended
    // process has that of its parent in it, so the process is asked as long as it runs.
    long Peak(std::uint32_t inSeconds, const std::string& inName)
    {
        constexpr std::uint32_t kRate = 8000;
        MakeSource(mSource, inSeconds * kRate, 1, false, kRate);
        const pid_t child = fork();
        if (child == 0)
        {
            // What was freed is not to be kept for inspection.
            setenv("ASAN_OPTIONS", "quarantine_size_mb=1", 1);
            setenv("LSAN_OPTIONS", "print_suppressions=0", 1);
            execl(TEST_TARVO, TEST_TARVO, "convert", mSource.c_str(), Out(inName).c_str(),
                  "--verify", "--quiet", static_cast<char*>(nullptr));
            _exit(127);
        }
        const std::string program = fs::canonical(TEST_TARVO);
        long peak = 0;
        int status = 0;
        while (waitpid(child, &status, WNOHANG) == 0)
        {
            std::error_code error;
            const fs::path running =
                fs::read_symlink("/proc/" + std::to_string(child) + "/exe", error);
            if (!error && running == program)
                peak = std::max(peak, PeakSoFar(child));
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        EXPECT_EQ(status, 0) << inName;
        EXPECT_EQ(FilesLeft(), 1);
        fs::remove(Out(inName));
        return peak;
    }
};

TEST_F(ProgramMemory, DoesNotGrowWithTheLength)
{
    for (const char* name : {"a.wav", "a.flac", "a.m4a"})
    {
        const long minute = Peak(60, name);
        const long twentyMinutes = Peak(1200, name);
        EXPECT_GT(minute, 1024) << name;
        // The samples of 19 minutes are 17813 KiB.
        EXPECT_LT(twentyMinutes, minute + 6000) << name;
        RecordProperty(name, std::to_string(minute) + " " + std::to_string(twentyMinutes));
    }
}

}  // namespace
