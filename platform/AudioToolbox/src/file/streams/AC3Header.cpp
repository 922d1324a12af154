#include "file/streams/AC3Header.h"

#include "file/streams/BitReader.h"

#include <iterator>

namespace audiotoolbox::streams
{
namespace
{

constexpr UInt32 kSampleRates[] = {48000, 44100, 32000};
constexpr UInt32 kRatesInThousands[] = {32,  40,  48,  56,  64,  80,  96,  112, 128, 160,
                                        192, 224, 256, 320, 384, 448, 512, 576, 640};
constexpr UInt32 kBlocks[] = {1, 2, 3, 6};
constexpr UInt32 kFramesPerBlock = 256;
constexpr UInt32 kFramesOfAC3 = 1536;
constexpr UInt32 kHighestPlainStream = 10;  // bit stream identifiers up to here are AC-3
constexpr UInt32 kHighestEnhancedStream = 16;
constexpr UInt32 kFirstSlowStream = 8;  // from here on each identifier halves the rates
constexpr UInt32 kReservedStreamType = 3;

bool ParsePlain(BitReader& ioBits, AC3Header& outHeader)
{
    ioBits.Read(16);  // checksum
    const UInt32 rateCode = ioBits.Read(2);
    const UInt32 sizeCode = ioBits.Read(6);
    const UInt32 stream = ioBits.Read(5);
    ioBits.Read(3);  // kind of service
    if (rateCode >= std::size(kSampleRates) || sizeCode / 2 >= std::size(kRatesInThousands))
        return false;
    const UInt32 bitRate = 1000 * kRatesInThousands[sizeCode / 2];
    const UInt32 halvings = stream > kFirstSlowStream ? stream - kFirstSlowStream : 0;
    UInt32 words = bitRate * (kFramesOfAC3 / 16) / kSampleRates[rateCode];
    if (rateCode == 1)
        words += sizeCode & 1;
    outHeader.mSampleRate = kSampleRates[rateCode] >> halvings;
    outHeader.mBitRate = bitRate >> halvings;
    outHeader.mByteCount = words * 2;
    outHeader.mFrameCount = kFramesOfAC3;
    outHeader.mMode = ioBits.Read(3);
    if (outHeader.mMode != 1 && (outHeader.mMode & 1) != 0)
        ioBits.Read(2);  // level of the centre
    if ((outHeader.mMode & 4) != 0)
        ioBits.Read(2);  // level of the surrounds
    if (outHeader.mMode == 2)
        ioBits.Read(2);  // matrix surround
    outHeader.mHasLFE = ioBits.Read(1) != 0;
    return true;
}

UInt32 ReadChannelMap(BitReader& ioBits, UInt32 inMode)
{
    for (int programme = inMode == 0 ? 2 : 1; programme > 0; --programme)
    {
        ioBits.Read(5);  // level of dialogue
        if (ioBits.Read(1) != 0)
            ioBits.Read(8);  // compression
    }
    return ioBits.Read(1) != 0 ? ioBits.Read(16) : 0;
}

bool ParseEnhanced(BitReader& ioBits, AC3Header& outHeader)
{
    const UInt32 streamType = ioBits.Read(2);
    outHeader.mIsEnhanced = true;
    outHeader.mIsDependent = streamType == 1;
    outHeader.mSubstream = ioBits.Read(3);
    outHeader.mByteCount = (ioBits.Read(11) + 1) * 2;
    const UInt32 rateCode = ioBits.Read(2);
    const UInt32 blockCode = ioBits.Read(2);  // a second rate code where the first is full
    const bool isHalved = rateCode == std::size(kSampleRates);
    if (streamType == kReservedStreamType || (isHalved && blockCode >= std::size(kSampleRates)))
        return false;
    outHeader.mSampleRate = isHalved ? kSampleRates[blockCode] / 2 : kSampleRates[rateCode];
    outHeader.mFrameCount = kFramesPerBlock * (isHalved ? 6 : kBlocks[blockCode]);
    outHeader.mMode = ioBits.Read(3);
    outHeader.mHasLFE = ioBits.Read(1) != 0;
    ioBits.Read(5);  // bit stream identifier
    if (outHeader.mIsDependent)
        outHeader.mChannelMap = ReadChannelMap(ioBits, outHeader.mMode);
    return outHeader.mByteCount >= AC3Syntax::kHeaderBytes;
}

}  // namespace

bool AC3Syntax::Parse(const UInt8* inBytes, AC3Header& outHeader)
{
    if (inBytes[0] != 0x0B || inBytes[1] != 0x77)
        return false;
    outHeader = AC3Header();
    BitReader bits(std::span<const UInt8>(inBytes + 2, kHeaderBytes - 2));
    const UInt32 stream = inBytes[5] >> 3;  // in the same place in both
    if (stream > kHighestEnhancedStream)
        return false;
    return stream <= kHighestPlainStream ? ParsePlain(bits, outHeader)
                                         : ParseEnhanced(bits, outHeader);
}

}  // namespace audiotoolbox::streams
