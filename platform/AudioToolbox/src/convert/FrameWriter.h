// FrameWriter: frames of a block into interleaved frames of a layout.
#ifndef AUDIOTOOLBOX_CONVERT_FRAMEWRITER_H
#define AUDIOTOOLBOX_CONVERT_FRAMEWRITER_H

#include "convert/SampleKernels.h"
#include "convert/SampleSource.h"

#include <optional>

namespace audiotoolbox
{

class FrameWriter
{
public:
    FrameWriter(UInt32 inChannelCount, const SampleLayout& inTo)
        : mChannelCount(inChannelCount), mTo(inTo)
    {
    }

    /// The first inFrameCount frames of the block, which has this many or more.
    void Write(const SampleBlock& inBlock, std::size_t inFrameCount, UInt8* outFrames);

private:
    void WritePlanes(const SampleBlock& inBlock, std::size_t inFrameCount, UInt8* outFrames);

    const UInt32 mChannelCount;
    const SampleLayout mTo;
    SampleLayout mFrom;
    std::optional<SampleKernel> mKernel;  // from mFrom; chosen anew when the layout changes
};

}  // namespace audiotoolbox

#endif
