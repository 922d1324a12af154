// PacketTimes: what a track's packet durations (stts, or the runs of fragments) say in sum.
#ifndef AUDIOTOOLBOX_FILE_MPEG4_PACKETTIMES_H
#define AUDIOTOOLBOX_FILE_MPEG4_PACKETTIMES_H

#include <CoreAudio/CoreAudioTypes.h>

namespace audiotoolbox::mpeg4
{

/// In ticks of the track's timescale.
class PacketTimes
{
public:
    /// inPackets packets last inTicks each.
    void Add(UInt32 inPackets, UInt32 inTicks)
    {
        if (inPackets == 0)
            return;
        if (mCount == 0)
            mFirst = inTicks;
        else if (mLast != mFirst)
            mIsUniform = false;  // the odd one was not the last
        if (inTicks != mFirst && inPackets > 1)
            mIsUniform = false;
        mLast = inTicks;
        mCount += inPackets;
        mTotal += UInt64{inPackets} * inTicks;
    }

    UInt64 Count() const { return mCount; }
    UInt64 Total() const { return mTotal; }
    UInt32 First() const { return mFirst; }
    UInt32 Last() const { return mLast; }

    /// True when all packets but the last have the same duration.
    bool IsUniform() const { return mIsUniform; }
    bool HasShortLast() const { return mIsUniform && mLast < mFirst; }

private:
    UInt64 mCount = 0;
    UInt64 mTotal = 0;
    UInt32 mFirst = 0;
    UInt32 mLast = 0;
    bool mIsUniform = true;
};

}  // namespace audiotoolbox::mpeg4

#endif
