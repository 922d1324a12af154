// SampleTableReader: the tables of a track's packets, read in blocks straight into the index.
#ifndef AUDIOTOOLBOX_FILE_MPEG4_SAMPLETABLEREADER_H
#define AUDIOTOOLBOX_FILE_MPEG4_SAMPLETABLEREADER_H

#include "file/mpeg4/Movie.h"
#include "file/mpeg4/PacketIndex.h"
#include "file/mpeg4/PacketTimes.h"

namespace audiotoolbox::mpeg4
{

/// inFrameBytes  above 0: packets are single frames of this size, whatever the size table says
/// False when a table claims more entries than its box holds or there is no size table. Tables that
/// disagree on the number of packets give the smaller one.
bool ReadSampleSizesAndPlaces(ByteWindow& ioWindow, const SampleTables& inTables,
                              UInt32 inFrameBytes, PacketIndex& ioIndex);

/// False when the table claims more entries than its box holds.
bool ReadPacketTimes(ByteWindow& ioWindow, ByteRange inTable, PacketTimes& ioTimes);

}  // namespace audiotoolbox::mpeg4

#endif
