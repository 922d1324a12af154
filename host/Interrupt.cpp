#include "host/Interrupt.h"

#include <csignal>
#include <initializer_list>

namespace host
{

namespace
{

volatile std::sig_atomic_t sSignal = 0;

void Note(int inSignal)
{
    sSignal = inSignal;
}

}  // namespace

void WatchInterrupts()
{
    struct sigaction action = {};
    action.sa_handler = &Note;
    action.sa_flags = static_cast<int>(SA_RESETHAND);  // a second one ends the process at once
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaction(signal, &action, nullptr);

    action.sa_handler = SIG_IGN;
    action.sa_flags = 0;
    sigaction(SIGPIPE, &action, nullptr);
    sigaction(SIGXFSZ, &action, nullptr);
}

void CheckInterrupt()
{
    if (sSignal != 0)
        throw Interrupted{sSignal};
}

}  // namespace host
