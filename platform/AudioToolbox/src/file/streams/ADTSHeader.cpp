#include "file/streams/ADTSHeader.h"

#include "file/streams/BitReader.h"

#include <iterator>

namespace audiotoolbox::streams
{
namespace
{

constexpr UInt32 kRates[] = {96000, 88200, 64000, 48000, 44100, 32000, 24000,
                             22050, 16000, 12000, 11025, 8000,  7350};
constexpr UInt32 kFramesPerBlock = 1024;
constexpr UInt32 kProgramConfigElement = 5;

// A list of elements, each single or, where its flag says so, a pair.
UInt32 CountChannels(BitReader& ioBits, UInt32 inElements)
{
    UInt32 channels = 0;
    for (; inElements > 0; --inElements)
    {
        channels += 1 + ioBits.Read(1);
        ioBits.Read(4);
    }
    return channels;
}

}  // namespace

bool ADTSSyntax::Parse(const UInt8* inBytes, ADTSHeader& outHeader)
{
    if (inBytes[0] != 0xFF || (inBytes[1] & 0xF6) != 0xF0)  // the layer is 0
        return false;
    const UInt32 rateIndex = (inBytes[2] >> 2) & 0x0F;
    if (rateIndex >= std::size(kRates))
        return false;
    outHeader.mObjectType = (inBytes[2] >> 6) + 1u;
    outHeader.mSampleRate = kRates[rateIndex];
    outHeader.mChannelConfig = ((inBytes[2] & 1u) << 2) | (inBytes[3] >> 6);
    outHeader.mByteCount =
        ((inBytes[3] & 3u) << 11) | (UInt32{inBytes[4]} << 3) | (inBytes[5] >> 5);
    outHeader.mBlocks = (inBytes[6] & 3u) + 1;
    outHeader.mFrameCount = outHeader.mBlocks * kFramesPerBlock;
    outHeader.mHeaderBytes = (inBytes[1] & 1) != 0 ? 7 : 9;
    outHeader.mBitRate = 0;
    return outHeader.mByteCount > outHeader.mHeaderBytes;
}

UInt32 ChannelsOfProgramConfig(const ADTSHeader& inHeader, std::span<const UInt8> inFrame)
{
    // With several blocks and a checksum, their positions stand between header and checksum.
    const UInt32 positions = inHeader.mHeaderBytes == 9 ? 2 * (inHeader.mBlocks - 1) : 0;
    const std::size_t start = inHeader.mHeaderBytes + positions;
    if (inFrame.size() <= start)
        return 0;
    BitReader bits(inFrame.subspan(start));
    if (bits.Read(3) != kProgramConfigElement)
        return 0;
    bits.Read(4 + 2 + 4);  // instance, object type, rate
    UInt32 elements = bits.Read(4);
    elements += bits.Read(4);
    elements += bits.Read(4);
    const UInt32 lowFrequency = bits.Read(2);
    bits.Read(3 + 4);  // data and coupling elements
    for (const unsigned mixdownBits : {4u, 4u, 3u})
        if (bits.Read(1) != 0)
            bits.Read(mixdownBits);
    const UInt32 channels = CountChannels(bits, elements) + lowFrequency;
    return bits.IsPastEnd() ? 0 : channels;
}

}  // namespace audiotoolbox::streams
