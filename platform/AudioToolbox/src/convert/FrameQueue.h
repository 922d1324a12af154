// FrameQueue: frames that wait for the client, first in, first out.
//
// Grows to what is once needed and then stays.
#ifndef AUDIOTOOLBOX_CONVERT_FRAMEQUEUE_H
#define AUDIOTOOLBOX_CONVERT_FRAMEQUEUE_H

#include <CoreAudio/CoreAudioTypes.h>

#include <cstring>
#include <vector>

namespace audiotoolbox
{

class FrameQueue
{
public:
    explicit FrameQueue(std::size_t inBytesPerFrame) : mBytesPerFrame(inBytesPerFrame) {}

    std::size_t FrameCount() const { return (mEnd - mBegin) / mBytesPerFrame; }
    const UInt8* Front() const { return mBytes.data() + mBegin; }

    /// Room for inFrameCount frames behind the last; Added tells how many were written there.
    UInt8* Back(std::size_t inFrameCount)
    {
        const std::size_t bytes = inFrameCount * mBytesPerFrame;
        if (mBegin > 0 && mEnd + bytes > mBytes.size())
            MoveToFront();
        if (mEnd + bytes > mBytes.size())
            mBytes.resize(mEnd + bytes);
        return mBytes.data() + mEnd;
    }
    void Added(std::size_t inFrameCount) { mEnd += inFrameCount * mBytesPerFrame; }

    void DropFront(std::size_t inFrameCount) { mBegin += inFrameCount * mBytesPerFrame; }
    void DropBack(std::size_t inFrameCount) { mEnd -= inFrameCount * mBytesPerFrame; }
    void Clear() { mBegin = mEnd = 0; }

private:
    void MoveToFront()
    {
        if (mEnd > mBegin)
            std::memmove(mBytes.data(), mBytes.data() + mBegin, mEnd - mBegin);
        mEnd -= mBegin;
        mBegin = 0;
    }

    const std::size_t mBytesPerFrame;
    std::vector<UInt8> mBytes;
    std::size_t mBegin = 0;  // bytes
    std::size_t mEnd = 0;
};

}  // namespace audiotoolbox

#endif
