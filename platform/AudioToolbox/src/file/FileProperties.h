// FileProperties: the answers to questions about an open file, out of its facts.
#ifndef AUDIOTOOLBOX_FILE_FILEPROPERTIES_H
#define AUDIOTOOLBOX_FILE_FILEPROPERTIES_H

#include "file/PacketReader.h"

namespace audiotoolbox
{

/// *outSize, in bytes, is untouched after a failure.
/// kAudioFileUnsupportedPropertyError: unknown, or the file does not have it.
OSStatus GetFilePropertySize(const PacketReader& inFile, AudioFilePropertyID inProperty,
                             UInt32* outSize);

/// As AudioFileGetProperty. The packet count of a file that does not tell it is counted by reading
/// the file to its end.
OSStatus GetFileProperty(PacketReader& inFile, AudioFilePropertyID inProperty, UInt32* ioSize,
                         void* outData);

}  // namespace audiotoolbox

#endif
