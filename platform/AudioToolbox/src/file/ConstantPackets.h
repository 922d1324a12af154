// ConstantPackets: packets of one size behind each other, such as PCM frames and ADPCM blocks.
#ifndef AUDIOTOOLBOX_FILE_CONSTANTPACKETS_H
#define AUDIOTOOLBOX_FILE_CONSTANTPACKETS_H

#include "file/PacketReader.h"

namespace audiotoolbox
{

/// A read is one read of the source straight into the caller's buffer: no allocation, no copy.
class ConstantPackets : public PacketReader
{
public:
    /// inFacts  complete; its data format has bytes per packet above 0
    ConstantPackets(ByteSourcePtr inSource, FileFacts inFacts);

    OSStatus ReadPackets(SInt64 inStart, UInt32* ioBytes, UInt32* ioPackets,
                         AudioStreamPacketDescription* outDescriptions, void* outBytes) override;

private:
    ByteSourcePtr mSource;
};

}  // namespace audiotoolbox

#endif
