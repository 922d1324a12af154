// LossFinder: packets in the place of frames whose headers are damaged.
//
// A frame that is passed over would move everything behind it forward, so a loss is delivered as
// the packets that it took, for the decoder to refuse. How many those were is told by the frames
// behind it: exactly where they are of one size, else as nearly as their sizes tell. Bytes too few
// for a frame, and in a stream of a constant rate any that are not as long as whole frames, are
// noise between frames and passed over.
#ifndef AUDIOTOOLBOX_FILE_STREAMS_LOSSFINDER_H
#define AUDIOTOOLBOX_FILE_STREAMS_LOSSFINDER_H

#include "file/streams/FrameSearch.h"

#include <algorithm>
#include <cstdlib>

namespace audiotoolbox::streams
{

template <typename Syntax>
class LossFinder
{
public:
    using Header = typename Syntax::Header;

    explicit LossFinder(const Header& inFirst) : mFirst(inFirst) {}

    /// For a position without a frame. False where no damaged frame lies there or nothing follows.
    bool FindDamaged(StreamWindow& ioWindow, SInt64 inPosition, StreamPacket& outPacket)
    {
        if (SizeOfTagWithin(ioWindow, inPosition) > 0 || !FindNext(ioWindow, inPosition))
            return false;
        if (mPacketBytes == 0)
            return false;
        const SInt64 bytes = mNextAt - inPosition;
        const SInt64 frames = (bytes + mPacketBytes / 2) / mPacketBytes;
        if (frames == 0)
            return false;
        outPacket = PacketOf(inPosition, mNext);
        outPacket.mByteCount = static_cast<UInt32>(std::min<SInt64>(bytes / frames, mMost));
        return true;
    }

    /// True for a frame of another rate than the first, where all that follow have the first's.
    bool IsOddOneOut(StreamWindow& ioWindow, SInt64 inPosition, const Header& inHeader) const
    {
        if (inHeader.mBitRate == mFirst.mBitRate)
            return false;
        Header header;
        SInt64 position = inPosition + inHeader.mByteCount;
        int count = 0;
        while (count < kJudges && ReadFrame<Syntax>(ioWindow, position, header))
        {
            if (header.mBitRate != mFirst.mBitRate)
                return false;
            position += header.mByteCount;
            ++count;
        }
        return count > 0 || position == ioWindow.End();
    }

    /// For a frame with a doubtful header: the size that it must have had, if its header states a
    /// wrong one; else what the header states.
    UInt32 TrueSize(StreamWindow& ioWindow, SInt64 inPosition, const Header& inHeader)
    {
        const SInt64 stated = inHeader.mByteCount;
        Header other;
        SInt64 within = inPosition + static_cast<SInt64>(Syntax::kHeaderBytes);
        if (FindConfirmed<Syntax>(ioWindow, inPosition + stated, &mFirst, within, other))
            return static_cast<UInt32>(within - inPosition);
        const SInt64 end = inPosition + stated;
        if (SizeOfTagWithin(ioWindow, end) > 0 || !FindNext(ioWindow, end))
            return inHeader.mByteCount;
        const SInt64 whole = mNextAt - inPosition;
        const bool isOne = mIsConstant ? FramesWithin(whole) == 1 && FramesWithin(stated) != 1
                                       : whole <= LargestLikely();
        return static_cast<UInt32>(isOne ? std::min<SInt64>(whole, mMost) : stated);
    }

private:
    static constexpr int kJudges = 16;  // frames behind a loss that are looked at

    // The packets of one loss are asked for one by one and end at the same frame.
    bool FindNext(StreamWindow& ioWindow, SInt64 inPosition)
    {
        if (inPosition >= mLostAt && inPosition < mNextAt)
            return true;
        SInt64 position = inPosition;
        const SInt64 limit = std::min(ioWindow.End(), inPosition + kSearchBytes);
        const bool isFound = FindConfirmed<Syntax>(ioWindow, limit, &mFirst, position, mNext);
        mLostAt = inPosition;
        mNextAt = isFound ? position : inPosition;
        if (!isFound)
            return false;
        JudgeSizes(ioWindow);
        const SInt64 frames = FramesWithin(mNextAt - inPosition);
        mPacketBytes = frames > 0 ? (mNextAt - inPosition) / frames : 0;
        return true;
    }

    void JudgeSizes(StreamWindow& ioWindow)
    {
        mMost = std::max(mFirst.mByteCount, mNext.mByteCount);
        mLargest = 0;
        mIsConstant = true;
        SInt64 bytes = 0;
        SInt64 count = 0;
        Header header = mNext;
        for (SInt64 position = mNextAt;
             count < kJudges && ReadFrame<Syntax>(ioWindow, position, header);
             position += header.mByteCount)
        {
            mIsConstant = mIsConstant && HasConstantRate(header);
            mLargest = std::max<SInt64>(mLargest, header.mByteCount);
            bytes += header.mByteCount;
            ++count;
        }
        mMost = std::max<SInt64>(mMost, mLargest);
        mMean = std::max<SInt64>(bytes / std::max<SInt64>(count, 1), 1);
    }

    bool HasConstantRate(const Header& inHeader) const
    {
        const bool isStated = inHeader.mBitRate != 0;
        return isStated ? inHeader.mBitRate == mFirst.mBitRate
                        : inHeader.mByteCount == mFirst.mByteCount;
    }

    // A single frame may be somewhat larger than those behind it.
    SInt64 LargestLikely() const { return mLargest + mLargest / 4; }

    SInt64 FramesWithin(SInt64 inByteCount) const
    {
        if (!mIsConstant)
            return FramesOfVaryingSize(inByteCount);
        const SInt64 size = mNext.mByteCount;
        const SInt64 slack = std::max<SInt64>(size / 100, 1);  // padding makes some frames longer
        const SInt64 frames = (inByteCount + size / 2) / size;
        return std::abs(inByteCount - frames * size) <= frames * slack ? frames : 0;
    }

    SInt64 FramesOfVaryingSize(SInt64 inByteCount) const
    {
        if (inByteCount * 2 < mMean)
            return 0;
        if (inByteCount <= LargestLikely())
            return 1;
        return (inByteCount + mMean / 2) / mMean;
    }

    Header mFirst;
    Header mNext = {};
    SInt64 mLostAt = 0;
    SInt64 mNextAt = 0;       // not behind mLostAt: nothing was found
    SInt64 mPacketBytes = 0;  // of each packet of the loss; 0: it is passed over
    // Of the frames behind the loss, bytes.
    SInt64 mMean = 1;
    SInt64 mLargest = 0;
    SInt64 mMost = 0;  // that a packet of the loss gets
    bool mIsConstant = true;
};

}  // namespace audiotoolbox::streams

#endif
