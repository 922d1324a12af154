// WaveRecord: the format record that WAVE files and their 64-bit relatives share.
#ifndef AUDIOTOOLBOX_FILE_WRITE_CHUNKED_WAVERECORD_H
#define AUDIOTOOLBOX_FILE_WRITE_CHUNKED_WAVERECORD_H

#include "file/write/PacketWriter.h"

namespace audiotoolbox
{

/// The plain record for up to 16 bits and two channels in their usual order, the extensible one
/// with a channel mask where that says too little. An even number of bytes.
/// inCookie  of MS ADPCM: what stands behind the record, samples per block and coefficients; empty
///           or too short: the usual ones
std::vector<UInt8> MakeWaveRecord(const WriteRequest& inRequest, std::span<const UInt8> inCookie);

/// True where readers make the same packets of the record as the request has.
bool IsWaveRequest(const WriteRequest& inRequest);

/// True for what has a `fact` chunk: all but integer PCM.
bool HasFact(const AudioStreamBasicDescription& inFormat);

}  // namespace audiotoolbox

#endif
