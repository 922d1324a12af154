// CatalogueBench: asking the catalogue for bit rates, as the settings dialog does at every change.
//
// Prints nanoseconds a call, without a source (a copy of what is kept) and with one (a converter is
// asked each time).

#include "appleaudiotoolbox/utility/ATUtils.h"
#include "appleaudiotoolbox/utility/EncodableQueries.h"

#include <AudioToolbox/AudioFile.h>

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

namespace
{

double NanosecondsACall(int inCalls, const CAStreamBasicDescription* inSource)
{
    std::size_t rates = 0;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < inCalls; ++i)
        rates += appleaudiotoolbox::GetEncodableBitrates(kAudioFileM4AType, kAudioFormatMPEG4AAC, 0,
                                                         inSource)
                     .size();
    const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
    if (rates == 0)
        std::abort();  // nothing was measured
    return taken.count() / inCalls;
}

}  // namespace

int main()
{
    (void)NanosecondsACall(1, nullptr);  // builds the catalogue
    const CAStreamBasicDescription source =
        appleaudiotoolbox::ConstructClientFormatFromArgs(48000.0, 16, 1);
    std::printf("{\"kept\":%.1f,\"asked\":%.1f}\n", NanosecondsACall(20000, nullptr),
                NanosecondsACall(2000, &source));
    return 0;
}
