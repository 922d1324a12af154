// Deinterleave: from frames to one buffer per channel.
#ifndef APPLEAUDIOTOOLBOX_SRC_DEINTERLEAVE_H
#define APPLEAUDIOTOOLBOX_SRC_DEINTERLEAVE_H

#include <cstddef>

namespace appleaudiotoolbox
{

/// Splits interleaved frames into one buffer per channel.
///
/// inFrames          [frame][channel], packed, any alignment
/// inBytesPerSample  bytes of one sample of one channel, 1 to 4; the same in and out
/// outChannels       [channel][frame], packed, any alignment; inChannels buffers of
///                   inFrameCount * inBytesPerSample bytes each, owned by the caller and not
///                   overlapping inFrames
/// Never fails, and touches nothing outside those buffers. With 0 frames outChannels may be null.
void Deinterleave(const char* inFrames, std::size_t inChannels, std::size_t inBytesPerSample,
                  std::size_t inFrameCount, char* const* outChannels);

}  // namespace appleaudiotoolbox

#endif
