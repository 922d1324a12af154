// PacketReader: one opened audio file, as its container's parser sees it.
//
// A parser (one per container family) reads headers once, at opening, fills a FileFacts and answers
// packets afterwards. AudioFile's C functions answer every property from the facts.
#ifndef AUDIOTOOLBOX_FILE_PACKETREADER_H
#define AUDIOTOOLBOX_FILE_PACKETREADER_H

#include "file/ByteSource.h"

#include <memory>
#include <optional>
#include <vector>

namespace audiotoolbox
{

/// What a container tells of its audio. Frames count at the rate of mDataFormat.
struct FileFacts
{
    AudioFileTypeID mFileType = 0;

    /// The plain format of the packets (for layered AAC the core: 'aac ', core rate, 1024).
    AudioStreamBasicDescription mDataFormat = {};

    /// Every way to read the packets, best first, mDataFormat last; one item for all but layered
    /// AAC.
    std::vector<AudioFormatListItem> mFormats;

    /// As the decoder wants it; empty: the file has none and the property is missing.
    std::vector<UInt8> mCookie;

    /// An AudioChannelLayout, 12 bytes and 20 a description; empty: the property is missing.
    std::vector<UInt8> mChannelLayout;

    std::optional<AudioFilePacketTableInfo> mPacketTable;

    /// Bytes; not below any packet of the file. Constant packets: their size.
    UInt32 mPacketSizeUpperBound = 0;

    SInt64 mDataOffset = 0;     // bytes, where the first packet lies
    SInt64 mDataByteCount = 0;  // audio bytes, clamped to the file

    /// Packets in the file; nullopt where only reading to the end would tell.
    std::optional<UInt64> mPacketCount;

    /// Seconds; by the packet table, the packet count or the data size exact, else an estimate.
    /// Exact means: the smallest double whose product with the rate, truncated, is the frame count.
    double mEstimatedDuration = 0.0;

    UInt32 mBitRate = 0;  // bits per second of the stored audio, 0 unknown
};

class PacketReader
{
public:
    virtual ~PacketReader() = default;

    const FileFacts& Facts() const { return mFacts; }

    /// As AudioFileReadPacketData: whole packets from inStart on that fit both *ioBytes and
    /// *ioPackets. Sequential reading is cheap; any inStart from 0 up is answered right.
    /// outDescriptions may be null for constant packets only (-50 otherwise).
    /// At the end noErr with 0 bytes and 0 packets. A first packet larger than the room is
    /// kAudioFileBadPropertySizeError. In a truncated file the whole packets come, then the end.
    /// After a failure both counts are 0.
    virtual OSStatus ReadPackets(SInt64 inStart, UInt32* ioBytes, UInt32* ioPackets,
                                 AudioStreamPacketDescription* outDescriptions, void* outBytes) = 0;

protected:
    FileFacts mFacts;
};

using PacketReaderPtr = std::unique_ptr<PacketReader>;

/// A parser's opening function. Takes the source only on success.
/// 'typ?' the magic is not its own after all; 'dta?' known magic, damaged body; 'fmt?' a codec that
/// no row of the format table names; -108 out of memory; else the status of a failing read.
using OpenContainer = OSStatus (*)(AudioFileTypeID inType, ByteSourcePtr& ioSource,
                                   PacketReaderPtr& outReader);

/// Chunked containers: WAVE, RF64, BW64, W64f / AIFF, AIFC / caff / NeXT.
OSStatus OpenRIFF(AudioFileTypeID inType, ByteSourcePtr& ioSource, PacketReaderPtr& outReader);
OSStatus OpenWave64(AudioFileTypeID inType, ByteSourcePtr& ioSource, PacketReaderPtr& outReader);
OSStatus OpenAIFF(AudioFileTypeID inType, ByteSourcePtr& ioSource, PacketReaderPtr& outReader);
OSStatus OpenCAF(AudioFileTypeID inType, ByteSourcePtr& ioSource, PacketReaderPtr& outReader);
OSStatus OpenAU(AudioFileTypeID inType, ByteSourcePtr& ioSource, PacketReaderPtr& outReader);

/// Box container: m4af, m4bf, mp4f, 3gpp, 3gp2.
OSStatus OpenMPEG4(AudioFileTypeID inType, ByteSourcePtr& ioSource, PacketReaderPtr& outReader);

/// Elementary streams of self-framing packets.
OSStatus OpenMPEGAudio(AudioFileTypeID inType, ByteSourcePtr& ioSource, PacketReaderPtr& outReader);
OSStatus OpenADTS(AudioFileTypeID inType, ByteSourcePtr& ioSource, PacketReaderPtr& outReader);
OSStatus OpenLOAS(AudioFileTypeID inType, ByteSourcePtr& ioSource, PacketReaderPtr& outReader);
OSStatus OpenAC3(AudioFileTypeID inType, ByteSourcePtr& ioSource, PacketReaderPtr& outReader);
OSStatus OpenAMR(AudioFileTypeID inType, ByteSourcePtr& ioSource, PacketReaderPtr& outReader);
OSStatus OpenFLAC(AudioFileTypeID inType, ByteSourcePtr& ioSource, PacketReaderPtr& outReader);

/// Sniffs the type from the first bytes (behind an ID3v2 tag where the type allows one) and opens
/// it with its parser. inHint decides only where the content is ambiguous. 'typ?' for no known
/// type.
OSStatus OpenAudio(AudioFileTypeID inHint, ByteSourcePtr& ioSource, PacketReaderPtr& outReader);

/// The smallest double whose product with inRate, truncated, is inFrames; 0 for a rate of 0.
double DurationOfFrames(UInt64 inFrames, double inRate);

}  // namespace audiotoolbox

#endif
