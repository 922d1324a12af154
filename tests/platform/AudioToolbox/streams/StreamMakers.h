// StreamMakers: frames with honest headers and a body of noise, for streams that no tool here
// makes.
#ifndef TESTS_PLATFORM_AUDIOTOOLBOX_STREAMS_STREAMMAKERS_H
#define TESTS_PLATFORM_AUDIOTOOLBOX_STREAMS_STREAMMAKERS_H

#include "StreamTesting.h"

namespace stream_testing
{

/// Repeatable noise. Without sync: no byte that a header of any of the streams begins with.
Bytes Noise(std::size_t inBytes, UInt32 inSeed);
Bytes NoiseWithoutSync(std::size_t inBytes, UInt32 inSeed);

/// Any frame of MPEG audio: its four header bytes, then noise without sync.
Bytes MPEGFrame(UInt32 inHeader, std::size_t inBytes);

/// MPEG-1 layer 3, 44.1 kHz stereo, 128 kbit/s: 417 bytes.
Bytes MP3Frame();

/// The same with a Xing or Info tag. Numbers below 0 are left out.
Bytes MP3TagFrame(const char* inMagic, SInt64 inPackets, SInt64 inBytes, const char* inEncoder,
                  UInt32 inDelay, UInt32 inPadding);

/// Low complexity. inRateIndex 4 is 44.1 kHz, 6 is 24 kHz.
Bytes ADTSFrame(UInt32 inRateIndex, UInt32 inChannelConfig, std::size_t inBytes,
                UInt32 inBlocks = 1, bool inHasCRC = false);

/// E-AC-3 at 48 kHz. inType 0 independent, 1 dependent; inBlockCode 0 to 3 for 1, 2, 3, 6 blocks.
/// inChannelMap 0: none.
Bytes EAC3Frame(UInt32 inType, UInt32 inSubstream, UInt32 inMode, bool inHasLFE,
                std::size_t inBytes, UInt32 inBlockCode = 3, UInt32 inChannelMap = 0);

/// A frame of AMR: the mode's byte, then zeros.
Bytes AMRFrame(UInt32 inMode, std::size_t inBytes);

/// What a made FLAC stream looks like.
struct FLACShape
{
    UInt32 mSmallestBlock = 4096;
    UInt32 mLargestBlock = 4096;
    UInt32 mLargestPacket = 0;
    UInt32 mSampleRate = 44100;
    UInt32 mChannels = 2;
    UInt32 mBits = 16;
    UInt64 mAllFrames = 0;
};
Bytes FLACHead(const FLACShape& inShape, bool inIsLast = true);
Bytes FLACBlock(UInt32 inKind, bool inIsLast, const Bytes& inBody);
Bytes FLACMaskComment(const std::string& inComment);

/// A frame with the right checksums around inBody. The body is no audio; only framing is tested.
Bytes FLACFrame(const FLACShape& inShape, UInt64 inNumber, UInt32 inBlock, const Bytes& inBody,
                bool inHasVariableBlocks = false);

Bytes ID3v2Tag(std::size_t inBodyBytes);
Bytes ID3v1Tag();
Bytes APETag(std::size_t inBodyBytes);
Bytes LyricsTag();

}  // namespace stream_testing

#endif
