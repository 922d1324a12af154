#include "convert/FrameWriter.h"

#include "convert/PlaneKernels.h"

#include <algorithm>
#include <cstdint>

namespace audiotoolbox
{

void FrameWriter::Write(const SampleBlock& inBlock, std::size_t inFrameCount, UInt8* outFrames)
{
    if (!mKernel || !(mFrom == inBlock.mLayout))
    {
        mFrom = inBlock.mLayout;
        mKernel.emplace(mFrom, mTo);
    }
    if (inBlock.mPlaneCount == 1)
        (*mKernel)(inBlock.mPlanes[0], outFrames, inFrameCount * mChannelCount);
    else
        WritePlanes(inBlock, inFrameCount, outFrames);
}

void FrameWriter::WritePlanes(const SampleBlock& inBlock, std::size_t inFrameCount,
                              UInt8* outFrames)
{
    const bool isAligned = reinterpret_cast<std::uintptr_t>(outFrames) % alignof(Float32) == 0;
    if (mTo == SampleLayout() && isAligned && CanInterleaveToFloat(mFrom))
        return InterleaveToFloat(inBlock.mPlanes, mFrom.mWord, mChannelCount, inFrameCount,
                                 reinterpret_cast<Float32*>(outFrames));

    // Pieces that stay in the nearest cache, so that memory sees one pass.
    UInt8 piece[8192];
    const UInt32 wordBytes = WordBytes(mFrom.mWord);
    const std::size_t most = sizeof(piece) / (std::size_t{wordBytes} * mChannelCount);
    const std::size_t outFrameBytes = std::size_t{WordBytes(mTo.mWord)} * mChannelCount;
    const UInt8* planes[kMaxChannels];
    for (std::size_t done = 0; done < inFrameCount;)
    {
        const std::size_t frames = std::min(most, inFrameCount - done);
        for (UInt32 channel = 0; channel < mChannelCount; ++channel)
            planes[channel] = inBlock.mPlanes[channel] + done * wordBytes;
        InterleaveWords(planes, wordBytes, mChannelCount, frames, piece);
        (*mKernel)(piece, outFrames + done * outFrameBytes, frames * mChannelCount);
        done += frames;
    }
}

}  // namespace audiotoolbox
