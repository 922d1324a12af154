// Decoder: one open decoder with its packet buffer and its frame.
#ifndef AUDIOTOOLBOX_CONVERT_CODECS_DECODER_H
#define AUDIOTOOLBOX_CONVERT_CODECS_DECODER_H

#include "convert/CodecInterface.h"
#include "convert/codecs/DecoderRows.h"
#include "convert/codecs/FFmpeg.h"

namespace audiotoolbox::codecs
{

class Decoder
{
public:
    /// As CodecModule::mOpen. Called once, before anything else.
    OSStatus Open(const CodecRequest& inRequest);

    CodecAnswer Send(const UInt8* inPacket, UInt32 inByteCount);
    CodecAnswer Receive(CodecFrame& outFrame);
    void Flush();
    CodecInfo Info() const;

private:
    bool Configure(const CodecRequest& inRequest, const DecoderRow& inRow);
    bool KeepPacket(const UInt8* inPacket, UInt32 inByteCount);
    bool ShowFrame(CodecFrame& outFrame) const;

    ContextPtr mContext;
    PacketPtr mPacket;
    FramePtr mFrame;
    BufferPtr mBuffer;  // the packet's bytes with zeros behind them; reused when nobody holds it
};

}  // namespace audiotoolbox::codecs

#endif
