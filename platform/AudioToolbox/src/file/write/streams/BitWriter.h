// BitWriter: bit fields into a byte string, the most significant bit first.
#ifndef AUDIOTOOLBOX_FILE_WRITE_STREAMS_BITWRITER_H
#define AUDIOTOOLBOX_FILE_WRITE_STREAMS_BITWRITER_H

#include <CoreAudio/CoreAudioTypes.h>

#include <cstddef>
#include <span>

namespace audiotoolbox::streams
{

class BitWriter
{
public:
    /// inRoom outlives the writer. What does not fit is dropped and counted all the same.
    explicit BitWriter(std::span<UInt8> inRoom) : mRoom(inRoom) {}

    /// The low inCount bits, at most 32.
    void Put(UInt32 inValue, unsigned inCount)
    {
        while (inCount-- > 0)
            PutBit((inValue >> inCount) & 1u);
    }

    void PutBytes(std::span<const UInt8> inBytes)
    {
        for (const UInt8 byte : inBytes)
            Put(byte, 8);
    }

    /// Whole bytes; zero bits fill the last one.
    std::size_t ByteCount() const { return (mPosition + 7) / 8; }
    bool IsPastEnd() const { return ByteCount() > mRoom.size(); }

private:
    void PutBit(UInt32 inBit)
    {
        const std::size_t index = mPosition / 8;
        const unsigned shift = 7 - static_cast<unsigned>(mPosition % 8);
        ++mPosition;
        if (index >= mRoom.size())
            return;
        if (shift == 7)
            mRoom[index] = 0;
        mRoom[index] = static_cast<UInt8>(mRoom[index] | inBit << shift);
    }

    std::span<UInt8> mRoom;
    std::size_t mPosition = 0;  // bits
};

}  // namespace audiotoolbox::streams

#endif
