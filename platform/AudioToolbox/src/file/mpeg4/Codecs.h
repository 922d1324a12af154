// Codecs: from a track's description to the facts of its audio: format, cookie, layout.
#ifndef AUDIOTOOLBOX_FILE_MPEG4_CODECS_H
#define AUDIOTOOLBOX_FILE_MPEG4_CODECS_H

#include "file/PacketReader.h"
#include "file/mpeg4/SampleEntry.h"

namespace audiotoolbox::mpeg4
{

/// What facts have no place for.
struct CodecNotes
{
    UInt32 mPreSkip = 0;  // frames that Opus says to drop at the start
};

/// Fills mDataFormat, mCookie, mChannelLayout and, for layered AAC, mFormats. The frames of a
/// packet may still be 0 where only packets tell.
/// noErr, 'fmt?' for a codec without a row, 'dta?' where the codec's own record is damaged.
OSStatus DescribeCodec(ByteWindow& ioWindow, const SampleEntry& inEntry, FileFacts& ioFacts,
                       CodecNotes& outNotes);

/// The linear PCM formats and A-law and mu-law. False for every other type of entry.
bool DescribePCMEntry(ByteWindow& ioWindow, const SampleEntry& inEntry, FileFacts& ioFacts);

/// Sets the layout from the file's own layout record ('chan'), as far as it agrees with the order
/// in which the audio is delivered.
void ApplyChannelBox(ByteWindow& ioWindow, const SampleEntry& inEntry, FileFacts& ioFacts);

}  // namespace audiotoolbox::mpeg4

#endif
