// CutStream: streams that begin within a frame, as recordings of broadcasts and cut files do.
#ifndef AUDIOTOOLBOX_FILE_STREAMS_CUTSTREAM_H
#define AUDIOTOOLBOX_FILE_STREAMS_CUTSTREAM_H

#include "file/ByteSource.h"

namespace audiotoolbox
{

/// Answers the type of stream of which several frames lie right behind one another, the first of
/// them no farther from inStart than the rest of a frame can reach. 0 when there is none or the
/// read failed: two headers may be chance, a row of them at the right distances is none.
AudioFileTypeID TypeOfCutStream(ByteSource& inSource, SInt64 inStart);

}  // namespace audiotoolbox

#endif
