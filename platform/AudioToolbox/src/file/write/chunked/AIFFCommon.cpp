#include "file/write/chunked/AIFFCommon.h"

#include "file/write/chunked/HeaderBytes.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace audiotoolbox
{
namespace
{

constexpr AudioFormatFlags kBig = kAudioFormatFlagIsBigEndian;
constexpr AudioFormatFlags kFloat = kAudioFormatFlagIsFloat;
constexpr UInt32 kCodecBits = 16;  // of the samples that a codec gives

struct CompressionRow
{
    AudioFormatID mFormat;
    AudioFormatFlags mFlags;  // kind and byte order of linear PCM
    UInt32 mBits;             // of linear PCM; 0: any
    std::string_view mCode;
    std::string_view mName;
};

// Little-endian samples of any width share one code: the other ones for 24 and 32 bits are known to
// fewer readers.
constexpr CompressionRow kCompressions[] = {
    {kAudioFormatLinearPCM, 0, 0, "sowt", "little endian"},
    {kAudioFormatLinearPCM, kFloat | kBig, 32, "fl32", "32-bit floating point"},
    {kAudioFormatLinearPCM, kFloat | kBig, 64, "fl64", "64-bit floating point"},
    {kAudioFormatALaw, 0, 0, "alaw", "A-law 2:1"},
    {kAudioFormatULaw, 0, 0, "ulaw", "mu-law 2:1"},
    {kAudioFormatAppleIMA4, 0, 0, "ima4", "IMA 4:1"},
};
constexpr CompressionRow kNone = {kAudioFormatLinearPCM, kBig, 0, "NONE", "not compressed"};

CompressionRow RowOf(const AudioStreamBasicDescription& inFormat)
{
    const bool isLinear = inFormat.mFormatID == kAudioFormatLinearPCM;
    const AudioFormatFlags flags = isLinear ? inFormat.mFormatFlags & (kBig | kFloat) : 0;
    const bool hasOrder = !isLinear || inFormat.mBitsPerChannel > 8;
    for (const CompressionRow& row : kCompressions)
        if (row.mFormat == inFormat.mFormatID && row.mFlags == flags && hasOrder &&
            (row.mBits == 0 || row.mBits == inFormat.mBitsPerChannel))
            return row;
    return kNone;
}

// A text behind its length, together an even number of bytes.
void AddName(std::string_view inName, HeaderBytes& ioBytes)
{
    ioBytes.Big(inName.size(), 1).Text(inName).Zeros((inName.size() + 1) % 2);
}

}  // namespace

std::array<UInt8, 10> MakeExtended(double inNumber)
{
    constexpr int kBias = 16383;
    int exponent = 0;
    const double fraction = std::frexp(inNumber, &exponent);  // from 0.5 up
    HeaderBytes bytes;
    bytes.Big(static_cast<UInt64>(exponent - 1 + kBias), 2);
    bytes.Big(static_cast<UInt64>(std::ldexp(fraction, 64)), 8);
    std::array<UInt8, 10> extended = {};
    std::copy(bytes.Get().begin(), bytes.Get().end(), extended.begin());
    return extended;
}

std::vector<UInt8> MakeAIFFCommon(const WriteRequest& inRequest, const AudioExtent& inAudio)
{
    const AudioStreamBasicDescription& format = inRequest.mFormat;
    const bool isLinear = format.mFormatID == kAudioFormatLinearPCM;
    HeaderBytes body;
    body.Big(format.mChannelsPerFrame, 2).Big(inAudio.mPackets, 4);
    body.Big(isLinear ? format.mBitsPerChannel : kCodecBits, 2);
    body.Raw(MakeExtended(format.mSampleRate));
    if (inRequest.mType == kAudioFileAIFCType)
    {
        const CompressionRow row = RowOf(format);
        body.Text(row.mCode);
        AddName(row.mName, body);
    }
    return body.Get();
}

}  // namespace audiotoolbox
