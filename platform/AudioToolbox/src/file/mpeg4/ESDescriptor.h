// ESDescriptor: what an elementary stream's descriptor (ISO/IEC 14496-1) tells of its decoder.
#ifndef AUDIOTOOLBOX_FILE_MPEG4_ESDESCRIPTOR_H
#define AUDIOTOOLBOX_FILE_MPEG4_ESDESCRIPTOR_H

#include <CoreAudio/CoreAudioTypes.h>

#include <span>

namespace audiotoolbox::mpeg4
{

struct ESDescriptor
{
    UInt8 mObjectType = 0;                // 0x40 MPEG-4 audio, 0x6B MPEG-1 audio, ...
    std::span<const UInt8> mDecoderInfo;  // within the bytes parsed; empty: none
};

/// Reads a descriptor that begins with its tag, 0x03. False for anything else, and for one that
/// ends within its decoder configuration. Lengths beyond the bytes are cut to the bytes.
bool ParseESDescriptor(std::span<const UInt8> inBytes, ESDescriptor& outDescriptor);

}  // namespace audiotoolbox::mpeg4

#endif
