// FileUse: files on disk, written through the library's C functions.
#ifndef TESTS_PLATFORM_AUDIOTOOLBOX_EXTENDED_FILEUSE_H
#define TESTS_PLATFORM_AUDIOTOOLBOX_EXTENDED_FILEUSE_H

#include "../convert/ConverterUse.h"
#include "../write/ScratchFolder.h"

#include <AudioToolbox/AudioToolbox.h>
#include <AudioToolbox/ExtendedAudioFile.h>

#include <optional>
#include <string>
#include <utility>

namespace file_use
{

using converter_use::Floats;
using converter_use::kSigned;
using converter_use::Linear;
using Description = AudioStreamBasicDescription;
using write_test::BytesOfFile;
using write_test::ByteVector;
using write_test::ScratchFolder;

constexpr UInt32 kErase = kAudioFileFlags_EraseFile;

/// A URL for the time of one expression.
class PathURL
{
public:
    explicit PathURL(const std::string& inPath)
        : mURL(CFURLCreateFromFileSystemRepresentation(
              kCFAllocatorDefault, reinterpret_cast<const UInt8*>(inPath.data()),
              static_cast<CFIndex>(inPath.size()), false))
    {
    }
    PathURL(const PathURL&) = delete;
    PathURL& operator=(const PathURL&) = delete;
    ~PathURL() { CFRelease(mURL); }
    operator CFURLRef() const { return mURL; }

private:
    CFURLRef mURL;
};

/// A file that is disposed of at the latest with this.
class OutFile
{
public:
    OutFile() = default;
    OutFile(const OutFile&) = delete;
    OutFile& operator=(const OutFile&) = delete;
    ~OutFile()
    {
        if (mFile != nullptr)
            (void)Dispose();
    }

    OSStatus Create(const std::string& inPath, AudioFileTypeID inType, const Description& inFormat,
                    UInt32 inFlags = kErase, const AudioChannelLayout* inLayout = nullptr)
    {
        return ExtAudioFileCreateWithURL(PathURL(inPath), inType, &inFormat, inLayout, inFlags,
                                         &mFile);
    }
    OSStatus SetClient(const Description& inFormat)
    {
        return ExtAudioFileSetProperty(mFile, kExtAudioFileProperty_ClientDataFormat,
                                       sizeof(inFormat), &inFormat);
    }
    template <typename Word>
    OSStatus Write(const std::vector<Word>& inSamples, UInt32 inChannels)
    {
        // The record of the interface knows no constant data.
        auto* data = const_cast<Word*>(inSamples.data());
        const AudioBufferList list = {
            1, {{inChannels, static_cast<UInt32>(inSamples.size() * sizeof(Word)), data}}};
        return ExtAudioFileWrite(mFile, static_cast<UInt32>(inSamples.size() / inChannels), &list);
    }
    OSStatus Dispose() { return ExtAudioFileDispose(std::exchange(mFile, nullptr)); }

    ExtAudioFileRef Get() const { return mFile; }

private:
    ExtAudioFileRef mFile = nullptr;
};

}  // namespace file_use

#endif
