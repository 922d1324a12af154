#include "kelpcore/debug/Trace.h"

#include <atomic>
#include <cstdio>
#include <mutex>
#include <set>
#include <string>

namespace kelpcore::debug
{
namespace
{

struct Sink
{
    TraceSink mFunction;
    void* mContext;
};

constinit std::atomic<unsigned int> sChangeCount{1};
constinit std::atomic<int> sLevel{0};
constinit std::mutex sSinkMutex;
constinit Sink sSink = {};

// The areas that have asked to be noted.
class AreaNames
{
public:
    void Add(const char* inArea)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mNames.emplace(inArea);
    }

    bool Has(std::string_view inArea)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        return mNames.find(inArea) != mNames.end();
    }

private:
    std::mutex mMutex;
    std::set<std::string, std::less<>> mNames;
};

AreaNames& Areas()
{
    static AreaNames sAreas;
    return sAreas;
}

Sink CurrentSink()
{
    const std::lock_guard<std::mutex> lock(sSinkMutex);
    return sSink;
}

}  // namespace

unsigned int TraceChangeCount()
{
    return sChangeCount.load(std::memory_order_acquire);
}

bool TraceEnabled(const char* inArea, int inLevel, bool inRegister)
{
    if (inRegister)
        Areas().Add(inArea);
    return inLevel > 0 && inLevel <= sLevel.load(std::memory_order_acquire);
}

bool TraceAreaExists(const char* inArea)
{
    return Areas().Has(inArea);
}

void Trace(std::string_view inLine)
{
    // The sink runs without the lock, so that it may trace itself.
    const Sink sink = CurrentSink();
    if (sink.mFunction)
        sink.mFunction(sink.mContext, inLine);
    else
        (void)std::fwrite(inLine.data(), 1, inLine.size(), stderr);  // nobody to tell
}

void SetTraceLevel(int inLevel)
{
    sLevel.store(inLevel, std::memory_order_release);
    sChangeCount.fetch_add(1, std::memory_order_acq_rel);
}

void SetTraceSink(TraceSink inSink, void* inContext)
{
    const std::lock_guard<std::mutex> lock(sSinkMutex);
    sSink = {inSink, inContext};
}

}  // namespace kelpcore::debug
