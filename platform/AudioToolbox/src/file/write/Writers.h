// Writers: the container of each file type, one row a type.
#ifndef AUDIOTOOLBOX_FILE_WRITE_WRITERS_H
#define AUDIOTOOLBOX_FILE_WRITE_WRITERS_H

#include "file/write/PacketWriter.h"

namespace audiotoolbox
{

/// Makes the writer of the request's type. 'typ?' for a type that is not written, 'fmt?' where
/// the container cannot hold the format. Nothing is written.
OSStatus MakeWriter(const WriteRequest& inRequest, PacketWriterPtr& outWriter);

}  // namespace audiotoolbox

#endif
