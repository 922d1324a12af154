#include "file/mpeg4/FrameHeaders.h"

#include "file/Endian.h"

#include <bit>

namespace audiotoolbox::mpeg4
{

bool ParseMPEGAudioHeader(std::span<const UInt8> inPacket, MPEGAudioHeader& outHeader)
{
    constexpr UInt32 kRates[] = {44100, 48000, 32000};
    if (inPacket.size() < 4)
        return false;
    const UInt32 header = ReadBE32(inPacket.data());
    const UInt32 version = (header >> 19) & 3u;  // 3: MPEG-1, 2: MPEG-2, 0: MPEG-2.5
    const UInt32 layerCode = (header >> 17) & 3u;
    const UInt32 rateIndex = (header >> 10) & 3u;
    if ((header >> 21) != 0x7FF || version == 1 || layerCode == 0 || rateIndex == 3)
        return false;
    const bool isLow = version != 3;
    outHeader.mLayer = 4 - layerCode;
    outHeader.mRate = kRates[rateIndex] >> (version == 0 ? 2 : isLow ? 1 : 0);
    outHeader.mChannels = ((header >> 6) & 3u) == 3 ? 1 : 2;
    if (outHeader.mLayer == 1)
        outHeader.mFrames = 384;
    else
        outHeader.mFrames = outHeader.mLayer == 3 && isLow ? 576 : 1152;
    return true;
}

UInt32 FramesOfOpusPacket(std::span<const UInt8> inPacket)
{
    // RFC 6716, 3.1: a configuration's frame length, at 48 kHz.
    constexpr UInt32 kSilk[] = {480, 960, 1920, 2880};
    constexpr UInt32 kHybrid[] = {480, 960};
    constexpr UInt32 kCelt[] = {120, 240, 480, 960};
    constexpr UInt32 kMost = 5760;
    if (inPacket.empty())
        return 0;
    const UInt32 configuration = inPacket[0] >> 3;
    UInt32 frames = kCelt[configuration & 3u];
    if (configuration < 12)
        frames = kSilk[configuration & 3u];
    else if (configuration < 16)
        frames = kHybrid[configuration & 1u];

    const UInt32 code = inPacket[0] & 3u;
    if (code == 3)
        frames *= inPacket.size() > 1 ? inPacket[1] & 0x3Fu : 0u;
    else if (code > 0)
        frames *= 2;
    return frames <= kMost ? frames : 0;
}

UInt32 FramesOfFLACPacket(std::span<const UInt8> inPacket)
{
    if (inPacket.size() < 5 || inPacket[0] != 0xFF || (inPacket[1] & 0xFEu) != 0xF8)
        return 0;
    const UInt32 code = inPacket[2] >> 4;
    if (code == 0)
        return 0;
    if (code == 1)
        return 192;
    if (code < 6)
        return 576u << (code - 2);
    if (code >= 8)
        return 256u << (code - 8);
    // The size stands behind the frame's number, whose first byte tells its own length in ones.
    const UInt32 ones = static_cast<UInt32>(std::countl_one(inPacket[4]));
    const std::size_t place = 4 + (ones == 0 ? 1u : ones);
    const std::size_t width = code - 5;
    if (inPacket.size() < place + width)
        return 0;
    return 1u + (width == 1 ? inPacket[place] : ReadBE16(inPacket.data() + place));
}

}  // namespace audiotoolbox::mpeg4
