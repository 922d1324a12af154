// ExtendedAudioFile: writing a file of any format from linear PCM in one go.
//
// A file and the converter in front of it in one object: the client hands over frames of linear
// PCM, the packets of the file's format are written. A file is used by one thread at a time.
#ifndef AUDIOTOOLBOX_EXTENDEDAUDIOFILE_H
#define AUDIOTOOLBOX_EXTENDEDAUDIOFILE_H

#include <AudioToolbox/AudioConverter.h>
#include <AudioToolbox/AudioFile.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct OpaqueExtAudioFile* ExtAudioFileRef;
typedef UInt32 ExtAudioFilePropertyID;

// clang-format off
#define kExtAudioFileProperty_FileDataFormat     CA_FOUR_CHAR_CODE('f', 'f', 'm', 't')
#define kExtAudioFileProperty_ClientDataFormat   CA_FOUR_CHAR_CODE('c', 'f', 'm', 't')
#define kExtAudioFileProperty_AudioConverter     CA_FOUR_CHAR_CODE('a', 'c', 'n', 'v')
#define kExtAudioFileProperty_ConverterConfig    CA_FOUR_CHAR_CODE('a', 'c', 'c', 'f')
#define kExtAudioFileProperty_FileLengthFrames   CA_FOUR_CHAR_CODE('#', 'f', 'r', 'm')

#define kExtAudioFileError_InvalidProperty       ((OSStatus)-66561)
#define kExtAudioFileError_InvalidPropertySize   ((OSStatus)-66562)
#define kExtAudioFileError_NonPCMClientFormat    ((OSStatus)-66563)
#define kExtAudioFileError_InvalidChannelMap     ((OSStatus)-66564)
#define kExtAudioFileError_InvalidOperationOrder ((OSStatus)-66565)
#define kExtAudioFileError_InvalidDataFormat     ((OSStatus)-66566)
#define kExtAudioFileError_MaxPacketSizeUnknown  ((OSStatus)-66567)
// clang-format on

enum
{
    kAudioFileFlags_EraseFile = 1,
    kAudioFileFlags_DontPageAlignAudioData = 2
};

/// Creates a file, in place of one that is there when kAudioFileFlags_EraseFile is set (else
/// 'prm?'). A format that the type cannot hold is refused before anything is created or emptied.
///
/// type     one of kAudioFileGlobalInfo_WritableTypes
/// format   of the file. Compressed formats: byte counts and frames per packet are not looked at
/// layout   of the client's channels; may be null. One that does not fit the format counts as none
/// On success *outFile belongs to the caller.
CF_EXPORT OSStatus ExtAudioFileCreateWithURL(CFURLRef url, AudioFileTypeID type,
                                             const AudioStreamBasicDescription* format,
                                             const AudioChannelLayout* layout, UInt32 flags,
                                             ExtAudioFileRef* outFile);

/// kExtAudioFileProperty_ClientDataFormat makes the converter, before the first write.
/// kExtAudioFileProperty_ConverterConfig with a null reference takes the converter's settings
/// over; later changes to it have no effect.
CF_EXPORT OSStatus ExtAudioFileSetProperty(ExtAudioFileRef file, ExtAudioFilePropertyID property,
                                           UInt32 size, const void* data);
/// The converter stays the file's own.
CF_EXPORT OSStatus ExtAudioFileGetProperty(ExtAudioFileRef file, ExtAudioFilePropertyID property,
                                           UInt32* ioSize, void* outData);

/// Appends frames of the client format: one interleaved buffer. What was taken before a status
/// stays in the file.
CF_EXPORT OSStatus ExtAudioFileWrite(ExtAudioFileRef file, UInt32 frames,
                                     const AudioBufferList* data);

/// Writes what the encoder still holds, completes the headers, closes the file and frees the
/// object, whatever it answers.
CF_EXPORT OSStatus ExtAudioFileDispose(ExtAudioFileRef file);

#ifdef __cplusplus
}
#endif

#endif
