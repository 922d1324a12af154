// ID3Tag: tags that other software puts in front of any kind of audio file.
#ifndef AUDIOTOOLBOX_FILE_ID3TAG_H
#define AUDIOTOOLBOX_FILE_ID3TAG_H

#include "file/ByteSource.h"

namespace audiotoolbox
{

/// Bytes taken by ID3v2 tags at the start of the source, 0 without one. A tag that claims to reach
/// behind the end of the source does not count.
SInt64 SizeOfID3v2Tags(ByteSource& inSource);

}  // namespace audiotoolbox

#endif
