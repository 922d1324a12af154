// Measure: what every measuring program prints about a run, the same line for all of them.
#ifndef BENCH_MEASURE_H
#define BENCH_MEASURE_H

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <sys/resource.h>

namespace bench
{

struct Run
{
    std::int64_t mFrames = 0;  // per channel; or files, where opening is measured
    int mChannels = 0;
    int mRate = 0;
    std::int64_t mBytes = 0;  // of delivered samples
};

class Stopwatch
{
public:
    Stopwatch() : mStart(std::chrono::steady_clock::now()), mCPU(CPUSeconds()) {}

    void Print(const Run& inRun) const
    {
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - mStart).count();
        std::printf(
            "{\"frames\":%lld,\"channels\":%d,\"rate\":%d,\"seconds\":%.6f,\"cpu\":%.6f,"
            "\"bytes\":%lld,\"rss_kb\":%ld}\n",
            static_cast<long long>(inRun.mFrames), inRun.mChannels, inRun.mRate, seconds,
            CPUSeconds() - mCPU, static_cast<long long>(inRun.mBytes), PeakKilobytes());
    }

private:
    // getrusage tells the peak of the program that started this one when it was the larger.
    static long PeakKilobytes()
    {
        std::ifstream status("/proc/self/status");
        for (std::string word; status >> word;)
        {
            long kilobytes = 0;
            if (word == "VmHWM:" && status >> kilobytes)
                return kilobytes;
        }
        return 0;
    }

    static double CPUSeconds()
    {
        rusage usage = {};
        getrusage(RUSAGE_SELF, &usage);
        return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
               static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
    }

    std::chrono::steady_clock::time_point mStart;
    double mCPU;
};

/// Frames of one block, as the host reads them.
constexpr int kBlockFrames = 65536;

}  // namespace bench

#endif
