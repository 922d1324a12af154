// PacketPlaces: where the packets of a stream lie, evenly thinned, for tables of places to seek to.
#ifndef AUDIOTOOLBOX_FILE_WRITE_STREAMS_PACKETPLACES_H
#define AUDIOTOOLBOX_FILE_WRITE_STREAMS_PACKETPLACES_H

#include <CoreAudio/CoreAudioTypes.h>

#include <array>
#include <cstddef>
#include <span>

namespace audiotoolbox::streams
{

struct PacketPlace
{
    UInt64 mFirstFrame = 0;
    SInt64 mPosition = 0;  // bytes behind the first packet's start
    UInt32 mFrames = 0;
};

/// Keeps every packet's place, or every second, fourth ... one's: 200 to 400 of a long stream.
class PacketPlaces
{
public:
    void Note(const PacketPlace& inPlace)
    {
        const UInt64 packet = mPackets++;
        if (packet != mCount * mDistance)
            return;
        if (mCount == mPlaces.size())
            Thin();
        mPlaces[mCount++] = inPlace;
    }

    UInt64 PacketCount() const { return mPackets; }

    /// In order; the first is the first packet's.
    std::span<const PacketPlace> Kept() const { return std::span(mPlaces).first(mCount); }

    /// The last kept place at or before the packet; there is one.
    const PacketPlace& Before(UInt64 inPacket) const
    {
        const UInt64 index = inPacket / mDistance;
        return mPlaces[index < mCount ? static_cast<std::size_t>(index) : mCount - 1];
    }

private:
    // The number of places is even, so the next packet to keep is the one that set this off.
    void Thin()
    {
        mCount /= 2;
        mDistance *= 2;
        for (std::size_t i = 1; i < mCount; ++i)
            mPlaces[i] = mPlaces[2 * i];
    }

    std::array<PacketPlace, 400> mPlaces;
    std::size_t mCount = 0;
    UInt64 mDistance = 1;  // packets
    UInt64 mPackets = 0;
};

}  // namespace audiotoolbox::streams

#endif
