// GatheringWriter: small writes become larger ones on their way to a container.
//
// Containers hand on at once what they are given, so that they know what is in the file. Clients
// with small blocks and encoders with small packets would cost a call of the system for each.
#ifndef AUDIOTOOLBOX_EXTENDED_GATHERINGWRITER_H
#define AUDIOTOOLBOX_EXTENDED_GATHERINGWRITER_H

#include "file/write/PacketWriter.h"

namespace audiotoolbox
{

class GatheringWriter : public PacketWriter
{
public:
    explicit GatheringWriter(PacketWriterPtr inContainer) : mContainer(std::move(inContainer)) {}

    OSStatus Start(ByteSink& inSink, const StreamStart& inStart) override;

    /// A failure may be that of packets of an earlier call. Large writes are handed on as they
    /// are, without a copy.
    OSStatus Write(std::span<const UInt8> inBytes,
                   std::span<const AudioStreamPacketDescription> inPackets) override;

    /// Hands on what is held first; after a failed Write nothing is.
    OSStatus Finish(const StreamEnd& inEnd) override;

private:
    void Hold(std::span<const UInt8> inBytes,
              std::span<const AudioStreamPacketDescription> inPackets);
    OSStatus HandOn();

    PacketWriterPtr mContainer;
    std::vector<UInt8> mBytes;                           // as large as they ever get, from Start on
    std::vector<AudioStreamPacketDescription> mPackets;  // the same
    std::size_t mByteCount = 0;
    std::size_t mPacketCount = 0;
};

}  // namespace audiotoolbox

#endif
