#include "file/PacketSizes.h"

#include <algorithm>
#include <numeric>

namespace audiotoolbox
{

void PacketSizes::Append(UInt32 inSize, UInt32 inFrames)
{
    if (mSizes.size() % kStride == 0)
        mCheckpoints.push_back(mTotalBytes);
    if (inFrames > 0)
    {
        mFrames.resize(mSizes.size());
        mFrames.push_back(inFrames);
    }
    mSizes.push_back(inSize);
    mLargest = std::max(mLargest, inSize);
    mTotalBytes += inSize;
    mTotalFrames += inFrames;
}

SInt64 PacketSizes::OffsetOf(SInt64 inPacket) const
{
    const auto packet = static_cast<std::size_t>(inPacket);
    if (packet >= mSizes.size())
        return mTotalBytes;
    const auto first = mSizes.begin() + static_cast<std::ptrdiff_t>(packet - packet % kStride);
    const auto last = mSizes.begin() + static_cast<std::ptrdiff_t>(packet);
    return std::accumulate(first, last, mCheckpoints[packet / kStride]);
}

UInt32 PacketSizes::FramesOf(SInt64 inPacket) const
{
    const auto packet = static_cast<std::size_t>(inPacket);
    return packet < mFrames.size() ? mFrames[packet] : 0;
}

}  // namespace audiotoolbox
