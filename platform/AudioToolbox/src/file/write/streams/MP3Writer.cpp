// MP3Writer: MPEG audio layer 3 behind a frame that tells its length.
//
// The frame is reserved at the start and completed at the end: readers then give exactly the
// frames that went in. Its padding field ends at 4095 frames, two packets more than an encoder
// needs: of a stream with more behind its audio, readers keep the excess as silence. Audio without
// a single frame makes a file of the tag alone, which opens with 0 packets here and in mpg123.
#include "file/streams/MPEGHeader.h"
#include "file/write/streams/FramedStreamWriter.h"
#include "file/write/streams/MP3Tag.h"

#include <algorithm>
#include <cmath>

namespace audiotoolbox
{
namespace streams
{
namespace
{

// Frames that a layer 3 decoder itself is late by; the tag tells the encoder's delay alone.
constexpr UInt32 kDecoderDelay = 529;

class MP3Writer final : public FramedStreamWriter
{
public:
    using FramedStreamWriter::FramedStreamWriter;

private:
    OSStatus Begin(const StreamStart& inStart) override
    {
        const AudioStreamBasicDescription& format = Request().mFormat;
        mTag.mIsConstantRate = inStart.mIsConstantBitRate;
        mTag.mBitRate = inStart.mBitRate;
        mHeader = MP3TagHeader(static_cast<UInt32>(format.mSampleRate), format.mChannelsPerFrame,
                               inStart.mIsConstantBitRate ? inStart.mBitRate : 0);
        if (mHeader == 0)
            return kAudioFileUnsupportedDataFormatError;
        const std::vector<UInt8> frame = MakeMP3TagFrame(mHeader, mTag, mPlaces);
        mTagBytes = static_cast<SInt64>(frame.size());
        return Sink().Append(frame);
    }

    bool IsOfThisStream(std::span<const UInt8> inPacket) const
    {
        MPEGHeader header;
        return inPacket.size() >= MPEGSyntax::kHeaderBytes &&
               MPEGSyntax::Parse(inPacket.data(), header) && header.mLayer == 3 &&
               header.mSampleRate == Request().mFormat.mSampleRate &&
               header.mChannels == Request().mFormat.mChannelsPerFrame;
    }

    OSStatus AppendPacket(std::span<const UInt8> inPacket) override
    {
        if (!IsOfThisStream(inPacket))
            return kAudioFileUnsupportedDataFormatError;
        const PacketPlace place = {0, Sink().Size() - mTagBytes, 0};
        if (const OSStatus status = Sink().Append(inPacket); status != noErr)
            return status;
        if (mPlaces.PacketCount() == 0)
            mHeader = LikeFirstHeader(mHeader, inPacket);
        mPlaces.Note(place);
        mTag.mAudioChecksum = AddToMP3Checksum(mTag.mAudioChecksum, inPacket);
        return noErr;
    }

    // After a failed write less audio is there than went in.
    void TakeLength(const StreamEnd& inEnd)
    {
        const SInt64 frames =
            static_cast<SInt64>(mPlaces.PacketCount()) * Request().mFormat.mFramesPerPacket;
        const SInt64 priming = std::max(inEnd.mPrimingFrames, kDecoderDelay);
        const SInt64 delay = std::min<SInt64>(priming - kDecoderDelay, kLongestMP3Padding);
        const SInt64 valid =
            std::clamp<SInt64>(inEnd.mValidFrames, 0, std::max<SInt64>(frames - priming, 0));
        const SInt64 padding = std::clamp<SInt64>(frames - delay - valid, 0, kLongestMP3Padding);
        mTag.mDelay = static_cast<UInt32>(delay);
        mTag.mPadding = static_cast<UInt32>(padding);
        mTag.mByteCount = Sink().Size() - mTagBytes;
    }

    OSStatus Complete(const StreamEnd& inEnd) override
    {
        TakeLength(inEnd);
        return Sink().Patch(0, MakeMP3TagFrame(mHeader, mTag, mPlaces));
    }

    UInt32 mHeader = 0;  // of the tag's frame
    SInt64 mTagBytes = 0;
    MP3TagFacts mTag;
    PacketPlaces mPlaces;
};

bool CanHold(const AudioStreamBasicDescription& inFormat)
{
    const double rate = inFormat.mSampleRate;
    if (inFormat.mFormatID != kAudioFormatMPEGLayer3 || !(rate >= 8000 && rate <= 48000) ||
        rate != std::floor(rate))
        return false;
    const UInt32 frames = rate < 32000 ? 576 : 1152;
    return inFormat.mFramesPerPacket == frames &&
           MP3TagHeader(static_cast<UInt32>(rate), inFormat.mChannelsPerFrame, 0) != 0;
}

}  // namespace
}  // namespace streams

OSStatus MakeMP3Writer(const WriteRequest& inRequest, PacketWriterPtr& outWriter)
{
    if (!streams::CanHold(inRequest.mFormat))
        return kAudioFileUnsupportedDataFormatError;
    outWriter = std::make_unique<streams::MP3Writer>(inRequest);
    return noErr;
}

}  // namespace audiotoolbox
