#include "file/FactArithmetic.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace audiotoolbox
{
namespace
{

AudioChannelLayoutTag TagOfFormatItem(const FileFacts& inFacts)
{
    const UInt32 channels = inFacts.mDataFormat.mChannelsPerFrame;
    AudioChannelLayoutTag tag = kAudioChannelLayoutTag_UseChannelDescriptions;
    if (inFacts.mChannelLayout.size() >= sizeof(tag))
        std::memcpy(&tag, inFacts.mChannelLayout.data(), sizeof(tag));
    // A list item has no room for a bitmap or for descriptions.
    if (tag != kAudioChannelLayoutTag_UseChannelDescriptions &&
        tag != kAudioChannelLayoutTag_UseChannelBitmap)
        return tag;
    if (channels == 1)
        return kAudioChannelLayoutTag_Mono;
    if (channels == 2)
        return kAudioChannelLayoutTag_Stereo;
    return kAudioChannelLayoutTag_Unknown | channels;
}

UInt64 FramesOfFile(const FileFacts& inFacts)
{
    if (inFacts.mPacketTable)
        return static_cast<UInt64>(inFacts.mPacketTable->mNumberValidFrames);
    return FramesOfPackets(inFacts.mPacketCount.value_or(0), inFacts.mDataFormat.mFramesPerPacket);
}

UInt32 BitRateOf(const FileFacts& inFacts)
{
    const AudioStreamBasicDescription& format = inFacts.mDataFormat;
    double rate = 0.0;
    if (format.mFramesPerPacket == 1 && format.mBytesPerPacket > 0)
        rate = format.mSampleRate * format.mBytesPerPacket * 8.0;
    else if (inFacts.mEstimatedDuration > 0.0)
        rate = static_cast<double>(inFacts.mDataByteCount) * 8.0 / inFacts.mEstimatedDuration;
    const double limit = std::numeric_limits<UInt32>::max();
    return static_cast<UInt32>(std::min(std::round(rate), limit));
}

}  // namespace

double DurationOfFrames(UInt64 inFrames, double inRate)
{
    if (inFrames == 0 || !(inRate > 0.0))
        return 0.0;
    const double frames = static_cast<double>(inFrames);
    double duration = frames / inRate;
    if (!std::isfinite(duration))
        return 0.0;
    // The quotient is at most one rounding step beside the answer; the product decides.
    while (duration * inRate < frames)
        duration = std::nextafter(duration, std::numeric_limits<double>::infinity());
    for (;;)
    {
        const double smaller = std::nextafter(duration, 0.0);
        if (smaller * inRate < frames)
            return duration;
        duration = smaller;
    }
}

bool IsSaneRate(double inRate)
{
    return inRate >= kMinSampleRate && inRate <= kMaxSampleRate;
}

bool IsSaneChannelCount(UInt32 inChannels)
{
    return inChannels > 0 && inChannels <= kMaxChannels;
}

void SetDataRange(const ByteSource& inSource, SInt64 inOffset, SInt64 inByteCount,
                  FileFacts& ioFacts)
{
    const SInt64 room = std::max<SInt64>(inSource.Size() - inOffset, 0);
    ioFacts.mDataOffset = inOffset;
    ioFacts.mDataByteCount = inByteCount < 0 ? room : std::min(inByteCount, room);
}

AudioStreamBasicDescription DescribePCM(double inRate, UInt32 inChannels, UInt32 inBits,
                                        UInt32 inBytesPerSample, AudioFormatFlags inKindFlags)
{
    AudioStreamBasicDescription format = {};
    format.mSampleRate = inRate;
    format.mFormatID = kAudioFormatLinearPCM;
    format.mFormatFlags =
        inKindFlags |
        (inBits == inBytesPerSample * 8 ? kAudioFormatFlagIsPacked : kAudioFormatFlagIsAlignedHigh);
    format.mBytesPerPacket = inBytesPerSample * inChannels;
    format.mFramesPerPacket = 1;
    format.mBytesPerFrame = format.mBytesPerPacket;
    format.mChannelsPerFrame = inChannels;
    format.mBitsPerChannel = inBits;
    return format;
}

AudioStreamBasicDescription DescribeLaw(AudioFormatID inFormat, double inRate, UInt32 inChannels)
{
    AudioStreamBasicDescription format =
        DescribeBlocks(inFormat, inRate, inChannels, inChannels, 1);
    format.mBytesPerFrame = inChannels;
    return format;
}

AudioStreamBasicDescription DescribeBlocks(AudioFormatID inFormat, double inRate, UInt32 inChannels,
                                           UInt32 inBytesPerPacket, UInt32 inFramesPerPacket)
{
    AudioStreamBasicDescription format = {};
    format.mSampleRate = inRate;
    format.mFormatID = inFormat;
    format.mBytesPerPacket = inBytesPerPacket;
    format.mFramesPerPacket = inFramesPerPacket;
    format.mChannelsPerFrame = inChannels;
    return format;
}

UInt64 FramesOfPackets(UInt64 inPackets, UInt32 inFramesPerPacket)
{
    constexpr UInt64 kMost = std::numeric_limits<SInt64>::max();
    if (inFramesPerPacket > 0 && inPackets > kMost / inFramesPerPacket)
        return kMost;
    return inPackets * inFramesPerPacket;
}

AudioFilePacketTableInfo MakePacketTable(UInt64 inFramesInPackets, SInt64 inPriming, SInt64 inValid)
{
    const SInt64 most = std::numeric_limits<SInt32>::max();
    const SInt64 total = static_cast<SInt64>(
        std::min<UInt64>(inFramesInPackets, std::numeric_limits<SInt64>::max()));
    AudioFilePacketTableInfo table = {};
    const SInt64 priming = std::clamp<SInt64>(inPriming, 0, std::min(total, most));
    table.mPrimingFrames = static_cast<SInt32>(priming);
    table.mNumberValidFrames = std::clamp<SInt64>(inValid, 0, total - priming);
    const SInt64 remainder = total - priming - table.mNumberValidFrames;
    table.mRemainderFrames = static_cast<SInt32>(std::min(remainder, most));
    return table;
}

void CountConstantPackets(FileFacts& ioFacts)
{
    const UInt32 size = ioFacts.mDataFormat.mBytesPerPacket;
    ioFacts.mPacketSizeUpperBound = size;
    ioFacts.mPacketCount = size > 0 ? static_cast<UInt64>(ioFacts.mDataByteCount) / size : 0;
}

void CompleteFacts(FileFacts& ioFacts)
{
    ioFacts.mEstimatedDuration =
        DurationOfFrames(FramesOfFile(ioFacts), ioFacts.mDataFormat.mSampleRate);
    ioFacts.mBitRate = BitRateOf(ioFacts);
    if (!ioFacts.mFormats.empty())
        return;
    AudioFormatListItem item = {};
    item.mASBD = ioFacts.mDataFormat;
    item.mChannelLayoutTag = TagOfFormatItem(ioFacts);
    ioFacts.mFormats.push_back(item);
}

}  // namespace audiotoolbox
