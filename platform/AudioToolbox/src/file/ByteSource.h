// ByteSource: the bytes of one open file, wherever they come from.
//
// Parsers see files only through this: a descriptor that the layer opened itself, or a client's
// callbacks. A source never opens anything else. Positions and sizes are bytes.
#ifndef AUDIOTOOLBOX_FILE_BYTESOURCE_H
#define AUDIOTOOLBOX_FILE_BYTESOURCE_H

#include <AudioToolbox/AudioFile.h>

#include <memory>

namespace audiotoolbox
{

class ByteSource
{
public:
    virtual ~ByteSource() = default;

    /// Reads up to inCount bytes at inPosition. *outCount is what came: inCount, or fewer when the
    /// data ends before (0 at or behind the end, noErr then too). After a failure *outCount is 0.
    virtual OSStatus ReadAt(SInt64 inPosition, UInt32 inCount, void* outBytes,
                            UInt32* outCount) = 0;

    /// The size when the file was opened; never negative. A file that grows later does not show.
    virtual SInt64 Size() const = 0;

    /// True when all inCount bytes came.
    bool ReadFully(SInt64 inPosition, void* outBytes, UInt32 inCount)
    {
        UInt32 count = 0;
        return ReadAt(inPosition, inCount, outBytes, &count) == noErr && count == inCount;
    }
};

using ByteSourcePtr = std::unique_ptr<ByteSource>;

/// Opens a local regular file for reading (close-on-exec, without blocking on a pipe).
/// noErr, or: -43 no such file, 'prm?' no permission or not a regular file (a directory, a pipe),
/// -108 when the system is out of memory, -36 anything else.
OSStatus OpenFileSource(const char* inPath, ByteSourcePtr& outSource);

/// Wraps a client's callbacks. A negative size counts as 0; a callback that claims more bytes than
/// were asked is cut to what was asked.
ByteSourcePtr MakeCallbackSource(void* inClientData, AudioFile_ReadProc inRead,
                                 AudioFile_GetSizeProc inGetSize);

}  // namespace audiotoolbox

#endif
