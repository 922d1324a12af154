// SndfileBench: the same work with libsndfile: read into interleaved memory, split into planes in
// the samples that the plug-in delivers for such a file.
//
// sndfilebench read FILE | sndfilebench open ROUNDS FILE...

#include "bench/Measure.h"

#include <sndfile.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace
{

using SoundFile = SNDFILE*;

struct Packed24
{
    std::uint8_t mBytes[3];
};

template <typename Stored, typename Plane, typename Pack>
bench::Run ReadPlanes(SoundFile inFile, const SF_INFO& inInfo,
                      sf_count_t (*inRead)(SoundFile, Stored*, sf_count_t), Pack inPack)
{
    const auto channels = static_cast<std::size_t>(inInfo.channels);
    std::vector<Stored> frames(bench::kBlockFrames * channels);
    std::vector<std::vector<Plane>> planes(channels, std::vector<Plane>(bench::kBlockFrames));
    bench::Run run = {0, inInfo.channels, inInfo.samplerate, 0};
    while (const sf_count_t count = inRead(inFile, frames.data(), bench::kBlockFrames))
    {
        for (std::size_t channel = 0; channel < channels; ++channel)
        {
            Plane* plane = planes[channel].data();
            const Stored* source = frames.data() + channel;
            for (sf_count_t frame = 0; frame < count; ++frame, source += channels)
                plane[frame] = inPack(*source);
        }
        run.mFrames += count;
    }
    run.mBytes = run.mFrames * inInfo.channels * static_cast<std::int64_t>(sizeof(Plane));
    return run;
}

bench::Run Read(SoundFile inFile, const SF_INFO& inInfo)
{
    const auto same = [](auto inSample) { return inSample; };
    switch (inInfo.format & SF_FORMAT_SUBMASK)
    {
        case SF_FORMAT_PCM_16:
            if ((inInfo.format & SF_FORMAT_TYPEMASK) != SF_FORMAT_FLAC)
                return ReadPlanes<short, short>(inFile, inInfo, &sf_readf_short, same);
            break;
        case SF_FORMAT_PCM_24:
            if ((inInfo.format & SF_FORMAT_TYPEMASK) != SF_FORMAT_FLAC)
                return ReadPlanes<int, Packed24>(inFile, inInfo, &sf_readf_int,
                                                 [](int inSample)
                                                 {
                    Packed24 packed;
                    const std::uint32_t bits = static_cast<std::uint32_t>(inSample) >> 8;
                    std::memcpy(packed.mBytes, &bits, 3);
                    return packed;
                });
            break;
        default:
            break;
    }
    return ReadPlanes<float, float>(inFile, inInfo, &sf_readf_float, same);
}

bench::Run OpenAll(int inRounds, int inCount, char** inFiles)
{
    bench::Run run;
    for (int round = 0; round < inRounds; ++round)
    {
        for (int i = 0; i < inCount; ++i)
        {
            SF_INFO info = {};
            if (SoundFile file = sf_open(inFiles[i], SFM_READ, &info))
                sf_close(file);
            run.mChannels = info.channels;
            run.mRate = info.samplerate;
            ++run.mFrames;
        }
    }
    return run;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc >= 4 && std::string(argv[1]) == "open")
    {
        (void)OpenAll(1, 1, argv + 3);
        const bench::Stopwatch watch;
        watch.Print(OpenAll(std::atoi(argv[2]), argc - 3, argv + 3));
        return 0;
    }
    if (argc != 3 || std::string(argv[1]) != "read")
        return 2;

    const bench::Stopwatch watch;
    SF_INFO info = {};
    SoundFile file = sf_open(argv[2], SFM_READ, &info);
    if (!file)
        return 3;
    const bench::Run run = Read(file, info);
    sf_close(file);
    watch.Print(run);
    return 0;
}
