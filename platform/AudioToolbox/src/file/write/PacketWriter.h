// PacketWriter: one file of some container that is being written, packet by packet.
//
// The life of one: made for a request, before the file exists; Start with the sink, once; Write,
// any number of times; Finish, once, after which the file is whole. A writer holds no audio back
// beyond what its container makes it hold.
#ifndef AUDIOTOOLBOX_FILE_WRITE_PACKETWRITER_H
#define AUDIOTOOLBOX_FILE_WRITE_PACKETWRITER_H

#include "file/write/ByteSink.h"

#include <memory>
#include <span>
#include <vector>

namespace audiotoolbox
{

/// What is to be written, as far as it is known before the first packet.
struct WriteRequest
{
    AudioFileTypeID mType = 0;

    /// Of the packets. Compressed: mFramesPerPacket, and mBytesPerPacket where packets have one
    /// size (0 where not), as the converter tells its destination; lossless formats have their
    /// depth in the flags.
    AudioStreamBasicDescription mFormat = {};

    /// Of the channels, in the packets' order; empty: not known.
    std::vector<AudioChannelLabel> mLabels;
};

/// What the encoder tells when it is opened.
struct StreamStart
{
    std::vector<UInt8> mCookie;  // as the converter gives it ('cmgc'); empty: none
    UInt32 mPrimingFrames = 0;   // at the rate of the format
    UInt32 mBitRate = 0;         // bits per second that the encoder aims at; 0: not known
    bool mIsConstantBitRate = false;
    UInt32 mMaximumPacketBytes = 0;  // 0: not known
};

/// What is known at the end.
struct StreamEnd
{
    std::vector<UInt8> mCookie;  // may be another one than at the start
    SInt64 mValidFrames = 0;     // frames of audio that went in
    UInt32 mPrimingFrames = 0;
    UInt32 mRemainderFrames = 0;  // behind the audio: packets' frames less priming and valid ones
};

class PacketWriter
{
public:
    virtual ~PacketWriter() = default;

    /// The sink is empty and outlives the writer's work.
    virtual OSStatus Start(ByteSink& inSink, const StreamStart& inStart) = 0;

    /// Whole packets, one behind the other in inBytes. inPackets is empty where packets have a
    /// constant size; else one entry a packet, mVariableFramesInPacket 0 for the usual number.
    ///
    /// kAudioFileDoesNotAllow64BitDataSizeError ('off?') when the file would outgrow its container:
    /// what fits of whole packets is written, and Finish leaves a valid file of it.
    virtual OSStatus Write(std::span<const UInt8> inBytes,
                           std::span<const AudioStreamPacketDescription> inPackets) = 0;

    /// Completes the file: sizes, tables, what follows the audio. Does not close the sink.
    /// inEnd counts what went into the encoder: less of it is in the file after a failed Write,
    /// and then what was written decides.
    virtual OSStatus Finish(const StreamEnd& inEnd) = 0;
};

using PacketWriterPtr = std::unique_ptr<PacketWriter>;

/// Makes a writer for the request, or refuses it with 'fmt?' where the container cannot hold that
/// format. Nothing is written.
using MakePacketWriter = OSStatus (*)(const WriteRequest& inRequest, PacketWriterPtr& outWriter);

/// Chunked containers: WAVE, RF64, BW64 / W64f / AIFF, AIFC / caff / NeXT.
OSStatus MakeRIFFWriter(const WriteRequest& inRequest, PacketWriterPtr& outWriter);
OSStatus MakeWave64Writer(const WriteRequest& inRequest, PacketWriterPtr& outWriter);
OSStatus MakeAIFFWriter(const WriteRequest& inRequest, PacketWriterPtr& outWriter);
OSStatus MakeCAFWriter(const WriteRequest& inRequest, PacketWriterPtr& outWriter);
OSStatus MakeAUWriter(const WriteRequest& inRequest, PacketWriterPtr& outWriter);

/// Box container: m4af, m4bf, mp4f, 3gpp, 3gp2.
OSStatus MakeMPEG4Writer(const WriteRequest& inRequest, PacketWriterPtr& outWriter);

/// Elementary streams: adts / loas / MPG3 / MPG2, ac-3, ec-3 (the packets are the file) / flac.
OSStatus MakeADTSWriter(const WriteRequest& inRequest, PacketWriterPtr& outWriter);
OSStatus MakeLOASWriter(const WriteRequest& inRequest, PacketWriterPtr& outWriter);
OSStatus MakeMP3Writer(const WriteRequest& inRequest, PacketWriterPtr& outWriter);
OSStatus MakeBareStreamWriter(const WriteRequest& inRequest, PacketWriterPtr& outWriter);
OSStatus MakeFLACWriter(const WriteRequest& inRequest, PacketWriterPtr& outWriter);

}  // namespace audiotoolbox

#endif
