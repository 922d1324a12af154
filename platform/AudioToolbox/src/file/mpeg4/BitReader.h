// BitReader: big-endian bit fields of a byte string, as codec configurations have them.
//
// Reading behind the end gives zeros and is remembered, so that a parser asks once, at its end.
#ifndef AUDIOTOOLBOX_FILE_MPEG4_BITREADER_H
#define AUDIOTOOLBOX_FILE_MPEG4_BITREADER_H

#include <CoreAudio/CoreAudioTypes.h>

#include <cstddef>
#include <span>

namespace audiotoolbox::mpeg4
{

class BitReader
{
public:
    explicit BitReader(std::span<const UInt8> inBytes) : mBytes(inBytes) {}

    /// The next inCount bits, at most 32, as an unsigned number.
    UInt32 Read(unsigned inCount)
    {
        UInt32 value = 0;
        for (; inCount > 0; --inCount)
            value = (value << 1) | ReadBit();
        return value;
    }

    bool ReadFlag() { return ReadBit() != 0; }
    void Skip(std::size_t inCount) { mPosition += inCount; }
    void AlignToByte() { mPosition = (mPosition + 7) / 8 * 8; }

    std::size_t Position() const { return mPosition; }
    std::size_t BitsLeft() const { return IsPastEnd() ? 0 : mBytes.size() * 8 - mPosition; }
    bool IsPastEnd() const { return mPosition > mBytes.size() * 8; }

private:
    UInt32 ReadBit()
    {
        const std::size_t index = mPosition / 8;
        const unsigned shift = 7 - static_cast<unsigned>(mPosition % 8);
        ++mPosition;
        return index < mBytes.size() ? (mBytes[index] >> shift) & 1u : 0u;
    }

    std::span<const UInt8> mBytes;
    std::size_t mPosition = 0;  // bits
};

}  // namespace audiotoolbox::mpeg4

#endif
