// SndfileWriteBench: the same work with libsndfile: planes are joined into interleaved memory and
// written by the library's call for their type.
//
// sndfilewrite SOURCE CHANNELS RATE WIDTH FRAMES TARGET wav|aiff|caf|flac - 0

#include "bench/BlockSource.h"

#include <sndfile.h>

#include <iterator>

namespace
{

struct Container
{
    const char* mName;
    int mFormat;
};

constexpr Container kContainers[] = {
    {"aiff", SF_FORMAT_AIFF},
    {"caf", SF_FORMAT_CAF},
    {"flac", SF_FORMAT_FLAC},
    {"wav", SF_FORMAT_WAV},
};
constexpr int kSubtypes[] = {0, 0, SF_FORMAT_PCM_16, SF_FORMAT_PCM_24,
                             SF_FORMAT_FLOAT};  // by width

int FormatOf(const bench::WriteJob& inJob)
{
    for (const Container& container : kContainers)
        if (inJob.mContainer == container.mName)
            return container.mFormat | kSubtypes[inJob.mWidth];
    return 0;
}

template <typename Reader, typename Sample>
bool WriteFrames(SNDFILE* inFile, sf_count_t (*inWrite)(SNDFILE*, const Sample*, sf_count_t),
                 const bench::WriteJob& inJob, bench::BlockSource& ioSource)
{
    std::vector<Sample> frames(std::size_t{bench::kBlockFrames} *
                               static_cast<std::size_t>(inJob.mChannels));
    while (const int count = ioSource.Next())
    {
        bench::JoinPlanes<Reader>(ioSource.Planes(), inJob.mChannels, count, frames.data());
        if (inWrite(inFile, frames.data(), count) != count)
            return false;
    }
    return true;
}

bool WriteBlocks(SNDFILE* inFile, const bench::WriteJob& inJob, bench::BlockSource& ioSource)
{
    switch (inJob.mWidth)
    {
        case 2:
            return WriteFrames<bench::PlainSample<short>>(inFile, &sf_writef_short, inJob,
                                                          ioSource);
        case 3:
            return WriteFrames<bench::Widened24>(inFile, &sf_writef_int, inJob, ioSource);
        default:
            return WriteFrames<bench::PlainSample<float>>(inFile, &sf_writef_float, inJob,
                                                          ioSource);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    bench::WriteJob job;
    if (!bench::ReadJob(argc, argv, job))
        return 2;
    bench::BlockSource source(job);
    if (!source.HasFrames())
        return 3;

    const bench::Stopwatch watch;
    SF_INFO info = {};
    info.channels = job.mChannels;
    info.samplerate = job.mRate;
    info.format = FormatOf(job);
    SNDFILE* file = sf_open(job.mTarget.c_str(), SFM_WRITE, &info);
    if (!file)
        return 4;
    const bool isWritten = WriteBlocks(file, job, source);
    if (sf_close(file) != 0 || !isWritten)
        return 4;
    watch.Print({job.mFrames, job.mChannels, job.mRate, job.mFrames * job.mChannels * job.mWidth});
    return 0;
}
