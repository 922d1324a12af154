#include "file/ConstantPackets.h"

#include <algorithm>
#include <utility>

namespace audiotoolbox
{

ConstantPackets::ConstantPackets(ByteSourcePtr inSource, FileFacts inFacts)
    : mSource(std::move(inSource))
{
    mFacts = std::move(inFacts);
}

OSStatus ConstantPackets::ReadPackets(SInt64 inStart, UInt32* ioBytes, UInt32* ioPackets,
                                      AudioStreamPacketDescription* outDescriptions, void* outBytes)
{
    const UInt32 room = std::exchange(*ioBytes, 0);
    const UInt32 wanted = std::exchange(*ioPackets, 0);
    const UInt32 size = mFacts.mDataFormat.mBytesPerPacket;
    const SInt64 count = static_cast<SInt64>(mFacts.mPacketCount.value_or(0));
    if (inStart < 0)
        return kAudioFilePositionError;
    if (inStart >= count || wanted == 0)
        return noErr;
    if (room < size)
        return kAudioFileBadPropertySizeError;

    const SInt64 packets = std::min<SInt64>({wanted, room / size, count - inStart});
    UInt32 got = 0;
    const OSStatus status = mSource->ReadAt(mFacts.mDataOffset + inStart * size,
                                            static_cast<UInt32>(packets) * size, outBytes, &got);
    if (status != noErr)
        return status;

    *ioPackets = got / size;
    *ioBytes = *ioPackets * size;
    if (outDescriptions != nullptr)
        for (UInt32 i = 0; i < *ioPackets; ++i)
            outDescriptions[i] = {SInt64{i} * size, 0, size};
    return noErr;
}

}  // namespace audiotoolbox
