// StreamReader: reads the packets of a self-framing stream that a framer finds.
//
// A stream has no table of its packets, so a packet's place is known only by walking the headers
// before it. Reading on from the last packet costs one header a packet; reading elsewhere starts at
// the nearest entry of the index. Nothing is allocated while packets are read, except once for a
// packet that is larger than the window and than every one before it.
#ifndef AUDIOTOOLBOX_FILE_STREAMS_STREAMREADER_H
#define AUDIOTOOLBOX_FILE_STREAMS_STREAMREADER_H

#include "file/PacketReader.h"
#include "file/streams/Framer.h"
#include "file/streams/WalkIndex.h"

#include <limits>

namespace audiotoolbox::streams
{

class StreamReader final : public PacketReader
{
public:
    /// ioSource is taken; inWindow looks at it. inFacts.mDataOffset is where the walk begins.
    StreamReader(ByteSourcePtr& ioSource, std::unique_ptr<StreamWindow> inWindow,
                 std::unique_ptr<Framer> inFramer, FileFacts inFacts);

    OSStatus ReadPackets(SInt64 inStart, UInt32* ioBytes, UInt32* ioPackets,
                         AudioStreamPacketDescription* outDescriptions, void* outBytes) override;

private:
    struct Delivery;

    bool Locate();
    void StepOver();
    bool GoTo(UInt64 inPacket);
    OSStatus Deliver(Delivery& ioDelivery);

    ByteSourcePtr mSource;  // the window looks at it, so it dies last
    std::unique_ptr<StreamWindow> mWindow;
    std::unique_ptr<Framer> mFramer;
    WalkIndex mIndex;
    UInt64 mNextPacket = 0;
    SInt64 mNextPosition;  // where mNextPacket is looked for
    StreamPacket mFound;   // mNextPacket, once it is found
    bool mHasFound = false;
    UInt64 mPacketsInStream = std::numeric_limits<UInt64>::max();  // until a walk reached the end
};

}  // namespace audiotoolbox::streams

#endif
