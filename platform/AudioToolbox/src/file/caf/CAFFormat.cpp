#include "file/caf/CAFFormat.h"

#include "file/Endian.h"
#include "file/FactArithmetic.h"

#include <algorithm>

namespace audiotoolbox
{
namespace
{

// Flags of linear PCM in the file; they differ from those of a stream description.
constexpr UInt32 kStoredFloat = 1;
constexpr UInt32 kStoredLittleEndian = 2;

constexpr UInt32 kMaxFramesPerPacket = 1 << 20;

struct Stored
{
    double mRate;
    AudioFormatID mFormat;
    UInt32 mFlags;
    UInt32 mBytesPerPacket;
    UInt32 mFramesPerPacket;
    UInt32 mChannels;
    UInt32 mBits;
};

struct CodecRow
{
    AudioFormatID mFormat;
    UInt32 mBytesPerChannel;  // of one packet; 0: as the description says
    UInt32 mFramesPerPacket;  // 0: as the description says
    bool mKeepsDepthInFlags;
};

constexpr CodecRow kCodecs[] = {
    {kAudioFormatAppleIMA4, 34, 64, false},  {kAudioFormatMACE3, 2, 6, false},
    {kAudioFormatMACE6, 1, 6, false},        {kAudioFormatMPEG4AAC, 0, 0, false},
    {kAudioFormatMPEG4AAC_HE, 0, 0, false},  {kAudioFormatMPEG4AAC_HE_V2, 0, 0, false},
    {kAudioFormatAppleLossless, 0, 0, true}, {kAudioFormatFLAC, 0, 0, true},
    {kAudioFormatOpus, 0, 0, false},         {kAudioFormatAC3, 0, 0, false},
    {kAudioFormatEnhancedAC3, 0, 0, false},  {kAudioFormatMPEGLayer1, 0, 0, false},
    {kAudioFormatMPEGLayer2, 0, 0, false},   {kAudioFormatMPEGLayer3, 0, 0, false},
    {kAudioFormatAMR, 0, 0, false},          {kAudioFormatAMR_WB, 0, 0, false},
    {kAudioFormatiLBC, 0, 0, false},         {kAudioFormatQDesign, 0, 0, false},
    {kAudioFormatQDesign2, 0, 0, false},     {kAudioFormatMicrosoftADPCM, 0, 0, false},
    {kAudioFormatDVIIntelIMA, 0, 0, false},  {kAudioFormatMicrosoftGSM, 0, 0, false},
};

Stored ReadDescription(const UInt8* inBytes)
{
    return {ReadBEFloat64(inBytes), ReadBE32(inBytes + 8),  ReadBE32(inBytes + 12),
            ReadBE32(inBytes + 16), ReadBE32(inBytes + 20), ReadBE32(inBytes + 24),
            ReadBE32(inBytes + 28)};
}

OSStatus DescribeSamples(const Stored& inStored, AudioStreamBasicDescription& outFormat)
{
    const bool isFloat = (inStored.mFlags & kStoredFloat) != 0;
    const UInt32 word = inStored.mBytesPerPacket / inStored.mChannels;
    if (inStored.mBits == 0 || word == 0 || inStored.mBytesPerPacket % inStored.mChannels != 0 ||
        inStored.mBits > UInt64{word} * 8 || inStored.mFramesPerPacket > 1)
        return kAudioFileInvalidFileError;
    const bool isKnown =
        isFloat ? inStored.mBits == word * 8 && (word == 4 || word == 8) : word <= 4;
    if (!isKnown)
        return kAudioFileUnsupportedDataFormatError;
    AudioFormatFlags flags = isFloat ? kAudioFormatFlagIsFloat : kAudioFormatFlagIsSignedInteger;
    if ((inStored.mFlags & kStoredLittleEndian) == 0)
        flags |= kAudioFormatFlagIsBigEndian;
    outFormat = DescribePCM(inStored.mRate, inStored.mChannels, inStored.mBits, word, flags);
    return noErr;
}

OSStatus DescribeCodec(const Stored& inStored, AudioStreamBasicDescription& outFormat)
{
    const auto* row =
        std::find_if(std::begin(kCodecs), std::end(kCodecs),
                     [&](const CodecRow& inRow) { return inRow.mFormat == inStored.mFormat; });
    if (row == std::end(kCodecs))
        return kAudioFileUnsupportedDataFormatError;
    const UInt32 bytes = row->mBytesPerChannel != 0 ? row->mBytesPerChannel * inStored.mChannels
                                                    : inStored.mBytesPerPacket;
    const UInt32 frames =
        row->mFramesPerPacket != 0 ? row->mFramesPerPacket : inStored.mFramesPerPacket;
    if (frames > kMaxFramesPerPacket)
        return kAudioFileInvalidFileError;
    outFormat = DescribeBlocks(inStored.mFormat, inStored.mRate, inStored.mChannels, bytes, frames);
    if (row->mKeepsDepthInFlags && inStored.mFlags <= kAppleLosslessFormatFlag_32BitSourceData)
        outFormat.mFormatFlags = inStored.mFlags;
    return noErr;
}

}  // namespace

OSStatus DescribeCAF(std::span<const UInt8> inDescription, FileFacts& ioFacts)
{
    if (inDescription.size() < kCAFDescriptionBytes)
        return kAudioFileInvalidFileError;
    const Stored stored = ReadDescription(inDescription.data());
    if (!IsSaneRate(stored.mRate) || !IsSaneChannelCount(stored.mChannels))
        return kAudioFileInvalidFileError;
    if (stored.mFormat == kAudioFormatLinearPCM)
        return DescribeSamples(stored, ioFacts.mDataFormat);
    if (stored.mFormat != kAudioFormatALaw && stored.mFormat != kAudioFormatULaw)
        return DescribeCodec(stored, ioFacts.mDataFormat);
    ioFacts.mDataFormat = DescribeLaw(stored.mFormat, stored.mRate, stored.mChannels);
    return noErr;
}

}  // namespace audiotoolbox
