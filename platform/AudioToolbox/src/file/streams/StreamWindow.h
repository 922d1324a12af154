// StreamWindow: a stretch of a file in memory that follows the reading position.
//
// Framers look at headers and readers copy packets through it, so that a file read from front to
// back is fetched once, in large blocks. Positions are bytes from the start of the file.
#ifndef AUDIOTOOLBOX_FILE_STREAMS_STREAMWINDOW_H
#define AUDIOTOOLBOX_FILE_STREAMS_STREAMWINDOW_H

#include "file/ByteSource.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <span>

namespace audiotoolbox::streams
{

class StreamWindow
{
public:
    /// inSource outlives the window. Nothing at or behind inEnd shows.
    StreamWindow(ByteSource& inSource, SInt64 inEnd);

    /// The bytes in memory from inPosition on, at least inWanted of them unless the data ends
    /// before or a read fails. Valid until the next call. inPosition is never negative.
    /// Throws std::bad_alloc only for an inWanted that is larger than any before.
    std::span<const UInt8> Look(SInt64 inPosition, std::size_t inWanted)
    {
        const SInt64 left = std::max<SInt64>(mEnd - inPosition, 0);
        const SInt64 wanted = std::min<SInt64>(static_cast<SInt64>(inWanted), left);
        if (inPosition >= mStart && inPosition + wanted <= mStart + mFilled)
            return Held(inPosition);
        return Fetch(inPosition, wanted);
    }

    /// Where the data ends: as given, or earlier when the source ran out before.
    SInt64 End() const { return mEnd; }

    /// The status of the last fetch. After a failure Look answers what it has, perhaps nothing,
    /// and tries again when it is asked again.
    OSStatus Status() const { return mStatus; }
    void ForgetFailure() { mStatus = noErr; }

private:
    std::span<const UInt8> Held(SInt64 inPosition) const
    {
        const SInt64 count = std::max<SInt64>(mStart + mFilled - inPosition, 0);
        return {mBuffer.get() + (inPosition - mStart), static_cast<std::size_t>(count)};
    }

    std::span<const UInt8> Fetch(SInt64 inPosition, SInt64 inWanted);
    void MoveTo(SInt64 inPosition, SInt64 inWanted);

    ByteSource& mSource;
    SInt64 mEnd;
    SInt64 mStart = 0;   // position of the buffer's first byte
    SInt64 mFilled = 0;  // bytes in the buffer
    SInt64 mCapacity;
    std::unique_ptr<UInt8[]> mBuffer;
    OSStatus mStatus = noErr;
};

}  // namespace audiotoolbox::streams

#endif
