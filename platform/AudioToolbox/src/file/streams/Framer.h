// Framer: finds the packets of one kind of self-framing stream.
#ifndef AUDIOTOOLBOX_FILE_STREAMS_FRAMER_H
#define AUDIOTOOLBOX_FILE_STREAMS_FRAMER_H

#include "file/streams/StreamWindow.h"

namespace audiotoolbox::streams
{

struct StreamPacket
{
    SInt64 mPosition = 0;  // in the file
    UInt32 mByteCount = 0;
    UInt32 mFrameCount = 0;  // at the core's rate
    UInt32 mBitRate = 0;     // as the header states it, bits per second; 0: it does not

    SInt64 End() const { return mPosition + mByteCount; }
};

class Framer
{
public:
    virtual ~Framer() = default;

    /// The first whole packet at or behind inPosition, which is where the first packet or what
    /// follows a packet lies. The answer depends on the arguments alone, so a walk may start again
    /// at any position that an earlier walk came by.
    /// inPacket  packets before it in the stream
    /// False: there is none any more, or a read failed (the window's status tells).
    virtual bool FindPacket(StreamWindow& ioWindow, SInt64 inPosition, UInt64 inPacket,
                            StreamPacket& outPacket) = 0;
};

}  // namespace audiotoolbox::streams

#endif
