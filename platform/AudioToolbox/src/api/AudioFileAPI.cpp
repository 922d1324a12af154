// The C functions of AudioFile.h: check the arguments, unpack the handle, dispatch.

#include <AudioToolbox/AudioFile.h>

#include "api/GlobalInfo.h"
#include "file/FileProperties.h"
#include "file/PacketReader.h"

#include <climits>
#include <new>
#include <utility>

struct OpaqueAudioFileID
{
    audiotoolbox::PacketReaderPtr mReader;
};

namespace
{

// No exception crosses the C interface; the only one that the layer throws is the lack of memory.
template <typename Work>
OSStatus Guarded(Work inWork)
{
    try
    {
        return inWork();
    }
    catch (const std::bad_alloc&)
    {
        return kAudio_MemFullError;
    }
    catch (...)
    {
        return kAudioFileUnspecifiedError;
    }
}

OSStatus OpenSource(AudioFileTypeID inHint, audiotoolbox::ByteSourcePtr inSource,
                    AudioFileID* outFile)
{
    audiotoolbox::PacketReaderPtr reader;
    if (const OSStatus status = audiotoolbox::OpenAudio(inHint, inSource, reader); status != noErr)
        return status;
    *outFile = new OpaqueAudioFileID{std::move(reader)};
    return noErr;
}

OSStatus OpenPath(CFURLRef inURL, AudioFileTypeID inHint, AudioFileID* outFile)
{
    UInt8 path[PATH_MAX];
    if (!CFURLGetFileSystemRepresentation(inURL, true, path, sizeof(path)))
        return kAudio_FileNotFoundError;
    audiotoolbox::ByteSourcePtr source;
    if (const OSStatus status =
            audiotoolbox::OpenFileSource(reinterpret_cast<const char*>(path), source);
        status != noErr)
        return status;
    return OpenSource(inHint, std::move(source), outFile);
}

}  // namespace

OSStatus AudioFileOpenURL(CFURLRef inURL, SInt8 inPermissions, AudioFileTypeID inHint,
                          AudioFileID* outFile)
{
    if (inURL == nullptr || outFile == nullptr)
        return kAudio_ParamError;
    if (inPermissions != kAudioFileReadPermission)
        return kAudioFilePermissionsError;
    return Guarded([=] { return OpenPath(inURL, inHint, outFile); });
}

OSStatus AudioFileOpenWithCallbacks(void* inClientData, AudioFile_ReadProc inRead,
                                    AudioFile_WriteProc, AudioFile_GetSizeProc inGetSize,
                                    AudioFile_SetSizeProc, AudioFileTypeID inHint,
                                    AudioFileID* outFile)
{
    if (inRead == nullptr || inGetSize == nullptr || outFile == nullptr)
        return kAudio_ParamError;
    return Guarded(
        [=]
        {
        return OpenSource(inHint, audiotoolbox::MakeCallbackSource(inClientData, inRead, inGetSize),
                          outFile);
    });
}

OSStatus AudioFileClose(AudioFileID inFile)
{
    if (inFile == nullptr)
        return kAudio_ParamError;
    delete inFile;
    return noErr;
}

OSStatus AudioFileGetPropertyInfo(AudioFileID inFile, AudioFilePropertyID inProperty,
                                  UInt32* outSize, UInt32* outWritable)
{
    if (inFile == nullptr)
        return kAudio_ParamError;
    UInt32 size = 0;
    if (const OSStatus status =
            audiotoolbox::GetFilePropertySize(*inFile->mReader, inProperty, &size);
        status != noErr)
        return status;
    if (outSize != nullptr)
        *outSize = size;
    if (outWritable != nullptr)
        *outWritable = 0;
    return noErr;
}

OSStatus AudioFileGetProperty(AudioFileID inFile, AudioFilePropertyID inProperty, UInt32* ioSize,
                              void* outData)
{
    if (inFile == nullptr || ioSize == nullptr || outData == nullptr)
        return kAudio_ParamError;
    return Guarded(
        [=]
        { return audiotoolbox::GetFileProperty(*inFile->mReader, inProperty, ioSize, outData); });
}

OSStatus AudioFileReadPacketData(AudioFileID inFile, Boolean, UInt32* ioBytes,
                                 AudioStreamPacketDescription* outDescriptions, SInt64 inStart,
                                 UInt32* ioPackets, void* outBuffer)
{
    if (inFile == nullptr || ioBytes == nullptr || ioPackets == nullptr || outBuffer == nullptr)
        return kAudio_ParamError;
    if (inStart < 0)
        return kAudioFilePositionError;
    return Guarded(
        [=] {
        return inFile->mReader->ReadPackets(inStart, ioBytes, ioPackets, outDescriptions,
                                            outBuffer);
    });
}

OSStatus AudioFileGetGlobalInfoSize(AudioFilePropertyID inProperty, UInt32 inSpecifierSize,
                                    void* inSpecifier, UInt32* outSize)
{
    if (outSize == nullptr)
        return kAudio_ParamError;
    return Guarded(
        [=] {
        return audiotoolbox::GetFileGlobalInfoSize(inProperty, inSpecifierSize, inSpecifier,
                                                   outSize);
    });
}

OSStatus AudioFileGetGlobalInfo(AudioFilePropertyID inProperty, UInt32 inSpecifierSize,
                                void* inSpecifier, UInt32* ioSize, void* outData)
{
    if (ioSize == nullptr || outData == nullptr)
        return kAudio_ParamError;
    return Guarded(
        [=]
        {
        return audiotoolbox::GetFileGlobalInfo(inProperty, inSpecifierSize, inSpecifier, ioSize,
                                               outData);
    });
}
