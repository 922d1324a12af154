// ConverterProperties: what a converter answers and takes, one row a property.
#ifndef AUDIOTOOLBOX_CONVERT_CONVERTERPROPERTIES_H
#define AUDIOTOOLBOX_CONVERT_CONVERTERPROPERTIES_H

#include "convert/Converter.h"

namespace audiotoolbox
{

/// 'prop' for a property that the converter has not.
OSStatus GetConverterPropertyInfo(const Converter& inConverter, AudioConverterPropertyID inProperty,
                                  UInt32& outSize, bool& outIsWritable);

/// '!siz' for less room than the value takes; *ioSize becomes the value's size on success.
OSStatus GetConverterProperty(const Converter& inConverter, AudioConverterPropertyID inProperty,
                              UInt32& ioSize, void* outData);

/// '!siz' for another size than the value's; 'prop' also for what can only be read.
OSStatus SetConverterProperty(Converter& ioConverter, AudioConverterPropertyID inProperty,
                              UInt32 inSize, const void* inData);

}  // namespace audiotoolbox

#endif
