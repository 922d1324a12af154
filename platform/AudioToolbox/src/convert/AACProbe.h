// AACProbe: asks the decoder what an AAC stream without a configuration holds.
#ifndef AUDIOTOOLBOX_CONVERT_AACPROBE_H
#define AUDIOTOOLBOX_CONVERT_AACPROBE_H

#include "file/AACConfig.h"

#include <span>

namespace audiotoolbox
{

/// Decodes a few ADTS frames, whole and one behind the other, and adds what only the frames tell:
/// SBR, PS and the extended rate. Loads the codec module. False, ioConfig unchanged, when there is
/// no module or nothing decodes.
bool ProbeAACLayers(std::span<const UInt8> inFrames, AACConfig& ioConfig);

}  // namespace audiotoolbox

#endif
