// AC3Header: the bit stream information in front of every frame of AC-3 and E-AC-3.
//
// Source: ATSC A/52, syncinfo, bsi and annex E. E-AC-3 may split one moment of a programme into
// several frames: an independent one and dependent ones behind it that add channels.
#ifndef AUDIOTOOLBOX_FILE_STREAMS_AC3HEADER_H
#define AUDIOTOOLBOX_FILE_STREAMS_AC3HEADER_H

#include <CoreAudio/CoreAudioTypes.h>

#include <cstddef>

namespace audiotoolbox::streams
{

struct AC3Header
{
    bool mIsEnhanced = false;   // E-AC-3
    bool mIsDependent = false;  // adds to the independent frame before it
    UInt32 mSubstream = 0;      // number of the programme, or of the dependent frame
    UInt32 mSampleRate = 0;     // Hz
    UInt32 mMode = 0;           // acmod, 0 to 7
    bool mHasLFE = false;
    UInt32 mChannelMap = 0;  // of a dependent frame, bit 15 the first location; 0: none
    UInt32 mByteCount = 0;
    UInt32 mFrameCount = 0;
    UInt32 mBitRate = 0;  // bits per second; 0 for E-AC-3, which does not state it

    /// A packet begins with the independent frame of the first programme.
    bool LeadsPacket() const { return !mIsDependent && mSubstream == 0; }
};

struct AC3Syntax
{
    using Header = AC3Header;
    static constexpr std::size_t kHeaderBytes = 16;
    static constexpr int kSyncByte = 0x0B;

    static bool Parse(const UInt8* inBytes, AC3Header& outHeader);
    static bool AreAlike(const AC3Header& inLeft, const AC3Header& inRight)
    {
        return inLeft.mSampleRate == inRight.mSampleRate;
    }
};

}  // namespace audiotoolbox::streams

#endif
