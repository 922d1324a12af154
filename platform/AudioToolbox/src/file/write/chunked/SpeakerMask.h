// SpeakerMask: the channel mask of WAVE files, out of labels.
#ifndef AUDIOTOOLBOX_FILE_WRITE_CHUNKED_SPEAKERMASK_H
#define AUDIOTOOLBOX_FILE_WRITE_CHUNKED_SPEAKERMASK_H

#include <CoreAudio/CoreAudioTypes.h>

#include <vector>

namespace audiotoolbox
{

/// One bit a channel, in ascending order as the channels come. 0 (no assignment) where a label has
/// no bit or the channels stand in another order.
AudioChannelBitmap SpeakerMaskOf(const std::vector<AudioChannelLabel>& inLabels);

}  // namespace audiotoolbox

#endif
