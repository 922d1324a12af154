// Failure: why a piece of work did not succeed, as the user gets to know it.
#ifndef HOST_FAILURE_H
#define HOST_FAILURE_H

#include "host/ExitCode.h"

#include <stdexcept>
#include <string>

namespace host
{

/// Thrown by the host library. mResult is the plug-in's result, 0 where the host itself failed; the
/// text is UTF-8, the plug-in's own where it gave one, and has no line break at its end.
class Failure : public std::runtime_error
{
public:
    Failure(ExitCode inExitCode, int inResult, const std::string& inText)
        : std::runtime_error(inText), mExitCode(inExitCode), mResult(inResult)
    {
    }

    const ExitCode mExitCode;
    const int mResult;
};

}  // namespace host

#endif
