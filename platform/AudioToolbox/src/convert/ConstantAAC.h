// ConstantAAC: fills packets of AAC up to a constant bit rate.
//
// Fill elements go in before the end element, so what a decoder makes of the packet stays the
// same. The bytes of all packets so far never lag behind the rate; where a packet was too large
// for its share, the next ones get less to make up for it.
#ifndef AUDIOTOOLBOX_CONVERT_CONSTANTAAC_H
#define AUDIOTOOLBOX_CONVERT_CONSTANTAAC_H

#include <CoreAudio/CoreAudioTypes.h>

#include <vector>

namespace audiotoolbox
{

/// Appends fill elements and zero bits so that the packet has inByteCount bytes. A packet without
/// an end element, or one as large already, stays as it is.
void FillPacket(std::size_t inByteCount, std::vector<UInt8>& ioPacket);

class ConstantAAC
{
public:
    ConstantAAC(UInt32 inBitRate, UInt32 inRate, UInt32 inChannelCount)
        : mBitRate(inBitRate), mRate(inRate), mMostBytes(768 * inChannelCount)
    {
    }

    /// Once for each packet, in order.
    void Fill(std::vector<UInt8>& ioPacket);

    /// What the encoder does best to aim at for the next packet, bits per second: a little below
    /// the rate, lower while earlier packets were too large, and what it takes itself in silence.
    UInt32 Aim() const;

private:
    UInt32 mBitRate;
    UInt32 mRate;
    UInt32 mMostBytes;  // of a packet
    UInt64 mPackets = 0;
    UInt64 mBytes = 0;
    UInt64 mPlainBytes = 0;  // of the last packet, before it was filled
    UInt64 mSurplus = 0;     // bytes beyond the rate so far
};

}  // namespace audiotoolbox

#endif
