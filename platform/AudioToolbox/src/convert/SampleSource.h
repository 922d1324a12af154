// SampleSource: where a converter's samples come from, before they become the client's.
#ifndef AUDIOTOOLBOX_CONVERT_SAMPLESOURCE_H
#define AUDIOTOOLBOX_CONVERT_SAMPLESOURCE_H

#include "convert/SampleLayout.h"

#include <cstddef>

namespace audiotoolbox
{

/// Frames in memory that somebody else owns: interleaved in one plane, or one plane a channel.
struct SampleBlock
{
    const UInt8* mPlanes[kMaxChannels] = {};
    UInt32 mPlaneCount = 1;
    SampleLayout mLayout;
    std::size_t mFrameCount = 0;
};

class SampleSource
{
public:
    virtual ~SampleSource() = default;

    /// The next frames without taking them, at least one; none at the end. inWanted is a hint for
    /// how many are worth fetching. The block is valid until the next call of any operation, and
    /// until the fill returns. With a status it is empty.
    virtual OSStatus Peek(std::size_t inWanted, SampleBlock& outBlock) = 0;

    /// Takes frames, at most those of the last Peek.
    virtual void Consume(std::size_t inFrameCount) = 0;

    /// Forgets what is buffered.
    virtual void Reset() = 0;
};

}  // namespace audiotoolbox

#endif
