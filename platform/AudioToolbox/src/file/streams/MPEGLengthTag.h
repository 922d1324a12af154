// MPEGLengthTag: the frame without audio that encoders put in front of a layer 3 stream to tell its
// length: "Xing" (variable rate), "Info" (constant rate), with LAME's extension, or "VBRI".
#ifndef AUDIOTOOLBOX_FILE_STREAMS_MPEGLENGTHTAG_H
#define AUDIOTOOLBOX_FILE_STREAMS_MPEGLENGTHTAG_H

#include "file/streams/MPEGHeader.h"

#include <optional>
#include <span>

namespace audiotoolbox::streams
{

struct MPEGLengthTag
{
    std::optional<UInt32> mPackets;  // not counting the tag's own frame
    std::optional<UInt32> mBytes;    // of the stream, the tag's own frame too
    bool mHasDelays = false;
    UInt32 mDelay = 0;    // frames that the encoder put in front
    UInt32 mPadding = 0;  // frames that it put behind
    bool mIsConstantRate = false;
};

/// inFrame  the stream's first frame, whole
/// nullopt when it is a frame of audio.
std::optional<MPEGLengthTag> ReadLengthTag(const MPEGHeader& inHeader,
                                           std::span<const UInt8> inFrame);

}  // namespace audiotoolbox::streams

#endif
