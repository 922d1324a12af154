#include "MediaFile.h"

#include <algorithm>
#include <array>

namespace media_testing
{
namespace
{

struct DisposeConverter
{
    void operator()(OpaqueAudioConverter* inConverter) const
    {
        (void)AudioConverterDispose(inConverter);
    }
};
using ConverterPtr = std::unique_ptr<OpaqueAudioConverter, DisposeConverter>;

// The state of reading packets for a converter.
struct Feed
{
    AudioFileID mFile;
    SInt64 mNext = 0;
    std::array<AudioStreamPacketDescription, 64> mDescriptions = {};
    std::vector<UInt8> mBytes = std::vector<UInt8>(1 << 20);
};

OSStatus ReadPackets(AudioConverterRef, UInt32* ioPackets, AudioBufferList* ioData,
                     AudioStreamPacketDescription** outDescriptions, void* inFeed)
{
    Feed& feed = *static_cast<Feed*>(inFeed);
    *ioPackets = std::min<UInt32>(*ioPackets, 64);
    auto bytes = static_cast<UInt32>(feed.mBytes.size());
    const OSStatus status =
        AudioFileReadPacketData(feed.mFile, false, &bytes, feed.mDescriptions.data(), feed.mNext,
                                ioPackets, feed.mBytes.data());
    feed.mNext += *ioPackets;
    ioData->mBuffers[0].mData = feed.mBytes.data();
    ioData->mBuffers[0].mDataByteSize = bytes;
    if (outDescriptions != nullptr)
        *outDescriptions = feed.mDescriptions.data();
    return status;
}

bool HandOverCookie(AudioFileID inFile, AudioConverterRef inConverter)
{
    UInt32 bytes = 0;
    if (AudioFileGetPropertyInfo(inFile, kAudioFilePropertyMagicCookieData, &bytes, nullptr) !=
        noErr)
        return true;  // the file has none
    std::vector<UInt8> cookie(bytes);
    return AudioFileGetProperty(inFile, kAudioFilePropertyMagicCookieData, &bytes, cookie.data()) ==
               noErr &&
           AudioConverterSetProperty(inConverter, kAudioConverterDecompressionMagicCookie, bytes,
                                     cookie.data()) == noErr;
}

AudioStreamBasicDescription FloatsLike(const AudioStreamBasicDescription& inFormat)
{
    const UInt32 channels = inFormat.mChannelsPerFrame;
    return {inFormat.mSampleRate,
            kAudioFormatLinearPCM,
            kAudioFormatFlagIsFloat | kAudioFormatFlagIsPacked,
            4 * channels,
            1,
            4 * channels,
            channels,
            32,
            0};
}

}  // namespace

FilePtr OpenMedia(const std::string& inPath)
{
    const CFURLRef url = CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(inPath.data()),
        static_cast<CFIndex>(inPath.size()), false);
    AudioFileID file = nullptr;
    (void)AudioFileOpenURL(url, kAudioFileReadPermission, 0, &file);
    CFRelease(url);
    return FilePtr(file);
}

std::vector<AudioFormatListItem> FormatsOf(AudioFileID inFile)
{
    std::vector<AudioFormatListItem> formats(16);
    auto bytes = static_cast<UInt32>(formats.size() * sizeof(AudioFormatListItem));
    if (AudioFileGetProperty(inFile, kAudioFilePropertyFormatList, &bytes, formats.data()) != noErr)
        bytes = 0;
    formats.resize(bytes / sizeof(AudioFormatListItem));
    return formats;
}

UInt64 PacketCountOf(AudioFileID inFile)
{
    UInt64 count = 0;
    UInt32 bytes = sizeof(count);
    (void)AudioFileGetProperty(inFile, kAudioFilePropertyAudioDataPacketCount, &bytes, &count);
    return count;
}

std::vector<float> DecodeAll(AudioFileID inFile, const AudioStreamBasicDescription& inFormat)
{
    const AudioStreamBasicDescription client = FloatsLike(inFormat);
    AudioConverterRef made = nullptr;
    (void)AudioConverterNew(&inFormat, &client, &made);
    const ConverterPtr converter(made);
    if (!converter || !HandOverCookie(inFile, converter.get()))
        return {};
    Feed feed{inFile};
    std::vector<float> samples;
    std::vector<float> block(4096 * client.mChannelsPerFrame);
    for (;;)
    {
        AudioBufferList list = {
            1, {{client.mChannelsPerFrame, static_cast<UInt32>(block.size() * 4), block.data()}}};
        UInt32 frames = 4096;
        if (AudioConverterFillComplexBuffer(converter.get(), &ReadPackets, &feed, &frames, &list,
                                            nullptr) != noErr)
            return {};
        if (frames == 0)
            return samples;
        samples.insert(samples.end(), block.begin(),
                       block.begin() + static_cast<long>(frames * client.mChannelsPerFrame));
    }
}

}  // namespace media_testing
