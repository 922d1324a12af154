// AACConfig: the decoder configuration of an AAC stream, and the layers that it tells of.
//
// Source: ISO/IEC 14496-3, AudioSpecificConfig, with its two ways of announcing spectral band
// replication (SBR) and parametric stereo (PS): an object type 5 or 29 in front of the core's, or
// a sync extension 0x2B7 (and 0x548) behind it.
#ifndef AUDIOTOOLBOX_FILE_AACCONFIG_H
#define AUDIOTOOLBOX_FILE_AACCONFIG_H

#include "file/PacketReader.h"

#include <span>
#include <vector>

namespace audiotoolbox
{

struct AACConfig
{
    UInt32 mObjectType = 0;       // of the core; 2 is low complexity
    UInt32 mSampleRate = 0;       // of the core, Hz
    UInt32 mChannelConfig = 0;    // as coded; 0: a program config element tells
    UInt32 mChannelCount = 0;     // of the core; 0 unknown
    UInt32 mFramesPerPacket = 0;  // of the core: 1024 or 960
    UInt32 mExtendedRate = 0;     // with SBR, Hz
    bool mHasSBR = false;
    bool mHasPS = false;
};

/// False for bytes that are no configuration of AAC; outConfig is then unspecified.
bool ParseAudioSpecificConfig(std::span<const UInt8> inBytes, AACConfig& outConfig);

/// The same without an extension behind the core's configuration, for places that do not state how
/// long the configuration is. outBits is what it takes of inBytes, which may go on.
bool ParseCoreConfig(std::span<const UInt8> inBytes, AACConfig& outConfig, std::size_t& outBits);

/// The AudioSpecificConfig within a cookie: the cookie itself, or the one inside an ES descriptor
/// (first byte 0x03, or an 'esds' box body). Empty when there is none.
std::vector<UInt8> AudioSpecificConfigOfCookie(std::span<const UInt8> inCookie);

/// Fills mDataFormat, mFormats (best layer first) and, from the channel configuration,
/// mChannelLayout in the order in which the decoder delivers (ascending label bits).
void DescribeAAC(const AACConfig& inConfig, FileFacts& ioFacts);

}  // namespace audiotoolbox

#endif
