// TrackReader: reads the packets of one track, by its index.
#ifndef AUDIOTOOLBOX_FILE_MPEG4_TRACKREADER_H
#define AUDIOTOOLBOX_FILE_MPEG4_TRACKREADER_H

#include "file/PacketReader.h"
#include "file/mpeg4/PacketIndex.h"

namespace audiotoolbox::mpeg4
{

/// Neighbouring packets are read with one call, straight into the caller's buffer, whatever chunks
/// the file cuts them into. Reading allocates nothing.
class TrackReader : public PacketReader
{
public:
    TrackReader(ByteSourcePtr inSource, FileFacts inFacts, PacketIndex inIndex);

    OSStatus ReadPackets(SInt64 inStart, UInt32* ioBytes, UInt32* ioPackets,
                         AudioStreamPacketDescription* outDescriptions, void* outBytes) override;

private:
    struct Request;

    OSStatus ReadVarying(Request& ioRequest);
    OSStatus ReadConstant(Request& ioRequest);
    OSStatus ReadStretch(SInt64 inOffset, UInt32 inEnd, Request& ioRequest, bool& outIsWhole);
    void TellFrames(UInt32 inFirst, const Request& inRequest) const;

    ByteSourcePtr mSource;
    PacketIndex mIndex;
    PacketIndex::Cursor mCursor;  // where the last read ended; refers to mIndex
};

}  // namespace audiotoolbox::mpeg4

#endif
