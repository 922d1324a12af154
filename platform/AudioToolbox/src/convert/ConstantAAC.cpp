#include "convert/ConstantAAC.h"

#include <algorithm>

namespace audiotoolbox
{

namespace
{

constexpr UInt32 kFramesPerPacket = 1024;
constexpr UInt64 kAimPercent = 96;
constexpr UInt64 kPacketsToRecover = 4;
constexpr UInt32 kFillElement = 6;  // 3 bits
constexpr UInt32 kEndElement = 7;
constexpr std::size_t kElementBits = 3;
constexpr std::size_t kCountBits = 4;
constexpr std::size_t kLongCountBits = 12;
constexpr std::size_t kMostShort = 14;  // bytes of an element without the longer count
constexpr std::size_t kMostLong = 269;

/// Sets bits in bytes that are 0 so far.
class BitSetter
{
public:
    BitSetter(std::vector<UInt8>& ioBytes, std::size_t inAt) : mBytes(ioBytes), mAt(inAt) {}

    void Put(UInt32 inValue, std::size_t inBits)
    {
        for (std::size_t bit = inBits; bit-- > 0; ++mAt)
            if ((inValue >> bit & 1u) != 0)
                mBytes[mAt / 8] = static_cast<UInt8>(mBytes[mAt / 8] | 0x80u >> mAt % 8);
    }
    void Skip(std::size_t inBits) { mAt += inBits; }

private:
    std::vector<UInt8>& mBytes;
    std::size_t mAt;
};

// The end element is three ones, and only zeros follow it.
bool FindEndElement(const std::vector<UInt8>& inPacket, std::size_t& outAt)
{
    if (inPacket.empty() || inPacket.back() == 0)
        return false;
    std::size_t last = inPacket.size() * 8 - 1;
    while ((inPacket[last / 8] >> (7 - last % 8) & 1u) == 0)
        --last;
    if (last + 1 < kElementBits)
        return false;
    outAt = last + 1 - kElementBits;
    for (std::size_t bit = outAt; bit <= last; ++bit)
        if ((inPacket[bit / 8] >> (7 - bit % 8) & 1u) == 0)
            return false;
    return true;
}

// One element of at most inBits bits, which are those of the smallest or more.
std::size_t PutFillElement(std::size_t inBits, BitSetter& ioBits)
{
    const std::size_t shortHead = kElementBits + kCountBits;
    const std::size_t longHead = kElementBits + kLongCountBits;
    ioBits.Put(kFillElement, kElementBits);
    std::size_t bytes = std::min(kMostShort, (inBits - shortHead) / 8);
    const bool isLong = inBits >= longHead + 8 * (kMostShort + 1);
    if (isLong)
    {
        bytes = std::min(kMostLong, (inBits - longHead) / 8);
        ioBits.Put(15, kCountBits);
        ioBits.Put(static_cast<UInt32>(bytes - kMostShort), 8);
    }
    else
        ioBits.Put(static_cast<UInt32>(bytes), kCountBits);
    ioBits.Skip(8 * bytes);
    return (isLong ? longHead : shortHead) + 8 * bytes;
}

}  // namespace

void FillPacket(std::size_t inByteCount, std::vector<UInt8>& ioPacket)
{
    std::size_t end = 0;
    if (inByteCount <= ioPacket.size() || !FindEndElement(ioPacket, end))
        return;
    for (std::size_t bit = end; bit < end + kElementBits; ++bit)
        ioPacket[bit / 8] = static_cast<UInt8>(ioPacket[bit / 8] & ~(0x80u >> bit % 8));
    ioPacket.resize(inByteCount, 0);
    BitSetter bits(ioPacket, end);
    std::size_t left = inByteCount * 8 - end - kElementBits;
    while (left >= kElementBits + kCountBits)
        left -= PutFillElement(left, bits);
    bits.Put(kEndElement, kElementBits);
}

void ConstantAAC::Fill(std::vector<UInt8>& ioPacket)
{
    ++mPackets;
    mPlainBytes = ioPacket.size();
    const UInt64 due = mPackets * kFramesPerPacket * mBitRate / 8 / mRate;
    if (due > mBytes + ioPacket.size())
        FillPacket(static_cast<std::size_t>(std::min<UInt64>(due - mBytes, mMostBytes)), ioPacket);
    mBytes += ioPacket.size();
    mSurplus = mBytes > due ? mBytes - due : 0;
}

UInt32 ConstantAAC::Aim() const
{
    const UInt64 usual = UInt64{mBitRate} * kAimPercent / 100;
    // In silence an encoder that aims high grows ever finer, and floods the first sound after it.
    const UInt64 plain = UInt64{mPlainBytes} * 8 * mRate / kFramesPerPacket;
    if (mPackets > 0 && plain < usual / 2)
        return static_cast<UInt32>(std::max(plain, usual / 32));
    // A surplus is to be gone after a few packets, but the audio is not to suffer at once.
    const UInt64 back = mSurplus * 8 * mRate / kFramesPerPacket / kPacketsToRecover;
    const UInt64 lowest = usual / 2;
    return static_cast<UInt32>(back < usual - lowest ? usual - back : lowest);
}

}  // namespace audiotoolbox
