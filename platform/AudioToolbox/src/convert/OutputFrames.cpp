#include "convert/OutputFrames.h"

#include "convert/PlaneKernels.h"

#include <algorithm>
#include <cstring>

namespace audiotoolbox
{

OutputFrames::OutputFrames(const AudioStreamBasicDescription& inFormat, UInt32 inWantedFrames,
                           AudioBufferList& ioList)
    : mList(ioList),
      mBytesPerFrame(inFormat.mBytesPerFrame),
      mIsPlanar(IsNonInterleaved(inFormat)),
      mIsUsable(Matches(inFormat)),
      mCapacity(inWantedFrames)
{
    if (!mIsUsable)
        return;
    for (UInt32 i = 0; i < mList.mNumberBuffers; ++i)
    {
        const AudioBuffer& buffer = mList.mBuffers[i];
        mCapacity = std::min<std::size_t>(mCapacity, buffer.mDataByteSize / mBytesPerFrame);
    }
    for (UInt32 i = 0; i < mList.mNumberBuffers; ++i)
        if (mCapacity > 0 && mList.mBuffers[i].mData == nullptr)
            mIsUsable = false;
}

bool OutputFrames::Matches(const AudioStreamBasicDescription& inFormat) const
{
    // The channels that a buffer tells are not looked at: clients leave them as they are.
    return mList.mNumberBuffers == (mIsPlanar ? inFormat.mChannelsPerFrame : 1);
}

UInt8* OutputFrames::Place() const
{
    if (mIsPlanar)
        return nullptr;
    return static_cast<UInt8*>(mList.mBuffers[0].mData) + mDone * mBytesPerFrame;
}

void OutputFrames::Put(const UInt8* inFrames, std::size_t inFrameCount)
{
    if (mIsPlanar)
    {
        UInt8* planes[kMaxChannels];
        for (UInt32 i = 0; i < mList.mNumberBuffers; ++i)
            planes[i] = static_cast<UInt8*>(mList.mBuffers[i].mData) + mDone * mBytesPerFrame;
        DeinterleaveWords(inFrames, mBytesPerFrame, mList.mNumberBuffers, inFrameCount, planes);
    }
    else if (inFrameCount > 0)
        std::memcpy(Place(), inFrames, inFrameCount * mBytesPerFrame);
    Advance(inFrameCount);
}

void OutputFrames::Finish()
{
    if (!mIsUsable)
        return;
    for (UInt32 i = 0; i < mList.mNumberBuffers; ++i)
        mList.mBuffers[i].mDataByteSize = Done() * mBytesPerFrame;
}

}  // namespace audiotoolbox
