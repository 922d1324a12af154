// FLACHeader: the description of a FLAC stream and the header of each of its frames.
//
// Source: RFC 9639, sections 8.2 and 9.1.
#ifndef AUDIOTOOLBOX_FILE_STREAMS_FLACHEADER_H
#define AUDIOTOOLBOX_FILE_STREAMS_FLACHEADER_H

#include <CoreAudio/CoreAudioTypes.h>

#include <cstddef>
#include <span>

namespace audiotoolbox::streams
{

/// STREAMINFO, which is also the decoder's cookie.
struct FLACStreamInfo
{
    static constexpr std::size_t kBytes = 34;

    UInt32 mSmallestBlock = 0;   // frames
    UInt32 mLargestBlock = 0;    // frames
    UInt32 mSmallestPacket = 0;  // bytes, 0 unknown
    UInt32 mLargestPacket = 0;   // bytes, 0 unknown
    UInt32 mSampleRate = 0;      // Hz
    UInt32 mChannels = 0;
    UInt32 mBits = 0;       // of a sample
    UInt64 mAllFrames = 0;  // of the stream, 0 unknown

    bool HasConstantBlocks() const { return mSmallestBlock == mLargestBlock; }
};

/// False for numbers that no stream may have.
bool ParseStreamInfo(std::span<const UInt8, FLACStreamInfo::kBytes> inBytes,
                     FLACStreamInfo& outInfo);

/// Bytes: no frame is larger. As stated, but not beyond what the stored samples could take.
UInt32 LargestFLACFrame(const FLACStreamInfo& inInfo);

struct FLACHeader
{
    static constexpr std::size_t kLongest = 16;  // bytes

    bool mHasVariableBlocks = false;
    UInt32 mBlock = 0;       // frames in this packet
    UInt32 mSampleRate = 0;  // Hz; as the stream's where the header leaves it open
    UInt32 mChannels = 0;
    UInt32 mBits = 0;         // as the stream's where the header leaves it open
    UInt64 mNumber = 0;       // of the packet; with variable blocks, of its first frame
    UInt32 mHeaderBytes = 0;  // checksum included

    /// What numbers count by, and the number of the packet that follows.
    UInt64 Step() const { return mHasVariableBlocks ? mBlock : 1; }
    UInt64 NextNumber() const { return mNumber + Step(); }
};

/// inBytes  from the header on; as many as there are, kLongest suffice
/// False for anything but a whole header with the right checksum.
bool ParseFLACHeader(std::span<const UInt8> inBytes, const FLACStreamInfo& inInfo,
                     FLACHeader& outHeader);

/// True when a header may belong to the stream that begins with inFirst.
bool AreAlike(const FLACHeader& inFirst, const FLACHeader& inHeader);

/// The checksum over a frame, continued from inChecksum. It is 0 over a whole undamaged frame.
UInt16 AddToFrameChecksum(UInt16 inChecksum, std::span<const UInt8> inBytes);

}  // namespace audiotoolbox::streams

#endif
