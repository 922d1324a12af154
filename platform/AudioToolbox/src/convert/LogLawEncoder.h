// LogLawEncoder: one byte a sample, a frame a packet.
#ifndef AUDIOTOOLBOX_CONVERT_LOGLAWENCODER_H
#define AUDIOTOOLBOX_CONVERT_LOGLAWENCODER_H

#include "convert/LogLaw.h"
#include "convert/PacketEncoder.h"

#include <array>

namespace audiotoolbox
{

/// Takes native 16-bit words.
class LogLawEncoder : public PacketEncoder
{
public:
    LogLawEncoder(LogLaw inLaw, UInt32 inChannelCount) : mLaw(inLaw), mChannelCount(inChannelCount)
    {
    }

    OSStatus Fill(const FrameSupply& inSupply, UInt32& ioPackets, AudioBufferList& ioList,
                  AudioStreamPacketDescription* outPackets) override;
    void Reset() override {}

private:
    const LogLaw mLaw;
    const UInt32 mChannelCount;
    std::array<SInt16, 2048> mSamples;  // stays in the nearest cache
};

}  // namespace audiotoolbox

#endif
