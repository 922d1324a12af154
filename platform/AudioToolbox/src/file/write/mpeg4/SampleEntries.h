// SampleEntries: how each format describes itself in a file of the MPEG-4 family.
//
// Sources: ISO/IEC 14496-1 and -14 (AAC, MP3), ETSI TS 102 366 annex F (AC-3, E-AC-3), and the
// mappings into the base format that ALAC, FLAC and Opus publish with their codecs.
#ifndef AUDIOTOOLBOX_FILE_WRITE_MPEG4_SAMPLEENTRIES_H
#define AUDIOTOOLBOX_FILE_WRITE_MPEG4_SAMPLEENTRIES_H

#include "file/write/mpeg4/BoxBuilder.h"

#include <AudioToolbox/AudioFile.h>

#include <array>
#include <span>
#include <vector>

namespace audiotoolbox::mpeg4writer
{

constexpr std::size_t kPacketHeadBytes = 16;

/// What an entry is made of.
struct EntryFacts
{
    AudioStreamBasicDescription mFormat = {};
    std::vector<UInt8> mCookie;                            // as TakeCookie gave it
    std::array<UInt8, kPacketHeadBytes> mPacketHead = {};  // of the first packet; 0 behind its end
    UInt32 mLargestPacket = 0;                             // bytes
    UInt32 mAverageBitRate = 0;                            // bits per second
    UInt32 mPeakBitRate = 0;
};

/// Brings the encoder's cookie into the form that the entry keeps: an AudioSpecificConfig, ALAC's
/// 24 bytes, a STREAMINFO, an OpusHead; empty for formats that need none.
/// 'fmt?' for a cookie that is missing, damaged or of other audio; outCookie is then empty.
OSStatus TakeCookie(const AudioStreamBasicDescription& inFormat, std::span<const UInt8> inCookie,
                    std::vector<UInt8>& outCookie);

/// Puts in the entry ('mp4a', 'alac', ...). Nothing for a format without a row.
void PutSampleEntry(const EntryFacts& inFacts, BoxBuilder& ioBoxes);

/// Packets that a decoder needs in front of the one it is to start with; 0: none.
UInt32 RollPackets(const AudioStreamBasicDescription& inFormat);

}  // namespace audiotoolbox::mpeg4writer

#endif
