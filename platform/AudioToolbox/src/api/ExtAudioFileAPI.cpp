// The C functions of ExtendedAudioFile.h: check the arguments, unpack the handle, dispatch.

#include <AudioToolbox/ExtendedAudioFile.h>

#include "extended/ClientLayout.h"
#include "extended/ExtendedProperties.h"

#include <climits>
#include <memory>
#include <new>
#include <utility>

struct OpaqueExtAudioFile : audiotoolbox::ExtendedFile
{
    using ExtendedFile::ExtendedFile;
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

// All that can be refused is refused before there is a file.
OSStatus Create(CFURLRef inURL, audiotoolbox::ExtendedFileRequest inRequest, bool inReplaces,
                ExtAudioFileRef* outFile)
{
    UInt8 path[PATH_MAX];
    if (!CFURLGetFileSystemRepresentation(inURL, true, path, sizeof(path)))
        return kAudio_FileNotFoundError;
    auto file = std::make_unique<OpaqueExtAudioFile>(std::move(inRequest));
    if (const OSStatus status = file->Check(); status != noErr)
        return status;
    audiotoolbox::ByteSinkPtr sink;
    if (const OSStatus status =
            audiotoolbox::CreateFileSink(reinterpret_cast<const char*>(path), inReplaces, sink);
        status != noErr)
        return status;
    file->Attach(std::move(sink));
    *outFile = file.release();
    return noErr;
}

// No file has so many channels, and no record of a client can be read further than it claims.
bool MayHaveChannels(UInt32 inChannelCount)
{
    return inChannelCount <= audiotoolbox::kMaxChannels;
}

}  // namespace

OSStatus ExtAudioFileCreateWithURL(CFURLRef inURL, AudioFileTypeID inType,
                                   const AudioStreamBasicDescription* inFormat,
                                   const AudioChannelLayout* inLayout, UInt32 inFlags,
                                   ExtAudioFileRef* outFile)
{
    if (inURL == nullptr || inFormat == nullptr || outFile == nullptr)
        return kAudio_ParamError;
    return Guarded(
        [=]
        {
        audiotoolbox::ExtendedFileRequest request;
        request.mType = inType;
        request.mFormat = *inFormat;
        if (MayHaveChannels(inFormat->mChannelsPerFrame))
            request.mLabels = audiotoolbox::LabelsOfLayout(inLayout, inFormat->mChannelsPerFrame);
        return Create(inURL, std::move(request), (inFlags & kAudioFileFlags_EraseFile) != 0,
                      outFile);
    });
}

OSStatus ExtAudioFileSetProperty(ExtAudioFileRef inFile, ExtAudioFilePropertyID inProperty,
                                 UInt32 inSize, const void* inData)
{
    if (inFile == nullptr || inData == nullptr)
        return kAudio_ParamError;
    return Guarded(
        [=] { return audiotoolbox::SetExtendedProperty(*inFile, inProperty, inSize, inData); });
}

OSStatus ExtAudioFileGetProperty(ExtAudioFileRef inFile, ExtAudioFilePropertyID inProperty,
                                 UInt32* ioSize, void* outData)
{
    if (inFile == nullptr || ioSize == nullptr || outData == nullptr)
        return kAudio_ParamError;
    return Guarded(
        [=] { return audiotoolbox::GetExtendedProperty(*inFile, inProperty, *ioSize, outData); });
}

OSStatus ExtAudioFileWrite(ExtAudioFileRef inFile, UInt32 inFrames, const AudioBufferList* inData)
{
    if (inFile == nullptr || inData == nullptr || inData->mNumberBuffers != 1)
        return kAudio_ParamError;
    const AudioBuffer& buffer = inData->mBuffers[0];
    if (inFrames > 0 && buffer.mData == nullptr)
        return kAudio_ParamError;
    return Guarded(
        [=, &buffer] {
        return inFile->Write(static_cast<const UInt8*>(buffer.mData), inFrames,
                             buffer.mDataByteSize);
    });
}

OSStatus ExtAudioFileDispose(ExtAudioFileRef inFile)
{
    if (inFile == nullptr)
        return kAudio_ParamError;
    const std::unique_ptr<OpaqueExtAudioFile> file(inFile);
    return Guarded([&] { return file->Close(); });
}
