#include "host/export/ConvertProgress.h"

#include "host/Report.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>
#include <utility>

namespace host
{

namespace
{

constexpr auto kInterval = std::chrono::milliseconds(200);

// Nothing can be drawn again in a file or a pipe.
ProgressForm FormFor(ProgressForm inForm)
{
    const bool isDrawn = inForm == ProgressForm::kTerminal;
    return isDrawn && isatty(STDERR_FILENO) != 1 ? ProgressForm::kNone : inForm;
}

}  // namespace

ConvertProgress::ConvertProgress(ProgressForm inForm, std::string inWhat, std::int64_t inTotal,
                                 std::int32_t inRate)
    : mForm(FormFor(inForm)),
      mWhat(std::move(inWhat)),
      mTotal(inTotal),
      mRate(inRate),
      mNext(mStart + kInterval)
{
}

ConvertProgress::~ConvertProgress()
{
    if (mDrawn)
        std::fputs("\r\033[K", stderr);
}

void ConvertProgress::Show(std::int64_t inFrames)
{
    if (mForm == ProgressForm::kNone || Clock::now() < mNext)
        return;
    mNext = Clock::now() + kInterval;
    mForm == ProgressForm::kJSON ? Print(inFrames) : Draw(inFrames);
}

void ConvertProgress::Finish(std::int64_t inFrames)
{
    if (mForm == ProgressForm::kJSON)
        Print(inFrames);
}

void ConvertProgress::Draw(std::int64_t inFrames)
{
    mDrawn = true;
    std::fprintf(stderr, "\r\033[K%s", mWhat.c_str());
    if (mTotal > 0)
    {
        const auto percent = static_cast<int>(
            std::min(100.0, 100.0 * static_cast<double>(inFrames) / static_cast<double>(mTotal)));
        const auto left = static_cast<long long>(SecondsLeft(inFrames) + 0.5);
        std::fprintf(stderr, "  %d %%  %.0fx  %lld:%02lld left", percent, Speed(inFrames),
                     left / 60, left % 60);
    }
    else
    {
        std::fprintf(stderr, "  %lld frames  %.0fx", static_cast<long long>(inFrames),
                     Speed(inFrames));
    }
    std::fflush(stderr);
}

void ConvertProgress::Print(std::int64_t inFrames) const
{
    nlohmann::ordered_json object = NewObject();
    object["path"] = mWhat;
    nlohmann::ordered_json progress;
    progress["frames"] = inFrames;
    progress["totalFrames"] = mTotal;
    progress["seconds"] = SecondsTaken();
    progress["timesRealTime"] = Speed(inFrames);
    progress["secondsLeft"] = SecondsLeft(inFrames);
    object["progress"] = std::move(progress);
    PrintObject(object, stderr);
}

double ConvertProgress::SecondsTaken() const
{
    return std::chrono::duration<double>(Clock::now() - mStart).count();
}

double ConvertProgress::Speed(std::int64_t inFrames) const
{
    const double taken = SecondsTaken();
    return taken > 0 && mRate > 0 ? static_cast<double>(inFrames) / mRate / taken : 0.0;
}

double ConvertProgress::SecondsLeft(std::int64_t inFrames) const
{
    if (inFrames <= 0 || mTotal <= inFrames)
        return 0.0;
    return SecondsTaken() * static_cast<double>(mTotal - inFrames) / static_cast<double>(inFrames);
}

}  // namespace host
