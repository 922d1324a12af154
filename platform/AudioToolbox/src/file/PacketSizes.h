// PacketSizes: where each packet of varying size lies, for packets without gaps between them.
//
// Costs 4 bytes a packet, 8 bytes for every 256 packets and, only where packets differ in length,
// 4 bytes a packet more. Any packet is found in at most 255 additions.
#ifndef AUDIOTOOLBOX_FILE_PACKETSIZES_H
#define AUDIOTOOLBOX_FILE_PACKETSIZES_H

#include <CoreAudio/CoreAudioTypes.h>

#include <vector>

namespace audiotoolbox
{

class PacketSizes
{
public:
    /// inFrames  frames of this packet, 0 where all packets have the format's constant
    void Append(UInt32 inSize, UInt32 inFrames);

    SInt64 Count() const { return static_cast<SInt64>(mSizes.size()); }
    /// Bytes before the packet; inPacket from 0 up to the count.
    SInt64 OffsetOf(SInt64 inPacket) const;
    UInt32 SizeOf(SInt64 inPacket) const { return mSizes[static_cast<std::size_t>(inPacket)]; }
    /// 0 where the format's constant holds.
    UInt32 FramesOf(SInt64 inPacket) const;

    UInt32 LargestSize() const { return mLargest; }
    SInt64 TotalBytes() const { return mTotalBytes; }
    /// Sum over the packets that state their frames.
    UInt64 TotalFrames() const { return mTotalFrames; }

private:
    static constexpr std::size_t kStride = 256;

    std::vector<UInt32> mSizes;
    std::vector<SInt64> mCheckpoints;  // offset of every packet whose number kStride divides
    std::vector<UInt32> mFrames;
    UInt32 mLargest = 0;
    SInt64 mTotalBytes = 0;
    UInt64 mTotalFrames = 0;
};

}  // namespace audiotoolbox

#endif
