// ChunkedWriter: what the chunked containers do alike: a header, the packets behind it, a tail.
//
// The header has one length from the start on. It is written for no audio at first, so that a file
// without any is whole, and written over once all is known.
#ifndef AUDIOTOOLBOX_FILE_WRITE_CHUNKED_CHUNKEDWRITER_H
#define AUDIOTOOLBOX_FILE_WRITE_CHUNKED_CHUNKEDWRITER_H

#include "file/write/PacketWriter.h"

namespace audiotoolbox
{

/// The audio that is in the file, in whole packets.
struct AudioExtent
{
    SInt64 mBytes = 0;
    UInt64 mPackets = 0;
    UInt64 mFrames = 0;         // that the packets give
    UInt64 mPrimingFrames = 0;  // the first of them
    UInt64 mValidFrames = 0;    // of audio, behind the priming ones
};

class ChunkedWriter : public PacketWriter
{
public:
    OSStatus Start(ByteSink& inSink, const StreamStart& inStart) final;
    OSStatus Write(std::span<const UInt8> inBytes,
                   std::span<const AudioStreamPacketDescription> inPackets) final;
    OSStatus Finish(const StreamEnd& inEnd) final;

protected:
    /// inPacketBytes 0: every packet comes with its description.
    ChunkedWriter(UInt32 inPacketBytes, UInt32 inFramesPerPacket);

    /// Called once each, in front of the first header and of the last one.
    virtual OSStatus TakeStart(const StreamStart&) { return noErr; }
    virtual void TakeEnd(const StreamEnd&) {}

    /// All that stands in front of the audio.
    virtual std::vector<UInt8> MakeHeader(const AudioExtent& inAudio) const = 0;

    /// The most bytes of audio that the container's numbers can state.
    virtual SInt64 MostAudioBytes(SInt64 inHeaderBytes) const;

    /// A packet without a constant size has come into the file.
    virtual void KeepPacket(UInt32) {}

    /// What stands behind the audio.
    virtual OSStatus AppendTail(ByteSink&, const AudioExtent&) { return noErr; }

private:
    SInt64 End() const { return mHeaderBytes + mAudio.mBytes; }
    bool AreWholePackets(std::span<const UInt8> inBytes,
                         std::span<const AudioStreamPacketDescription> inPackets) const;
    std::size_t CountFitting(std::size_t inBytes) const;
    OSStatus CutBrokenPacket();
    void Keep(SInt64 inBytes, std::span<const AudioStreamPacketDescription> inPackets);
    void CountFrames(const StreamEnd& inEnd);

    UInt32 mPacketBytes;
    UInt32 mFramesPerPacket;
    ByteSink* mSink = nullptr;  // the caller's; null until the header stands
    SInt64 mHeaderBytes = 0;
    AudioExtent mAudio;
};

/// Zeros behind inBytes up to a multiple of inAlignment.
OSStatus AppendPadding(ByteSink& ioSink, SInt64 inBytes, UInt32 inAlignment);

}  // namespace audiotoolbox

#endif
