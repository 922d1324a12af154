// GaplessItem: priming and length once more, as a text among the tags ('iTunSMPB').
//
// Players of music that know no edit lists look for it to join the tracks of an album.
#ifndef AUDIOTOOLBOX_FILE_WRITE_MPEG4_GAPLESSITEM_H
#define AUDIOTOOLBOX_FILE_WRITE_MPEG4_GAPLESSITEM_H

#include "file/write/mpeg4/BoxBuilder.h"

namespace audiotoolbox::mpeg4writer
{

/// Frames.
struct GaplessFrames
{
    UInt64 mPriming = 0;
    UInt64 mTotal = 0;  // of all packets
    UInt64 mValid = 0;
};

/// Puts in the 'udta' of a movie.
void PutGaplessItem(const GaplessFrames& inFrames, BoxBuilder& ioBoxes);

}  // namespace audiotoolbox::mpeg4writer

#endif
