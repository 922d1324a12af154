// SampleTables: where every packet stands and how large it is, as the last tables of a track.
//
// Packets are grouped into chunks of about half a second. Both tables grow with the audio, so they
// are sized first and then written in blocks.
#ifndef AUDIOTOOLBOX_FILE_WRITE_MPEG4_SAMPLETABLES_H
#define AUDIOTOOLBOX_FILE_WRITE_MPEG4_SAMPLETABLES_H

#include "file/write/ByteSink.h"
#include "file/write/mpeg4/SampleIndex.h"

#include <cstddef>

namespace audiotoolbox::mpeg4writer
{

struct SampleTables
{
    const SampleIndex& mIndex;
    SInt64 mDataStart;        // where in the file the first packet stands
    UInt32 mPacketsPerChunk;  // at least 1

    UInt32 ChunkCount() const { return (mIndex.Count() + mPacketsPerChunk - 1) / mPacketsPerChunk; }

    /// Of both boxes.
    std::size_t ByteCount() const;

    /// 'stsz', then 'stco', or 'co64' for a file beyond 4 GiB.
    OSStatus Append(ByteSink& ioSink) const;
};

UInt32 PacketsPerChunk(UInt32 inRate, UInt32 inFramesPerPacket);

}  // namespace audiotoolbox::mpeg4writer

#endif
