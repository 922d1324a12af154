// OpusPacket: the length of an Opus packet, which its first bytes tell.
//
// Source: RFC 6716, section 3.1 and 3.2.
#ifndef AUDIOTOOLBOX_FILE_CAF_OPUSPACKET_H
#define AUDIOTOOLBOX_FILE_CAF_OPUSPACKET_H

#include <CoreAudio/CoreAudioTypes.h>

#include <span>

namespace audiotoolbox
{

/// Frames at 48000 Hz; 0 for bytes that are no packet. Two bytes are enough.
UInt32 FramesOfOpusPacket(std::span<const UInt8> inPacket);

}  // namespace audiotoolbox

#endif
