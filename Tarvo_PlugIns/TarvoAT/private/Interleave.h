// Interleave: from one buffer per channel to frames, one channel at a time.
#ifndef TARVO_PLUGINS_TARVOAT_PRIVATE_INTERLEAVE_H
#define TARVO_PLUGINS_TARVOAT_PRIVATE_INTERLEAVE_H

#include <cstddef>

namespace tarvo
{

/// Where a channel's samples go: frame by frame, all channels of a frame side by side.
struct InterleavedFrames
{
    std::size_t mChannelCount;
    std::size_t mBytesPerSample;  // of one channel, 1 to 4
    std::size_t mFrameCount;
    char* mBytes;  // [frame][channel], packed, any alignment; room for all of them
};

/// Puts one channel into frames. Channels go in ascending order, since the first of two leaves
/// bytes of its own where the second one belongs.
///
/// inChannel    below outFrames.mChannelCount
/// inSamples    [frame], packed, any alignment, not overlapping the frames; no longer needed once
///              this returns
/// Never fails, and touches nothing outside those buffers. With 0 frames both may be null.
void InterleaveChannel(std::size_t inChannel, const char* inSamples,
                       const InterleavedFrames& outFrames);

}  // namespace tarvo

#endif
