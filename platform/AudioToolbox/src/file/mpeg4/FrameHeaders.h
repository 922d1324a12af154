// FrameHeaders: how many frames a packet holds, from its own first bytes.
#ifndef AUDIOTOOLBOX_FILE_MPEG4_FRAMEHEADERS_H
#define AUDIOTOOLBOX_FILE_MPEG4_FRAMEHEADERS_H

#include <CoreAudio/CoreAudioTypes.h>

#include <span>

namespace audiotoolbox::mpeg4
{

/// Bytes that hold the fields of any header read here.
constexpr UInt32 kFrameHeaderBytes = 16;

struct MPEGAudioHeader
{
    UInt32 mLayer = 0;  // 1 to 3
    UInt32 mRate = 0;   // Hz
    UInt32 mChannels = 0;
    UInt32 mFrames = 0;
};

/// False for bytes that do not begin with a header of MPEG audio.
bool ParseMPEGAudioHeader(std::span<const UInt8> inPacket, MPEGAudioHeader& outHeader);

/// Frames at 48000 Hz; 0 for an empty packet and for one beyond 120 ms.
UInt32 FramesOfOpusPacket(std::span<const UInt8> inPacket);

/// 0 for bytes that do not begin with a frame of FLAC.
UInt32 FramesOfFLACPacket(std::span<const UInt8> inPacket);

}  // namespace audiotoolbox::mpeg4

#endif
