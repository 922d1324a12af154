// TailTags: tags that other software appends to audio files.
#ifndef AUDIOTOOLBOX_FILE_STREAMS_TAILTAGS_H
#define AUDIOTOOLBOX_FILE_STREAMS_TAILTAGS_H

#include "file/ByteSource.h"

namespace audiotoolbox::streams
{

/// Where the audio ends: before ID3v1, APE, Lyrics3 and appended ID3v2 tags at the end of the
/// source, one behind another. Never before inStart; the end of the source without a tag.
SInt64 EndOfAudio(ByteSource& inSource, SInt64 inStart);

}  // namespace audiotoolbox::streams

#endif
