#include "file/write/chunked/ChunkedWriter.h"

#include <algorithm>
#include <limits>

namespace audiotoolbox
{

ChunkedWriter::ChunkedWriter(UInt32 inPacketBytes, UInt32 inFramesPerPacket)
    : mPacketBytes(inPacketBytes), mFramesPerPacket(inFramesPerPacket)
{
}

SInt64 ChunkedWriter::MostAudioBytes(SInt64 inHeaderBytes) const
{
    // Room for a tail, so that no sum of sizes overflows.
    return std::numeric_limits<SInt64>::max() / 2 - inHeaderBytes;
}

OSStatus ChunkedWriter::Start(ByteSink& inSink, const StreamStart& inStart)
{
    if (mSink != nullptr)
        return kAudioFileOperationNotSupportedError;
    if (const OSStatus status = TakeStart(inStart); status != noErr)
        return status;
    const std::vector<UInt8> header = MakeHeader(mAudio);
    if (const OSStatus status = inSink.Append(header); status != noErr)
        return status;
    mHeaderBytes = static_cast<SInt64>(header.size());
    mSink = &inSink;
    return noErr;
}

OSStatus ChunkedWriter::Write(std::span<const UInt8> inBytes,
                              std::span<const AudioStreamPacketDescription> inPackets)
{
    if (mSink == nullptr)
        return kAudioFileNotOpenError;
    if (!AreWholePackets(inBytes, inPackets))
        return kAudio_ParamError;
    if (const OSStatus status = CutBrokenPacket(); status != noErr)
        return status;
    const std::span<const UInt8> fitting = inBytes.first(CountFitting(inBytes.size()));
    if (!fitting.empty())
    {
        const OSStatus status = mSink->Append(fitting);
        Keep(mSink->Size() - End(), inPackets);
        if (status != noErr)
            return status;
    }
    return fitting.size() == inBytes.size() ? OSStatus{noErr}
                                            : kAudioFileDoesNotAllow64BitDataSizeError;
}

// A tail or a header that fails still leaves the other one to be right.
OSStatus ChunkedWriter::Finish(const StreamEnd& inEnd)
{
    if (mSink == nullptr)
        return kAudioFileNotOpenError;
    TakeEnd(inEnd);
    CountFrames(inEnd);
    const OSStatus cut = CutBrokenPacket();
    const OSStatus tail = cut == noErr ? AppendTail(*mSink, mAudio) : cut;
    const OSStatus header = mSink->Patch(0, MakeHeader(mAudio));
    return tail != noErr ? tail : header;
}

bool ChunkedWriter::AreWholePackets(std::span<const UInt8> inBytes,
                                    std::span<const AudioStreamPacketDescription> inPackets) const
{
    if (mPacketBytes > 0)
        return inBytes.size() % mPacketBytes == 0;
    UInt64 described = 0;
    for (const AudioStreamPacketDescription& packet : inPackets)
        described += packet.mDataByteSize;
    return described == inBytes.size();
}

// Only containers of constant packets have a bound that can be met.
std::size_t ChunkedWriter::CountFitting(std::size_t inBytes) const
{
    const SInt64 left = std::max<SInt64>(MostAudioBytes(mHeaderBytes) - mAudio.mBytes, 0);
    if (static_cast<UInt64>(left) >= inBytes)
        return inBytes;
    const auto fitting = static_cast<std::size_t>(left);
    return mPacketBytes > 0 ? fitting - fitting % mPacketBytes : 0;
}

// A write that failed may have left the first bytes of a packet.
OSStatus ChunkedWriter::CutBrokenPacket()
{
    return mSink->Size() > End() ? mSink->Truncate(End()) : OSStatus{noErr};
}

void ChunkedWriter::Keep(SInt64 inBytes, std::span<const AudioStreamPacketDescription> inPackets)
{
    if (mPacketBytes > 0)
    {
        const SInt64 packets = std::max<SInt64>(inBytes, 0) / mPacketBytes;
        mAudio.mBytes += packets * mPacketBytes;
        mAudio.mPackets += static_cast<UInt64>(packets);
        return;
    }
    for (const AudioStreamPacketDescription& packet : inPackets)
    {
        inBytes -= packet.mDataByteSize;
        if (inBytes < 0)
            return;
        mAudio.mBytes += packet.mDataByteSize;
        ++mAudio.mPackets;
        KeepPacket(packet.mDataByteSize);
    }
}

void ChunkedWriter::CountFrames(const StreamEnd& inEnd)
{
    mAudio.mFrames = mAudio.mPackets * mFramesPerPacket;
    mAudio.mPrimingFrames = std::min<UInt64>(inEnd.mPrimingFrames, mAudio.mFrames);
    const UInt64 held = mAudio.mFrames - mAudio.mPrimingFrames;
    const auto told = static_cast<UInt64>(std::max<SInt64>(inEnd.mValidFrames, 0));
    mAudio.mValidFrames = mFramesPerPacket == 1 ? held : std::min(told, held);
}

OSStatus AppendPadding(ByteSink& ioSink, SInt64 inBytes, UInt32 inAlignment)
{
    constexpr UInt8 kZeros[8] = {};
    const auto past = static_cast<std::size_t>(inBytes % inAlignment);
    return past == 0 ? OSStatus{noErr}
                     : ioSink.Append(std::span<const UInt8>(kZeros).first(inAlignment - past));
}

}  // namespace audiotoolbox
