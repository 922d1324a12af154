// GlobalInfo: the questions about file types that need no file, answered from their table.
#ifndef AUDIOTOOLBOX_API_GLOBALINFO_H
#define AUDIOTOOLBOX_API_GLOBALINFO_H

#include <AudioToolbox/AudioFile.h>

namespace audiotoolbox
{

/// As AudioFileGetGlobalInfoSize. Names and arrays are one pointer, whatever the specifier, which
/// is not read for them; neither is it read for properties that take none.
OSStatus GetFileGlobalInfoSize(AudioFilePropertyID inProperty, UInt32 inSpecifierSize,
                               const void* inSpecifier, UInt32* outSize);

/// As AudioFileGetGlobalInfo. Names and arrays belong to the caller, and so does one reference of
/// each element of an array, which the array itself does not hold.
OSStatus GetFileGlobalInfo(AudioFilePropertyID inProperty, UInt32 inSpecifierSize,
                           const void* inSpecifier, UInt32* ioSize, void* outData);

}  // namespace audiotoolbox

#endif
