#include "StreamMakers.h"

#include <algorithm>

namespace stream_testing
{
namespace
{

class BitWriter
{
public:
    void Put(UInt64 inValue, unsigned inBits)
    {
        for (; inBits > 0; --inBits, ++mBits)
        {
            if (mBits % 8 == 0)
                mBytes.push_back(0);
            mBytes.back() |= static_cast<UInt8>((inValue >> (inBits - 1) & 1) << (7 - mBits % 8));
        }
    }
    const Bytes& Written() const { return mBytes; }

private:
    Bytes mBytes;
    std::size_t mBits = 0;
};

void PutBE32(Bytes& ioBytes, std::size_t inPosition, UInt32 inValue)
{
    for (std::size_t i = 0; i < 4; ++i)
        ioBytes.at(inPosition + i) = static_cast<UInt8>(inValue >> (24 - 8 * i));
}

void PutText(Bytes& ioBytes, std::size_t inPosition, const char* inText)
{
    for (std::size_t i = 0; inText[i] != 0; ++i)
        ioBytes.at(inPosition + i) = static_cast<UInt8>(inText[i]);
}

Bytes TextBytes(const std::string& inText)
{
    return Bytes(inText.begin(), inText.end());
}

Bytes LE32(UInt32 inValue)
{
    return {static_cast<UInt8>(inValue), static_cast<UInt8>(inValue >> 8),
            static_cast<UInt8>(inValue >> 16), static_cast<UInt8>(inValue >> 24)};
}

// Bit by bit, unlike the code under test.
UInt32 Checksum(const Bytes& inBytes, unsigned inWidth, UInt32 inPolynomial)
{
    UInt32 value = 0;
    for (const UInt8 byte : inBytes)
    {
        value ^= UInt32{byte} << (inWidth - 8);
        for (int bit = 0; bit < 8; ++bit)
            value = (value >> (inWidth - 1) & 1) != 0 ? (value << 1) ^ inPolynomial : value << 1;
        value &= (1u << inWidth) - 1;
    }
    return value;
}

void PutFLACNumber(BitWriter& ioBits, UInt64 inNumber)
{
    if (inNumber < 0x80)
        return ioBits.Put(inNumber, 8);
    unsigned tail = 1;
    while (inNumber >> (6 * tail + 6 - tail) != 0)
        ++tail;
    ioBits.Put((1u << (tail + 2)) - 2, tail + 2);  // as many ones as bytes, and a zero
    ioBits.Put(inNumber >> (6 * tail), 6 - tail);
    for (; tail > 0; --tail)
        ioBits.Put(0x80 | (inNumber >> (6 * (tail - 1)) & 0x3F), 8);
}

}  // namespace

Bytes Noise(std::size_t inBytes, UInt32 inSeed)
{
    Bytes bytes(inBytes);
    UInt32 state = inSeed * 2654435761u + 1;
    for (UInt8& byte : bytes)
    {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<UInt8>(state >> 24);
    }
    return bytes;
}

Bytes NoiseWithoutSync(std::size_t inBytes, UInt32 inSeed)
{
    Bytes bytes = Noise(inBytes, inSeed);
    for (UInt8& byte : bytes)
        if (byte == 0xFF || byte == 0x0B)
            byte = 0x55;
    return bytes;
}

Bytes MPEGFrame(UInt32 inHeader, std::size_t inBytes)
{
    Bytes frame = NoiseWithoutSync(inBytes, inHeader);
    PutBE32(frame, 0, inHeader);
    return frame;
}

Bytes MP3Frame()
{
    return MPEGFrame(0xFFFB9000, 417);
}

Bytes MP3TagFrame(const char* inMagic, SInt64 inPackets, SInt64 inBytes, const char* inEncoder,
                  UInt32 inDelay, UInt32 inPadding)
{
    Bytes frame(417, 0);
    PutBE32(frame, 0, 0xFFFB9000);
    std::size_t at = 36;
    PutText(frame, at, inMagic);
    PutBE32(frame, at + 4, (inPackets >= 0 ? 1u : 0u) | (inBytes >= 0 ? 2u : 0u));
    at += 8;
    for (const SInt64 number : {inPackets, inBytes})
        if (number >= 0)
        {
            PutBE32(frame, at, static_cast<UInt32>(number));
            at += 4;
        }
    PutText(frame, at, inEncoder);
    frame.at(at + 21) = static_cast<UInt8>(inDelay >> 4);
    frame.at(at + 22) = static_cast<UInt8>((inDelay & 15) << 4 | inPadding >> 8);
    frame.at(at + 23) = static_cast<UInt8>(inPadding);
    return frame;
}

Bytes ADTSFrame(UInt32 inRateIndex, UInt32 inChannelConfig, std::size_t inBytes, UInt32 inBlocks,
                bool inHasCRC)
{
    BitWriter bits;
    bits.Put(0xFFF, 12);
    bits.Put(0, 3);
    bits.Put(inHasCRC ? 0 : 1, 1);
    bits.Put(1, 2);  // low complexity
    bits.Put(inRateIndex, 4);
    bits.Put(0, 1);
    bits.Put(inChannelConfig, 3);
    bits.Put(0, 4);
    bits.Put(inBytes, 13);
    bits.Put(0x7FF, 11);
    bits.Put(inBlocks - 1, 2);
    Bytes frame = NoiseWithoutSync(inBytes, inRateIndex);
    std::copy(bits.Written().begin(), bits.Written().end(), frame.begin());
    return frame;
}

Bytes EAC3Frame(UInt32 inType, UInt32 inSubstream, UInt32 inMode, bool inHasLFE,
                std::size_t inBytes, UInt32 inBlockCode, UInt32 inChannelMap)
{
    BitWriter bits;
    bits.Put(0x0B77, 16);
    bits.Put(inType, 2);
    bits.Put(inSubstream, 3);
    bits.Put(inBytes / 2 - 1, 11);
    bits.Put(0, 2);  // 48 kHz
    bits.Put(inBlockCode, 2);
    bits.Put(inMode, 3);
    bits.Put(inHasLFE ? 1 : 0, 1);
    bits.Put(16, 5);
    bits.Put(31, 5);  // level of dialogue
    bits.Put(0, 1);
    if (inType == 1)
    {
        bits.Put(inChannelMap != 0 ? 1 : 0, 1);
        bits.Put(inChannelMap, inChannelMap != 0 ? 16 : 0);
    }
    Bytes frame = NoiseWithoutSync(inBytes, inMode + inBlockCode);
    std::copy(bits.Written().begin(), bits.Written().end(), frame.begin());
    return frame;
}

Bytes AMRFrame(UInt32 inMode, std::size_t inBytes)
{
    Bytes frame(inBytes, 0);
    frame.at(0) = static_cast<UInt8>(inMode << 3 | 4);
    return frame;
}

Bytes FLACBlock(UInt32 inKind, bool inIsLast, const Bytes& inBody)
{
    Bytes header(4);
    PutBE32(header, 0,
            (inIsLast ? 0x80000000u : 0u) | inKind << 24 | static_cast<UInt32>(inBody.size()));
    return Join({header, inBody});
}

Bytes FLACHead(const FLACShape& inShape, bool inIsLast)
{
    BitWriter bits;
    bits.Put(inShape.mSmallestBlock, 16);
    bits.Put(inShape.mLargestBlock, 16);
    bits.Put(0, 24);
    bits.Put(inShape.mLargestPacket, 24);
    bits.Put(inShape.mSampleRate, 20);
    bits.Put(inShape.mChannels - 1, 3);
    bits.Put(inShape.mBits - 1, 5);
    bits.Put(inShape.mAllFrames, 36);
    bits.Put(0, 64);
    bits.Put(0, 64);
    return Join({TextBytes("fLaC"), FLACBlock(0, inIsLast, bits.Written())});
}

Bytes FLACMaskComment(const std::string& inComment)
{
    const Bytes vendor = TextBytes("tests");
    const Bytes other = TextBytes("TITLE=x");
    const Bytes comment = TextBytes(inComment);
    return Join({LE32(5), vendor, LE32(2), LE32(7), other,
                 LE32(static_cast<UInt32>(comment.size())), comment});
}

Bytes FLACFrame(const FLACShape& inShape, UInt64 inNumber, UInt32 inBlock, const Bytes& inBody,
                bool inHasVariableBlocks)
{
    BitWriter bits;
    bits.Put(0x3FFE, 14);
    bits.Put(0, 1);
    bits.Put(inHasVariableBlocks ? 1 : 0, 1);
    bits.Put(7, 4);  // the block size follows in 16 bits
    bits.Put(0, 4);  // the stream's rate
    bits.Put(inShape.mChannels - 1, 4);
    bits.Put(0, 3);  // the stream's depth
    bits.Put(0, 1);
    PutFLACNumber(bits, inNumber);
    bits.Put(inBlock - 1, 16);
    Bytes frame = bits.Written();
    frame.push_back(static_cast<UInt8>(Checksum(frame, 8, 0x07)));
    frame.insert(frame.end(), inBody.begin(), inBody.end());
    const UInt32 checksum = Checksum(frame, 16, 0x8005);
    frame.push_back(static_cast<UInt8>(checksum >> 8));
    frame.push_back(static_cast<UInt8>(checksum));
    return frame;
}

Bytes ID3v2Tag(std::size_t inBodyBytes)
{
    Bytes tag = {'I', 'D', '3', 4, 0, 0, 0, 0, 0, 0};
    for (std::size_t i = 0; i < 4; ++i)
        tag[9 - i] = static_cast<UInt8>(inBodyBytes >> (7 * i) & 0x7F);
    tag.resize(10 + inBodyBytes);
    return tag;
}

Bytes ID3v1Tag()
{
    Bytes tag(128, 0x20);
    PutText(tag, 0, "TAG");
    return tag;
}

Bytes APETag(std::size_t inBodyBytes)
{
    const Bytes body(inBodyBytes, 'x');
    const auto part = [&](UInt32 inFlags)
    {
        return Join({TextBytes("APETAGEX"), LE32(2000), LE32(static_cast<UInt32>(inBodyBytes + 32)),
                     LE32(1), LE32(inFlags), Bytes(8, 0)});
    };
    return Join({part(0xA0000000), body, part(0x80000000)});
}

Bytes LyricsTag()
{
    return TextBytes("LYRICSBEGININD0000200000021LYRICS200");
}

}  // namespace stream_testing
