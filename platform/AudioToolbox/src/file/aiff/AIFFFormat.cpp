#include "file/aiff/AIFFFormat.h"

#include "file/Endian.h"
#include "file/FactArithmetic.h"

#include <algorithm>
#include <cmath>

namespace audiotoolbox
{
namespace
{

constexpr std::size_t kCommonBytes = 18;      // channels, frames, bits, rate
constexpr std::size_t kCompressedBytes = 22;  // and the compression type; its name may be missing

constexpr AudioFormatFlags kBig = kAudioFormatFlagIsBigEndian;
constexpr AudioFormatFlags kSigned = kAudioFormatFlagIsSignedInteger;
constexpr AudioFormatFlags kFloat = kAudioFormatFlagIsFloat;

struct CompressionRow
{
    FourCharCode mCompression;
    AudioFormatID mFormat;
    AudioFormatFlags mFlags;  // PCM: kind and byte order
    UInt32 mBits;             // PCM: 0 where the chunk's bits count
    UInt32 mBlockBytes;       // of one channel
    UInt32 mBlockFrames;
};

// clang-format off
constexpr CompressionRow kCompressions[] = {
    {CA_FOUR_CHAR_CODE('N', 'O', 'N', 'E'), kAudioFormatLinearPCM, kSigned | kBig, 0,  0,  1},
    {CA_FOUR_CHAR_CODE('t', 'w', 'o', 's'), kAudioFormatLinearPCM, kSigned | kBig, 0,  0,  1},
    {CA_FOUR_CHAR_CODE('s', 'o', 'w', 't'), kAudioFormatLinearPCM, kSigned,        0,  0,  1},
    {CA_FOUR_CHAR_CODE('r', 'a', 'w', ' '), kAudioFormatLinearPCM, 0,              8,  0,  1},
    {CA_FOUR_CHAR_CODE('i', 'n', '2', '4'), kAudioFormatLinearPCM, kSigned | kBig, 24, 0,  1},
    {CA_FOUR_CHAR_CODE('n', 'i', '2', '4'), kAudioFormatLinearPCM, kSigned,        24, 0,  1},
    {CA_FOUR_CHAR_CODE('4', '2', 'n', 'i'), kAudioFormatLinearPCM, kSigned,        24, 0,  1},
    {CA_FOUR_CHAR_CODE('i', 'n', '3', '2'), kAudioFormatLinearPCM, kSigned | kBig, 32, 0,  1},
    {CA_FOUR_CHAR_CODE('n', 'i', '3', '2'), kAudioFormatLinearPCM, kSigned,        32, 0,  1},
    {CA_FOUR_CHAR_CODE('2', '3', 'n', 'i'), kAudioFormatLinearPCM, kSigned,        32, 0,  1},
    {CA_FOUR_CHAR_CODE('f', 'l', '3', '2'), kAudioFormatLinearPCM, kFloat | kBig,  32, 0,  1},
    {CA_FOUR_CHAR_CODE('F', 'L', '3', '2'), kAudioFormatLinearPCM, kFloat | kBig,  32, 0,  1},
    {CA_FOUR_CHAR_CODE('f', 'l', '6', '4'), kAudioFormatLinearPCM, kFloat | kBig,  64, 0,  1},
    {CA_FOUR_CHAR_CODE('F', 'L', '6', '4'), kAudioFormatLinearPCM, kFloat | kBig,  64, 0,  1},
    {CA_FOUR_CHAR_CODE('a', 'l', 'a', 'w'), kAudioFormatALaw,      0,              0,  1,  1},
    {CA_FOUR_CHAR_CODE('A', 'L', 'A', 'W'), kAudioFormatALaw,      0,              0,  1,  1},
    {CA_FOUR_CHAR_CODE('u', 'l', 'a', 'w'), kAudioFormatULaw,      0,              0,  1,  1},
    {CA_FOUR_CHAR_CODE('U', 'L', 'A', 'W'), kAudioFormatULaw,      0,              0,  1,  1},
    {CA_FOUR_CHAR_CODE('i', 'm', 'a', '4'), kAudioFormatAppleIMA4, 0,              0,  34, 64},
    {CA_FOUR_CHAR_CODE('M', 'A', 'C', '3'), kAudioFormatMACE3,     0,              0,  2,  6},
    {CA_FOUR_CHAR_CODE('M', 'A', 'C', '6'), kAudioFormatMACE6,     0,              0,  1,  6},
};
// clang-format on

struct Common
{
    UInt32 mChannels = 0;
    UInt32 mBits = 0;
    double mRate = 0.0;
};

const CompressionRow* FindCompression(FourCharCode inCompression)
{
    const auto* row = std::find_if(std::begin(kCompressions), std::end(kCompressions),
                                   [=](const CompressionRow& inRow)
                                   { return inRow.mCompression == inCompression; });
    return row == std::end(kCompressions) ? nullptr : row;
}

OSStatus DescribeSamples(const Common& inCommon, const CompressionRow& inRow,
                         AudioStreamBasicDescription& outFormat)
{
    const UInt32 bits = inRow.mBits != 0 ? inRow.mBits : inCommon.mBits;
    if (bits == 0)
        return kAudioFileInvalidFileError;
    if (bits > 32 && (inRow.mFlags & kFloat) == 0)
        return kAudioFileUnsupportedDataFormatError;
    outFormat = DescribePCM(inCommon.mRate, inCommon.mChannels, bits, (bits + 7) / 8, inRow.mFlags);
    return noErr;
}

OSStatus Describe(const Common& inCommon, const CompressionRow& inRow,
                  AudioStreamBasicDescription& outFormat)
{
    if (inRow.mFormat == kAudioFormatLinearPCM)
        return DescribeSamples(inCommon, inRow, outFormat);
    if (inRow.mBlockFrames == 1)
        outFormat = DescribeLaw(inRow.mFormat, inCommon.mRate, inCommon.mChannels);
    else
        outFormat = DescribeBlocks(inRow.mFormat, inCommon.mRate, inCommon.mChannels,
                                   inRow.mBlockBytes * inCommon.mChannels, inRow.mBlockFrames);
    return noErr;
}

// Frames never beyond what the sound chunk holds, and none of the padding behind them.
void CutToFrames(UInt32 inFrames, FileFacts& ioFacts)
{
    if (inFrames == 0)
        return;  // never filled in
    const SInt64 told = SInt64{inFrames} * ioFacts.mDataFormat.mBytesPerPacket;
    ioFacts.mDataByteCount = std::min(ioFacts.mDataByteCount, told);
}

// The count of the header, of frames or of blocks; 0 when it tells nothing. Some software divides
// the blocks by the channels that each of them holds.
SInt64 FramesOfBlocks(UInt32 inCount, SInt64 inBlocks, const AudioStreamBasicDescription& inFormat)
{
    const UInt32 channels = inFormat.mChannelsPerFrame;
    if (channels > 1 && inCount == inBlocks / channels)
        return 0;
    return SInt64{inCount} * (inCount <= inBlocks ? inFormat.mFramesPerPacket : 1);
}

}  // namespace

double ReadExtended(const UInt8* inBytes)
{
    const UInt32 head = ReadBE16(inBytes);
    const UInt64 mantissa = ReadBE64(inBytes + 2);
    const int exponent = static_cast<int>(head & 0x7FFF);
    if (exponent == 0x7FFF)
        return HUGE_VAL;  // infinities and NaNs: no rate at all
    const double value = std::ldexp(static_cast<double>(mantissa), exponent - 16383 - 63);
    return (head & 0x8000) != 0 ? -value : value;
}

OSStatus DescribeAIFF(std::span<const UInt8> inCommon, bool inIsCompressed, UInt32& outFrames,
                      FileFacts& ioFacts)
{
    if (inCommon.size() < (inIsCompressed ? kCompressedBytes : kCommonBytes))
        return kAudioFileInvalidFileError;
    const UInt8* bytes = inCommon.data();
    const Common common = {ReadBE16(bytes), ReadBE16(bytes + 6), ReadExtended(bytes + 8)};
    outFrames = ReadBE32(bytes + 2);
    if (!IsSaneChannelCount(common.mChannels) || !IsSaneRate(common.mRate))
        return kAudioFileInvalidFileError;
    const FourCharCode compression =
        inIsCompressed ? ReadBE32(bytes + kCommonBytes) : CA_FOUR_CHAR_CODE('N', 'O', 'N', 'E');
    const CompressionRow* row = FindCompression(compression);
    if (row == nullptr)
        return kAudioFileUnsupportedDataFormatError;
    return Describe(common, *row, ioFacts.mDataFormat);
}

void FinishAIFF(UInt32 inFrames, SInt64 inClaimedByteCount, FileFacts& ioFacts)
{
    const UInt32 blockFrames = ioFacts.mDataFormat.mFramesPerPacket;
    if (blockFrames == 1)
        CutToFrames(inFrames, ioFacts);
    CountConstantPackets(ioFacts);
    if (blockFrames > 1)
    {
        const SInt64 blocks = inClaimedByteCount / ioFacts.mDataFormat.mBytesPerPacket;
        const UInt64 held = FramesOfPackets(*ioFacts.mPacketCount, blockFrames);
        const SInt64 told = FramesOfBlocks(inFrames, blocks, ioFacts.mDataFormat);
        const SInt64 valid = told == 0 ? static_cast<SInt64>(held) : told;
        ioFacts.mPacketTable = MakePacketTable(held, 0, valid);
    }
    CompleteFacts(ioFacts);
}

}  // namespace audiotoolbox
