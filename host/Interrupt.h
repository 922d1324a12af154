// Interrupt: SIGINT, SIGTERM and SIGHUP as a question that loops ask, so that everything is cleaned
// up on the way out.
#ifndef HOST_INTERRUPT_H
#define HOST_INTERRUPT_H

namespace host
{

/// Thrown by CheckInterrupt; not a std::exception, so that no handler of failures takes it.
struct Interrupted
{
    int mSignal;
};

/// Takes the signals over; a SIGHUP that is ignored, as under nohup, stays so. A broken pipe
/// becomes a write error. A second signal ends the process at once. Once, at start.
void WatchInterrupts();

/// Throws Interrupted when a signal has arrived. System calls that wait answer EINTR then.
void CheckInterrupt();

/// As long as it lives, the first signal ends the process at once: for work that asks nobody, such
/// as a dialog. One at a time.
class InterruptsEndProcess
{
public:
    InterruptsEndProcess();
    ~InterruptsEndProcess();
    InterruptsEndProcess(const InterruptsEndProcess&) = delete;
    InterruptsEndProcess& operator=(const InterruptsEndProcess&) = delete;
};

/// The one file that even a second signal removes; null for none. The text stays the caller's and
/// is used until the next call.
void RemoveWhenKilled(const char* inPath);

}  // namespace host

#endif
