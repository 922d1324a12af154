#include "file/mpeg4/Codecs.h"

#include "file/AACConfig.h"
#include "file/Endian.h"
#include "file/FactArithmetic.h"
#include "file/mpeg4/BitReader.h"
#include "file/mpeg4/DecoderLayouts.h"
#include "file/mpeg4/ESDescriptor.h"

#include <algorithm>

namespace audiotoolbox::mpeg4
{
namespace
{

using Bytes = std::vector<UInt8>;

constexpr OSStatus kDamaged = kAudioFileInvalidFileError;
constexpr OSStatus kUnknownFormat = kAudioFileUnsupportedDataFormatError;

struct Context
{
    ByteWindow& mWindow;
    const SampleEntry& mEntry;
    FileFacts& mFacts;
    CodecNotes& mNotes;
};

constexpr UInt32 Code(char inA, char inB, char inC, char inD)
{
    return CA_FOUR_CHAR_CODE(inA, inB, inC, inD);
}

Bytes BytesOf(const Context& inContext, UInt32 inType)
{
    return inContext.mEntry.BytesOf(inContext.mWindow, inType);
}

// A compressed format: what packets cost varies.
void SetFormat(FileFacts& ioFacts, AudioFormatID inFormat, double inRate, UInt32 inChannels,
               UInt32 inFrames)
{
    ioFacts.mDataFormat = DescribeBlocks(inFormat, inRate, inChannels, 0, inFrames);
}

// The source depth of a lossless format, as its flags tell it.
UInt32 DepthFlag(UInt32 inBits)
{
    if (inBits <= 16)
        return kAppleLosslessFormatFlag_16BitSourceData;
    if (inBits <= 20)
        return kAppleLosslessFormatFlag_20BitSourceData;
    return inBits <= 24 ? kAppleLosslessFormatFlag_24BitSourceData
                        : kAppleLosslessFormatFlag_32BitSourceData;
}

OSStatus DescribeAACEntry(const Context& inContext, std::span<const UInt8> inConfig)
{
    AACConfig config;
    if (!ParseAudioSpecificConfig(inConfig, config))
        return kDamaged;
    if (config.mChannelCount == 0)
        config.mChannelCount = inContext.mEntry.mChannels;
    DescribeAAC(config, inContext.mFacts);
    inContext.mFacts.mCookie.assign(inConfig.begin(), inConfig.end());
    return noErr;
}

// Rate, channels and frames stand in the packets.
OSStatus DescribeMP3(const Context& inContext)
{
    SetFormat(inContext.mFacts, kAudioFormatMPEGLayer3, inContext.mEntry.mRate,
              inContext.mEntry.mChannels, 0);
    return noErr;
}

OSStatus DescribeMP4A(const Context& inContext)
{
    const Bytes box = BytesOf(inContext, Code('e', 's', 'd', 's'));
    constexpr std::size_t kVersionAndFlags = 4;
    ESDescriptor descriptor;
    if (box.size() < kVersionAndFlags ||
        !ParseESDescriptor(std::span<const UInt8>(box).subspan(kVersionAndFlags), descriptor))
        return kDamaged;
    switch (descriptor.mObjectType)
    {
        case 0x40:  // MPEG-4
        case 0x66:  // MPEG-2: main, low complexity, scalable rate
        case 0x67:
        case 0x68:
            return DescribeAACEntry(inContext, descriptor.mDecoderInfo);
        case 0x69:  // MPEG-2 and MPEG-1 layers
        case 0x6B:
            return DescribeMP3(inContext);
        default:
            return kUnknownFormat;
    }
}

OSStatus DescribeALAC(const Context& inContext)
{
    constexpr std::size_t kVersionAndFlags = 4;
    constexpr std::size_t kConfigBytes = 24;
    const Bytes box = BytesOf(inContext, kAudioFormatAppleLossless);
    if (box.size() < kVersionAndFlags + kConfigBytes)
        return kDamaged;
    const UInt8* config = box.data() + kVersionAndFlags;
    const UInt32 channels = config[9];
    SetFormat(inContext.mFacts, kAudioFormatAppleLossless, ReadBE32(config + 20), channels,
              ReadBE32(config));
    inContext.mFacts.mDataFormat.mFormatFlags = DepthFlag(config[5]);
    inContext.mFacts.mChannelLayout = LayoutOfALAC(channels).mRecord;
    inContext.mFacts.mCookie = {0, 0, 0, 36, 'a', 'l', 'a', 'c', 0, 0, 0, 0};
    inContext.mFacts.mCookie.insert(inContext.mFacts.mCookie.end(), config, config + kConfigBytes);
    return inContext.mFacts.mDataFormat.mFramesPerPacket > 0 ? noErr : kDamaged;
}

OSStatus DescribeFLAC(const Context& inContext)
{
    constexpr std::size_t kHeads = 4 + 4;  // of the box, of its first block
    constexpr std::size_t kStreamInfoBytes = 34;
    const Bytes box = BytesOf(inContext, Code('d', 'f', 'L', 'a'));
    if (box.size() < kHeads + kStreamInfoBytes || (box[4] & 0x7Fu) != 0)
        return kDamaged;
    BitReader bits(std::span<const UInt8>(box).subspan(kHeads));
    const UInt32 smallest = bits.Read(16);
    const UInt32 largest = bits.Read(16);
    bits.Skip(24 + 24);
    const UInt32 rate = bits.Read(20);
    const UInt32 channels = bits.Read(3) + 1;
    const UInt32 depth = bits.Read(5) + 1;
    SetFormat(inContext.mFacts, kAudioFormatFLAC, rate, channels,
              smallest == largest ? largest : 0);
    inContext.mFacts.mDataFormat.mFormatFlags = DepthFlag(depth);
    inContext.mFacts.mChannelLayout = LayoutOfFLACOrOpus(channels).mRecord;
    inContext.mFacts.mCookie.assign(box.begin() + kHeads, box.begin() + kHeads + kStreamInfoBytes);
    return noErr;
}

// The codec's own head (RFC 7845) is the box's content in the other byte order.
Bytes OpusHeadOfBox(std::span<const UInt8> inBox)
{
    Bytes head = {'O', 'p', 'u', 's', 'H', 'e', 'a', 'd', 1};
    const auto swapped = [&](std::size_t inPlace, std::size_t inBytes)
    {
        head.insert(head.end(), inBox.rend() - static_cast<long>(inPlace + inBytes),
                    inBox.rend() - static_cast<long>(inPlace));
    };
    head.push_back(inBox[1]);
    swapped(2, 2);  // pre-skip
    swapped(4, 4);  // rate of the source
    swapped(8, 2);  // gain
    head.insert(head.end(), inBox.begin() + 10, inBox.end());
    return head;
}

OSStatus DescribeOpus(const Context& inContext)
{
    constexpr std::size_t kFixedBytes = 11;
    constexpr double kRate = 48000.0;
    const Bytes box = BytesOf(inContext, Code('d', 'O', 'p', 's'));
    if (box.size() < kFixedBytes || box[0] != 0)
        return kDamaged;
    const UInt32 channels = box[1];
    const bool hasMapping = box[10] != 0;
    const std::size_t needed = kFixedBytes + (hasMapping ? 2 + channels : 0);
    if (box.size() < needed)
        return kDamaged;
    SetFormat(inContext.mFacts, kAudioFormatOpus, kRate, channels, 0);
    inContext.mFacts.mChannelLayout = LayoutOfFLACOrOpus(channels).mRecord;
    inContext.mFacts.mCookie = OpusHeadOfBox(std::span<const UInt8>(box).first(needed));
    inContext.mNotes.mPreSkip = ReadBE16(box.data() + 2);
    return noErr;
}

double AC3Rate(UInt32 inCode, double inEntryRate)
{
    constexpr double kRates[] = {48000.0, 44100.0, 32000.0};
    return inCode < std::size(kRates) ? kRates[inCode] : inEntryRate;
}

UInt32 AC3Channels(UInt32 inMode, bool inHasLFE)
{
    constexpr UInt32 kCounts[] = {2, 1, 2, 3, 3, 4, 4, 5};
    return kCounts[inMode & 7u] + (inHasLFE ? 1 : 0);
}

// Without the codec's box the entry's channel count has to do.
OSStatus DescribeByEntry(const Context& inContext, AudioFormatID inFormat, UInt32 inFrames)
{
    const SampleEntry& entry = inContext.mEntry;
    SetFormat(inContext.mFacts, inFormat, entry.mRate, entry.mChannels, inFrames);
    inContext.mFacts.mChannelLayout = LayoutOfCount(entry.mChannels).mRecord;
    return noErr;
}

OSStatus DescribeAC3(const Context& inContext)
{
    constexpr UInt32 kFrames = 1536;
    const Bytes box = BytesOf(inContext, Code('d', 'a', 'c', '3'));
    if (box.size() < 3)
        return DescribeByEntry(inContext, kAudioFormatAC3, kFrames);
    BitReader bits(box);
    const double rate = AC3Rate(bits.Read(2), inContext.mEntry.mRate);
    bits.Skip(5 + 3);  // stream identification and mode
    const UInt32 mode = bits.Read(3);
    const bool hasLFE = bits.ReadFlag();
    SetFormat(inContext.mFacts, kAudioFormatAC3, rate, AC3Channels(mode, hasLFE), kFrames);
    inContext.mFacts.mChannelLayout = LayoutOfAC3(mode, hasLFE).mRecord;
    return noErr;
}

// What a dependent substream adds to the independent one, by the bits of its location field.
struct AddedChannels
{
    UInt32 mBit;
    UInt32 mCount;
};

constexpr UInt32 kRearSurrounds = 0x002;

constexpr AddedChannels kAddedChannels[] = {
    {0x001, 2},           // left and right of centre
    {kRearSurrounds, 2},  // left and right
    {0x004, 1},           // centre surround
    {0x008, 1},           // top surround
    {0x010, 2},           // direct surrounds
    {0x020, 2},           // wide pair
    {0x040, 2},           // vertical height pair
    {0x080, 1},           // vertical height centre
    {0x100, 1},           // second LFE
};

DecoderLayout LayoutOfEAC3(UInt32 inMode, bool inHasLFE, UInt32 inAdded)
{
    constexpr UInt32 kThreeTwo = 7;
    if (inAdded == kRearSurrounds && inMode == kThreeTwo && inHasLFE)
        return LayoutOfOrder({1, 2, 3, 4, 33, 34, 5, 6});
    return inAdded == 0 ? LayoutOfAC3(inMode, inHasLFE) : DecoderLayout();
}

OSStatus DescribeEAC3(const Context& inContext)
{
    constexpr UInt32 kFrames = 1536;
    const Bytes box = BytesOf(inContext, Code('d', 'e', 'c', '3'));
    if (box.size() < 5)
        return DescribeByEntry(inContext, kAudioFormatEnhancedAC3, kFrames);
    BitReader bits(box);
    bits.Skip(13 + 3);  // data rate, number of programs: the first one counts
    const double rate = AC3Rate(bits.Read(2), inContext.mEntry.mRate);
    bits.Skip(5 + 1 + 1 + 3);
    const UInt32 mode = bits.Read(3);
    const bool hasLFE = bits.ReadFlag();
    bits.Skip(3);
    const UInt32 added = bits.Read(4) > 0 ? bits.Read(9) : 0;
    UInt32 channels = AC3Channels(mode, hasLFE);
    for (const AddedChannels& row : kAddedChannels)
        if ((added & row.mBit) != 0)
            channels += row.mCount;
    SetFormat(inContext.mFacts, kAudioFormatEnhancedAC3, rate, channels, kFrames);
    inContext.mFacts.mChannelLayout = LayoutOfEAC3(mode, hasLFE, added).mRecord;
    return noErr;
}

// Entries of AMR state two channels by custom; the codec has one.
OSStatus DescribeAMR(const Context& inContext)
{
    SetFormat(inContext.mFacts, kAudioFormatAMR, 8000.0, 1, 160);
    inContext.mFacts.mChannelLayout = LayoutOfCount(1).mRecord;
    return noErr;
}

OSStatus DescribeAMRWide(const Context& inContext)
{
    SetFormat(inContext.mFacts, kAudioFormatAMR_WB, 16000.0, 1, 320);
    inContext.mFacts.mChannelLayout = LayoutOfCount(1).mRecord;
    return noErr;
}

struct CodecRow
{
    UInt32 mEntryType;
    OSStatus (*mDescribe)(const Context&);
};

constexpr CodecRow kCodecs[] = {
    {Code('m', 'p', '4', 'a'), &DescribeMP4A}, {Code('a', 'l', 'a', 'c'), &DescribeALAC},
    {Code('a', 'c', '-', '3'), &DescribeAC3},  {Code('e', 'c', '-', '3'), &DescribeEAC3},
    {Code('.', 'm', 'p', '3'), &DescribeMP3},  {0x6D730055, &DescribeMP3},  // 'ms' and the WAVE tag
    {Code('O', 'p', 'u', 's'), &DescribeOpus}, {Code('f', 'L', 'a', 'C'), &DescribeFLAC},
    {Code('s', 'a', 'm', 'r'), &DescribeAMR},  {Code('s', 'a', 'w', 'b'), &DescribeAMRWide},
};

}  // namespace

OSStatus DescribeCodec(ByteWindow& ioWindow, const SampleEntry& inEntry, FileFacts& ioFacts,
                       CodecNotes& outNotes)
{
    if (DescribePCMEntry(ioWindow, inEntry, ioFacts))
        return noErr;
    for (const CodecRow& row : kCodecs)
        if (row.mEntryType == inEntry.mType)
            return row.mDescribe({ioWindow, inEntry, ioFacts, outNotes});
    return kUnknownFormat;
}

}  // namespace audiotoolbox::mpeg4
