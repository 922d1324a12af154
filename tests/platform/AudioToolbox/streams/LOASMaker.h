// LOASMaker: streams of AudioMuxElements in any form, bit by bit.
#ifndef TESTS_PLATFORM_AUDIOTOOLBOX_STREAMS_LOASMAKER_H
#define TESTS_PLATFORM_AUDIOTOOLBOX_STREAMS_LOASMAKER_H

#include "StreamMakers.h"

namespace stream_testing
{

/// Bits, the most significant one of each number first.
class Bits
{
public:
    Bits& Put(UInt64 inValue, int inCount)
    {
        while (inCount-- > 0)
            mBits.push_back((inValue >> inCount & 1) != 0);
        return *this;
    }
    Bits& Put(const Bytes& inBytes)
    {
        for (const UInt8 byte : inBytes)
            Put(byte, 8);
        return *this;
    }
    Bits& Put(const Bits& inOther)
    {
        mBits.insert(mBits.end(), inOther.mBits.begin(), inOther.mBits.end());
        return *this;
    }
    Bytes Take() const
    {
        Bytes bytes((mBits.size() + 7) / 8);
        for (std::size_t i = 0; i < mBits.size(); ++i)
            bytes[i / 8] = static_cast<UInt8>(bytes[i / 8] | (mBits[i] ? 0x80 >> i % 8 : 0));
        return bytes;
    }

private:
    std::vector<bool> mBits;
};

inline Bytes Frame(const Bits& inElement)
{
    const Bytes element = inElement.Take();
    const auto size = static_cast<UInt32>(element.size());
    return Join({Bits().Put(0x2B7, 11).Put(size, 13).Take(), element});
}

/// 44.1 kHz stereo of low complexity.
inline Bits PlainConfig()
{
    return Bits().Put(2, 5).Put(4, 4).Put(2, 4).Put(0, 3);
}

/// Version 0, one of everything.
inline Bits MuxConfig(const Bits& inDecoderConfig)
{
    return Bits()
        .Put(0b01, 2)
        .Put(0, 6 + 4 + 3)
        .Put(inDecoderConfig)
        .Put(0, 3)
        .Put(0xFF, 8)
        .Put(0, 2);
}

inline Bits Length(std::size_t inBytes)
{
    Bits bits;
    for (; inBytes >= 255; inBytes -= 255)
        bits.Put(255, 8);
    return bits.Put(static_cast<UInt32>(inBytes), 8);
}

inline Bytes FrameWithConfig(const Bits& inMuxConfig, const Bytes& inPayload)
{
    return Frame(Bits().Put(0, 1).Put(inMuxConfig).Put(Length(inPayload.size())).Put(inPayload));
}

inline Bytes FrameWithout(const Bytes& inPayload)
{
    return Frame(Bits().Put(1, 1).Put(Length(inPayload.size())).Put(inPayload));
}

inline std::vector<Bytes> Payloads(std::size_t inCount)
{
    std::vector<Bytes> payloads;
    for (std::size_t i = 0; i < inCount; ++i)
        payloads.push_back(NoiseWithoutSync(180 + 40 * (i % 5), static_cast<UInt32>(i) + 1));
    return payloads;
}

inline Bytes Stream(const std::vector<Bytes>& inPayloads, std::size_t inConfigEvery,
                    const Bits& inMuxConfig = MuxConfig(PlainConfig()))
{
    Bytes stream;
    for (std::size_t i = 0; i < inPayloads.size(); ++i)
    {
        const Bytes frame = i % inConfigEvery == 0 ? FrameWithConfig(inMuxConfig, inPayloads[i])
                                                   : FrameWithout(inPayloads[i]);
        stream.insert(stream.end(), frame.begin(), frame.end());
    }
    return stream;
}

inline std::vector<Bytes> PacketsOf(Opened& ioFile, SInt64 inStart = 0, UInt32 inAtOnce = 16)
{
    std::vector<Bytes> packets;
    for (const Packet& packet : ReadAll(*ioFile.mReader, inStart, inAtOnce))
        packets.push_back(packet.mBytes);
    return packets;
}

}  // namespace stream_testing

#endif
