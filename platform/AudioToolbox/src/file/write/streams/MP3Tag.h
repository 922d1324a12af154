// MP3Tag: the frame in front of a layer 3 stream that tells its length.
//
// It looks like a frame of silence to a decoder that does not know it. Behind its side information
// stand "Info" (constant rate) or "Xing", numbers of packets and bytes, a table for seeking, and
// the extension with the encoder's delay and padding. Sources: the published descriptions of the
// Xing header and of the LAME tag, revision 1.
#ifndef AUDIOTOOLBOX_FILE_WRITE_STREAMS_MP3TAG_H
#define AUDIOTOOLBOX_FILE_WRITE_STREAMS_MP3TAG_H

#include "file/write/streams/PacketPlaces.h"

#include <span>
#include <vector>

namespace audiotoolbox::streams
{

/// What a delay or a padding can say at the most: 12 bits.
constexpr UInt32 kLongestMP3Padding = 4095;

struct MP3TagFacts
{
    bool mIsConstantRate = false;
    UInt32 mBitRate = 0;    // bits per second that the encoder aimed at; 0: none
    SInt64 mByteCount = 0;  // of the audio, without the tag's own frame
    UInt32 mDelay = 0;      // frames, at most kLongestMP3Padding
    UInt32 mPadding = 0;    // frames, at most kLongestMP3Padding
    UInt16 mAudioChecksum = 0;
};

/// The first four bytes of the tag's frame: version, rate and channels of the stream, at the lowest
/// bit rate from inBitRate up whose frames have room for the tag. 0 for a rate that layer 3 has
/// not, or another number of channels than 1 or 2.
UInt32 MP3TagHeader(UInt32 inRate, UInt32 inChannels, UInt32 inBitRate);

/// The same header with the stereo mode and the rights of the stream's first one.
UInt32 LikeFirstHeader(UInt32 inTagHeader, std::span<const UInt8> inFirstPacket);

/// The whole frame; its size depends on the header alone.
std::vector<UInt8> MakeMP3TagFrame(UInt32 inHeader, const MP3TagFacts& inFacts,
                                   const PacketPlaces& inPlaces);

/// The checksum of the tag and of the audio, continued from inChecksum; it begins with 0.
UInt16 AddToMP3Checksum(UInt16 inChecksum, std::span<const UInt8> inBytes);

}  // namespace audiotoolbox::streams

#endif
