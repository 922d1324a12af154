#include "file/mpeg4/PacketIndex.h"

#include <algorithm>

namespace audiotoolbox::mpeg4
{
namespace
{

constexpr UInt32 kMostInRun = 64;  // bounds the sum that a seek has to work out

}  // namespace

void PacketIndex::Reserve(std::size_t inPackets, std::size_t inRuns)
{
    if (mConstantSize == 0)
        mSizes.reserve(inPackets);
    mRuns.reserve(inRuns);
}

void PacketIndex::AppendSize(UInt32 inBytes)
{
    if (!mIsWide && inBytes > 0xFFFF)
        WidenSizes();
    if (mIsWide)
        mWideSizes.push_back(inBytes);
    else
        mSizes.push_back(static_cast<UInt16>(inBytes));
}

void PacketIndex::WidenSizes()
{
    mIsWide = true;
    mWideSizes.reserve(std::max(mSizes.capacity(), mSizes.size() + 1));
    mWideSizes.assign(mSizes.begin(), mSizes.end());
    std::vector<UInt16>().swap(mSizes);
}

void PacketIndex::AddRun(SInt64 inOffset)
{
    mRuns.push_back({inOffset, mPlaced});
}

bool PacketIndex::Place(SInt64 inOffset, UInt32 inPackets)
{
    if (inOffset < 0 || inOffset > mFileSize)
        return false;
    return AddPacketsToRuns(inOffset, inPackets);
}

bool PacketIndex::AddPacketsToRuns(SInt64 inOffset, UInt32 inPackets)
{
    if (mConstantSize > 0)
    {
        const SInt64 room = (mFileSize - inOffset) / mConstantSize;
        const UInt32 fitting = static_cast<UInt32>(std::min<SInt64>(room, inPackets));
        if (fitting > 0 && inOffset != mNextOffset)
            AddRun(inOffset);
        mPlaced += fitting;
        mNextOffset = inOffset + SInt64{fitting} * mConstantSize;
        return fitting == inPackets;
    }
    for (SInt64 offset = inOffset; inPackets > 0; --inPackets)
    {
        const UInt32 size = SizeOf(mPlaced);
        if (mFileSize - offset < SInt64{size})
            return false;
        if (offset != mNextOffset || mRuns.empty() || mPlaced - mRuns.back().mFirst >= kMostInRun)
            AddRun(offset);
        ++mPlaced;
        offset += size;
        mNextOffset = offset;
    }
    return true;
}

void PacketIndex::Finish()
{
    if (mConstantSize == 0)
    {
        if (mIsWide)
            mWideSizes.resize(mPlaced);
        else
            mSizes.resize(mPlaced);
    }
    if (mRuns.capacity() > 2 * mRuns.size())
        mRuns.shrink_to_fit();
}

UInt32 PacketIndex::SizeOf(UInt32 inPacket) const
{
    if (mConstantSize > 0)
        return mConstantSize;
    return mIsWide ? mWideSizes[inPacket] : mSizes[inPacket];
}

UInt32 PacketIndex::LargestSize() const
{
    if (mPlaced == 0)
        return 0;
    if (mConstantSize > 0)
        return mConstantSize;
    return mIsWide ? *std::max_element(mWideSizes.begin(), mWideSizes.end())
                   : *std::max_element(mSizes.begin(), mSizes.end());
}

SInt64 PacketIndex::TotalBytes() const
{
    if (mConstantSize > 0)
        return SInt64{mConstantSize} * mPlaced;
    SInt64 total = 0;
    for (const UInt16 size : mSizes)
        total += size;
    for (const UInt32 size : mWideSizes)
        total += size;
    return total;
}

UInt32 PacketIndex::RunEnd(std::size_t inRun) const
{
    return inRun + 1 < mRuns.size() ? mRuns[inRun + 1].mFirst : mPlaced;
}

std::size_t PacketIndex::MemoryBytes() const
{
    return mSizes.capacity() * sizeof(UInt16) + mWideSizes.capacity() * sizeof(UInt32) +
           mRuns.capacity() * sizeof(Run);
}

void PacketIndex::Cursor::Seek(UInt32 inPacket)
{
    const std::vector<Run>& runs = mIndex.mRuns;
    mPacket = inPacket;
    if (inPacket >= mIndex.mPlaced)
        return;
    const auto behind =
        std::upper_bound(runs.begin(), runs.end(), inPacket,
                         [](UInt32 inLeft, const Run& inRight) { return inLeft < inRight.mFirst; });
    mRun = static_cast<std::size_t>(behind - runs.begin()) - 1;
    mOffset = runs[mRun].mOffset;
    if (mIndex.mConstantSize > 0)
        mOffset += SInt64{mIndex.mConstantSize} * (inPacket - runs[mRun].mFirst);
    else
        for (UInt32 packet = runs[mRun].mFirst; packet < inPacket; ++packet)
            mOffset += mIndex.SizeOf(packet);
}

void PacketIndex::Cursor::Advance(UInt32 inBytes)
{
    ++mPacket;
    mOffset += inBytes;
    if (mPacket >= mIndex.RunEnd(mRun))
        EnterNextRun();
}

void PacketIndex::Cursor::EnterNextRun()
{
    if (mRun + 1 >= mIndex.mRuns.size())
        return;
    ++mRun;
    mOffset = mIndex.mRuns[mRun].mOffset;
}

UInt32 PacketIndex::Cursor::PacketsInRun() const
{
    return mPacket < mIndex.mPlaced ? mIndex.RunEnd(mRun) - mPacket : 0;
}

void PacketIndex::Cursor::AdvanceConstant(UInt32 inPackets)
{
    mPacket += inPackets;
    mOffset += SInt64{mIndex.mConstantSize} * inPackets;
    if (mPacket >= mIndex.RunEnd(mRun))
        EnterNextRun();
}

}  // namespace audiotoolbox::mpeg4
