// WalkIndex: where a walk over a stream came by, to start again from there.
//
// 8 KiB whatever the stream's length. At first every 64th packet has an entry (an eighth of a byte
// a packet); when the table is full, every other entry goes and the distance doubles. So a jump
// walks at most a 512th of the packets before it, or 64 packets.
#ifndef AUDIOTOOLBOX_FILE_STREAMS_WALKINDEX_H
#define AUDIOTOOLBOX_FILE_STREAMS_WALKINDEX_H

#include <CoreAudio/CoreAudioTypes.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace audiotoolbox::streams
{

class WalkIndex
{
public:
    struct Entry
    {
        UInt64 mPacket = 0;
        SInt64 mPosition = 0;  // where to look for the packet
    };

    explicit WalkIndex(SInt64 inFirstPosition) { mPositions[0] = inFirstPosition; }

    /// Called for each packet that a walk comes by. Walks start at an entry, so none is left out.
    void Note(UInt64 inPacket, SInt64 inPosition)
    {
        if (inPacket != mCount * mDistance)
            return;
        if (mCount == mPositions.size())
            Thin();
        if (inPacket == mCount * mDistance)
            mPositions[mCount++] = inPosition;
    }

    /// The last entry at or before the packet.
    Entry Before(UInt64 inPacket) const
    {
        const UInt64 index = std::min<UInt64>(inPacket / mDistance, mCount - 1);
        return {index * mDistance, mPositions[static_cast<std::size_t>(index)]};
    }

private:
    void Thin()
    {
        mCount /= 2;
        mDistance *= 2;
        for (std::size_t i = 1; i < mCount; ++i)
            mPositions[i] = mPositions[2 * i];
    }

    std::array<SInt64, 1024> mPositions;
    std::size_t mCount = 1;
    UInt64 mDistance = 64;  // packets
};

}  // namespace audiotoolbox::streams

#endif
