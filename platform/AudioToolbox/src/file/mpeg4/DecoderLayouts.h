// DecoderLayouts: the channel order in which decoders deliver, as layout records.
//
// Decoders deliver channels in ascending order of the speaker bits (left, right, centre, LFE, back
// pair, front-of-centre pair, back centre, side pair), whatever order the stream codes them in.
#ifndef AUDIOTOOLBOX_FILE_MPEG4_DECODERLAYOUTS_H
#define AUDIOTOOLBOX_FILE_MPEG4_DECODERLAYOUTS_H

#include <CoreAudio/CoreAudioTypes.h>

#include <vector>

namespace audiotoolbox::mpeg4
{

/// A layout as a tag for format lists and as a whole record.
struct DecoderLayout
{
    AudioChannelLayoutTag mTag = 0;  // Unknown with the channel count where no tag has this order
    std::vector<UInt8> mRecord;      // empty: unknown
};

/// By AAC's channel configuration. Unknown for 0 (the stream tells) and for values without a row.
DecoderLayout LayoutOfAACConfiguration(UInt32 inConfiguration, UInt32 inChannelCount);

/// By count, as FLAC and Opus lay channels out.
DecoderLayout LayoutOfFLACOrOpus(UInt32 inChannelCount);

/// By count, as ALAC lays channels out.
DecoderLayout LayoutOfALAC(UInt32 inChannelCount);

/// By the codec's acmod field, 0 to 7, and its LFE flag.
DecoderLayout LayoutOfAC3(UInt32 inMode, bool inHasLFE);

/// Mono and stereo; unknown for more channels.
DecoderLayout LayoutOfCount(UInt32 inChannelCount);

/// The layout of exactly these labels, by tag where a common one has their order.
DecoderLayout LayoutOfOrder(const std::vector<AudioChannelLabel>& inLabels);

}  // namespace audiotoolbox::mpeg4

#endif
