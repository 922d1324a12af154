#include "convert/SampleLayout.h"

namespace audiotoolbox
{

namespace
{

bool ReadFloatLayout(const AudioStreamBasicDescription& inFormat, UInt32 inWordBytes,
                     SampleLayout& outLayout)
{
    const UInt32 bits = inFormat.mBitsPerChannel;
    if ((bits != 32 && bits != 64) || inWordBytes * 8 != bits)
        return false;
    outLayout.mWord = bits == 32 ? SampleWord::Float32 : SampleWord::Float64;
    return true;
}

bool ReadIntegerLayout(const AudioStreamBasicDescription& inFormat, UInt32 inWordBytes,
                       SampleLayout& outLayout)
{
    const UInt32 bits = inFormat.mBitsPerChannel;
    const UInt32 flags = inFormat.mFormatFlags;
    if (inWordBytes < 1 || inWordBytes > 4 || bits < 1 || bits > inWordBytes * 8)
        return false;
    const bool fills = bits == inWordBytes * 8;
    if ((flags & kAudioFormatFlagIsPacked) != 0 && !fills)
        return false;
    outLayout.mIsUnsigned = (flags & kAudioFormatFlagIsSignedInteger) == 0;
    if (outLayout.mIsUnsigned && inWordBytes > 1)
        return false;
    outLayout.mWord = static_cast<SampleWord>(inWordBytes - 1);
    outLayout.mIsLow = !fills && (flags & kAudioFormatFlagIsAlignedHigh) == 0;
    return true;
}

}  // namespace

UInt32 WordBytes(SampleWord inWord)
{
    constexpr UInt32 kBytes[] = {1, 2, 3, 4, 4, 8};
    return kBytes[static_cast<UInt32>(inWord)];
}

bool ReadSampleLayout(const AudioStreamBasicDescription& inFormat, SampleLayout& outLayout)
{
    const UInt32 channels = inFormat.mChannelsPerFrame;
    const UInt32 flags = inFormat.mFormatFlags;
    if (inFormat.mFormatID != kAudioFormatLinearPCM || channels < 1 || channels > kMaxChannels)
        return false;
    if (inFormat.mFramesPerPacket != 1 || inFormat.mBytesPerPacket != inFormat.mBytesPerFrame)
        return false;
    if (flags != kAudioFormatFlagsAreAllClear &&
        (flags & kLinearPCMFormatFlagsSampleFractionMask) != 0)
        return false;

    const UInt32 inBuffer = (flags & kAudioFormatFlagIsNonInterleaved) != 0 ? 1 : channels;
    if (inFormat.mBytesPerFrame % inBuffer != 0)
        return false;
    const UInt32 wordBytes = inFormat.mBytesPerFrame / inBuffer;
    outLayout = SampleLayout();
    outLayout.mBits = inFormat.mBitsPerChannel;
    outLayout.mIsBigEndian = wordBytes > 1 && (flags & kAudioFormatFlagIsBigEndian) != 0;
    if ((flags & kAudioFormatFlagIsFloat) != 0)
        return ReadFloatLayout(inFormat, wordBytes, outLayout);
    return ReadIntegerLayout(inFormat, wordBytes, outLayout);
}

}  // namespace audiotoolbox
