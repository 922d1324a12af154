// AudioFormat: questions about data formats and codecs that need neither a file nor a converter.
#ifndef AUDIOTOOLBOX_AUDIOFORMAT_H
#define AUDIOTOOLBOX_AUDIOFORMAT_H

#include <CoreAudio/CoreAudioTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef UInt32 AudioFormatPropertyID;

// clang-format off
#define kAudioFormatProperty_FormatInfo          CA_FOUR_CHAR_CODE('f', 'm', 't', 'i')
#define kAudioFormatProperty_FormatName          CA_FOUR_CHAR_CODE('f', 'n', 'a', 'm')
#define kAudioFormatProperty_EncodeFormatIDs     CA_FOUR_CHAR_CODE('a', 'c', 'o', 'f')
#define kAudioFormatProperty_DecodeFormatIDs     CA_FOUR_CHAR_CODE('a', 'c', 'i', 'f')
#define kAudioFormatProperty_AvailableEncodeSampleRates   CA_FOUR_CHAR_CODE('a', 'e', 's', 'r')
#define kAudioFormatProperty_AvailableEncodeNumberChannels CA_FOUR_CHAR_CODE('a', 'v', 'n', 'c')
#define kAudioFormatProperty_AvailableEncodeBitRates      CA_FOUR_CHAR_CODE('a', 'e', 'b', 'r')

#define kAudioFormatUnspecifiedError             ((OSStatus)CA_FOUR_CHAR_CODE('w', 'h', 'a', 't'))
#define kAudioFormatUnsupportedPropertyError     ((OSStatus)CA_FOUR_CHAR_CODE('p', 'r', 'o', 'p'))
#define kAudioFormatBadPropertySizeError         ((OSStatus)CA_FOUR_CHAR_CODE('!', 's', 'i', 'z'))
#define kAudioFormatBadSpecifierSizeError        ((OSStatus)CA_FOUR_CHAR_CODE('!', 's', 'p', 'c'))
#define kAudioFormatUnsupportedDataFormatError   ((OSStatus)CA_FOUR_CHAR_CODE('f', 'm', 't', '?'))
#define kAudioFormatUnknownFormatError           ((OSStatus)CA_FOUR_CHAR_CODE('!', 'f', 'm', 't'))
// clang-format on

/// The size of a name is answered by property alone: its specifier is not read.
CF_EXPORT OSStatus AudioFormatGetPropertyInfo(AudioFormatPropertyID property, UInt32 specifierSize,
                                              const void* specifier, UInt32* outSize);
/// A list is cut to the whole elements that fit. Names are strings and belong to the caller.
CF_EXPORT OSStatus AudioFormatGetProperty(AudioFormatPropertyID property, UInt32 specifierSize,
                                          const void* specifier, UInt32* ioSize, void* outData);

#ifdef __cplusplus
}
#endif

#endif
