// FramedStreamWriter: what writing has in common for all streams of self-framing packets.
//
// The file ends behind a whole packet at any time: of a packet that fails nothing stays, and no
// other one follows it.
#ifndef AUDIOTOOLBOX_FILE_WRITE_STREAMS_FRAMEDSTREAMWRITER_H
#define AUDIOTOOLBOX_FILE_WRITE_STREAMS_FRAMEDSTREAMWRITER_H

#include "file/write/PacketWriter.h"

namespace audiotoolbox::streams
{

class FramedStreamWriter : public PacketWriter
{
public:
    explicit FramedStreamWriter(const WriteRequest& inRequest) : mRequest(inRequest) {}

    OSStatus Start(ByteSink& inSink, const StreamStart& inStart) final;
    OSStatus Write(std::span<const UInt8> inBytes,
                   std::span<const AudioStreamPacketDescription> inPackets) final;
    OSStatus Finish(const StreamEnd& inEnd) final;

protected:
    /// What stands before the first packet.
    virtual OSStatus Begin(const StreamStart&) { return noErr; }

    /// One packet, not empty, with its head. Counts it only when it is in the file.
    virtual OSStatus AppendPacket(std::span<const UInt8> inPacket) = 0;

    /// What is known only now.
    virtual OSStatus Complete(const StreamEnd&) { return noErr; }

    const WriteRequest& Request() const { return mRequest; }
    ByteSink& Sink() { return *mSink; }

private:
    OSStatus AppendWhole(std::span<const UInt8> inPacket);

    WriteRequest mRequest;
    ByteSink* mSink = nullptr;
    OSStatus mStartStatus = kAudioFileNotOpenError;
    OSStatus mWriteStatus = noErr;
};

}  // namespace audiotoolbox::streams

#endif
