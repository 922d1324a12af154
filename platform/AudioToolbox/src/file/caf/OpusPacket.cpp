#include "file/caf/OpusPacket.h"

namespace audiotoolbox
{
namespace
{

constexpr UInt32 kSpeech[4] = {480, 960, 1920, 2880};
constexpr UInt32 kHybrid[2] = {480, 960};
constexpr UInt32 kMusic[4] = {120, 240, 480, 960};

UInt32 FramesOfConfiguration(UInt32 inConfiguration)
{
    if (inConfiguration < 12)
        return kSpeech[inConfiguration & 3];
    return inConfiguration < 16 ? kHybrid[inConfiguration & 1] : kMusic[inConfiguration & 3];
}

}  // namespace

UInt32 FramesOfOpusPacket(std::span<const UInt8> inPacket)
{
    if (inPacket.empty())
        return 0;
    const UInt32 frames = FramesOfConfiguration(inPacket[0] >> 3);
    switch (inPacket[0] & 3)
    {
        case 0:
            return frames;
        case 3:
            return inPacket.size() > 1 ? frames * (inPacket[1] & 0x3Fu) : 0;
        default:
            return frames * 2;
    }
}

}  // namespace audiotoolbox
