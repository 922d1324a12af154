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

/// Takes the signals over. A broken pipe becomes a write error. Once, at start.
void WatchInterrupts();

/// Throws Interrupted when a signal has arrived.
void CheckInterrupt();

}  // namespace host

#endif
