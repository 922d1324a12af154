// AACStream: what the two streams of AAC have in common: which configurations they can say, and
// the state of the bit reservoir that both put into their heads.
//
// Source: ISO/IEC 14496-3, AudioSpecificConfig, adts_frame, StreamMuxConfig.
#ifndef AUDIOTOOLBOX_FILE_WRITE_STREAMS_AACSTREAM_H
#define AUDIOTOOLBOX_FILE_WRITE_STREAMS_AACSTREAM_H

#include "file/AACConfig.h"
#include "file/write/PacketWriter.h"

#include <optional>

namespace audiotoolbox::streams
{

constexpr UInt32 kExplicitRateIndex = 15;

/// By the table of sample rates; kExplicitRateIndex for a rate without a row.
UInt32 AACRateIndex(UInt32 inRate);

/// True for plain AAC in packets of 1024 frames, with a channel configuration for its channels and
/// a whole rate of hertz.
bool IsPlainAAC(const AudioStreamBasicDescription& inFormat);

/// The configuration out of the encoder's cookie. 'fmt?' for one that is not what was requested or
/// that needs more than object type, rate and channel configuration: a program config, layers.
OSStatus TakePlainConfig(const WriteRequest& inRequest, const StreamStart& inStart,
                         AACConfig& outConfig);

/// Follows a constant rate: what its packets leave unused of it, later ones may use.
class BitReservoir
{
public:
    BitReservoir() = default;
    BitReservoir(const AACConfig& inConfig, const StreamStart& inStart);

    /// In units of 32 bits a channel, as both heads have it, behind a packet of so many bytes;
    /// 0 to 192. Nothing for a variable rate.
    std::optional<UInt32> After(std::size_t inPacketBytes);

private:
    double mMeanBits = 0;  // of a packet; 0: the rate varies
    double mChannels = 1;
    double mCapacity = 0;  // bits
    double mLevel = 0;     // bits
};

}  // namespace audiotoolbox::streams

#endif
