// ID3Tag: tags that other software puts in front of any kind of audio file.
#ifndef AUDIOTOOLBOX_FILE_ID3TAG_H
#define AUDIOTOOLBOX_FILE_ID3TAG_H

#include "file/ByteSource.h"

namespace audiotoolbox
{

/// Bytes taken by ID3v2 tags at the start of the source, 0 without one. A tag that claims to reach
/// behind the end of the source does not count. Fails as a read does; outSize is 0 then.
OSStatus MeasureID3v2Tags(ByteSource& inSource, SInt64& outSize);

/// The same where a failing read may count as no tag.
inline SInt64 SizeOfID3v2Tags(ByteSource& inSource)
{
    SInt64 size = 0;
    (void)MeasureID3v2Tags(inSource, size);  // 0 after a failure
    return size;
}

}  // namespace audiotoolbox

#endif
