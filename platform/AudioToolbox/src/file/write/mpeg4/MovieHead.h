// MovieHead: the boxes that surround the audio: 'ftyp' in front of it, 'moov' behind.
#ifndef AUDIOTOOLBOX_FILE_WRITE_MPEG4_MOVIEHEAD_H
#define AUDIOTOOLBOX_FILE_WRITE_MPEG4_MOVIEHEAD_H

#include "file/write/ByteSink.h"
#include "file/write/mpeg4/SampleEntries.h"
#include "file/write/mpeg4/SampleIndex.h"

namespace audiotoolbox::mpeg4writer
{

struct MovieFacts
{
    AudioFileTypeID mType = 0;
    EntryFacts mEntry;
    SInt64 mDataStart = 0;  // where in the file the first packet stands
    UInt64 mPriming = 0;    // frames; with the valid ones not above those of all packets
    UInt64 mValid = 0;
};

/// True for the types of this family.
bool HasBrands(AudioFileTypeID inType);

/// Puts in the box that tells the members of the family apart.
void PutFileType(AudioFileTypeID inType, BoxBuilder& ioBoxes);

/// Appends the whole of 'moov'. The large tables are not built up in memory.
OSStatus AppendMovie(const MovieFacts& inFacts, const SampleIndex& inIndex, ByteSink& ioSink);

}  // namespace audiotoolbox::mpeg4writer

#endif
