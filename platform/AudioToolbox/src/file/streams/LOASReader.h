// LOASReader: the bare packets of a stream of AudioMuxElements.
#ifndef AUDIOTOOLBOX_FILE_STREAMS_LOASREADER_H
#define AUDIOTOOLBOX_FILE_STREAMS_LOASREADER_H

#include "file/PacketReader.h"

#include <vector>

namespace audiotoolbox::streams
{

/// Takes the packets' payloads out of the elements that another reader delivers, each with its
/// head. Holds one of them, so that a packet which finds no room is at hand for the next call.
class LOASReader final : public PacketReader
{
public:
    explicit LOASReader(PacketReaderPtr inElements);

    OSStatus ReadPackets(SInt64 inStart, UInt32* ioBytes, UInt32* ioPackets,
                         AudioStreamPacketDescription* outDescriptions, void* outBytes) override;

private:
    OSStatus Hold(SInt64 inPacket);

    PacketReaderPtr mElements;
    std::vector<UInt8> mFrame;   // head and element, as large as any
    std::vector<UInt8> mPacket;  // its payload, in the first mPacketBytes
    UInt32 mPacketBytes = 0;     // 0: the stream has ended
    SInt64 mHeld = -1;           // the number of the packet in mPacket
};

}  // namespace audiotoolbox::streams

#endif
