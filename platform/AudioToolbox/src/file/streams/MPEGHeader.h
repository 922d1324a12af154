// MPEGHeader: the four bytes in front of every frame of MPEG audio, layers 1 to 3.
//
// Source: ISO/IEC 11172-3 and 13818-3, and the customary extension to 8, 11.025 and 12 kHz. Frames
// of free format (no bit rate stated) are no headers here: nothing could decode them.
#ifndef AUDIOTOOLBOX_FILE_STREAMS_MPEGHEADER_H
#define AUDIOTOOLBOX_FILE_STREAMS_MPEGHEADER_H

#include <CoreAudio/CoreAudioTypes.h>

#include <cstddef>

namespace audiotoolbox::streams
{

struct MPEGHeader
{
    UInt32 mHalvings = 0;  // of the sample rate: 0 MPEG-1, 1 MPEG-2, 2 the extension
    UInt32 mLayer = 0;
    UInt32 mSampleRate = 0;
    UInt32 mChannels = 0;
    UInt32 mBitRate = 0;     // bits per second
    UInt32 mByteCount = 0;   // of the frame
    UInt32 mFrameCount = 0;  // frames per packet
    bool mHasCRC = false;
};

struct MPEGSyntax
{
    using Header = MPEGHeader;
    static constexpr std::size_t kHeaderBytes = 4;
    static constexpr int kSyncByte = 0xFF;

    static bool Parse(const UInt8* inBytes, MPEGHeader& outHeader);
    static bool AreAlike(const MPEGHeader& inLeft, const MPEGHeader& inRight)
    {
        return inLeft.mHalvings == inRight.mHalvings && inLeft.mLayer == inRight.mLayer &&
               inLeft.mSampleRate == inRight.mSampleRate;
    }
    static bool Follows(const MPEGHeader& inFirst, const MPEGHeader& inHeader)
    {
        return AreAlike(inFirst, inHeader);
    }
};

/// True for a header that is in order but for its bit rate, which it leaves to the frames'
/// distance.
bool IsFreeFormat(const UInt8* inBytes);

/// Bytes of the largest frame of a stream with such headers.
UInt32 LargestMPEGFrame(const MPEGHeader& inHeader);

}  // namespace audiotoolbox::streams

#endif
