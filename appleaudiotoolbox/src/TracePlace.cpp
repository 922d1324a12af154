#include "appleaudiotoolbox/src/TracePlace.h"

#include <kelpcore/debug/Trace.h>
#include <kelpcore/threads/Thread.h>

#include <string>

namespace appleaudiotoolbox
{

namespace
{

constexpr char kArea[] = "appleaudiotoolbox";

}  // namespace

bool TracePlace::IsWanted()
{
    const unsigned int changeCount = kelpcore::debug::TraceChangeCount();
    if (mSeenChangeCount != changeCount)
    {
        mSeenChangeCount = changeCount;
        mIsWanted = kelpcore::debug::TraceEnabled(kArea, mLevel, true);
    }
    return mIsWanted;
}

void TracePlace::Write(std::string_view inText) const
{
    std::string line = "<" + std::to_string(kelpcore::threads::GetCurrentThreadID()) + "> <";
    line += kArea;
    line += "> <" + std::to_string(mLevel) + "> ";
    line += inText;
    line += '\n';
    kelpcore::debug::Trace(line);
}

}  // namespace appleaudiotoolbox
