// CodecEncoder: packets through an encoder of the codec module.
//
// The encoder gets whole packets' worth of frames, then, at the end of the audio, the rest and
// the silence that it takes to bring out the last frame. It is opened for the first packet or for
// its cookie, never for a question about settings.
#ifndef AUDIOTOOLBOX_CONVERT_CODECENCODER_H
#define AUDIOTOOLBOX_CONVERT_CODECENCODER_H

#include "convert/CodecInterface.h"
#include "convert/ConstantAAC.h"
#include "convert/ConversionPlan.h"
#include "convert/PacketEncoder.h"

#include <memory>
#include <optional>

namespace audiotoolbox
{

struct CloseEncoderSession
{
    const CodecModule* mModule = nullptr;
    void operator()(EncoderSession* inSession) const { mModule->mCloseEncoder(inSession); }
};

class CodecEncoder : public PacketEncoder
{
public:
    /// inSettings are the converter's and outlive the encoder. The plan has an encoder.
    CodecEncoder(const ConversionPlan& inPlan, const EncoderSettings& inSettings);

    OSStatus Fill(const FrameSupply& inSupply, UInt32& ioPackets, AudioBufferList& ioList,
                  AudioStreamPacketDescription* outPackets) override;
    void Reset() override;
    OSStatus Start() override { return mSession ? OSStatus{noErr} : Open(); }
    bool HasStarted() const override { return mSession != nullptr; }
    OSStatus GetCookie(std::vector<UInt8>& outCookie) override;
    AudioConverterPrimeInfo Prime() const override;

private:
    OSStatus Open();
    EncoderRequest Request() const;
    OSStatus MakePacket(const FrameSupply& inSupply);
    OSStatus SendNext(const FrameSupply& inSupply);
    OSStatus SendEnd();
    OSStatus Send(UInt32 inFrames);
    void KeepPacket(const EncodedPacket& inPacket);
    void TameSamples(UInt32 inFirstFrame, UInt32 inFrames);

    const EncoderRow& mRow;
    const StreamShape mShape;
    const SampleLayout mLayout;
    const EncoderSettings& mSettings;
    const bool mMayBeLoud;  // samples that came as integers, and went no other way, are in range
    const UInt32 mFramesPerPacket;
    const std::size_t mBytesPerFrame;

    const CodecModule* mModule = nullptr;
    std::unique_ptr<EncoderSession, CloseEncoderSession> mSession;
    std::optional<ConstantAAC> mConstant;

    std::vector<UInt8> mFrames;  // for the next packet
    UInt32 mHeldFrames = 0;      // of them, when a supply failed in the middle
    UInt64 mFramesIn = 0;
    UInt64 mFramesCoded = 0;  // what a decoder makes of the packets so far
    SInt64 mSilenceLeft = 0;  // frames that are still to follow the audio
    bool mHasInputEnded = false;
    bool mIsDraining = false;
    bool mHasEnded = false;

    std::vector<UInt8> mPacket;
    UInt32 mPacketFrames = 0;  // 0: the usual number
    bool mHasPacket = false;   // that waits for room
};

}  // namespace audiotoolbox

#endif
