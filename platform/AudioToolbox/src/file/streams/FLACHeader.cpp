#include "file/streams/FLACHeader.h"

#include "file/Endian.h"

#include <algorithm>
#include <array>
#include <bit>
#include <iterator>

namespace audiotoolbox::streams
{
namespace
{

constexpr UInt32 kSmallestLegalBlock = 16;  // frames, but for the last packet
constexpr UInt32 kMaxBits = 32;

// Sample rates by code; 0 is the stream's, from 12 on the rate stands behind the number.
constexpr UInt32 kRates[] = {0,     88200, 176400, 192000, 8000,  16000,
                             22050, 24000, 32000,  44100,  48000, 96000};
constexpr UInt32 kRateInThousands = 12;
constexpr UInt32 kRateInHertz = 13;
constexpr UInt32 kRateInTens = 14;

// Bits by code; 0 is the stream's.
constexpr UInt32 kBitsByCode[] = {0, 8, 12, 0, 16, 20, 24, 32};
constexpr UInt32 kReservedBitsCode = 3;

constexpr UInt32 kBlockInByte = 6;  // codes that leave the block size to bytes behind the number
constexpr UInt32 kBlockInWord = 7;
constexpr UInt32 kLastChannelCode = 10;  // from 8 on two channels, coded together

template <typename Word>
constexpr std::array<Word, 256> MakeChecksumTable(Word inPolynomial)
{
    constexpr unsigned kShift = sizeof(Word) * 8 - 8;
    constexpr Word kTop = static_cast<Word>(Word{1} << (kShift + 7));
    std::array<Word, 256> table{};
    for (unsigned i = 0; i < 256; ++i)
    {
        Word value = static_cast<Word>(i << kShift);
        for (int bit = 0; bit < 8; ++bit)
            value = static_cast<Word>((value << 1) ^ ((value & kTop) != 0 ? inPolynomial : 0));
        table[i] = value;
    }
    return table;
}
constexpr auto kHeaderChecksums = MakeChecksumTable<UInt8>(0x07);
constexpr auto kFrameChecksums = MakeChecksumTable<UInt16>(0x8005);

UInt8 HeaderChecksum(std::span<const UInt8> inBytes)
{
    UInt8 checksum = 0;
    for (const UInt8 byte : inBytes)
        checksum = kHeaderChecksums[checksum ^ byte];
    return checksum;
}

// Walks behind the fixed four bytes. Missing bytes make IsShort true.
class Fields
{
public:
    explicit Fields(std::span<const UInt8> inBytes) : mBytes(inBytes) {}

    UInt32 ReadByte()
    {
        if (mPosition >= mBytes.size())
            mIsShort = true;
        return mIsShort ? 0 : mBytes[mPosition++];
    }
    UInt32 ReadWord()
    {
        const UInt32 high = ReadByte();
        return (high << 8) | ReadByte();
    }

    // A number in the extended form of UTF-8, up to 36 bits. False for a broken form.
    bool ReadNumber(UInt64& outNumber)
    {
        const UInt32 head = ReadByte();
        const int length = std::countl_one(static_cast<UInt8>(head));
        if (length == 1 || length == 8)
            return false;
        outNumber = length == 0 ? head : head & (0x7Fu >> length);
        for (int i = 1; i < length; ++i)
        {
            const UInt32 byte = ReadByte();
            if ((byte & 0xC0) != 0x80)
                return false;
            outNumber = (outNumber << 6) | (byte & 0x3F);
        }
        return !mIsShort;
    }

    bool IsShort() const { return mIsShort; }
    std::size_t Position() const { return mPosition; }

private:
    std::span<const UInt8> mBytes;
    std::size_t mPosition = 4;
    bool mIsShort = false;
};

// 0 for the reserved code.
UInt32 ReadBlock(UInt32 inCode, Fields& ioFields)
{
    if (inCode == kBlockInByte)
        return ioFields.ReadByte() + 1;
    if (inCode == kBlockInWord)
        return ioFields.ReadWord() + 1;
    if (inCode == 1)
        return 192;
    if (inCode >= 2 && inCode <= 5)
        return 576u << (inCode - 2);
    return inCode >= 8 ? 256u << (inCode - 8) : 0;
}

// 0 for the forbidden code, and for a stated rate of 0.
UInt32 ReadRate(UInt32 inCode, UInt32 inRateOfStream, Fields& ioFields)
{
    if (inCode == 0)
        return inRateOfStream;
    if (inCode < std::size(kRates))
        return kRates[inCode];
    if (inCode == kRateInThousands)
        return ioFields.ReadByte() * 1000;
    if (inCode == kRateInHertz)
        return ioFields.ReadWord();
    return inCode == kRateInTens ? ioFields.ReadWord() * 10 : 0;
}

bool ReadFixedFields(std::span<const UInt8> inBytes, const FLACStreamInfo& inInfo,
                     FLACHeader& outHeader)
{
    if (inBytes.size() < 4 || inBytes[0] != 0xFF || (inBytes[1] & 0xFE) != 0xF8)
        return false;
    const UInt32 channelCode = inBytes[3] >> 4;
    const UInt32 bitsCode = (inBytes[3] >> 1) & 7;
    if (channelCode > kLastChannelCode || bitsCode == kReservedBitsCode || (inBytes[3] & 1) != 0)
        return false;
    outHeader.mHasVariableBlocks = (inBytes[1] & 1) != 0;
    outHeader.mChannels = channelCode < 8 ? channelCode + 1 : 2;
    outHeader.mBits = bitsCode == 0 ? inInfo.mBits : kBitsByCode[bitsCode];
    return true;
}

}  // namespace

bool ParseStreamInfo(std::span<const UInt8, FLACStreamInfo::kBytes> inBytes,
                     FLACStreamInfo& outInfo)
{
    const UInt8* const bytes = inBytes.data();
    const UInt64 packed = ReadBE64(bytes + 10);  // rate 20 bits, channels 3, depth 5, frames 36
    outInfo.mSmallestBlock = ReadBE16(bytes);
    outInfo.mLargestBlock = ReadBE16(bytes + 2);
    outInfo.mSmallestPacket = ReadBE32(bytes + 3) & 0xFFFFFF;
    outInfo.mLargestPacket = ReadBE32(bytes + 6) & 0xFFFFFF;
    outInfo.mSampleRate = static_cast<UInt32>(packed >> 44);
    outInfo.mChannels = static_cast<UInt32>(packed >> 41 & 7) + 1;
    outInfo.mBits = static_cast<UInt32>(packed >> 36 & 31) + 1;
    outInfo.mAllFrames = packed & 0xFFFFFFFFF;
    return outInfo.mSmallestBlock >= kSmallestLegalBlock &&
           outInfo.mSmallestBlock <= outInfo.mLargestBlock && outInfo.mSampleRate > 0 &&
           outInfo.mBits >= 4 && outInfo.mBits <= kMaxBits;
}

UInt32 LargestFLACFrame(const FLACStreamInfo& inInfo)
{
    // Samples as they are, with the extra bit of a difference between channels; and the headers.
    const UInt32 stored = inInfo.mLargestBlock * inInfo.mChannels / 8 * (inInfo.mBits + 1) +
                          inInfo.mLargestBlock * inInfo.mChannels % 8 * (inInfo.mBits + 1) / 8 + 64;
    return inInfo.mLargestPacket == 0 ? stored : std::min(inInfo.mLargestPacket, stored);
}

bool ParseFLACHeader(std::span<const UInt8> inBytes, const FLACStreamInfo& inInfo,
                     FLACHeader& outHeader)
{
    if (!ReadFixedFields(inBytes, inInfo, outHeader))
        return false;
    Fields fields(inBytes);
    if (!fields.ReadNumber(outHeader.mNumber))
        return false;
    outHeader.mBlock = ReadBlock(inBytes[2] >> 4, fields);
    outHeader.mSampleRate = ReadRate(inBytes[2] & 15, inInfo.mSampleRate, fields);
    const std::size_t checked = fields.Position();
    const UInt32 checksum = fields.ReadByte();
    outHeader.mHeaderBytes = static_cast<UInt32>(fields.Position());
    return !fields.IsShort() && outHeader.mBlock > 0 && outHeader.mSampleRate > 0 &&
           HeaderChecksum(inBytes.first(checked)) == checksum;
}

bool AreAlike(const FLACHeader& inFirst, const FLACHeader& inHeader)
{
    // With constant blocks only the last one may be shorter, and none is longer.
    return inHeader.mHasVariableBlocks == inFirst.mHasVariableBlocks &&
           inHeader.mChannels == inFirst.mChannels && inHeader.mBits == inFirst.mBits &&
           inHeader.mSampleRate == inFirst.mSampleRate &&
           (inHeader.mHasVariableBlocks || inHeader.mBlock <= inFirst.mBlock);
}

UInt16 AddToFrameChecksum(UInt16 inChecksum, std::span<const UInt8> inBytes)
{
    UInt16 checksum = inChecksum;
    for (const UInt8 byte : inBytes)
        checksum = static_cast<UInt16>((checksum << 8) ^ kFrameChecksums[(checksum >> 8) ^ byte]);
    return checksum;
}

}  // namespace audiotoolbox::streams
