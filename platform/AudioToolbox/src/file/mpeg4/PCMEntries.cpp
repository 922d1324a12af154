// The entries of linear PCM and of its companded kinds, in QuickTime's and in the base format's
// way.
#include "file/mpeg4/Codecs.h"

#include "file/FactArithmetic.h"

namespace audiotoolbox::mpeg4
{
namespace
{

constexpr UInt32 kSigned = kAudioFormatFlagIsSignedInteger;
constexpr UInt32 kFloat = kAudioFormatFlagIsFloat;
constexpr UInt32 kBig = kAudioFormatFlagIsBigEndian;
constexpr UInt32 kBitsOfEntry = 0;

struct PCMRow
{
    UInt32 mType;
    UInt32 mBits;
    UInt32 mFlags;
};

constexpr PCMRow kPCM[] = {
    {CA_FOUR_CHAR_CODE('s', 'o', 'w', 't'), kBitsOfEntry, kSigned},
    {CA_FOUR_CHAR_CODE('t', 'w', 'o', 's'), kBitsOfEntry, kSigned | kBig},
    {CA_FOUR_CHAR_CODE('i', 'n', '2', '4'), 24, kSigned | kBig},
    {CA_FOUR_CHAR_CODE('i', 'n', '3', '2'), 32, kSigned | kBig},
    {CA_FOUR_CHAR_CODE('f', 'l', '3', '2'), 32, kFloat | kBig},
    {CA_FOUR_CHAR_CODE('f', 'l', '6', '4'), 64, kFloat | kBig},
    {CA_FOUR_CHAR_CODE('i', 'p', 'c', 'm'), kBitsOfEntry, kSigned | kBig},
    {CA_FOUR_CHAR_CODE('f', 'p', 'c', 'm'), kBitsOfEntry, kFloat | kBig},
};

bool SetPCM(const SampleEntry& inEntry, UInt32 inBits, UInt32 inFlags, FileFacts& ioFacts)
{
    const bool isFloat = (inFlags & kFloat) != 0;
    const bool isKnown = isFloat ? inBits == 32 || inBits == 64
                                 : inBits == 8 || inBits == 16 || inBits == 24 || inBits == 32;
    if (!isKnown || !IsSaneChannelCount(inEntry.mChannels))
        return false;
    const UInt32 bytes = inBits / 8;
    const UInt32 order = bytes == 1 ? inFlags & ~kBig : inFlags;
    ioFacts.mDataFormat = DescribePCM(inEntry.mRate, inEntry.mChannels, inBits, bytes, order);
    return true;
}

// ISO/IEC 23003-5: byte order and depth stand in a box of their own.
bool DescribeISOPCM(ByteWindow& ioWindow, const SampleEntry& inEntry, UInt32 inFlags,
                    FileFacts& ioFacts)
{
    const std::vector<UInt8> box = inEntry.BytesOf(ioWindow, CA_FOUR_CHAR_CODE('p', 'c', 'm', 'C'));
    if (box.size() < 6)
        return false;
    const bool isLittle = (box[4] & 1u) != 0;
    return SetPCM(inEntry, box[5], isLittle ? inFlags & ~kBig : inFlags, ioFacts);
}

// QuickTime's version 2 states flags in the platform's own terms.
bool DescribeLPCM(const SampleEntry& inEntry, FileFacts& ioFacts)
{
    constexpr UInt32 kKind = kSigned | kFloat | kBig;
    if (UInt64{inEntry.mFrameBytes} * 8 != UInt64{inEntry.mBits} * inEntry.mChannels)
        return false;
    return SetPCM(inEntry, inEntry.mBits, inEntry.mPCMFlags & kKind, ioFacts);
}

// Unsigned bytes, or signed words where the entry states 16 bits.
bool DescribeRaw(const SampleEntry& inEntry, FileFacts& ioFacts)
{
    return inEntry.mBits == 16 ? SetPCM(inEntry, 16, kSigned | kBig, ioFacts)
                               : SetPCM(inEntry, 8, 0, ioFacts);
}

bool DescribeLawEntry(const SampleEntry& inEntry, FileFacts& ioFacts)
{
    if (!IsSaneChannelCount(inEntry.mChannels))
        return false;
    ioFacts.mDataFormat = DescribeLaw(inEntry.mType, inEntry.mRate, inEntry.mChannels);
    return true;
}

}  // namespace

bool DescribePCMEntry(ByteWindow& ioWindow, const SampleEntry& inEntry, FileFacts& ioFacts)
{
    switch (inEntry.mType)
    {
        case CA_FOUR_CHAR_CODE('l', 'p', 'c', 'm'):
            return DescribeLPCM(inEntry, ioFacts);
        case CA_FOUR_CHAR_CODE('r', 'a', 'w', ' '):
            return DescribeRaw(inEntry, ioFacts);
        case kAudioFormatULaw:
        case kAudioFormatALaw:
            return DescribeLawEntry(inEntry, ioFacts);
        default:
            break;
    }
    for (const PCMRow& row : kPCM)
    {
        if (row.mType != inEntry.mType)
            continue;
        if (row.mType == CA_FOUR_CHAR_CODE('i', 'p', 'c', 'm') ||
            row.mType == CA_FOUR_CHAR_CODE('f', 'p', 'c', 'm'))
            return DescribeISOPCM(ioWindow, inEntry, row.mFlags, ioFacts);
        const UInt32 flags = inEntry.mIsLittleEndian ? row.mFlags & ~kBig : row.mFlags;
        return SetPCM(inEntry, row.mBits == kBitsOfEntry ? inEntry.mBits : row.mBits, flags,
                      ioFacts);
    }
    return false;
}

}  // namespace audiotoolbox::mpeg4
