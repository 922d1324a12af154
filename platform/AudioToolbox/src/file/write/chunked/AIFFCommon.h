// AIFFCommon: the common chunk of AIFF and AIFF-C files, as it is written.
#ifndef AUDIOTOOLBOX_FILE_WRITE_CHUNKED_AIFFCOMMON_H
#define AUDIOTOOLBOX_FILE_WRITE_CHUNKED_AIFFCOMMON_H

#include "file/write/chunked/ChunkedWriter.h"

#include <array>

namespace audiotoolbox
{

/// A number as 80-bit IEEE extended, big endian. inNumber is finite and above 0.
std::array<UInt8, 10> MakeExtended(double inNumber);

/// The body of `COMM`. It counts frames, of codecs in blocks the packets.
/// inRequest  one that IsRequestInOrder accepts for AIFF or AIFF-C
std::vector<UInt8> MakeAIFFCommon(const WriteRequest& inRequest, const AudioExtent& inAudio);

}  // namespace audiotoolbox

#endif
