// Jobs: several pieces of work at once, each in a process of its own.
//
// The catalogue and the plug-in's settings are for one thread at a time, which a process of its own
// keeps to without any lock.
#ifndef HOST_EXPORT_JOBS_H
#define HOST_EXPORT_JOBS_H

#include <cstddef>
#include <functional>
#include <string>

namespace host
{

/// Does inWork(0) to inWork(inCount - 1), at most inAtOnce at a time, in processes that are copies
/// of this one. No thread may run here.
///
/// inWork  answers an exit code; what it prints comes out in whole lines. It handles its failures;
///         of Interrupted the exit code becomes 128 and the signal's number.
/// inName  of a piece of work, for the failure text of one that dies
/// Returns the largest exit code. Throws Interrupted after all processes have cleaned up and ended,
/// and Failure (kExitFailed) where there can be no more processes.
int RunJobs(std::size_t inCount, std::size_t inAtOnce,
            const std::function<int(std::size_t)>& inWork,
            const std::function<std::string(std::size_t)>& inName);

}  // namespace host

#endif
