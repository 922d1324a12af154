// ConverterProperties: what a converter answers and takes, one row a property.
#ifndef AUDIOTOOLBOX_CONVERT_CONVERTERPROPERTIES_H
#define AUDIOTOOLBOX_CONVERT_CONVERTERPROPERTIES_H

#include "convert/Converter.h"

namespace audiotoolbox
{

/// 'prop' for a property that the converter has not.
OSStatus GetConverterPropertyInfo(const Converter& inConverter, AudioConverterPropertyID inProperty,
                                  UInt32& outSize, bool& outIsWritable);

/// '!siz' for less room than the value takes, except that a list is cut to the whole elements that
/// fit; *ioSize becomes the delivered size on success.
OSStatus GetConverterProperty(const Converter& inConverter, AudioConverterPropertyID inProperty,
                              UInt32& ioSize, void* outData);

/// '!siz' for another size than the value's; 'prop' also for what can only be read. Settings of an
/// encoder: -50 for a value that it does not take, 'op??' once it is at work.
OSStatus SetConverterProperty(Converter& ioConverter, AudioConverterPropertyID inProperty,
                              UInt32 inSize, const void* inData);

}  // namespace audiotoolbox

#endif
