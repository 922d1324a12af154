// FactArithmetic: the numbers of a FileFacts that every chunked container works out alike.
#ifndef AUDIOTOOLBOX_FILE_FACTARITHMETIC_H
#define AUDIOTOOLBOX_FILE_FACTARITHMETIC_H

#include "file/PacketReader.h"

namespace audiotoolbox
{

/// Bounds of what a header may claim. Beyond them it is damaged, not unusual.
constexpr UInt32 kMaxChannels = 1024;
constexpr double kMinSampleRate = 1.0;
constexpr double kMaxSampleRate = 100e6;

/// False for a NaN, too.
bool IsSaneRate(double inRate);
bool IsSaneChannelCount(UInt32 inChannels);

/// Sets the position and size of the audio, with no part of it outside the file.
/// inByteCount  as the header claims; negative: up to the end of the file
void SetDataRange(const ByteSource& inSource, SInt64 inOffset, SInt64 inByteCount,
                  FileFacts& ioFacts);

/// A linear PCM description with frames of inBytesPerSample * inChannels bytes. The flags for
/// packed or aligned high follow from the bits.
AudioStreamBasicDescription DescribePCM(double inRate, UInt32 inChannels, UInt32 inBits,
                                        UInt32 inBytesPerSample, AudioFormatFlags inKindFlags);

/// A-law or mu-law: one byte a sample, one frame a packet.
AudioStreamBasicDescription DescribeLaw(AudioFormatID inFormat, double inRate, UInt32 inChannels);

/// A compressed format of constant packets.
AudioStreamBasicDescription DescribeBlocks(AudioFormatID inFormat, double inRate, UInt32 inChannels,
                                           UInt32 inBytesPerPacket, UInt32 inFramesPerPacket);

/// Frames of so many packets, held to what 63 bits hold.
UInt64 FramesOfPackets(UInt64 inPackets, UInt32 inFramesPerPacket);

/// Priming and valid frames brought within the frames that the packets really hold; the remainder
/// is what is left.
AudioFilePacketTableInfo MakePacketTable(UInt64 inFramesInPackets, SInt64 inPriming,
                                         SInt64 inValid);

/// Packet count and size bound for constant packets, from the data format and the data size.
void CountConstantPackets(FileFacts& ioFacts);

/// The last step of opening, once the packet count, the packet table and the sizes stand:
/// duration, bit rate and, where it is still empty, the list of formats with its one item.
void CompleteFacts(FileFacts& ioFacts);

}  // namespace audiotoolbox

#endif
