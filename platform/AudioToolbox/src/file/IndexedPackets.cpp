#include "file/IndexedPackets.h"

#include <utility>

namespace audiotoolbox
{

IndexedPackets::IndexedPackets(ByteSourcePtr inSource, FileFacts inFacts, PacketSizes inIndex)
    : mSource(std::move(inSource)), mIndex(std::move(inIndex))
{
    mFacts = std::move(inFacts);
}

OSStatus IndexedPackets::ReadPackets(SInt64 inStart, UInt32* ioBytes, UInt32* ioPackets,
                                     AudioStreamPacketDescription* outDescriptions, void* outBytes)
{
    const UInt32 room = std::exchange(*ioBytes, 0);
    const UInt32 wanted = std::exchange(*ioPackets, 0);
    if (inStart < 0)
        return kAudioFilePositionError;
    if (outDescriptions == nullptr)
        return kAudio_ParamError;
    if (wanted == 0 || inStart >= mIndex.Count())
        return noErr;
    if (mIndex.SizeOf(inStart) > room)
        return kAudioFileBadPropertySizeError;

    UInt32 bytes = 0;
    UInt32 packets = 0;
    while (packets < wanted && inStart + packets < mIndex.Count())
    {
        const UInt32 size = mIndex.SizeOf(inStart + packets);
        if (size > room - bytes)
            break;
        outDescriptions[packets] = {bytes, mIndex.FramesOf(inStart + packets), size};
        bytes += size;
        ++packets;
    }

    UInt32 got = 0;
    const OSStatus status =
        mSource->ReadAt(mFacts.mDataOffset + mIndex.OffsetOf(inStart), bytes, outBytes, &got);
    if (status != noErr)
        return status;
    // The file may have become shorter since it was opened.
    while (packets > 0 && bytes > got)
        bytes -= outDescriptions[--packets].mDataByteSize;
    *ioBytes = bytes;
    *ioPackets = packets;
    return noErr;
}

}  // namespace audiotoolbox
