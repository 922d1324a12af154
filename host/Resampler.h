// Resampler: changes the sample rate of all channels at once.
//
// Linear phase, its delay taken out: the first frame out is the first frame in. The length that
// comes out is the length that went in times the ratio, rounded.
#ifndef HOST_RESAMPLER_H
#define HOST_RESAMPLER_H

#include <cstddef>
#include <cstdint>

struct soxr;

namespace host
{

class Resampler
{
public:
    enum class Quality
    {
        k16Bit,
        k24Bit
    };

    /// Throws Failure (kExitSettings) for rates that are not above 0 or too far apart.
    Resampler(std::int32_t inFromRate, std::int32_t inToRate, std::size_t inChannelCount,
              Quality inQuality);
    ~Resampler();
    Resampler(const Resampler&) = delete;
    Resampler& operator=(const Resampler&) = delete;

    struct Counts
    {
        std::int64_t mTaken = 0;  // frames of the input
        std::int64_t mMade = 0;   // frames of the output
    };

    /// Takes some or all of the input, and makes what there is room for. [channel][frame]. Go on
    /// until everything was taken and nothing more is made. Throws Failure.
    Counts Process(const float* const* inChannels, std::int64_t inFrameCount,
                   float* const* outChannels, std::int64_t inRoom);

    /// After all of the input: makes what is left, until it answers 0.
    std::int64_t Drain(float* const* outChannels, std::int64_t inRoom);

private:
    soxr* mResampler = nullptr;
};

}  // namespace host

#endif
