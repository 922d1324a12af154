// LossFinder: packets in the place of frames whose headers are damaged.
//
// A frame that is passed over would move everything behind it forward. Where a loss is as long as
// whole frames of a constant rate, its bytes are delivered as that many packets, for the decoder to
// refuse. In a loss of any other size bytes may be missing or too many: it is passed over.
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
        const SInt64 bytes = mNextAt - inPosition;
        const SInt64 frames = FramesWithin(bytes);
        if (frames == 0)
            return false;
        outPacket = PacketOf(inPosition, mNext);
        outPacket.mByteCount = static_cast<UInt32>(std::min<SInt64>(bytes / frames, LargerSize()));
        return true;
    }

private:
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
        return isFound;
    }

    SInt64 LargerSize() const { return std::max(mFirst.mByteCount, mNext.mByteCount); }

    bool IsRateConstant() const
    {
        const bool isStated = mNext.mBitRate != 0;
        return isStated ? mNext.mBitRate == mFirst.mBitRate : mNext.mByteCount == mFirst.mByteCount;
    }

    SInt64 FramesWithin(SInt64 inByteCount) const
    {
        if (!IsRateConstant())
            return 0;
        const SInt64 size = mNext.mByteCount;
        const SInt64 slack = std::max<SInt64>(size / 100, 1);  // padding makes some frames longer
        const SInt64 frames = (inByteCount + size / 2) / size;
        return std::abs(inByteCount - frames * size) <= frames * slack ? frames : 0;
    }

    Header mFirst;
    Header mNext = {};
    SInt64 mLostAt = 0;
    SInt64 mNextAt = 0;  // not behind mLostAt: nothing was found
};

}  // namespace audiotoolbox::streams

#endif
