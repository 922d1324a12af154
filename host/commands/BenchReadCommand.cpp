// tarvo bench-read: decodes a file into memory and prints what it cost, for measurements.

#include "host/BlockReader.h"
#include "host/Interrupt.h"
#include "host/Report.h"
#include "host/commands/Commands.h"

#include <chrono>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <sys/resource.h>

namespace host
{

namespace
{

double Seconds(const timeval& inTime)
{
    return static_cast<double>(inTime.tv_sec) + static_cast<double>(inTime.tv_usec) * 1e-6;
}

rusage Usage()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage;
}

// getrusage tells the peak of the program that started this one when it was the larger.
long PeakKilobytes()
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
    {
        long kilobytes = 0;
        if (word == "VmHWM:" && status >> kilobytes)
            return kilobytes;
    }
    return Usage().ru_maxrss;
}

double CPUSeconds(const rusage& inUsage)
{
    return Seconds(inUsage.ru_utime) + Seconds(inUsage.ru_stime);
}

int BenchRead(const PlugIn& inPlugIn, const CommonOptions& inCommon, const std::string& inFile)
{
    try
    {
        const auto start = std::chrono::steady_clock::now();
        const double cpuBefore = CPUSeconds(Usage());
        ReadSession session(inPlugIn, inFile);
        BlockReader reader(session, false);
        std::int64_t frames = 0;
        while (const std::int64_t count = reader.Next())
        {
            CheckInterrupt();
            frames += count;
        }
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        const rusage after = Usage();

        const AudioInfo& info = session.Info();
        std::printf(
            "{\"frames\":%lld,\"channels\":%zu,\"rate\":%d,\"seconds\":%.6f,\"cpu\":%.6f,"
            "\"bytes\":%lld,\"rss_kb\":%ld}\n",
            static_cast<long long>(frames), info.ChannelCount(), info.mSampleRate, seconds,
            CPUSeconds(after) - cpuBefore,
            static_cast<long long>(frames) *
                static_cast<long long>(info.ChannelCount() * info.BytesPerSample()),
            PeakKilobytes());
        return kExitDone;
    }
    catch (const Failure& failure)
    {
        PrintFailure(failure, inFile, inCommon.mJSON);
        return failure.mExitCode;
    }
}

}  // namespace

void AddBenchReadCommand(CLI::App& ioProgram, const CommonOptions& inCommon, Work& outWork)
{
    CLI::App* command =
        ioProgram.add_subcommand("bench-read", "Decode a file into memory and print what it cost");
    auto file = std::make_shared<std::string>();
    command->add_option("FILE", *file, "File to decode")->required();
    command->callback(
        [&inCommon, &outWork, file]
        {
        outWork = [&inCommon, file](const PlugIn& inPlugIn)
        { return BenchRead(inPlugIn, inCommon, *file); };
    });
}

}  // namespace host
