// StreamOpening: what opening has in common for all self-framing streams.
#ifndef AUDIOTOOLBOX_FILE_STREAMS_STREAMOPENING_H
#define AUDIOTOOLBOX_FILE_STREAMS_STREAMOPENING_H

#include "file/PacketReader.h"
#include "file/streams/Framer.h"

#include <memory>

namespace audiotoolbox::streams
{

/// A file on its way to being a reader.
struct Opening
{
    AudioFileTypeID mType;
    ByteSource& mSource;
    SInt64 mStart = 0;                      // behind tags in front
    std::unique_ptr<StreamWindow> mWindow;  // up to the tags at the end
    std::unique_ptr<Framer> mFramer;
    FileFacts mFacts;
};

/// Fills framer and facts. The status is that of OpenContainer; a failing read shows in the
/// window's status and wins over it.
using DescribeStream = OSStatus (*)(Opening& ioOpening);

/// Finds the ends of the stream, describes it and makes the reader. Takes the source on success.
OSStatus OpenStream(AudioFileTypeID inType, DescribeStream inDescribe, ByteSourcePtr& ioSource,
                    PacketReaderPtr& outReader);

/// Position and size of the audio.
void SetDataRange(Opening& ioOpening, SInt64 inFirstPacket);

/// One plain compressed format.
AudioStreamBasicDescription DescribeFormat(AudioFormatID inFormat, double inRate, UInt32 inChannels,
                                           UInt32 inFramesPerPacket);

/// The tag for one channel or two; empty for more.
std::vector<UInt8> MonoOrStereo(UInt32 inChannels);

}  // namespace audiotoolbox::streams

#endif
