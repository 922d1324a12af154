// IndexedPackets: packets of varying size behind each other, found by an index.
#ifndef AUDIOTOOLBOX_FILE_INDEXEDPACKETS_H
#define AUDIOTOOLBOX_FILE_INDEXEDPACKETS_H

#include "file/PacketSizes.h"
#include "file/PacketReader.h"

namespace audiotoolbox
{

/// A read is one read of the source, however many packets it covers.
class IndexedPackets : public PacketReader
{
public:
    /// inFacts  complete; packet 0 of the index lies at its data offset
    IndexedPackets(ByteSourcePtr inSource, FileFacts inFacts, PacketSizes inIndex);

    OSStatus ReadPackets(SInt64 inStart, UInt32* ioBytes, UInt32* ioPackets,
                         AudioStreamPacketDescription* outDescriptions, void* outBytes) override;

private:
    ByteSourcePtr mSource;
    PacketSizes mIndex;
};

}  // namespace audiotoolbox

#endif
