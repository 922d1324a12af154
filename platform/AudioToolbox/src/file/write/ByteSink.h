// ByteSink: the bytes of one file that is being written.
//
// Bytes are appended; headers that are known only at the end are patched in place. Positions and
// sizes are bytes. Every failure of the system shows as a status at the call that meets it, or at
// Close at the latest.
#ifndef AUDIOTOOLBOX_FILE_WRITE_BYTESINK_H
#define AUDIOTOOLBOX_FILE_WRITE_BYTESINK_H

#include <AudioToolbox/AudioFile.h>

#include <memory>
#include <span>

namespace audiotoolbox
{

class ByteSink
{
public:
    virtual ~ByteSink() = default;

    /// Behind everything so far. After a failure Size counts what is in the file, perhaps a part
    /// of inBytes too.
    virtual OSStatus Append(std::span<const UInt8> inBytes) = 0;

    /// Over bytes that were appended before.
    virtual OSStatus Patch(SInt64 inPosition, std::span<const UInt8> inBytes) = 0;

    /// Bytes appended so far.
    virtual SInt64 Size() const = 0;

    /// Cuts the file to inSize, at most Size.
    virtual OSStatus Truncate(SInt64 inSize) = 0;

    /// Closes the file. Nothing may follow. A sink that is destroyed
    /// without it closes too, with nobody to tell.
    virtual OSStatus Close() = 0;
};

using ByteSinkPtr = std::unique_ptr<ByteSink>;

/// Creates or empties a local file (close-on-exec, without blocking on a pipe). 'prm?' when a file
/// is there and inReplaces is false, for what cannot be written to (a directory, a pipe, a socket)
/// and where permission is missing, on a read-only file system too; -43 no such folder, -34 no
/// room, -36 anything else.
OSStatus CreateFileSink(const char* inPath, bool inReplaces, ByteSinkPtr& outSink);

}  // namespace audiotoolbox

#endif
