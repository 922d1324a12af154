// PacketTable: priming and valid frames from what a file's edit list, tables and texts say.
#ifndef AUDIOTOOLBOX_FILE_MPEG4_PACKETTABLE_H
#define AUDIOTOOLBOX_FILE_MPEG4_PACKETTABLE_H

#include "file/PacketReader.h"
#include "file/mpeg4/Movie.h"
#include "file/mpeg4/PacketTimes.h"

namespace audiotoolbox::mpeg4
{

struct TimingSources
{
    UInt32 mMovieTimescale = 0;
    UInt32 mMediaTimescale = 0;
    Edits mEdits;
    PacketTimes mTimes;
    std::optional<GaplessText> mGapless;
    UInt32 mPreSkip = 0;      // frames
    UInt32 mPacketCount = 0;  // packets that are in the file
};

/// A count of frames of inFormat that lasts this many ticks, rounded.
SInt64 FramesOfTicks(UInt64 inTicks, UInt32 inTimescale, double inRate);

/// The frames of all packets, the last one as long as its duration says.
SInt64 TotalFrames(const AudioStreamBasicDescription& inFormat, const TimingSources& inSources);

/// In frames of inFormat; nullopt where nothing in the file tells. The edit list is believed first,
/// then the text, then the codec's own pre-skip, then a shortened last packet.
std::optional<AudioFilePacketTableInfo> MakeTable(const AudioStreamBasicDescription& inFormat,
                                                  const TimingSources& inSources);

}  // namespace audiotoolbox::mpeg4

#endif
