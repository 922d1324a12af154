// ClientLayout: which channel is which in a layout record that a client hands over.
#ifndef AUDIOTOOLBOX_EXTENDED_CLIENTLAYOUT_H
#define AUDIOTOOLBOX_EXTENDED_CLIENTLAYOUT_H

#include <CoreAudio/CoreAudioTypes.h>

#include <vector>

namespace audiotoolbox
{

/// One label a channel, in the client's order. Empty for a null record, a tag that names no
/// speakers, and a record of another count than inChannelCount; no description beyond that count
/// is read.
std::vector<AudioChannelLabel> LabelsOfLayout(const AudioChannelLayout* inLayout,
                                              UInt32 inChannelCount);

}  // namespace audiotoolbox

#endif
