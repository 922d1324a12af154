#include "host/Interrupt.h"

#include "host/ExitCode.h"

#include <atomic>
#include <csignal>
#include <initializer_list>
#include <unistd.h>

namespace host
{

namespace
{

volatile std::sig_atomic_t sSignal = 0;
volatile std::sig_atomic_t sEndsAtOnce = 0;
std::atomic<const char*> sFileToRemove{nullptr};
static_assert(std::atomic<const char*>::is_always_lock_free);  // a signal handler reads it

void Note(int inSignal)
{
    if (sSignal == 0 && sEndsAtOnce == 0)
    {
        sSignal = inSignal;
        return;
    }
    if (const char* path = sFileToRemove.load())
        (void)unlink(path);
    _exit(kExitSignalBase + inSignal);
}

// nohup starts a program so. Shells ignore SIGINT for what runs behind "&", but whoever sends that
// one by name means it.
bool IsHangUpIgnored()
{
    struct sigaction action = {};
    return sigaction(SIGHUP, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

void WatchInterrupts()
{
    struct sigaction action = {};
    action.sa_handler = &Note;
    for (const int signal : {SIGINT, SIGTERM})
        sigaction(signal, &action, nullptr);
    if (!IsHangUpIgnored())
        sigaction(SIGHUP, &action, nullptr);

    action.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &action, nullptr);
    sigaction(SIGXFSZ, &action, nullptr);
}

void CheckInterrupt()
{
    if (sSignal != 0)
        throw Interrupted{sSignal};
}

InterruptsEndProcess::InterruptsEndProcess()
{
    sEndsAtOnce = 1;
}

InterruptsEndProcess::~InterruptsEndProcess()
{
    sEndsAtOnce = 0;
}

void RemoveWhenKilled(const char* inPath)
{
    sFileToRemove.store(inPath);
}

}  // namespace host
