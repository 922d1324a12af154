// WaveFormat: the format record that WAVE files and their 64-bit relatives share.
//
// Source: the WAVEFORMATEX and WAVEFORMATEXTENSIBLE records as documented for RIFF files.
#ifndef AUDIOTOOLBOX_FILE_WAVE_WAVEFORMAT_H
#define AUDIOTOOLBOX_FILE_WAVE_WAVEFORMAT_H

#include "file/PacketReader.h"

#include <optional>
#include <span>

namespace audiotoolbox
{

/// Larger records hold nothing that a decoder here wants.
constexpr UInt32 kMaxWaveFormatBytes = 4096;

/// Fills mDataFormat, mCookie and mChannelLayout from the record.
/// 'dta?' for a record that cannot be true, 'fmt?' for a codec that no row names.
OSStatus DescribeWave(std::span<const UInt8> inRecord, FileFacts& ioFacts);

/// True when the length in frames cannot be told from the data size alone.
bool HasBlocks(const AudioStreamBasicDescription& inFormat);

/// The last step, once the data range stands. inFrames is what the file tells of its length
/// (`fact`, or the 64-bit record), nullopt when it does not.
void FinishWave(std::optional<UInt64> inFrames, FileFacts& ioFacts);

}  // namespace audiotoolbox

#endif
