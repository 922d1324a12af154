// HostBench: opening through the plug-in, many files in one process.
//
// hostbench open ROUNDS FILE...: opens each file, asks its format and closes it. The first file is
// opened once before the clock starts, so that loading is not part of the figure.

#include "bench/Measure.h"
#include "host/Failure.h"
#include "host/ReadSession.h"

#include <cstdlib>
#include <string>

int main(int argc, char** argv)
{
    if (argc < 4 || std::string(argv[1]) != "open")
        return host::kExitUsage;
    try
    {
        const host::PlugIn plugIn("");
        const int rounds = std::atoi(argv[2]);
        {
            const host::ReadSession warm(plugIn, argv[3]);
        }
        const bench::Stopwatch watch;
        bench::Run run;
        for (int round = 0; round < rounds; ++round)
        {
            for (int i = 3; i < argc; ++i)
            {
                const host::ReadSession session(plugIn, argv[i]);
                run.mRate = session.Info().mSampleRate;
                run.mChannels = static_cast<int>(session.Info().ChannelCount());
                ++run.mFrames;
            }
        }
        watch.Print(run);
        return host::kExitDone;
    }
    catch (const host::Failure& failure)
    {
        std::fprintf(stderr, "%s\n", failure.what());
        return failure.mExitCode;
    }
}
