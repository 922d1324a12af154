// Planes: memory for one block of several channels, side by side.
#ifndef HOST_PLANES_H
#define HOST_PLANES_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace host
{

/// [channel][frame] of one plain sample type.
template <typename Sample>
class Planes
{
public:
    Planes() = default;
    Planes(std::size_t inChannelCount, std::size_t inSamplesPerChannel)
        : mSamples(inChannelCount * inSamplesPerChannel), mChannels(inChannelCount)
    {
        for (std::size_t channel = 0; channel < inChannelCount; ++channel)
            mChannels[channel] = mSamples.data() + channel * inSamplesPerChannel;
    }
    // Moved memory stays in its place, and so do the pointers.
    Planes(Planes&&) = default;
    Planes& operator=(Planes&&) = default;

    Sample* operator[](std::size_t inChannel) const { return mChannels[inChannel]; }
    Sample* const* Channels() const { return mChannels.data(); }

private:
    std::vector<Sample> mSamples;
    std::vector<Sample*> mChannels;
};

}  // namespace host

#endif
