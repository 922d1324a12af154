#include "file/streams/MPEGHeader.h"

#include <iterator>

namespace audiotoolbox::streams
{
namespace
{

// Thousands of bits per second by index; index 0 is free format.
constexpr UInt32 kFullRates[3][15] = {
    {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
    {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320}};
constexpr UInt32 kHalvedRates[3][15] = {
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256},
    {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
    {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160}};
constexpr UInt32 kSampleRates[] = {44100, 48000, 32000};
constexpr UInt32 kHighestRateIndex = 14;

struct Fields
{
    UInt32 mHalvings;
    UInt32 mLayer;
    UInt32 mBitRateIndex;
    UInt32 mSampleRateIndex;
};

bool ReadFields(const UInt8* inBytes, Fields& outFields)
{
    if (inBytes[0] != 0xFF || (inBytes[1] & 0xE0) != 0xE0)
        return false;
    const UInt32 version = (inBytes[1] >> 3) & 3;  // 0: the extension, 1: reserved, 2, 3: MPEG-1
    const UInt32 layer = (inBytes[1] >> 1) & 3;    // 0: reserved, 1: layer 3
    outFields.mBitRateIndex = inBytes[2] >> 4;
    outFields.mSampleRateIndex = (inBytes[2] >> 2) & 3;
    if (version == 1 || layer == 0 || outFields.mBitRateIndex > kHighestRateIndex ||
        outFields.mSampleRateIndex >= std::size(kSampleRates))
        return false;
    outFields.mHalvings = version == 3 ? 0 : version == 2 ? 1 : 2;
    outFields.mLayer = 4 - layer;
    return true;
}

UInt32 BitRate(UInt32 inHalvings, UInt32 inLayer, UInt32 inIndex)
{
    return 1000 * (inHalvings == 0 ? kFullRates : kHalvedRates)[inLayer - 1][inIndex];
}

UInt32 FramesPerPacket(UInt32 inHalvings, UInt32 inLayer)
{
    if (inLayer == 1)
        return 384;
    return inLayer == 3 && inHalvings > 0 ? 576 : 1152;
}

// Layer 1 counts in slots of four bytes.
UInt32 ByteCount(const MPEGHeader& inHeader, UInt32 inBitRate, UInt32 inPadding)
{
    if (inHeader.mLayer == 1)
        return (12 * inBitRate / inHeader.mSampleRate + inPadding) * 4;
    return inHeader.mFrameCount / 8 * inBitRate / inHeader.mSampleRate + inPadding;
}

}  // namespace

bool MPEGSyntax::Parse(const UInt8* inBytes, MPEGHeader& outHeader)
{
    Fields fields;
    if (!ReadFields(inBytes, fields) || fields.mBitRateIndex == 0)
        return false;
    outHeader.mHalvings = fields.mHalvings;
    outHeader.mLayer = fields.mLayer;
    outHeader.mSampleRate = kSampleRates[fields.mSampleRateIndex] >> fields.mHalvings;
    outHeader.mChannels = (inBytes[3] >> 6) == 3 ? 1 : 2;
    outHeader.mBitRate = BitRate(fields.mHalvings, fields.mLayer, fields.mBitRateIndex);
    outHeader.mFrameCount = FramesPerPacket(fields.mHalvings, fields.mLayer);
    outHeader.mByteCount = ByteCount(outHeader, outHeader.mBitRate, (inBytes[2] >> 1) & 1);
    outHeader.mHasCRC = (inBytes[1] & 1) == 0;
    return true;
}

bool IsFreeFormat(const UInt8* inBytes)
{
    Fields fields;
    return ReadFields(inBytes, fields) && fields.mBitRateIndex == 0;
}

UInt32 LargestMPEGFrame(const MPEGHeader& inHeader)
{
    return ByteCount(inHeader, BitRate(inHeader.mHalvings, inHeader.mLayer, kHighestRateIndex), 1);
}

}  // namespace audiotoolbox::streams
