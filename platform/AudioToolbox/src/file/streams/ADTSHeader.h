// ADTSHeader: the 7 bytes (9 with a checksum) in front of every frame of raw AAC.
//
// Source: ISO/IEC 13818-7 and 14496-3, adts_frame.
#ifndef AUDIOTOOLBOX_FILE_STREAMS_ADTSHEADER_H
#define AUDIOTOOLBOX_FILE_STREAMS_ADTSHEADER_H

#include <CoreAudio/CoreAudioTypes.h>

#include <cstddef>
#include <span>

namespace audiotoolbox::streams
{

struct ADTSHeader
{
    UInt32 mObjectType = 0;     // of the core, as in a decoder configuration
    UInt32 mSampleRate = 0;     // of the core, Hz
    UInt32 mChannelConfig = 0;  // 0: a program config element in the first block tells
    UInt32 mBlocks = 0;         // raw data blocks of 1024 frames, 1 to 4
    UInt32 mHeaderBytes = 0;
    UInt32 mByteCount = 0;   // of the frame, header included
    UInt32 mFrameCount = 0;  // at the core's rate
    UInt32 mBitRate = 0;     // never stated
};

struct ADTSSyntax
{
    using Header = ADTSHeader;
    static constexpr std::size_t kHeaderBytes = 7;
    static constexpr int kSyncByte = 0xFF;

    static bool Parse(const UInt8* inBytes, ADTSHeader& outHeader);
    static bool AreAlike(const ADTSHeader& inLeft, const ADTSHeader& inRight)
    {
        return inLeft.mObjectType == inRight.mObjectType &&
               inLeft.mSampleRate == inRight.mSampleRate;
    }
    // A broadcast may change its rate and channels from one frame to the next.
    static bool Follows(const ADTSHeader&, const ADTSHeader&) { return true; }
};

/// The most that the length field can say.
constexpr UInt32 kLargestADTSFrame = 8191;

/// Channels by the program config element that begins a frame's first block; 0 when none does.
UInt32 ChannelsOfProgramConfig(const ADTSHeader& inHeader, std::span<const UInt8> inFrame);

}  // namespace audiotoolbox::streams

#endif
