// ChannelOrder: in which order the channels stand in the file, and where each comes from.
#ifndef AUDIOTOOLBOX_FILE_WRITE_CHANNELORDER_H
#define AUDIOTOOLBOX_FILE_WRITE_CHANNELORDER_H

#include <AudioToolbox/AudioFile.h>

#include <vector>

namespace audiotoolbox
{

struct ChannelOrder
{
    /// For each channel of the file, the client's channel; empty: as they are.
    std::vector<UInt32> mSources;
    /// Of the file's channels; empty: not known.
    std::vector<AudioChannelLabel> mLabels;
};

/// Labels in the order that the type and the format ask for: a compressed format has its
/// encoder's, linear PCM in WAVE and its relatives the ascending order of the channel mask, and
/// containers with a record of the layout any. Labels that are unknown, that appear twice, that
/// the order has no place for, or of another count than inChannelCount, change nothing: the
/// default order for the count holds. Surrounds at the side and at the back count as the same
/// where only one pair is there.
ChannelOrder OrderChannels(AudioFileTypeID inType, AudioFormatID inFormat, UInt32 inChannelCount,
                           const std::vector<AudioChannelLabel>& inLabels);

}  // namespace audiotoolbox

#endif
