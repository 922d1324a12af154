// ExitCode: what tarvo tells the shell.
#ifndef HOST_EXITCODE_H
#define HOST_EXITCODE_H

namespace host
{

enum ExitCode : int
{
    kExitDone = 0,
    kExitFailed = 1,
    kExitUsage = 2,
    kExitInput = 3,     // unreadable or unsupported
    kExitOutput = 4,    // not writable, or there already
    kExitSettings = 5,  // impossible
    kExitDiagnostics = 6,
    kExitSignalBase = 128  // and the signal's number
};

}  // namespace host

#endif
