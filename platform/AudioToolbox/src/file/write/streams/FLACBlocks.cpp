#include "file/write/streams/FLACBlocks.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <string>

namespace audiotoolbox::streams
{
namespace
{

constexpr UInt8 kStreamInfoBlock = 0;
constexpr UInt8 kSeekTableBlock = 3;
constexpr UInt8 kCommentBlock = 4;
constexpr UInt8 kLastBlock = 0x80;

constexpr UInt32 kSeekPoints = 100;
constexpr UInt32 kSeekPointBytes = 18;
constexpr UInt64 kPlaceholder = std::numeric_limits<UInt64>::max();

constexpr UInt64 kMostFrames = (UInt64{1} << 36) - 1;
constexpr std::size_t kFramesAt = 13;  // their upper four bits share the byte
constexpr std::size_t kChecksumAt = 18;

constexpr const char* kVendor = "TarvoAT";

using Bytes = std::vector<UInt8>;

void PutBE(UInt64 inValue, unsigned inBytes, Bytes& ioBytes)
{
    while (inBytes-- > 0)
        ioBytes.push_back(static_cast<UInt8>(inValue >> (8 * inBytes)));
}

void PutText(const std::string& inText, Bytes& ioBytes)
{
    for (unsigned i = 0; i < 4; ++i)
        ioBytes.push_back(static_cast<UInt8>(inText.size() >> (8 * i)));
    ioBytes.insert(ioBytes.end(), inText.begin(), inText.end());
}

void PutBlockHead(UInt8 inKind, std::size_t inBytes, Bytes& ioBytes)
{
    ioBytes.push_back(inKind);
    PutBE(inBytes, 3, ioBytes);
}

void PutSeekTable(const PacketPlaces& inPlaces, Bytes& ioBytes)
{
    PutBlockHead(kSeekTableBlock, kSeekPoints * kSeekPointBytes, ioBytes);
    const std::span<const PacketPlace> kept = inPlaces.Kept();
    const std::size_t count = std::min<std::size_t>(kept.size(), kSeekPoints);
    for (std::size_t i = 0; i < count; ++i)
    {
        const PacketPlace& place = kept[i * kept.size() / count];
        PutBE(place.mFirstFrame, 8, ioBytes);
        PutBE(static_cast<UInt64>(place.mPosition), 8, ioBytes);
        PutBE(place.mFrames, 2, ioBytes);
    }
    for (std::size_t i = count; i < kSeekPoints; ++i)
    {
        PutBE(kPlaceholder, 8, ioBytes);
        PutBE(0, 8, ioBytes);
        PutBE(0, 2, ioBytes);
    }
}

void PutComments(AudioChannelBitmap inChannelMask, Bytes& ioBytes)
{
    Bytes body;
    PutText(kVendor, body);
    body.insert(body.end(), {static_cast<UInt8>(inChannelMask != 0 ? 1 : 0), 0, 0, 0});
    if (inChannelMask != 0)
    {
        char text[64];
        std::snprintf(text, sizeof(text), "WAVEFORMATEXTENSIBLE_CHANNEL_MASK=0x%04X",
                      inChannelMask);
        PutText(text, body);
    }
    PutBlockHead(kCommentBlock | kLastBlock, body.size(), ioBytes);
    ioBytes.insert(ioBytes.end(), body.begin(), body.end());
}

}  // namespace

std::vector<UInt8> MakeFLACHead(const StreamInfoBytes& inInfo, AudioChannelBitmap inChannelMask,
                                const PacketPlaces& inPlaces)
{
    Bytes bytes = {'f', 'L', 'a', 'C'};
    PutBlockHead(kStreamInfoBlock, inInfo.size(), bytes);
    bytes.insert(bytes.end(), inInfo.begin(), inInfo.end());
    PutSeekTable(inPlaces, bytes);
    PutComments(inChannelMask, bytes);
    return bytes;
}

void SetAllFrames(UInt64 inFrames, StreamInfoBytes& ioInfo)
{
    const UInt64 frames = inFrames <= kMostFrames ? inFrames : 0;
    ioInfo[kFramesAt] = static_cast<UInt8>((ioInfo[kFramesAt] & 0xF0) | frames >> 32);
    for (unsigned i = 0; i < 4; ++i)
        ioInfo[kFramesAt + 1 + i] = static_cast<UInt8>(frames >> (8 * (3 - i)));
}

void ForgetAudioChecksum(StreamInfoBytes& ioInfo)
{
    std::fill(ioInfo.begin() + kChecksumAt, ioInfo.end(), UInt8{0});
}

}  // namespace audiotoolbox::streams
