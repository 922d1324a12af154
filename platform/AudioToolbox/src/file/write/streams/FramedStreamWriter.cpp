#include "file/write/streams/FramedStreamWriter.h"

namespace audiotoolbox::streams
{

OSStatus FramedStreamWriter::Start(ByteSink& inSink, const StreamStart& inStart)
{
    mSink = &inSink;
    mStartStatus = Begin(inStart);
    return mStartStatus;
}

OSStatus FramedStreamWriter::AppendWhole(std::span<const UInt8> inPacket)
{
    if (inPacket.empty())
        return kAudio_ParamError;
    const SInt64 end = mSink->Size();
    const OSStatus status = AppendPacket(inPacket);
    if (status != noErr && mSink->Size() > end)
        (void)mSink->Truncate(end);  // the first failure is the one to tell
    return status;
}

OSStatus FramedStreamWriter::Write(std::span<const UInt8> inBytes,
                                   std::span<const AudioStreamPacketDescription> inPackets)
{
    if (mStartStatus != noErr)
        return mStartStatus;
    const UInt64 size = inBytes.size();
    for (const AudioStreamPacketDescription& packet : inPackets)
    {
        const UInt64 start = static_cast<UInt64>(packet.mStartOffset);
        if (packet.mStartOffset < 0 || start > size || packet.mDataByteSize > size - start)
            return kAudio_ParamError;
        if (mWriteStatus == noErr)
            mWriteStatus =
                AppendWhole(inBytes.subspan(static_cast<std::size_t>(start), packet.mDataByteSize));
    }
    // No stream here has packets of a constant size, so bytes without descriptions are none.
    if (inPackets.empty() && !inBytes.empty())
        return kAudio_ParamError;
    return mWriteStatus;
}

OSStatus FramedStreamWriter::Finish(const StreamEnd& inEnd)
{
    return mStartStatus == noErr ? Complete(inEnd) : mStartStatus;
}

}  // namespace audiotoolbox::streams
