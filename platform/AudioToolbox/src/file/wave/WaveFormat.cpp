#include "file/wave/WaveFormat.h"

#include "file/ChannelLayouts.h"
#include "file/Endian.h"
#include "file/FactArithmetic.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace audiotoolbox
{
namespace
{

constexpr UInt16 kTagPCM = 0x0001;
constexpr UInt16 kTagMicrosoftADPCM = 0x0002;
constexpr UInt16 kTagFloat = 0x0003;
constexpr UInt16 kTagALaw = 0x0006;
constexpr UInt16 kTagMuLaw = 0x0007;
constexpr UInt16 kTagIMA = 0x0011;
constexpr UInt16 kTagGSM = 0x0031;
constexpr UInt16 kTagExtensible = 0xFFFE;

constexpr UInt32 kShortRecordBytes = 14;  // the oldest form: no bits, no extra bytes
constexpr UInt32 kRecordBytes = 16;
constexpr UInt32 kExtraStart = 18;
constexpr UInt32 kExtensibleExtraBytes = 22;
constexpr UInt32 kMaxBlockChannels = 8;

constexpr AudioChannelBitmap kNamedSpeakers = 0x3FFFF;

// What follows the format tag in a subformat GUID: the ordinary family, and that of B-format files.
constexpr UInt8 kSubFormatTail[14] = {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                      0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};
constexpr UInt8 kBFormatTail[14] = {0x00, 0x00, 0x21, 0x07, 0xD3, 0x11, 0x86,
                                    0x44, 0xC8, 0xC1, 0xCA, 0x00, 0x00, 0x00};

struct WaveRecord
{
    UInt16 mTag = 0;
    UInt32 mChannels = 0;
    double mRate = 0.0;
    UInt32 mBlockBytes = 0;
    UInt32 mBits = 0;       // of the word that holds a sample
    UInt32 mValidBits = 0;  // of the sample itself
    AudioChannelBitmap mSpeakers = 0;
    std::span<const UInt8> mExtra;  // into the record's bytes
};

OSStatus ReadExtensible(WaveRecord& ioRecord)
{
    if (ioRecord.mExtra.size() < kExtensibleExtraBytes)
        return kAudioFileInvalidFileError;
    const UInt8* extra = ioRecord.mExtra.data();
    const UInt32 valid = ReadLE16(extra);
    if (valid > 0 && valid < ioRecord.mBits)
        ioRecord.mValidBits = valid;
    ioRecord.mSpeakers = ReadLE32(extra + 2) & kNamedSpeakers;
    ioRecord.mTag = ReadLE16(extra + 6);
    const bool isBFormat = std::memcmp(extra + 8, kBFormatTail, sizeof(kBFormatTail)) == 0;
    if (isBFormat)
        ioRecord.mSpeakers = 0;  // its channels are no speakers
    else if (std::memcmp(extra + 8, kSubFormatTail, sizeof(kSubFormatTail)) != 0)
        return kAudioFileUnsupportedDataFormatError;
    ioRecord.mExtra = ioRecord.mExtra.subspan(kExtensibleExtraBytes);
    return noErr;
}

OSStatus ReadRecord(std::span<const UInt8> inBytes, WaveRecord& outRecord)
{
    if (inBytes.size() < kShortRecordBytes)
        return kAudioFileInvalidFileError;
    const UInt8* bytes = inBytes.data();
    outRecord.mTag = ReadLE16(bytes);
    outRecord.mChannels = ReadLE16(bytes + 2);
    outRecord.mRate = ReadLE32(bytes + 4);
    outRecord.mBlockBytes = ReadLE16(bytes + 12);
    outRecord.mBits = inBytes.size() >= kRecordBytes ? ReadLE16(bytes + 14) : 0;
    outRecord.mValidBits = outRecord.mBits;
    if (inBytes.size() >= kExtraStart)
    {
        const std::size_t claimed = ReadLE16(bytes + kRecordBytes);
        outRecord.mExtra = inBytes.subspan(kExtraStart);
        outRecord.mExtra = outRecord.mExtra.first(std::min(claimed, outRecord.mExtra.size()));
    }
    if (!IsSaneChannelCount(outRecord.mChannels) || !IsSaneRate(outRecord.mRate))
        return kAudioFileInvalidFileError;
    return outRecord.mTag == kTagExtensible ? ReadExtensible(outRecord) : noErr;
}

// The word of one sample: the block size tells it where it can be true, else the bits do. Samples
// of 8 and 16 bits have no wider word; there a larger block size is a mistake of the header.
UInt32 BytesPerSample(const WaveRecord& inRecord)
{
    const UInt32 least = (inRecord.mBits + 7) / 8;
    if (inRecord.mBits == 8 || inRecord.mBits == 16)
        return least;
    const UInt32 told = inRecord.mBlockBytes / inRecord.mChannels;
    const bool isWhole = inRecord.mBlockBytes % inRecord.mChannels == 0;
    return isWhole && told >= least ? told : least;
}

OSStatus DescribeInteger(const WaveRecord& inRecord, FileFacts& ioFacts)
{
    const UInt32 bytes = BytesPerSample(inRecord);
    if (inRecord.mValidBits == 0)
        return kAudioFileInvalidFileError;
    if (inRecord.mBits > 32 || bytes > 4)
        return kAudioFileUnsupportedDataFormatError;
    const AudioFormatFlags sign = bytes > 1 ? kAudioFormatFlagIsSignedInteger : 0;
    ioFacts.mDataFormat =
        DescribePCM(inRecord.mRate, inRecord.mChannels, inRecord.mValidBits, bytes, sign);
    return noErr;
}

OSStatus DescribeFloat(const WaveRecord& inRecord, FileFacts& ioFacts)
{
    if (inRecord.mBits != 32 && inRecord.mBits != 64)
        return kAudioFileUnsupportedDataFormatError;
    ioFacts.mDataFormat = DescribePCM(inRecord.mRate, inRecord.mChannels, inRecord.mBits,
                                      inRecord.mBits / 8, kAudioFormatFlagIsFloat);
    return noErr;
}

OSStatus DescribeALaw(const WaveRecord& inRecord, FileFacts& ioFacts)
{
    ioFacts.mDataFormat = DescribeLaw(kAudioFormatALaw, inRecord.mRate, inRecord.mChannels);
    return noErr;
}

OSStatus DescribeMuLaw(const WaveRecord& inRecord, FileFacts& ioFacts)
{
    ioFacts.mDataFormat = DescribeLaw(kAudioFormatULaw, inRecord.mRate, inRecord.mChannels);
    return noErr;
}

// A block of 4-bit ADPCM: inHeaderBytes for each channel, then nibbles. inHeaderFrames lie in the
// header. The block's bytes decide, as they do in the decoder; the count that the extra bytes
// claim is not looked at.
OSStatus DescribeADPCM(const WaveRecord& inRecord, AudioFormatID inFormat, UInt32 inHeaderBytes,
                       UInt32 inHeaderFrames, UInt32 inGroupFrames, FileFacts& ioFacts)
{
    if (inRecord.mBits != 4 || inRecord.mChannels > kMaxBlockChannels)
        return kAudioFileUnsupportedDataFormatError;
    const UInt32 header = inHeaderBytes * inRecord.mChannels;
    if (inRecord.mBlockBytes <= header)
        return kAudioFileInvalidFileError;
    const UInt32 groupBytes = inGroupFrames * inRecord.mChannels / 2;
    const UInt32 groups = (inRecord.mBlockBytes - header) / groupBytes;
    ioFacts.mDataFormat =
        DescribeBlocks(inFormat, inRecord.mRate, inRecord.mChannels, inRecord.mBlockBytes,
                       inHeaderFrames + groups * inGroupFrames);
    ioFacts.mCookie.assign(inRecord.mExtra.begin(), inRecord.mExtra.end());
    return noErr;
}

OSStatus DescribeIMA(const WaveRecord& inRecord, FileFacts& ioFacts)
{
    return DescribeADPCM(inRecord, kAudioFormatDVIIntelIMA, 4, 1, 8, ioFacts);
}

OSStatus DescribeMicrosoftADPCM(const WaveRecord& inRecord, FileFacts& ioFacts)
{
    return DescribeADPCM(inRecord, kAudioFormatMicrosoftADPCM, 7, 2, 2, ioFacts);
}

OSStatus DescribeGSM(const WaveRecord& inRecord, FileFacts& ioFacts)
{
    constexpr UInt32 kBytes = 65;
    constexpr UInt32 kFrames = 320;
    if (inRecord.mChannels != 1 || inRecord.mBlockBytes != kBytes)
        return kAudioFileUnsupportedDataFormatError;
    ioFacts.mDataFormat =
        DescribeBlocks(kAudioFormatMicrosoftGSM, inRecord.mRate, 1, kBytes, kFrames);
    ioFacts.mCookie.assign(inRecord.mExtra.begin(), inRecord.mExtra.end());
    return noErr;
}

struct CodecRow
{
    UInt16 mTag;
    OSStatus (*mDescribe)(const WaveRecord& inRecord, FileFacts& ioFacts);
};

constexpr CodecRow kCodecs[] = {
    {kTagPCM, &DescribeInteger}, {kTagMicrosoftADPCM, &DescribeMicrosoftADPCM},
    {kTagFloat, &DescribeFloat}, {kTagALaw, &DescribeALaw},
    {kTagMuLaw, &DescribeMuLaw}, {kTagIMA, &DescribeIMA},
    {kTagGSM, &DescribeGSM},
};

// Where more speakers are named than channels exist, the lowest ones are meant.
AudioChannelBitmap LowestBits(AudioChannelBitmap inBits, UInt32 inCount)
{
    while (static_cast<UInt32>(std::popcount(inBits)) > inCount)
        inBits &= ~std::bit_floor(inBits);
    return inBits;
}

}  // namespace

OSStatus DescribeWave(std::span<const UInt8> inRecord, FileFacts& ioFacts)
{
    WaveRecord record;
    if (const OSStatus status = ReadRecord(inRecord, record); status != noErr)
        return status;
    const auto* row =
        std::find_if(std::begin(kCodecs), std::end(kCodecs),
                     [&](const CodecRow& inRow) { return inRow.mTag == record.mTag; });
    if (row == std::end(kCodecs))
        return kAudioFileUnsupportedDataFormatError;
    if (record.mSpeakers != 0)
        ioFacts.mChannelLayout = LayoutOfBitmap(LowestBits(record.mSpeakers, record.mChannels));
    return row->mDescribe(record, ioFacts);
}

bool HasBlocks(const AudioStreamBasicDescription& inFormat)
{
    return inFormat.mFramesPerPacket > 1;
}

void FinishWave(std::optional<UInt64> inFrames, FileFacts& ioFacts)
{
    CountConstantPackets(ioFacts);
    // A length of 0 beside audio was never filled in.
    if (HasBlocks(ioFacts.mDataFormat) && inFrames.value_or(0) > 0)
    {
        const UInt64 held =
            FramesOfPackets(*ioFacts.mPacketCount, ioFacts.mDataFormat.mFramesPerPacket);
        const UInt64 valid = std::min(*inFrames, held);
        ioFacts.mPacketTable = MakePacketTable(held, 0, static_cast<SInt64>(valid));
    }
    CompleteFacts(ioFacts);
}

}  // namespace audiotoolbox
