// SampleIndex: what a file's tables will have to say of its packets, in little memory.
//
// Packets stand one behind the other, so their sizes tell where each one is. A packet costs 2 bytes
// (4 once one is larger than 65535 bytes, none while all have one size) and nothing for its length,
// but for 8 bytes wherever the length changes. An hour of AAC at 44.1 kHz takes 0.3 MB.
#ifndef AUDIOTOOLBOX_FILE_WRITE_MPEG4_SAMPLEINDEX_H
#define AUDIOTOOLBOX_FILE_WRITE_MPEG4_SAMPLEINDEX_H

#include <CoreAudio/CoreAudioTypes.h>

#include <cstddef>
#include <deque>
#include <vector>

namespace audiotoolbox::mpeg4writer
{

/// Neighbouring packets of the same length.
struct DurationRun
{
    UInt32 mPackets;
    UInt32 mFrames;  // of each
};

class SampleIndex
{
public:
    void Add(UInt32 inBytes, UInt32 inFrames);

    UInt32 Count() const { return mCount; }
    UInt32 SizeOf(UInt32 inPacket) const;
    UInt32 LargestSize() const { return mLargest; }
    UInt64 TotalBytes() const { return mTotalBytes; }
    UInt64 TotalFrames() const { return mTotalFrames; }

    /// Bytes of every packet; 0 where they differ, and without packets.
    UInt32 ConstantSize() const { return mIsConstant ? mFirstSize : 0; }

    const std::vector<DurationRun>& Durations() const { return mDurations; }

    /// Of sizes and durations, in memory.
    std::size_t BytesHeld() const
    {
        return sizeof(UInt16) * (mLowHalves.size() + mHighHalves.size()) +
               sizeof(DurationRun) * mDurations.size();
    }

private:
    void KeepSize(UInt32 inBytes);

    UInt32 mCount = 0;
    UInt32 mFirstSize = 0;
    UInt32 mLargest = 0;
    bool mIsConstant = true;
    UInt64 mTotalBytes = 0;
    UInt64 mTotalFrames = 0;
    std::deque<UInt16> mLowHalves;   // empty while all packets have one size
    std::deque<UInt16> mHighHalves;  // empty while no packet needs one
    std::vector<DurationRun> mDurations;
};

/// Bits per second over all packets, rounded; 0 without packets.
UInt32 AverageBitRate(const SampleIndex& inIndex, UInt32 inRate);

/// Bits per second of the second that holds most, not below the average.
UInt32 PeakBitRate(const SampleIndex& inIndex, UInt32 inRate);

}  // namespace audiotoolbox::mpeg4writer

#endif
