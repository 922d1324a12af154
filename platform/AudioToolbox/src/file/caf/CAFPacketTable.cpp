#include "file/caf/CAFPacketTable.h"

#include "file/Endian.h"

#include <algorithm>
#include <array>

namespace audiotoolbox
{
namespace
{

// Beyond two weeks of audio in short packets. Empty packets take no place in the data, so that the
// file's size alone would not bound the index.
constexpr SInt64 kMaxPackets = SInt64{1} << 26;

// Numbers of seven bits a byte, the highest first; all bytes but the last have their top bit set.
class NumberReader
{
public:
    NumberReader(ByteSource& inSource, SInt64 inPosition, SInt64 inCount)
        : mSource(inSource), mPosition(inPosition), mLeft(inCount)
    {
    }

    /// False at the end and for a number beyond 32 bits; see Status.
    bool Next(UInt32& outNumber)
    {
        UInt64 number = 0;
        UInt8 byte = 0;
        do
        {
            if (!NextByte(byte))
                return false;
            number = (number << 7) | (byte & 0x7F);
            if (number > 0xFFFFFFFF)
                return false;
        } while ((byte & 0x80) != 0);
        outNumber = static_cast<UInt32>(number);
        return true;
    }

    OSStatus Status() const { return mStatus; }

private:
    bool NextByte(UInt8& outByte)
    {
        if (mNext == mFilled && !Fill())
            return false;
        outByte = mBuffer[mNext++];
        return true;
    }

    bool Fill()
    {
        const auto wanted =
            static_cast<UInt32>(std::min<SInt64>(mLeft, static_cast<SInt64>(mBuffer.size())));
        mNext = 0;
        mStatus = mSource.ReadAt(mPosition, wanted, mBuffer.data(), &mFilled);
        mPosition += mFilled;
        mLeft -= mFilled;
        return mFilled > 0;
    }

    ByteSource& mSource;
    SInt64 mPosition;
    SInt64 mLeft;
    std::array<UInt8, 4096> mBuffer;
    UInt32 mNext = 0;
    UInt32 mFilled = 0;
    OSStatus mStatus = noErr;
};

}  // namespace

std::optional<CAFPacketTable> ReadCAFPacketTable(std::span<const UInt8> inHead)
{
    if (inHead.size() < kCAFPacketTableHeadBytes)
        return std::nullopt;
    const UInt8* head = inHead.data();
    CAFPacketTable table;
    table.mPackets = static_cast<SInt64>(ReadBE64(head));
    table.mValidFrames = static_cast<SInt64>(ReadBE64(head + 8));
    table.mPrimingFrames = static_cast<SInt32>(ReadBE32(head + 16));
    table.mRemainderFrames = static_cast<SInt32>(ReadBE32(head + 20));
    if (table.mPackets < 0 || table.mValidFrames < 0 || table.mPrimingFrames < 0 ||
        table.mRemainderFrames < 0)
        return std::nullopt;
    return table;
}

OSStatus ReadCAFPacketIndex(ByteSource& inSource, const CAFPacketTable& inTable,
                            const AudioStreamBasicDescription& inFormat, SInt64 inDataBytes,
                            PacketSizes& outIndex)
{
    NumberReader numbers(inSource, inTable.mEntries, inTable.mEntryBytes);
    const bool hasSizes = inFormat.mBytesPerPacket == 0;
    const bool hasFrames = inFormat.mFramesPerPacket == 0;
    for (SInt64 i = 0; i < inTable.mPackets; ++i)
    {
        if (i >= kMaxPackets)
            return kAudioFileInvalidFileError;
        UInt32 size = inFormat.mBytesPerPacket;
        UInt32 frames = 0;
        if ((hasSizes && !numbers.Next(size)) || (hasFrames && !numbers.Next(frames)))
            break;
        if (size > inDataBytes - outIndex.TotalBytes())
            break;
        outIndex.Append(size, frames);
    }
    return numbers.Status();
}

}  // namespace audiotoolbox
