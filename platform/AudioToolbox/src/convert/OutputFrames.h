// OutputFrames: the client's buffer list, filled from the front and never beyond its room.
#ifndef AUDIOTOOLBOX_CONVERT_OUTPUTFRAMES_H
#define AUDIOTOOLBOX_CONVERT_OUTPUTFRAMES_H

#include "convert/SampleLayout.h"

#include <cstddef>

namespace audiotoolbox
{

class OutputFrames
{
public:
    /// inFormat is linear PCM. The list is the client's and stays until Finish.
    OutputFrames(const AudioStreamBasicDescription& inFormat, UInt32 inWantedFrames,
                 AudioBufferList& ioList);

    /// False for a list whose buffers do not match the format, or that has room but no memory.
    bool IsUsable() const { return mIsUsable; }

    std::size_t Room() const { return mCapacity - mDone; }
    UInt32 Done() const { return static_cast<UInt32>(mDone); }

    /// Where the next frames go when they are interleaved; null when each channel has a buffer.
    UInt8* Place() const;
    /// Counts frames that were written at Place().
    void Advance(std::size_t inFrameCount) { mDone += inFrameCount; }

    /// Copies interleaved frames of the format, at most Room().
    void Put(const UInt8* inFrames, std::size_t inFrameCount);

    /// Tells the list the bytes that it holds now.
    void Finish();

private:
    bool Matches(const AudioStreamBasicDescription& inFormat) const;

    AudioBufferList& mList;
    const UInt32 mBytesPerFrame;  // in one buffer
    const bool mIsPlanar;
    bool mIsUsable;
    std::size_t mCapacity;
    std::size_t mDone = 0;
};

}  // namespace audiotoolbox

#endif
