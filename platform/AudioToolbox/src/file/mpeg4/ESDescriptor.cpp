#include "file/mpeg4/ESDescriptor.h"

#include <algorithm>

namespace audiotoolbox::mpeg4
{
namespace
{

constexpr UInt8 kESTag = 0x03;
constexpr UInt8 kDecoderConfigTag = 0x04;
constexpr UInt8 kDecoderInfoTag = 0x05;
constexpr std::size_t kDecoderConfigHead = 13;  // bytes in front of the decoder's own information

using Bytes = std::span<const UInt8>;

// Takes inCount bytes off the front. False, ioBytes unchanged, when there are fewer.
bool Drop(Bytes& ioBytes, std::size_t inCount)
{
    if (ioBytes.size() < inCount)
        return false;
    ioBytes = ioBytes.subspan(inCount);
    return true;
}

// Takes one descriptor off the front: its tag, up to 4 length bytes of 7 bits, its body.
bool TakeDescriptor(Bytes& ioBytes, UInt8& outTag, Bytes& outBody)
{
    if (ioBytes.size() < 2)
        return false;
    outTag = ioBytes[0];
    std::size_t length = 0;
    std::size_t place = 1;
    for (bool more = true; more && place < 5 && place < ioBytes.size(); ++place)
    {
        length = (length << 7) | (ioBytes[place] & 0x7Fu);
        more = (ioBytes[place] & 0x80u) != 0;
    }
    ioBytes = ioBytes.subspan(place);
    outBody = ioBytes.first(std::min(length, ioBytes.size()));
    ioBytes = ioBytes.subspan(outBody.size());
    return true;
}

// The identifier, and what the flags say stands behind it.
bool DropESHead(Bytes& ioBody)
{
    if (ioBody.size() < 3)
        return false;
    const UInt8 flags = ioBody[2];
    ioBody = ioBody.subspan(3);
    if ((flags & 0x80u) != 0 && !Drop(ioBody, 2))
        return false;
    if ((flags & 0x40u) != 0 && (ioBody.empty() || !Drop(ioBody, 1u + ioBody[0])))
        return false;
    return (flags & 0x20u) == 0 || Drop(ioBody, 2);
}

bool FindDescriptor(Bytes inBytes, UInt8 inTag, Bytes& outBody)
{
    UInt8 tag = 0;
    while (TakeDescriptor(inBytes, tag, outBody))
        if (tag == inTag)
            return true;
    return false;
}

}  // namespace

bool ParseESDescriptor(std::span<const UInt8> inBytes, ESDescriptor& outDescriptor)
{
    UInt8 tag = 0;
    Bytes body;
    if (!TakeDescriptor(inBytes, tag, body) || tag != kESTag || !DropESHead(body))
        return false;
    Bytes config;
    if (!FindDescriptor(body, kDecoderConfigTag, config) || config.size() < kDecoderConfigHead)
        return false;
    outDescriptor.mObjectType = config[0];
    Bytes information;
    const bool found =
        FindDescriptor(config.subspan(kDecoderConfigHead), kDecoderInfoTag, information);
    outDescriptor.mDecoderInfo = found ? information : Bytes();
    return true;
}

}  // namespace audiotoolbox::mpeg4
