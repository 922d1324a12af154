#include "host/Progress.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>
#include <utility>

namespace host
{

namespace
{

constexpr auto kInterval = std::chrono::milliseconds(200);

}  // namespace

Progress::Progress(std::string inWhat, std::int64_t inTotal)
    : mWhat(std::move(inWhat)),
      mTotal(inTotal),
      mOnTerminal(isatty(STDERR_FILENO) == 1),
      mNext(std::chrono::steady_clock::now() + kInterval)
{
}

Progress::~Progress()
{
    if (mDrawn)
        std::fputs("\r\033[K", stderr);
}

void Progress::Show(std::int64_t inDone)
{
    if (!mOnTerminal)
        return;
    const auto now = std::chrono::steady_clock::now();
    if (now < mNext)
        return;
    mNext = now + kInterval;
    mDrawn = true;

    if (mTotal > 0)
    {
        const auto percent = std::min<std::int64_t>(100, inDone * 100 / mTotal);
        std::fprintf(stderr, "\r\033[K%s  %d %%", mWhat.c_str(), static_cast<int>(percent));
    }
    else
    {
        std::fprintf(stderr, "\r\033[K%s  %lld frames", mWhat.c_str(),
                     static_cast<long long>(inDone));
    }
    std::fflush(stderr);
}

}  // namespace host
