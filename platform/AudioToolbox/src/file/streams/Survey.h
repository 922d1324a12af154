// Survey: what the first packets tell of a stream that does not state its length.
#ifndef AUDIOTOOLBOX_FILE_STREAMS_SURVEY_H
#define AUDIOTOOLBOX_FILE_STREAMS_SURVEY_H

#include "file/PacketReader.h"
#include "file/streams/Framer.h"

namespace audiotoolbox::streams
{

/// How far opening looks for a first packet, and how far it counts packets: bytes.
constexpr SInt64 kSearchBytes = 65536;

/// The packets that end within the first kSearchBytes.
struct Survey
{
    UInt64 mPackets = 0;
    UInt64 mFrames = 0;
    SInt64 mBytes = 0;            // from the start to the end of the last packet
    UInt32 mFramesPerPacket = 0;  // 0: they differ
    UInt32 mBitRate = 0;          // as all headers state it; 0: they differ or do not
    bool mIsWhole = false;        // these are all packets of the stream
};

Survey SurveyPackets(Framer& inFramer, StreamWindow& ioWindow, SInt64 inStart);

/// The common last step of opening. mDataFormat, mChannelLayout, the data range and, where the
/// file states them, packet table and packet count stand already. Fills the list of formats unless
/// it has items, and duration and bit rate; and the packet count when the survey saw all.
void CompleteStreamFacts(const Survey& inSurvey, FileFacts& ioFacts);

/// Duration and bit rate by the survey alone, where a stated length is not to be believed.
void EstimateLength(const Survey& inSurvey, FileFacts& ioFacts);

/// Bits per second, rounded; 0 for no time.
UInt32 AverageBitRate(SInt64 inBytes, double inSeconds);

}  // namespace audiotoolbox::streams

#endif
