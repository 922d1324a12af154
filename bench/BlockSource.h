// BlockSource: the audio that the writing programs are handed, one block of planes after the other
// as a host hands it over.
//
// A file of interleaved native samples is read and split before any clock starts, and then handed
// out over and over until the length is reached, so that no program waits for its input and none
// keeps a long input in memory.
#ifndef BENCH_BLOCKSOURCE_H
#define BENCH_BLOCKSOURCE_H

#include "bench/Measure.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace bench
{

/// What a writing program is told on its command line, in this order.
struct WriteJob
{
    std::string mSource;
    int mChannels = 0;
    int mRate = 0;   // Hz
    int mWidth = 0;  // bytes a sample: 2 and 3 signed integers, 4 a float
    std::int64_t mFrames = 0;
    std::string mTarget;
    std::string mContainer;  // by the name that the program has for it
    std::string mFormat;     // the same
    int mBitRate = 0;        // bits per second; 0: the format has none
};

/// False for a command line that is no job.
inline bool ReadJob(int inCount, char** inWords, WriteJob& outJob)
{
    if (inCount != 10)
        return false;
    outJob = {inWords[1],
              std::atoi(inWords[2]),
              std::atoi(inWords[3]),
              std::atoi(inWords[4]),
              std::atoll(inWords[5]),
              inWords[6],
              inWords[7],
              inWords[8],
              std::atoi(inWords[9])};
    return outJob.mChannels > 0 && outJob.mRate > 0 && outJob.mWidth >= 2 && outJob.mWidth <= 4 &&
           outJob.mFrames > 0;
}

class BlockSource
{
public:
    explicit BlockSource(const WriteJob& inJob)
        : mWidth(static_cast<std::size_t>(inJob.mWidth)),
          mFramesLeft(inJob.mFrames),
          mPlanes(static_cast<std::size_t>(inJob.mChannels)),
          mBlock(mPlanes.size())
    {
        std::ifstream file(inJob.mSource, std::ios::binary);
        // Little at a time, so that the peak of memory is that of the export.
        std::vector<char> frames(kFramesAtOnce * mWidth * mPlanes.size());
        do
        {
            file.read(frames.data(), static_cast<std::streamsize>(frames.size()));
            frames.resize(static_cast<std::size_t>(file.gcount()));
            for (std::size_t channel = 0; channel < mPlanes.size(); ++channel)
                Split(frames, channel);
        } while (file);
        mFrames = static_cast<std::int64_t>(mPlanes[0].size() / mWidth);
    }

    /// Without frames there is nothing to measure.
    bool HasFrames() const { return mFrames > 0; }

    /// Frames of the next block, kBlockFrames at most; 0 at the end.
    int Next()
    {
        const std::int64_t count =
            std::min({mFramesLeft, mFrames - mAt, static_cast<std::int64_t>(kBlockFrames)});
        for (std::size_t channel = 0; channel < mPlanes.size(); ++channel)
            mBlock[channel] = mPlanes[channel].data() + static_cast<std::size_t>(mAt) * mWidth;
        mAt = (mAt + count) % mFrames;
        mFramesLeft -= count;
        return static_cast<int>(count);
    }

    /// [channel][frame] of the last Next, packed.
    const char* const* Planes() const { return mBlock.data(); }

private:
    static constexpr std::size_t kFramesAtOnce = 4096;

    void Split(const std::vector<char>& inFrames, std::size_t inChannel)
    {
        const std::size_t frameBytes = mWidth * mPlanes.size();
        std::vector<char>& plane = mPlanes[inChannel];
        for (std::size_t at = inChannel * mWidth; at < inFrames.size(); at += frameBytes)
            plane.insert(plane.end(), inFrames.data() + at, inFrames.data() + at + mWidth);
    }

    const std::size_t mWidth;
    std::int64_t mFrames = 0;  // of the file
    std::int64_t mFramesLeft;
    std::int64_t mAt = 0;
    std::vector<std::vector<char>> mPlanes;
    std::vector<const char*> mBlock;
};

/// One sample of a plane as the rivals take it.
template <typename Sample>
struct PlainSample
{
    static Sample Of(const char* inPlane, std::size_t inFrame)
    {
        return reinterpret_cast<const Sample*>(inPlane)[inFrame];
    }
};

/// Packed 24 bits at the upper end of 32.
struct Widened24
{
    static std::int32_t Of(const char* inPlane, std::size_t inFrame)
    {
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(inPlane) + inFrame * 3;
        return static_cast<std::int32_t>(std::uint32_t{bytes[0]} << 8 |
                                         std::uint32_t{bytes[1]} << 16 |
                                         std::uint32_t{bytes[2]} << 24);
    }
};

/// Integers as fractions of full scale.
template <typename Integer>
struct Scaled
{
    static float Of(const char* inPlane, std::size_t inFrame)
    {
        constexpr float kScale =
            1.0F / static_cast<float>(std::uint64_t{1} << (8 * sizeof(Integer) - 1));
        return static_cast<float>(reinterpret_cast<const Integer*>(inPlane)[inFrame]) * kScale;
    }
};

/// The rivals' way from planes to frames; pairs have a loop that compilers turn into vectors.
template <typename Reader, typename Sample>
void JoinPlanes(const char* const* inPlanes, int inChannels, int inFrameCount, Sample* outFrames)
{
    const auto frames = static_cast<std::size_t>(inFrameCount);
    const auto channels = static_cast<std::size_t>(inChannels);
    if (channels == 2)
    {
        const char* const left = inPlanes[0];
        const char* const right = inPlanes[1];
        for (std::size_t frame = 0; frame < frames; ++frame)
        {
            outFrames[2 * frame] = Reader::Of(left, frame);
            outFrames[2 * frame + 1] = Reader::Of(right, frame);
        }
        return;
    }
    for (std::size_t channel = 0; channel < channels; ++channel)
        for (std::size_t frame = 0; frame < frames; ++frame)
            outFrames[frame * channels + channel] = Reader::Of(inPlanes[channel], frame);
}

}  // namespace bench

#endif
