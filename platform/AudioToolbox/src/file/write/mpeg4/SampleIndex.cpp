#include "file/write/mpeg4/SampleIndex.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace audiotoolbox::mpeg4writer
{
namespace
{

UInt32 BitsPerSecond(UInt64 inBytes, UInt64 inFrames, UInt32 inRate)
{
    if (inFrames == 0)
        return 0;
    const double bits = static_cast<double>(inBytes) * 8 * inRate / static_cast<double>(inFrames);
    const double most = std::numeric_limits<UInt32>::max();
    return static_cast<UInt32>(std::min(std::round(bits), most));
}

}  // namespace

void SampleIndex::Add(UInt32 inBytes, UInt32 inFrames)
{
    KeepSize(inBytes);
    if (mDurations.empty() || mDurations.back().mFrames != inFrames)
        mDurations.push_back({0, inFrames});
    ++mDurations.back().mPackets;
    ++mCount;
    mLargest = std::max(mLargest, inBytes);
    mTotalBytes += inBytes;
    mTotalFrames += inFrames;
}

void SampleIndex::KeepSize(UInt32 inBytes)
{
    constexpr UInt32 kMostInHalf = 0xFFFF;
    if (mCount == 0)
        mFirstSize = inBytes;
    if (mIsConstant && inBytes == mFirstSize)
        return;
    if (mIsConstant)
    {
        mIsConstant = false;
        mLowHalves.assign(mCount, static_cast<UInt16>(mFirstSize));
        if (mFirstSize > kMostInHalf)
            mHighHalves.assign(mCount, static_cast<UInt16>(mFirstSize >> 16));
    }
    if (inBytes > kMostInHalf && mHighHalves.empty())
        mHighHalves.assign(mCount, 0);
    if (inBytes > kMostInHalf || !mHighHalves.empty())
        mHighHalves.push_back(static_cast<UInt16>(inBytes >> 16));
    mLowHalves.push_back(static_cast<UInt16>(inBytes));
}

UInt32 SampleIndex::SizeOf(UInt32 inPacket) const
{
    if (mIsConstant)
        return mFirstSize;
    const UInt32 high = mHighHalves.empty() ? 0 : mHighHalves[inPacket];
    return high << 16 | mLowHalves[inPacket];
}

UInt32 AverageBitRate(const SampleIndex& inIndex, UInt32 inRate)
{
    return BitsPerSecond(inIndex.TotalBytes(), inIndex.TotalFrames(), inRate);
}

UInt32 PeakBitRate(const SampleIndex& inIndex, UInt32 inRate)
{
    const UInt32 average = AverageBitRate(inIndex, inRate);
    if (inIndex.Count() == 0 || inIndex.ConstantSize() > 0)
        return average;
    const UInt32 usual = std::max(inIndex.Durations().front().mFrames, 1u);
    const UInt32 window = std::clamp(inRate / usual, 1u, inIndex.Count());
    UInt64 bytes = 0;
    UInt64 most = 0;
    for (UInt32 packet = 0; packet < inIndex.Count(); ++packet)
    {
        bytes += inIndex.SizeOf(packet);
        if (packet >= window)
            bytes -= inIndex.SizeOf(packet - window);
        most = std::max(most, bytes);
    }
    return std::max(average, BitsPerSecond(most, UInt64{window} * usual, inRate));
}

}  // namespace audiotoolbox::mpeg4writer
