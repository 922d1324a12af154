// AudioConverter: from one stream format to another, decoding and encoding included.
//
// A converter is used by one thread at a time. It pulls its input from a procedure, inside
// AudioConverterFillComplexBuffer only.
#ifndef AUDIOTOOLBOX_AUDIOCONVERTER_H
#define AUDIOTOOLBOX_AUDIOCONVERTER_H

#include <CoreAudio/CoreAudioTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct OpaqueAudioConverter* AudioConverterRef;
typedef UInt32 AudioConverterPropertyID;

// clang-format off
#define kAudioConverterErr_FormatNotSupported        ((OSStatus)CA_FOUR_CHAR_CODE('f', 'm', 't', '?'))
#define kAudioConverterErr_OperationNotSupported     ((OSStatus)0x6F703F3F)
#define kAudioConverterErr_PropertyNotSupported      ((OSStatus)CA_FOUR_CHAR_CODE('p', 'r', 'o', 'p'))
#define kAudioConverterErr_InvalidInputSize          ((OSStatus)CA_FOUR_CHAR_CODE('i', 'n', 's', 'z'))
#define kAudioConverterErr_InvalidOutputSize         ((OSStatus)CA_FOUR_CHAR_CODE('o', 't', 's', 'z'))
#define kAudioConverterErr_UnspecifiedError          ((OSStatus)CA_FOUR_CHAR_CODE('w', 'h', 'a', 't'))
#define kAudioConverterErr_BadPropertySizeError      ((OSStatus)CA_FOUR_CHAR_CODE('!', 's', 'i', 'z'))
#define kAudioConverterErr_RequiresPacketDescriptionsError ((OSStatus)CA_FOUR_CHAR_CODE('!', 'p', 'k', 'd'))

// Statuses and properties of codecs that come through a converter.
#define kAudioCodecBadDataError                      ((OSStatus)CA_FOUR_CHAR_CODE('b', 'a', 'd', 'a'))
#define kAudioCodecNotEnoughBufferSpaceError         ((OSStatus)CA_FOUR_CHAR_CODE('!', 'b', 'u', 'f'))
#define kAudioCodecPropertyBitRateControlMode        CA_FOUR_CHAR_CODE('a', 'c', 'b', 'f')
#define kAudioCodecPropertySoundQualityForVBR        CA_FOUR_CHAR_CODE('v', 'b', 'r', 'q')

#define kAudioConverterPrimeInfo                     CA_FOUR_CHAR_CODE('p', 'r', 'i', 'm')
#define kAudioConverterDecompressionMagicCookie      CA_FOUR_CHAR_CODE('d', 'm', 'g', 'c')
#define kAudioConverterCompressionMagicCookie        CA_FOUR_CHAR_CODE('c', 'm', 'g', 'c')
#define kAudioConverterCurrentInputStreamDescription CA_FOUR_CHAR_CODE('a', 'c', 'i', 'd')
#define kAudioConverterCurrentOutputStreamDescription CA_FOUR_CHAR_CODE('a', 'c', 'o', 'd')
#define kAudioConverterEncodeBitRate                 CA_FOUR_CHAR_CODE('b', 'r', 'a', 't')
#define kAudioConverterApplicableEncodeBitRates      CA_FOUR_CHAR_CODE('a', 'e', 'b', 'r')
#define kAudioConverterAvailableEncodeBitRates       CA_FOUR_CHAR_CODE('v', 'e', 'b', 'r')
#define kAudioConverterPropertyMaximumOutputPacketSize CA_FOUR_CHAR_CODE('x', 'o', 'p', 's')
// clang-format on

enum
{
    kAudioCodecBitRateControlMode_Constant = 0,
    kAudioCodecBitRateControlMode_LongTermAverage = 1,
    kAudioCodecBitRateControlMode_VariableConstrained = 2,
    kAudioCodecBitRateControlMode_Variable = 3
};

/// Frames that are dropped at the start and at the end of the audio, in the input's frames.
typedef struct AudioConverterPrimeInfo
{
    UInt32 leadingFrames;
    UInt32 trailingFrames;
} AudioConverterPrimeInfo;

/// Hands over input. *ioPackets: wanted, then handed over; 0 with noErr ends the audio. ioData
/// has one buffer, which the procedure points at data that stays valid until it is called again
/// or the fill returns. outDescriptions is null where the input's packets have a constant size.
/// Any status but noErr ends the fill and comes back from it unchanged.
typedef OSStatus (*AudioConverterComplexInputDataProc)(
    AudioConverterRef converter, UInt32* ioPackets, AudioBufferList* ioData,
    AudioStreamPacketDescription** outDescriptions, void* userData);

/// On success *outConverter belongs to the caller.
CF_EXPORT OSStatus AudioConverterNew(const AudioStreamBasicDescription* source,
                                     const AudioStreamBasicDescription* destination,
                                     AudioConverterRef* outConverter);
CF_EXPORT OSStatus AudioConverterDispose(AudioConverterRef converter);
/// Forgets all buffered audio; the next fill starts as a new converter would.
CF_EXPORT OSStatus AudioConverterReset(AudioConverterRef converter);

/// outSize and outWritable may be null.
CF_EXPORT OSStatus AudioConverterGetPropertyInfo(AudioConverterRef converter,
                                                 AudioConverterPropertyID property, UInt32* outSize,
                                                 Boolean* outWritable);
CF_EXPORT OSStatus AudioConverterGetProperty(AudioConverterRef converter,
                                             AudioConverterPropertyID property, UInt32* ioSize,
                                             void* outData);
CF_EXPORT OSStatus AudioConverterSetProperty(AudioConverterRef converter,
                                             AudioConverterPropertyID property, UInt32 size,
                                             const void* data);

/// Fills outData with up to *ioPackets packets of the destination format.
///
/// ioPackets        in: wanted; out: delivered, fewer only at the end of the audio or with a
/// status outData          one buffer per interleaved stream or per plane; mDataByteSize in:
/// room (never
///                  exceeded), out: bytes delivered
/// outDescriptions  room for *ioPackets for an encoder's packets; null for linear PCM
CF_EXPORT OSStatus AudioConverterFillComplexBuffer(AudioConverterRef converter,
                                                   AudioConverterComplexInputDataProc inputProc,
                                                   void* userData, UInt32* ioPackets,
                                                   AudioBufferList* outData,
                                                   AudioStreamPacketDescription* outDescriptions);

#ifdef __cplusplus
}
#endif

#endif
