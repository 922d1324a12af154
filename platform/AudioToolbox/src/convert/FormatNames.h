// FormatNames: how a data format is called in front of people.
#ifndef AUDIOTOOLBOX_CONVERT_FORMATNAMES_H
#define AUDIOTOOLBOX_CONVERT_FORMATNAMES_H

#include <CoreAudio/CoreAudioTypes.h>

#include <string>

namespace audiotoolbox
{

/// UTF-8; empty for a format that no row names. Linear PCM tells depth, byte order and kind, as
/// far as the description has them: "Linear PCM, 16 bit little-endian signed integer".
std::string FormatName(const AudioStreamBasicDescription& inFormat);

}  // namespace audiotoolbox

#endif
