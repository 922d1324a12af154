// Fragments: the packets of a track that stand in fragments ('moof') behind the movie's head.
#ifndef AUDIOTOOLBOX_FILE_MPEG4_FRAGMENTS_H
#define AUDIOTOOLBOX_FILE_MPEG4_FRAGMENTS_H

#include "file/mpeg4/Movie.h"
#include "file/mpeg4/PacketIndex.h"
#include "file/mpeg4/PacketTimes.h"

namespace audiotoolbox::mpeg4
{

/// Walks the fragments behind inMovie's head and adds the track's packets, in the file's order, up
/// to the first one that is damaged or lies outside the file.
void ReadFragments(ByteWindow& ioWindow, const Movie& inMovie, UInt32 inTrackID,
                   PacketIndex& ioIndex, PacketTimes& ioTimes);

}  // namespace audiotoolbox::mpeg4

#endif
