// AC3Channels: which channels an AC-3 or E-AC-3 packet decodes to, in the decoder's order.
#ifndef AUDIOTOOLBOX_FILE_STREAMS_AC3CHANNELS_H
#define AUDIOTOOLBOX_FILE_STREAMS_AC3CHANNELS_H

#include "file/streams/AC3Header.h"

#include <vector>

namespace audiotoolbox::streams
{

/// A set of loudspeakers; one bit for each row of the table in the source.
using AC3Speakers = UInt32;

/// Of an independent frame, or of a dependent one (by its channel map if it has one).
AC3Speakers SpeakersOf(const AC3Header& inHeader);

UInt32 CountSpeakers(AC3Speakers inSpeakers);

/// The tag for mono and stereo, a bitmap where the order is that of a bitmap, else labels.
std::vector<UInt8> LayoutOfSpeakers(AC3Speakers inSpeakers);

}  // namespace audiotoolbox::streams

#endif
