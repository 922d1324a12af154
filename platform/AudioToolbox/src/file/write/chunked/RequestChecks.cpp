#include "file/write/chunked/RequestChecks.h"

#include "file/FactArithmetic.h"
#include "tables/WritableTypes.h"

#include <algorithm>
#include <cmath>

namespace audiotoolbox
{
namespace
{

// Kind and byte order. One byte has no order, and samples that fill their word are packed whatever
// the flags say of it.
AudioFormatFlags KindOf(const AudioStreamBasicDescription& inFormat)
{
    AudioFormatFlags kind =
        inFormat.mFormatFlags & (kAudioFormatFlagIsFloat | kAudioFormatFlagIsSignedInteger |
                                 kAudioFormatFlagIsBigEndian | kAudioFormatFlagIsNonInterleaved);
    if ((kind & kAudioFormatFlagIsFloat) != 0)
        kind &= ~kAudioFormatFlagIsSignedInteger;
    if (inFormat.mBitsPerChannel <= 8)
        kind &= ~kAudioFormatFlagIsBigEndian;
    return kind;
}

bool IsVariant(const WriteRequest& inRequest)
{
    const AudioStreamBasicDescription& format = inRequest.mFormat;
    const UInt32 frameBytes = format.mBitsPerChannel / 8 * format.mChannelsPerFrame;
    if (format.mFramesPerPacket != 1 || format.mBytesPerPacket != frameBytes ||
        format.mBytesPerFrame != frameBytes)
        return false;
    const auto variants = WritableVariants(inRequest.mType, kAudioFormatLinearPCM);
    return std::any_of(variants.begin(), variants.end(),
                       [&](const AudioStreamBasicDescription& inVariant)
                       {
        return inVariant.mBitsPerChannel == format.mBitsPerChannel &&
               KindOf(inVariant) == KindOf(format);
    });
}

struct PacketRow
{
    AudioFormatID mFormat;
    UInt32 mBytesPerChannel;
    UInt32 mFrames;
};

constexpr PacketRow kFixedPackets[] = {
    {kAudioFormatALaw, 1, 1},
    {kAudioFormatULaw, 1, 1},
    {kAudioFormatAppleIMA4, 34, 64},
};

bool ArePacketsInOrder(const AudioStreamBasicDescription& inFormat)
{
    if (inFormat.mFramesPerPacket == 0)
        return false;
    for (const PacketRow& row : kFixedPackets)
        if (row.mFormat == inFormat.mFormatID)
            return inFormat.mFramesPerPacket == row.mFrames &&
                   inFormat.mBytesPerPacket == row.mBytesPerChannel * inFormat.mChannelsPerFrame;
    return true;
}

}  // namespace

bool IsRequestInOrder(const WriteRequest& inRequest)
{
    const AudioStreamBasicDescription& format = inRequest.mFormat;
    if (!CanWrite(inRequest.mType, format.mFormatID) || !IsSaneRate(format.mSampleRate) ||
        !IsSaneChannelCount(format.mChannelsPerFrame))
        return false;
    return format.mFormatID == kAudioFormatLinearPCM ? IsVariant(inRequest)
                                                     : ArePacketsInOrder(format);
}

std::vector<AudioChannelLabel> KnownLabels(const WriteRequest& inRequest)
{
    const std::vector<AudioChannelLabel>& labels = inRequest.mLabels;
    const bool isKnown = labels.size() == inRequest.mFormat.mChannelsPerFrame &&
                         std::none_of(labels.begin(), labels.end(),
                                      [](AudioChannelLabel inLabel) {
        return inLabel == kAudioChannelLabel_Unknown || inLabel == kAudioChannelLabel_Unused;
                         });
    return isKnown ? labels : std::vector<AudioChannelLabel>();
}

bool IsPlainOrder(const std::vector<AudioChannelLabel>& inLabels)
{
    if (inLabels.size() == 1)
        return inLabels[0] == kAudioChannelLabel_Mono || inLabels[0] == kAudioChannelLabel_Center;
    return inLabels.size() == 2 && inLabels[0] == kAudioChannelLabel_Left &&
           inLabels[1] == kAudioChannelLabel_Right;
}

UInt32 WholeRate(double inRate)
{
    return static_cast<UInt32>(std::lround(inRate));
}

}  // namespace audiotoolbox
