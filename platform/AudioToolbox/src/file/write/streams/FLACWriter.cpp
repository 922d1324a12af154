// FLACWriter: native FLAC files.
//
// The description of the stream stands in front and is written again at the end, when the encoder
// knows its length and the checksum of the audio. Until then, and where the encoder's numbers are
// not those of the packets in the file, both are unknown or as the packets tell.
#include "file/write/streams/FLACBlocks.h"
#include "file/write/streams/FramedStreamWriter.h"

#include "file/write/chunked/SpeakerMask.h"
#include "tables/Encoders.h"

#include <algorithm>
#include <bit>

namespace audiotoolbox
{
namespace streams
{
namespace
{

constexpr std::size_t kPacketSizesAt = 4;  // smallest and largest, 24 bits each

// Of channels that are not in the format's own order; 0 for those that are, or have no mask.
AudioChannelBitmap MaskToState(const WriteRequest& inRequest)
{
    const UInt32 channels = inRequest.mFormat.mChannelsPerFrame;
    const AudioChannelBitmap mask = SpeakerMaskOf(inRequest.mLabels);
    const EncoderRow* row = FindEncoder(kAudioFormatFLAC);
    const bool isOwn = row != nullptr && EncoderMask(*row, channels) == mask;
    return static_cast<UInt32>(std::popcount(mask)) == channels && !isOwn ? mask : 0;
}

class FLACWriter final : public FramedStreamWriter
{
public:
    using FramedStreamWriter::FramedStreamWriter;

private:
    OSStatus Begin(const StreamStart& inStart) override
    {
        if (!TakeInfo(inStart.mCookie, mInfoBytes, mInfo))
            return kAudioFileUnsupportedDataFormatError;
        SetAllFrames(0, mInfoBytes);
        ForgetAudioChecksum(mInfoBytes);
        const std::vector<UInt8> head = MakeFLACHead(mInfoBytes, MaskToState(Request()), mPlaces);
        const OSStatus status = Sink().Append(head);
        mFirstPacketAt = Sink().Size();
        return status;
    }

    bool TakeInfo(const std::vector<UInt8>& inCookie, StreamInfoBytes& outBytes,
                  FLACStreamInfo& outInfo) const
    {
        const AudioStreamBasicDescription& format = Request().mFormat;
        if (inCookie.size() != outBytes.size())
            return false;
        std::copy(inCookie.begin(), inCookie.end(), outBytes.begin());
        return ParseStreamInfo(outBytes, outInfo) && outInfo.mSampleRate == format.mSampleRate &&
               outInfo.mChannels == format.mChannelsPerFrame;
    }

    OSStatus AppendPacket(std::span<const UInt8> inPacket) override
    {
        FLACHeader header;  // only it tells how many frames a last packet has
        if (!ParseFLACHeader(inPacket, mInfo, header))
            return kAudioFileUnsupportedDataFormatError;
        const PacketPlace place = {mFrames, Sink().Size() - mFirstPacketAt, header.mBlock};
        if (const OSStatus status = Sink().Append(inPacket); status != noErr)
            return status;
        mPlaces.Note(place);
        mFrames += header.mBlock;
        const auto size = static_cast<UInt32>(inPacket.size());
        mSmallestPacket = mFrames == header.mBlock ? size : std::min(mSmallestPacket, size);
        mLargestPacket = std::max(mLargestPacket, size);
        return noErr;
    }

    // The encoder's last description where it is that of this file, else what the packets tell.
    void TakeFinalInfo(const StreamEnd& inEnd)
    {
        StreamInfoBytes bytes;
        FLACStreamInfo info;
        if (TakeInfo(inEnd.mCookie, bytes, info) && info.mAllFrames == mFrames)
        {
            mInfoBytes = bytes;
            return;
        }
        SetAllFrames(mFrames, mInfoBytes);
        for (unsigned i = 0; i < 3; ++i)
        {
            const unsigned shift = 8 * (2 - i);
            mInfoBytes[kPacketSizesAt + i] = static_cast<UInt8>(mSmallestPacket >> shift);
            mInfoBytes[kPacketSizesAt + 3 + i] = static_cast<UInt8>(mLargestPacket >> shift);
        }
    }

    OSStatus Complete(const StreamEnd& inEnd) override
    {
        TakeFinalInfo(inEnd);
        return Sink().Patch(0, MakeFLACHead(mInfoBytes, MaskToState(Request()), mPlaces));
    }

    StreamInfoBytes mInfoBytes = {};
    FLACStreamInfo mInfo;
    PacketPlaces mPlaces;
    SInt64 mFirstPacketAt = 0;
    UInt64 mFrames = 0;
    UInt32 mSmallestPacket = 0;  // bytes
    UInt32 mLargestPacket = 0;   // bytes
};

}  // namespace
}  // namespace streams

OSStatus MakeFLACWriter(const WriteRequest& inRequest, PacketWriterPtr& outWriter)
{
    const AudioStreamBasicDescription& format = inRequest.mFormat;
    constexpr double kHighestRate = (1 << 20) - 1;
    if (format.mFormatID != kAudioFormatFLAC || !(format.mSampleRate >= 1) ||
        format.mSampleRate > kHighestRate || format.mChannelsPerFrame < 1 ||
        format.mChannelsPerFrame > 8)
        return kAudioFileUnsupportedDataFormatError;
    outWriter = std::make_unique<streams::FLACWriter>(inRequest);
    return noErr;
}

}  // namespace audiotoolbox
