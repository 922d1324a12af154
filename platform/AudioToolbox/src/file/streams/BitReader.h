// BitReader: bit fields of a byte string, the most significant bit first.
//
// Reading behind the end gives zeros and is remembered.
#ifndef AUDIOTOOLBOX_FILE_STREAMS_BITREADER_H
#define AUDIOTOOLBOX_FILE_STREAMS_BITREADER_H

#include <CoreAudio/CoreAudioTypes.h>

#include <cstddef>
#include <span>

namespace audiotoolbox::streams
{

class BitReader
{
public:
    explicit BitReader(std::span<const UInt8> inBytes) : mBytes(inBytes) {}

    /// At most 32 bits.
    UInt32 Read(unsigned inCount)
    {
        UInt32 value = 0;
        for (; inCount > 0; --inCount, ++mPosition)
            value = (value << 1) | Bit(mPosition);
        return value;
    }

    bool IsPastEnd() const { return mPosition > mBytes.size() * 8; }

private:
    UInt32 Bit(std::size_t inPosition) const
    {
        const std::size_t index = inPosition / 8;
        return index < mBytes.size() ? (mBytes[index] >> (7 - inPosition % 8)) & 1u : 0u;
    }

    std::span<const UInt8> mBytes;
    std::size_t mPosition = 0;  // bits
};

}  // namespace audiotoolbox::streams

#endif
