// TraceLines: what is traced for the length of a test.
#ifndef TESTS_SUPPORT_TRACELINES_H
#define TESTS_SUPPORT_TRACELINES_H

#include "kelpcore/debug/Trace.h"
#include "kelpcore/threads/Thread.h"

#include <string>
#include <string_view>
#include <vector>

namespace testing_support
{

/// Switches tracing on up to a level; it is off again once the object is gone.
class TraceLines
{
public:
    explicit TraceLines(int inLevel)
    {
        kelpcore::debug::SetTraceSink(
            [](void* context, std::string_view line)
            { static_cast<TraceLines*>(context)->mLines.emplace_back(line); },
            this);
        kelpcore::debug::SetTraceLevel(inLevel);
    }
    ~TraceLines()
    {
        kelpcore::debug::SetTraceLevel(0);
        kelpcore::debug::SetTraceSink(nullptr, nullptr);
    }
    TraceLines(const TraceLines&) = delete;
    TraceLines& operator=(const TraceLines&) = delete;

    const std::vector<std::string>& Lines() const { return mLines; }

    /// A line of the wrapper on this thread, from its level on.
    static std::string Line(const std::string& inRest)
    {
        return "<" + std::to_string(kelpcore::threads::GetCurrentThreadID()) +
               "> <appleaudiotoolbox> " + inRest;
    }

private:
    std::vector<std::string> mLines;
};

}  // namespace testing_support

#endif
