// CodedOrder: the order in which packets of a codec hold their channels.
#ifndef AUDIOTOOLBOX_FILE_WRITE_CHUNKED_CODEDORDER_H
#define AUDIOTOOLBOX_FILE_WRITE_CHUNKED_CODEDORDER_H

#include <CoreAudio/CoreAudioTypes.h>

#include <vector>

namespace audiotoolbox
{

/// The labels of what goes into the encoder, in the order of the packets that come out: AAC and
/// the lossless codec begin with the center and end with the low frequencies, which is what a
/// layout in a file describes. Unchanged for other formats, up to two channels, and labels that
/// have no place there.
std::vector<AudioChannelLabel> CodedOrder(AudioFormatID inFormat,
                                          std::vector<AudioChannelLabel> inLabels);

}  // namespace audiotoolbox

#endif
