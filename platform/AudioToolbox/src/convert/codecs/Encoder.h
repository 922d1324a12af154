// Encoder: one open encoder with its frame and its packet.
#ifndef AUDIOTOOLBOX_CONVERT_CODECS_ENCODER_H
#define AUDIOTOOLBOX_CONVERT_CODECS_ENCODER_H

#include "convert/CodecInterface.h"
#include "convert/codecs/FFmpeg.h"

#include <vector>

namespace audiotoolbox::codecs
{

class Encoder
{
public:
    /// As CodecModule::mOpenEncoder. Called once, before anything else.
    OSStatus Open(const EncoderRequest& inRequest);

    CodecAnswer Send(const UInt8* inFrames, UInt32 inFrameCount);
    CodecAnswer Receive(EncodedPacket& outPacket);
    void AimAt(UInt32 inBitRate) { mContext->bit_rate = inBitRate; }
    EncoderFacts Facts() const;

private:
    OSStatus OpenContext();
    bool Configure(const AVCodec& inCodec);
    void SetBitRate();
    bool ReopenForShort(UInt32 inFrameCount);
    bool MakeFrame();
    bool KeepCookie(const UInt8* inBytes, std::size_t inByteCount);
    void Fill(const UInt8* inFrames, UInt32 inFrameCount);

    EncoderRequest mRequest = {};
    bool mIsPlain = false;  // lossless: samples as they are
    ContextPtr mContext;
    PacketPtr mPacket;
    FramePtr mFrame;
    SInt64 mPosition = 0;  // frames that were sent
    std::vector<UInt8> mCookie;
};

}  // namespace audiotoolbox::codecs

#endif
