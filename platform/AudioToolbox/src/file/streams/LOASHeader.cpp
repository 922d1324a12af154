#include "file/streams/LOASHeader.h"

#include "file/mpeg4/BitReader.h"

#include <algorithm>
#include <array>

namespace audiotoolbox::streams
{
namespace
{

using mpeg4::BitReader;

// The longest configuration has a program config with a comment of 255 bytes.
constexpr std::size_t kLongestConfig = 512;
constexpr UInt32 kLongestCount = 255;

// Bytes from a bit position on; the last one of them may be filled up with zeros.
void CopyBits(std::span<const UInt8> inBytes, std::size_t inPosition, std::span<UInt8> outBytes)
{
    const std::size_t first = inPosition / 8;
    const unsigned shift = static_cast<unsigned>(inPosition % 8);
    const auto byteAt = [&](std::size_t inIndex)
    { return inIndex < inBytes.size() ? inBytes[inIndex] : UInt8{0}; };
    for (std::size_t i = 0; i < outBytes.size(); ++i)
    {
        const UInt32 pair = UInt32{byteAt(first + i)} << 8 | byteAt(first + i + 1);
        outBytes[i] = static_cast<UInt8>(pair >> (8 - shift));
    }
}

// The multiplex's own form of a number: how many bytes, then the bytes.
UInt32 ReadLOASNumber(BitReader& ioBits)
{
    const UInt32 bytes = ioBits.Read(2) + 1;
    return ioBits.Read(bytes * 8);
}

std::vector<UInt8> CookieOf(std::span<const UInt8> inBytes, std::size_t inBits)
{
    std::vector<UInt8> cookie(inBytes.begin(),
                              inBytes.begin() + static_cast<std::ptrdiff_t>((inBits + 7) / 8));
    if (inBits % 8 != 0)
        cookie.back() &= static_cast<UInt8>(0xFF << (8 - inBits % 8));
    return cookie;
}

// Version 0 does not state the configuration's length, so that it ends with the core's.
// inStatedBits  0: not stated
bool ReadDecoderConfig(std::span<const UInt8> inElement, std::size_t inStatedBits,
                       BitReader& ioBits, LOASConfig* outConfig)
{
    std::array<UInt8, kLongestConfig> room;
    const std::size_t left = std::min<std::size_t>(ioBits.BitsLeft(), room.size() * 8);
    if (inStatedBits > left)
        return false;
    const std::size_t usable = inStatedBits > 0 ? inStatedBits : left;
    const auto bytes = std::span(room).first((usable + 7) / 8);
    CopyBits(inElement, ioBits.Position(), bytes);

    AACConfig config;
    std::size_t bits = inStatedBits;
    const bool isRead = inStatedBits > 0 ? ParseAudioSpecificConfig(bytes, config)
                                         : ParseCoreConfig(bytes, config, bits);
    if (!isRead || bits > usable)
        return false;
    ioBits.Skip(bits);
    if (outConfig != nullptr)
        *outConfig = {CookieOf(bytes, bits), config};
    return true;
}

void SkipOtherData(UInt32 inVersion, BitReader& ioBits)
{
    if (inVersion == 1)
        (void)ReadLOASNumber(ioBits);
    else
        for (bool goesOn = true; goesOn && !ioBits.IsPastEnd(); ioBits.Skip(8))
            goesOn = ioBits.ReadFlag();
}

// outIsUnderstood tells whether it was read to its end.
bool ReadMuxConfig(std::span<const UInt8> inElement, BitReader& ioBits, bool& outIsUnderstood,
                   LOASConfig* outConfig)
{
    const UInt32 version = ioBits.Read(1);
    outIsUnderstood = version == 0 || ioBits.Read(1) == 0;
    if (!outIsUnderstood)
        return true;
    if (version == 1)
        (void)ReadLOASNumber(ioBits);  // of the buffer
    const bool hasSameFraming = ioBits.ReadFlag();
    const UInt32 morePackets = ioBits.Read(6);
    const UInt32 morePrograms = ioBits.Read(4);
    const UInt32 moreLayers = ioBits.Read(3);
    outIsUnderstood = hasSameFraming && morePackets + morePrograms + moreLayers == 0;
    if (!outIsUnderstood)
        return true;

    const std::size_t statedBits = version == 1 ? ReadLOASNumber(ioBits) : 0;
    if ((version == 1 && statedBits == 0) ||
        !ReadDecoderConfig(inElement, statedBits, ioBits, outConfig))
        return false;
    outIsUnderstood = ioBits.Read(3) == 0;  // lengths in front of the packets
    ioBits.Skip(8);                         // state of the buffer
    if (ioBits.ReadFlag())
        SkipOtherData(version, ioBits);
    if (ioBits.ReadFlag())
        ioBits.Skip(8);  // checksum
    return true;
}

std::size_t ReadPayloadLength(BitReader& ioBits)
{
    std::size_t length = 0;
    UInt32 count = kLongestCount;
    while (count == kLongestCount && !ioBits.IsPastEnd())
    {
        count = ioBits.Read(8);
        length += count;
    }
    return length;
}

}  // namespace

bool LOASSyntax::Parse(const UInt8* inBytes, LOASHeader& outHeader)
{
    constexpr UInt32 kSmallestElement = 2;
    const UInt32 word = UInt32{inBytes[0]} << 16 | UInt32{inBytes[1]} << 8 | inBytes[2];
    const UInt32 size = word & kLargestLOASElement;
    outHeader = {static_cast<UInt32>(kHeaderBytes) + size, 0, 0};
    return word >> 13 == kLOASSync && size >= kSmallestElement;
}

bool ParseLOASElement(std::span<const UInt8> inElement, LOASElement& outElement,
                      LOASConfig* outConfig)
{
    BitReader bits(inElement);
    outElement = {};
    outElement.mHasConfig = !bits.ReadFlag();
    outElement.mIsUnderstood = true;
    if (outElement.mHasConfig &&
        !ReadMuxConfig(inElement, bits, outElement.mIsUnderstood, outConfig))
        return false;
    if (!outElement.mIsUnderstood)
        return !bits.IsPastEnd();
    outElement.mPayloadBytes = ReadPayloadLength(bits);
    outElement.mPayloadPosition = bits.Position();
    return outElement.mPayloadBytes > 0 && outElement.mPayloadBytes <= bits.BitsLeft() / 8;
}

void CopyLOASPayload(std::span<const UInt8> inElement, const LOASElement& inParsed, UInt8* outBytes)
{
    CopyBits(inElement, inParsed.mPayloadPosition, {outBytes, inParsed.mPayloadBytes});
}

}  // namespace audiotoolbox::streams
