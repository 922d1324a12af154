// FLACFramer: the frames of a FLAC stream, which do not state their size.
//
// A frame ends where the header of the next one begins: a sync code, fields like the first frame's,
// the right checksum and the number that continues. Where the numbering is broken, the checksum
// over the whole frame decides. Packets whose headers are destroyed are known by the numbers that
// are missing, unless blocks vary in length, and keep their places: their bytes are delivered for
// the decoder to refuse. The search is bounded by the largest frame that the stream may
// have, and its cost by a constant for each byte of the file, whatever the file holds.
#ifndef AUDIOTOOLBOX_FILE_STREAMS_FLACFRAMER_H
#define AUDIOTOOLBOX_FILE_STREAMS_FLACFRAMER_H

#include "file/streams/FLACHeader.h"
#include "file/streams/Framer.h"

namespace audiotoolbox::streams
{

class FLACFramer final : public Framer
{
public:
    FLACFramer(const FLACStreamInfo& inInfo, const FLACHeader& inFirst)
        : mInfo(inInfo), mFirst(inFirst), mLargestFrame(LargestFLACFrame(inInfo))
    {
    }

    bool FindPacket(StreamWindow& ioWindow, SInt64 inPosition, UInt64 inPacket,
                    StreamPacket& outPacket) override;

private:
    bool ReadHeader(std::span<const UInt8> inBytes, FLACHeader& outHeader) const;
    bool NextHeader(StreamWindow& ioWindow, SInt64 inBase, std::size_t& ioOffset,
                    FLACHeader& outHeader) const;
    UInt64 MissingBefore(const FLACHeader& inHeader, UInt64 inNumber) const;
    UInt32 FrameSize(StreamWindow& ioWindow, SInt64 inPosition, const FLACHeader& inHeader) const;
    UInt32 LastSize(StreamWindow& ioWindow, SInt64 inPosition, const FLACHeader& inHeader) const;
    bool FindAfterLoss(StreamWindow& ioWindow, SInt64 inPosition, StreamPacket& outPacket,
                       FLACHeader& outHeader) const;
    bool FindDamaged(StreamWindow& ioWindow, SInt64 inPosition, UInt64 inPacket,
                     StreamPacket& ioPacket, const FLACHeader& inNext) const;

    FLACStreamInfo mInfo;
    FLACHeader mFirst;
    UInt32 mLargestFrame;  // bytes
};

/// The first position of inBytes, from inFrom on, where a sync code may begin; inBytes.size()
/// without one.
std::size_t FindFLACSync(std::span<const UInt8> inBytes, std::size_t inFrom);

}  // namespace audiotoolbox::streams

#endif
