// Trace: diagnostic lines by area and level, off unless somebody switches them on.
#ifndef KELPCORE_DEBUG_TRACE_H
#define KELPCORE_DEBUG_TRACE_H

#include "kelpcore/Export.h"

#include <string_view>

namespace kelpcore::debug
{

/// Grows whenever the answers of TraceEnabled may have changed, so that a trace place can keep its
/// answer until then. Starts at 1: a place that has seen 0 has seen nothing.
KELPCORE_EXPORT unsigned int TraceChangeCount();

/// Whether lines of this area and level are wanted. inRegister notes the area as one that exists;
/// it is not the answer.
KELPCORE_EXPORT bool TraceEnabled(const char* inArea, int inLevel, bool inRegister);

/// Whether some place has noted this area.
KELPCORE_EXPORT bool TraceAreaExists(const char* inArea);

/// Hands a composed line (with its line break) to the sink; standard error without one.
KELPCORE_EXPORT void Trace(std::string_view inLine);

/// Switches all areas on up to a level, 0 off. Off at start.
KELPCORE_EXPORT void SetTraceLevel(int inLevel);

/// Where lines go; null for standard error. inContext is handed back. For start-up and tests.
using TraceSink = void (*)(void* inContext, std::string_view inLine);
KELPCORE_EXPORT void SetTraceSink(TraceSink inSink, void* inContext);

}  // namespace kelpcore::debug

#endif
