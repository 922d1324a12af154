// AudioFile: opening a file, asking for its properties and reading its packets.
//
// A file is used by one thread at a time. Positions and sizes are bytes, starts and counts are
// packets. Every call answers noErr or a status below; a failing call leaves its out arguments as
// they were unless the call says otherwise.
#ifndef AUDIOTOOLBOX_AUDIOFILE_H
#define AUDIOTOOLBOX_AUDIOFILE_H

#include <CoreAudio/CoreAudioTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct OpaqueAudioFileID* AudioFileID;
typedef UInt32 AudioFileTypeID;
typedef UInt32 AudioFilePropertyID;

// clang-format off
#define kAudioFileAIFFType             CA_FOUR_CHAR_CODE('A', 'I', 'F', 'F')
#define kAudioFileAIFCType             CA_FOUR_CHAR_CODE('A', 'I', 'F', 'C')
#define kAudioFileWAVEType             CA_FOUR_CHAR_CODE('W', 'A', 'V', 'E')
#define kAudioFileRF64Type             CA_FOUR_CHAR_CODE('R', 'F', '6', '4')
#define kAudioFileBW64Type             CA_FOUR_CHAR_CODE('B', 'W', '6', '4')
#define kAudioFileWave64Type           CA_FOUR_CHAR_CODE('W', '6', '4', 'f')
#define kAudioFileSoundDesigner2Type   CA_FOUR_CHAR_CODE('S', 'd', '2', 'f')
#define kAudioFileNextType             CA_FOUR_CHAR_CODE('N', 'e', 'X', 'T')
#define kAudioFileMP3Type              CA_FOUR_CHAR_CODE('M', 'P', 'G', '3')
#define kAudioFileMP2Type              CA_FOUR_CHAR_CODE('M', 'P', 'G', '2')
#define kAudioFileMP1Type              CA_FOUR_CHAR_CODE('M', 'P', 'G', '1')
#define kAudioFileAC3Type              CA_FOUR_CHAR_CODE('a', 'c', '-', '3')
#define kAudioFileEAC3Type             CA_FOUR_CHAR_CODE('e', 'c', '-', '3')
#define kAudioFileAAC_ADTSType         CA_FOUR_CHAR_CODE('a', 'd', 't', 's')
#define kAudioFileMPEG4Type            CA_FOUR_CHAR_CODE('m', 'p', '4', 'f')
#define kAudioFileM4AType              CA_FOUR_CHAR_CODE('m', '4', 'a', 'f')
#define kAudioFileM4BType              CA_FOUR_CHAR_CODE('m', '4', 'b', 'f')
#define kAudioFileCAFType              CA_FOUR_CHAR_CODE('c', 'a', 'f', 'f')
#define kAudioFile3GPType              CA_FOUR_CHAR_CODE('3', 'g', 'p', 'p')
#define kAudioFile3GP2Type             CA_FOUR_CHAR_CODE('3', 'g', 'p', '2')
#define kAudioFileAMRType              CA_FOUR_CHAR_CODE('a', 'm', 'r', 'f')
#define kAudioFileFLACType             CA_FOUR_CHAR_CODE('f', 'l', 'a', 'c')
#define kAudioFileLATMInLOASType       CA_FOUR_CHAR_CODE('l', 'o', 'a', 's')

// Statuses.
#define kAudioFileUnspecifiedError               ((OSStatus)CA_FOUR_CHAR_CODE('w', 'h', 't', '?'))
#define kAudioFileUnsupportedFileTypeError       ((OSStatus)CA_FOUR_CHAR_CODE('t', 'y', 'p', '?'))
#define kAudioFileUnsupportedDataFormatError     ((OSStatus)CA_FOUR_CHAR_CODE('f', 'm', 't', '?'))
#define kAudioFileUnsupportedPropertyError       ((OSStatus)CA_FOUR_CHAR_CODE('p', 't', 'y', '?'))
#define kAudioFileBadPropertySizeError           ((OSStatus)CA_FOUR_CHAR_CODE('!', 's', 'i', 'z'))
#define kAudioFilePermissionsError               ((OSStatus)CA_FOUR_CHAR_CODE('p', 'r', 'm', '?'))
#define kAudioFileNotOptimizedError              ((OSStatus)CA_FOUR_CHAR_CODE('o', 'p', 't', 'm'))
#define kAudioFileInvalidChunkError              ((OSStatus)CA_FOUR_CHAR_CODE('c', 'h', 'k', '?'))
#define kAudioFileDoesNotAllow64BitDataSizeError ((OSStatus)CA_FOUR_CHAR_CODE('o', 'f', 'f', '?'))
#define kAudioFileInvalidPacketOffsetError       ((OSStatus)CA_FOUR_CHAR_CODE('p', 'c', 'k', '?'))
#define kAudioFileInvalidFileError               ((OSStatus)CA_FOUR_CHAR_CODE('d', 't', 'a', '?'))
#define kAudioFileOperationNotSupportedError     ((OSStatus)0x6F703F3F)
#define kAudioFileNotOpenError                   ((OSStatus)-38)
#define kAudioFileEndOfFileError                 ((OSStatus)-39)
#define kAudioFilePositionError                  ((OSStatus)-40)
#define kAudioFileFileNotFoundError              ((OSStatus)-43)

// General statuses of the system.
#define kAudio_UnimplementedError      ((OSStatus)-4)
#define kAudio_DiskFullError           ((OSStatus)-34)
#define kAudio_IOError                 ((OSStatus)-36)
#define kAudio_FileNotFoundError       ((OSStatus)-43)
#define kAudio_ParamError              ((OSStatus)-50)
#define kAudio_MemFullError            ((OSStatus)-108)

// Properties of a file.
#define kAudioFilePropertyFileFormat             CA_FOUR_CHAR_CODE('f', 'f', 'm', 't')
#define kAudioFilePropertyDataFormat             CA_FOUR_CHAR_CODE('d', 'f', 'm', 't')
#define kAudioFilePropertyIsOptimized            CA_FOUR_CHAR_CODE('o', 'p', 't', 'm')
#define kAudioFilePropertyMagicCookieData        CA_FOUR_CHAR_CODE('m', 'g', 'i', 'c')
#define kAudioFilePropertyAudioDataByteCount     CA_FOUR_CHAR_CODE('b', 'c', 'n', 't')
#define kAudioFilePropertyAudioDataPacketCount   CA_FOUR_CHAR_CODE('p', 'c', 'n', 't')
#define kAudioFilePropertyMaximumPacketSize      CA_FOUR_CHAR_CODE('p', 's', 'z', 'e')
#define kAudioFilePropertyDataOffset             CA_FOUR_CHAR_CODE('d', 'o', 'f', 'f')
#define kAudioFilePropertyChannelLayout          CA_FOUR_CHAR_CODE('c', 'm', 'a', 'p')
#define kAudioFilePropertyFormatList             CA_FOUR_CHAR_CODE('f', 'l', 's', 't')
#define kAudioFilePropertyPacketSizeUpperBound   CA_FOUR_CHAR_CODE('p', 'k', 'u', 'b')
#define kAudioFilePropertyEstimatedDuration      CA_FOUR_CHAR_CODE('e', 'd', 'u', 'r')
#define kAudioFilePropertyBitRate                CA_FOUR_CHAR_CODE('b', 'r', 'a', 't')
#define kAudioFilePropertyPacketTableInfo        CA_FOUR_CHAR_CODE('p', 'n', 'f', 'o')

// Questions that need no file.
#define kAudioFileGlobalInfo_ReadableTypes       CA_FOUR_CHAR_CODE('a', 'f', 'r', 'f')
#define kAudioFileGlobalInfo_WritableTypes       CA_FOUR_CHAR_CODE('a', 'f', 'w', 'f')
#define kAudioFileGlobalInfo_FileTypeName        CA_FOUR_CHAR_CODE('f', 't', 'n', 'm')
#define kAudioFileGlobalInfo_AvailableFormatIDs  CA_FOUR_CHAR_CODE('f', 'm', 'i', 'd')
#define kAudioFileGlobalInfo_AvailableStreamDescriptionsForFormat CA_FOUR_CHAR_CODE('s', 'd', 'i', 'd')
#define kAudioFileGlobalInfo_AllExtensions       CA_FOUR_CHAR_CODE('a', 'l', 'x', 't')
#define kAudioFileGlobalInfo_AllMIMETypes        CA_FOUR_CHAR_CODE('a', 'm', 'i', 'm')
#define kAudioFileGlobalInfo_ExtensionsForType   CA_FOUR_CHAR_CODE('f', 'e', 'x', 't')
#define kAudioFileGlobalInfo_MIMETypesForType    CA_FOUR_CHAR_CODE('f', 'm', 'i', 'm')
#define kAudioFileGlobalInfo_MIMETypesForFileType kAudioFileGlobalInfo_MIMETypesForType
// clang-format on

enum
{
    kAudioFileReadPermission = 0x01,
    kAudioFileWritePermission = 0x02,
    kAudioFileReadWritePermission = 0x03
};

/// Reads up to requestCount bytes at a position; *actualCount tells how many came, fewer only
/// at the end of the data.
typedef OSStatus (*AudioFile_ReadProc)(void* clientData, SInt64 position, UInt32 requestCount,
                                       void* buffer, UInt32* actualCount);
typedef OSStatus (*AudioFile_WriteProc)(void* clientData, SInt64 position, UInt32 requestCount,
                                        const void* buffer, UInt32* actualCount);
typedef SInt64 (*AudioFile_GetSizeProc)(void* clientData);
typedef OSStatus (*AudioFile_SetSizeProc)(void* clientData, SInt64 size);

/// One way of reading a layered stream, 48 bytes.
typedef struct AudioFormatListItem
{
    AudioStreamBasicDescription mASBD;
    AudioChannelLayoutTag mChannelLayoutTag;
} AudioFormatListItem;

/// Frames at the rate of the file's data format.
typedef struct AudioFilePacketTableInfo
{
    SInt64 mNumberValidFrames;
    SInt32 mPrimingFrames;
    SInt32 mRemainderFrames;
} AudioFilePacketTableInfo;

typedef struct AudioFileTypeAndFormatID
{
    AudioFileTypeID mFileType;
    AudioFormatID mFormatID;
} AudioFileTypeAndFormatID;

/// Opens one local regular file. permissions must be kAudioFileReadPermission; hint is a file
/// type or 0 and helps only where the content does not tell. On success *outFile belongs to the
/// caller.
CF_EXPORT OSStatus AudioFileOpenURL(CFURLRef url, SInt8 permissions, AudioFileTypeID hint,
                                    AudioFileID* outFile);
/// Opens data behind callbacks; writeProc and setSizeProc may be null. The callbacks are called
/// only inside calls on the file.
CF_EXPORT OSStatus AudioFileOpenWithCallbacks(void* clientData, AudioFile_ReadProc readProc,
                                              AudioFile_WriteProc writeProc,
                                              AudioFile_GetSizeProc getSizeProc,
                                              AudioFile_SetSizeProc setSizeProc,
                                              AudioFileTypeID hint, AudioFileID* outFile);
CF_EXPORT OSStatus AudioFileClose(AudioFileID file);

/// outSize and outWritable may be null. kAudioFileUnsupportedPropertyError where the file does
/// not have the property.
CF_EXPORT OSStatus AudioFileGetPropertyInfo(AudioFileID file, AudioFilePropertyID property,
                                            UInt32* outSize, UInt32* outWritable);
/// *ioSize: room, then bytes delivered. A list is cut to the whole elements that fit; any other
/// property needs its whole room (kAudioFileBadPropertySizeError).
CF_EXPORT OSStatus AudioFileGetProperty(AudioFileID file, AudioFilePropertyID property,
                                        UInt32* ioSize, void* outData);

/// Reads whole packets from packet start on.
///
/// ioBytes          in: room of buffer; out: bytes delivered
/// outDescriptions  room for *ioPackets, may be null for packets of constant size
/// ioPackets        in: packets wanted; out: packets delivered, 0 with noErr at the end
/// A packet that does not fit an otherwise empty buffer is a failure, never 0 packets.
CF_EXPORT OSStatus AudioFileReadPacketData(AudioFileID file, Boolean useCache, UInt32* ioBytes,
                                           AudioStreamPacketDescription* outDescriptions,
                                           SInt64 start, UInt32* ioPackets, void* buffer);

CF_EXPORT OSStatus AudioFileGetGlobalInfoSize(AudioFilePropertyID property, UInt32 specifierSize,
                                              void* specifier, UInt32* outSize);
/// Names are strings and belong to the caller. The arrays of extensions and MIME types do not
/// own their elements; see their rows in the sources of this library.
CF_EXPORT OSStatus AudioFileGetGlobalInfo(AudioFilePropertyID property, UInt32 specifierSize,
                                          void* specifier, UInt32* ioSize, void* outData);

#ifdef __cplusplus
}
#endif

#endif
