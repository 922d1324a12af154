// Interleave: from one buffer per channel to frames.
#ifndef TARVO_PLUGINS_TARVOAT_PRIVATE_INTERLEAVE_H
#define TARVO_PLUGINS_TARVOAT_PRIVATE_INTERLEAVE_H

#include <cstddef>

namespace tarvo
{

/// Joins one buffer per channel to interleaved frames.
///
/// inChannels        [channel][frame], packed, any alignment; inChannelCount buffers of
///                   inFrameCount * inBytesPerSample bytes each
/// inBytesPerSample  bytes of one sample of one channel, 1 to 4; the same in and out
/// outFrames         [frame][channel], packed, any alignment; room for all of them, owned by the
///                   caller and not overlapping inChannels
/// Never fails, and touches nothing outside those buffers. With 0 frames all may be null.
void Interleave(const char* const* inChannels, std::size_t inChannelCount,
                std::size_t inBytesPerSample, std::size_t inFrameCount, char* outFrames);

}  // namespace tarvo

#endif
