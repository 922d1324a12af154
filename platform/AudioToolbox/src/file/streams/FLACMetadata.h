// FLACMetadata: the blocks in front of a FLAC stream's frames, as far as reading needs them.
#ifndef AUDIOTOOLBOX_FILE_STREAMS_FLACMETADATA_H
#define AUDIOTOOLBOX_FILE_STREAMS_FLACMETADATA_H

#include "file/streams/FLACHeader.h"
#include "file/streams/StreamWindow.h"

#include <array>

namespace audiotoolbox::streams
{

struct FLACMetadata
{
    std::array<UInt8, FLACStreamInfo::kBytes> mStreamInfoBytes = {};
    FLACStreamInfo mStreamInfo;
    UInt32 mChannelMask = 0;  // of WAVE's kind, from the comments; 0: none
    SInt64 mEnd = 0;          // where the frames begin
};

/// inStart  where the magic lies
/// 'typ?' without it, 'dta?' for blocks that do not hang together or are cut off.
OSStatus ReadFLACMetadata(StreamWindow& ioWindow, SInt64 inStart, FLACMetadata& outMetadata);

}  // namespace audiotoolbox::streams

#endif
