// FLACBlocks: the metadata in front of a FLAC stream's frames.
//
// Source: RFC 9639, section 8. All blocks together have a size that is known at the start, so that
// they can be written again at the end.
#ifndef AUDIOTOOLBOX_FILE_WRITE_STREAMS_FLACBLOCKS_H
#define AUDIOTOOLBOX_FILE_WRITE_STREAMS_FLACBLOCKS_H

#include "file/streams/FLACHeader.h"
#include "file/write/streams/PacketPlaces.h"

#include <array>
#include <vector>

namespace audiotoolbox::streams
{

using StreamInfoBytes = std::array<UInt8, FLACStreamInfo::kBytes>;

/// Magic, STREAMINFO, a table for seeking and the comments.
/// inChannelMask  of WAVE's kind, for channels that are not the format's own; 0: they are
/// inPlaces       of the packets; the table has room for 100, what is missing is a placeholder
std::vector<UInt8> MakeFLACHead(const StreamInfoBytes& inInfo, AudioChannelBitmap inChannelMask,
                                const PacketPlaces& inPlaces);

/// Sets the number of frames, held to the field's 36 bits; 0 is unknown.
void SetAllFrames(UInt64 inFrames, StreamInfoBytes& ioInfo);

/// The checksum of the audio becomes unknown.
void ForgetAudioChecksum(StreamInfoBytes& ioInfo);

}  // namespace audiotoolbox::streams

#endif
