// AIFFFormat: the common chunk of AIFF and AIFF-C files.
//
// Source: the public descriptions of AIFF 1.3 and AIFF-C, and the compression types that software
// writes beyond them.
#ifndef AUDIOTOOLBOX_FILE_AIFF_AIFFFORMAT_H
#define AUDIOTOOLBOX_FILE_AIFF_AIFFFORMAT_H

#include "file/PacketReader.h"

#include <span>

namespace audiotoolbox
{

/// An 80-bit IEEE extended number, big endian, 10 bytes, rounded to a double.
double ReadExtended(const UInt8* inBytes);

/// Fills mDataFormat from the body of a `COMM` chunk. outFrames is the chunk's count of sample
/// frames; see FinishAIFF for its unit. inIsCompressed: the file is AIFF-C.
/// 'dta?' for a chunk that cannot be true, 'fmt?' for a codec that no row names.
OSStatus DescribeAIFF(std::span<const UInt8> inCommon, bool inIsCompressed, UInt32& outFrames,
                      FileFacts& ioFacts);

/// The last step, once the data range stands.
/// inFrames            of the `COMM` chunk: frames; for codecs of blocks most software counts
///                     blocks there, and some frames
/// inClaimedByteCount  of the sound chunk as its header states it, before it is cut to the file
void FinishAIFF(UInt32 inFrames, SInt64 inClaimedByteCount, FileFacts& ioFacts);

}  // namespace audiotoolbox

#endif
