// ExtendedProperties: what a file that is written answers and takes, one row a property.
#ifndef AUDIOTOOLBOX_EXTENDED_EXTENDEDPROPERTIES_H
#define AUDIOTOOLBOX_EXTENDED_EXTENDEDPROPERTIES_H

#include "extended/ExtendedFile.h"

#include <AudioToolbox/ExtendedAudioFile.h>

namespace audiotoolbox
{

/// -66561 for a property that there is not, -66562 for less room than the value takes, -66565 as
/// long as the value is not known. *ioSize becomes the delivered size on success.
OSStatus GetExtendedProperty(ExtendedFile& inFile, ExtAudioFilePropertyID inProperty,
                             UInt32& ioSize, void* outData);

/// -66561 also for what can only be read; -66562 for another size than the value's. Then the
/// file's own status.
OSStatus SetExtendedProperty(ExtendedFile& ioFile, ExtAudioFilePropertyID inProperty, UInt32 inSize,
                             const void* inData);

}  // namespace audiotoolbox

#endif
