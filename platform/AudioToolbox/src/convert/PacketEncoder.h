// PacketEncoder: frames of linear PCM become packets of another format.
//
// It pulls its frames from the converter's linear side, which has brought them to the rate, the
// channels and the samples that the encoder wants.
#ifndef AUDIOTOOLBOX_CONVERT_PACKETENCODER_H
#define AUDIOTOOLBOX_CONVERT_PACKETENCODER_H

#include "convert/EncoderSettings.h"

#include <AudioToolbox/AudioConverter.h>

#include <functional>

namespace audiotoolbox
{

/// Fills interleaved frames. ioFrameCount: wanted, then delivered; fewer with noErr at the end of
/// the audio only, and what came before a status still counts.
using FrameSupply = std::function<OSStatus(UInt8* outFrames, UInt32& ioFrameCount)>;

class PacketEncoder
{
public:
    virtual ~PacketEncoder() = default;

    /// As AudioConverterFillComplexBuffer; outPackets may be null for packets of constant size.
    virtual OSStatus Fill(const FrameSupply& inSupply, UInt32& ioPackets, AudioBufferList& ioList,
                          AudioStreamPacketDescription* outPackets) = 0;

    /// The next fill starts a new stream.
    virtual void Reset() = 0;

    /// Takes the settings over before the first packet; noErr once that is done.
    virtual OSStatus Start() { return noErr; }

    /// True from Start or the first packet on: settings are taken over with it.
    virtual bool HasStarted() const { return false; }

    /// What a decoder needs beside the packets; empty for formats without. Opens the encoder.
    virtual OSStatus GetCookie(std::vector<UInt8>& outCookie)
    {
        outCookie.clear();
        return noErr;
    }

    /// What a decoder's output has before and behind the audio. The latter is known at the end.
    virtual AudioConverterPrimeInfo Prime() const { return {0, 0}; }
};

}  // namespace audiotoolbox

#endif
