// PlaneKernels: one plane a channel becomes interleaved frames.
#ifndef AUDIOTOOLBOX_CONVERT_PLANEKERNELS_H
#define AUDIOTOOLBOX_CONVERT_PLANEKERNELS_H

#include "convert/SampleLayout.h"

#include <cstddef>

namespace audiotoolbox
{

/// True for what InterleaveToFloat takes: native 16-bit and 32-bit integers and 32-bit floats.
bool CanInterleaveToFloat(const SampleLayout& inPlanes);

/// To native 32-bit floats, converting on the way as SampleKernel does.
///
/// inPlanes   [channel][frame]
/// outFrames  [frame][channel]
void InterleaveToFloat(const UInt8* const* inPlanes, SampleWord inWord, UInt32 inChannelCount,
                       std::size_t inFrameCount, Float32* outFrames);

/// Words as they are, 1, 2, 3, 4 or 8 bytes each.
void InterleaveWords(const UInt8* const* inPlanes, UInt32 inWordBytes, UInt32 inChannelCount,
                     std::size_t inFrameCount, UInt8* outFrames);

/// The way back.
void DeinterleaveWords(const UInt8* inFrames, UInt32 inWordBytes, UInt32 inChannelCount,
                       std::size_t inFrameCount, UInt8* const* outPlanes);

}  // namespace audiotoolbox

#endif
