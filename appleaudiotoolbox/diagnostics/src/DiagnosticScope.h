// DiagnosticScope: a group of checks that fail under one function name.
#ifndef APPLEAUDIOTOOLBOX_DIAGNOSTICS_SRC_DIAGNOSTICSCOPE_H
#define APPLEAUDIOTOOLBOX_DIAGNOSTICS_SRC_DIAGNOSTICSCOPE_H

#include "kelpunittesting/TestFailure.h"

namespace appleaudiotoolbox
{

class DiagnosticScope
{
public:
    constexpr explicit DiagnosticScope(const char* inFunction) : mFunction(inFunction) {}

    /// Fails with the text, at the caller's place in the sources, unless inHolds.
    void Check(bool inHolds, const char* inText, const char* inSourcePath = __builtin_FILE(),
               int inLine = __builtin_LINE()) const
    {
        if (!inHolds)
            kelpunittesting::ThrowTestFailure(inText, {mFunction, inSourcePath, inLine});
    }

private:
    const char* mFunction;
};

}  // namespace appleaudiotoolbox

#endif
