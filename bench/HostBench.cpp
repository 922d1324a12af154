// HostBench: what a host waits for: opening files, and the plug-in's start.
//
// hostbench open ROUNDS FILE...: opens each file, asks its format and closes it. The first file is
// opened once before the clock starts, so that loading is not part of the figure.
// hostbench start: loads the plug-in and starts it twice; the second start finds its catalogue.

#include "bench/Measure.h"
#include "host/Failure.h"
#include "host/ReadSession.h"
#include "host/Registration.h"

#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>

namespace
{

double SecondsOf(const auto& inWork)
{
    const auto start = std::chrono::steady_clock::now();
    inWork();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void Open(int inRounds, int inCount, char** inFiles)
{
    const host::PlugIn plugIn("");
    {
        const host::ReadSession warm(plugIn, inFiles[0]);
    }
    const bench::Stopwatch watch;
    bench::Run run;
    for (int round = 0; round < inRounds; ++round)
    {
        for (int i = 0; i < inCount; ++i)
        {
            const host::ReadSession session(plugIn, inFiles[i]);
            run.mRate = session.Info().mSampleRate;
            run.mChannels = static_cast<int>(session.Info().ChannelCount());
            ++run.mFrames;
        }
    }
    watch.Print(run);
}

void Start()
{
    std::optional<host::PlugIn> plugIn;
    const double load = SecondsOf([&] { plugIn.emplace(""); });
    const double first = SecondsOf([&] { host::Register(*plugIn); });
    const double second = SecondsOf([&] { host::Register(*plugIn); });
    std::printf("{\"load\":%.6f,\"first\":%.6f,\"second\":%.6f}\n", load, first, second);
}

}  // namespace

int main(int argc, char** argv)
{
    const std::string mode = argc > 1 ? argv[1] : "";
    try
    {
        if (mode == "open" && argc > 3)
            Open(std::atoi(argv[2]), argc - 3, argv + 3);
        else if (mode == "start")
            Start();
        else
            return host::kExitUsage;
        return host::kExitDone;
    }
    catch (const host::Failure& failure)
    {
        std::fprintf(stderr, "%s\n", failure.what());
        return failure.mExitCode;
    }
}
