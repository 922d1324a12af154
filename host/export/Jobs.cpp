#include "host/export/Jobs.h"

#include "host/Failure.h"
#include "host/Interrupt.h"
#include "host/Report.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <list>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace host
{

namespace
{

constexpr int kPollMilliseconds = 500;

// Hands on what comes out of a process, line by line.
class LineRelay
{
public:
    LineRelay(int inDescriptor, FILE* inTarget) : mDescriptor(inDescriptor), mTarget(inTarget) {}
    ~LineRelay() { Close(); }
    LineRelay(LineRelay&& ioOther) noexcept
        : mDescriptor(std::exchange(ioOther.mDescriptor, -1)),
          mTarget(ioOther.mTarget),
          mPending(std::move(ioOther.mPending))
    {
    }
    LineRelay& operator=(LineRelay&&) = delete;

    bool IsOpen() const { return mDescriptor >= 0; }
    int Descriptor() const { return mDescriptor; }

    // Something has come, or the end.
    void Read()
    {
        char part[4096];
        const ssize_t count = read(mDescriptor, part, sizeof(part));
        if (count < 0 && errno == EINTR)
            return;
        if (count <= 0)
            return Close();
        mPending.append(part, static_cast<std::size_t>(count));
        const std::size_t end = mPending.rfind('\n');
        if (end == std::string::npos)
            return;
        Put(end + 1);
    }

private:
    void Put(std::size_t inCount)
    {
        std::fwrite(mPending.data(), 1, inCount, mTarget);
        std::fflush(mTarget);
        mPending.erase(0, inCount);
    }

    void Close()
    {
        if (mDescriptor < 0)
            return;
        (void)close(std::exchange(mDescriptor, -1));
        if (!mPending.empty())
            mPending += '\n';
        Put(mPending.size());
    }

    int mDescriptor;
    FILE* mTarget;
    std::string mPending;
};

struct Process
{
    pid_t mId;
    std::size_t mIndex;
    LineRelay mOutput;
    LineRelay mErrors;
};

[[noreturn]] void FailToStart()
{
    throw Failure(kExitFailed, 0, std::string("cannot start a process: ") + std::strerror(errno));
}

struct Pipe
{
    Pipe()
    {
        if (pipe2(mEnds, O_CLOEXEC) != 0)
            FailToStart();
    }
    ~Pipe()
    {
        for (const int end : mEnds)
            if (end >= 0)
                (void)close(end);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int TakeReading() { return std::exchange(mEnds[0], -1); }
    int Writing() const { return mEnds[1]; }

    int mEnds[2] = {-1, -1};
};

int WorkAndFlush(const std::function<int(std::size_t)>& inWork, std::size_t inIndex)
{
    try
    {
        const int code = inWork(inIndex);
        FlushOutput();
        return code;
    }
    catch (const Interrupted& interrupted)
    {
        return kExitSignalBase + interrupted.mSignal;
    }
    catch (const Failure& failure)
    {
        PrintFailure(failure, "", false);
        return failure.mExitCode;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "tarvo: %s\n", error.what());
        return kExitFailed;
    }
}

class ProcessPool
{
public:
    ProcessPool(const std::function<int(std::size_t)>& inWork,
                const std::function<std::string(std::size_t)>& inName)
        : mWork(inWork), mName(inName)
    {
    }
    ~ProcessPool() { EndAll(SIGTERM); }
    ProcessPool(const ProcessPool&) = delete;
    ProcessPool& operator=(const ProcessPool&) = delete;

    std::size_t Running() const { return mProcesses.size(); }
    int Worst() const { return mWorst; }

    void Start(std::size_t inIndex)
    {
        Pipe output, errors;
        (void)std::fflush(stdout);  // or the copy would print it too
        (void)std::fflush(stderr);
        const pid_t parent = getpid();
        const pid_t id = fork();
        if (id < 0)
            FailToStart();
        if (id == 0)
            Become(inIndex, output, errors, parent);
        mProcesses.push_back({id, inIndex, LineRelay(output.TakeReading(), stdout),
                              LineRelay(errors.TakeReading(), stderr)});
    }

    // Waits until something was said or a process has ended.
    void Attend()
    {
        std::vector<pollfd> waits;
        std::vector<LineRelay*> relays;
        for (Process& process : mProcesses)
            for (LineRelay* relay : {&process.mOutput, &process.mErrors})
                if (relay->IsOpen())
                {
                    waits.push_back({relay->Descriptor(), POLLIN, 0});
                    relays.push_back(relay);
                }
        const int ready = poll(waits.data(), waits.size(), kPollMilliseconds);
        for (std::size_t i = 0; ready > 0 && i < waits.size(); ++i)
            if (waits[i].revents != 0)
                relays[i]->Read();
        std::erase_if(mProcesses, [this](Process& ioProcess) { return Reap(ioProcess, 0); });
    }

    void EndAll(int inSignal)
    {
        for (const Process& process : mProcesses)
            (void)kill(process.mId, inSignal);
        for (Process& process : mProcesses)
        {
            // The pipes are read on, since a process may be waiting to write.
            while (process.mOutput.IsOpen() || process.mErrors.IsOpen())
                Drain(process);
            (void)Reap(process, inSignal);
        }
        mProcesses.clear();
    }

private:
    [[noreturn]] void Become(std::size_t inIndex, const Pipe& inOutput, const Pipe& inErrors,
                             pid_t inParent)
    {
        // Nobody would relay the output of an orphan, or wait for it.
        (void)prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (getppid() != inParent)
            _exit(kExitSignalBase + SIGTERM);
        dup2(inOutput.Writing(), STDOUT_FILENO);
        dup2(inErrors.Writing(), STDERR_FILENO);
        // The other processes' pipes would be held open by the copies.
        for (const Process& process : mProcesses)
            for (const LineRelay* relay : {&process.mOutput, &process.mErrors})
                if (relay->IsOpen())
                    (void)close(relay->Descriptor());
        const int code = WorkAndFlush(mWork, inIndex);
        (void)std::fflush(stderr);
        _exit(code);
    }

    static void Drain(Process& ioProcess)
    {
        for (LineRelay* relay : {&ioProcess.mOutput, &ioProcess.mErrors})
        {
            if (!relay->IsOpen())
                continue;
            pollfd wait = {relay->Descriptor(), POLLIN, 0};
            if (poll(&wait, 1, 10) > 0)
                relay->Read();
        }
    }

    // A process is done when its pipes are closed.
    bool Reap(Process& ioProcess, int inSentSignal)
    {
        if (ioProcess.mOutput.IsOpen() || ioProcess.mErrors.IsOpen())
            return false;
        int status = 0;
        while (waitpid(ioProcess.mId, &status, 0) < 0 && errno == EINTR)
        {
        }
        const int code =
            WIFSIGNALED(status) ? kExitSignalBase + WTERMSIG(status) : WEXITSTATUS(status);
        if (WIFSIGNALED(status) && WTERMSIG(status) != inSentSignal)
            std::fprintf(stderr, "tarvo: %s: the conversion was ended by signal %d\n",
                         mName(ioProcess.mIndex).c_str(), WTERMSIG(status));
        mWorst = std::max(mWorst, code);
        return true;
    }

    const std::function<int(std::size_t)>& mWork;
    const std::function<std::string(std::size_t)>& mName;
    std::list<Process> mProcesses;
    int mWorst = kExitDone;
};

}  // namespace

int RunJobs(std::size_t inCount, std::size_t inAtOnce,
            const std::function<int(std::size_t)>& inWork,
            const std::function<std::string(std::size_t)>& inName)
{
    ProcessPool pool(inWork, inName);
    std::size_t next = 0;
    try
    {
        while (next < inCount || pool.Running() > 0)
        {
            CheckInterrupt();
            if (next < inCount && pool.Running() < inAtOnce)
                pool.Start(next++);
            else
                pool.Attend();
        }
    }
    catch (const Interrupted& interrupted)
    {
        pool.EndAll(interrupted.mSignal);
        throw;
    }
    return pool.Worst();
}

}  // namespace host
