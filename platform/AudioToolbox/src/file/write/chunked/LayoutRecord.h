// LayoutRecord: the body of AIFF's `CHAN` and CAF's `chan`, big endian.
#ifndef AUDIOTOOLBOX_FILE_WRITE_CHUNKED_LAYOUTRECORD_H
#define AUDIOTOOLBOX_FILE_WRITE_CHUNKED_LAYOUTRECORD_H

#include <CoreAudio/CoreAudioTypes.h>

#include <vector>

namespace audiotoolbox
{

/// Mono and left-right by their tags, which every reader knows; anything else label by label.
std::vector<UInt8> MakeLayoutRecord(const std::vector<AudioChannelLabel>& inLabels);

}  // namespace audiotoolbox

#endif
