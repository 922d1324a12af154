#include "convert/InputPull.h"

#include <algorithm>

namespace audiotoolbox
{

void InputPull::Bind(AudioConverterRef inConverter, AudioConverterComplexInputDataProc inProc,
                     void* inUserData)
{
    mConverter = inConverter;
    mProc = inProc;
    mUserData = inUserData;
}

OSStatus InputPull::Pull(UInt32 inWantedPackets)
{
    if (PacketsLeft() > 0 || mHasEnded)
        return noErr;
    mIndex = mCount = 0;
    mIsKept = false;

    AudioBufferList list = {};
    list.mNumberBuffers = 1;
    AudioStreamPacketDescription* descriptions = nullptr;
    UInt32 packets = std::max<UInt32>(inWantedPackets, 1);
    const UInt32 asked = packets;
    const OSStatus status =
        mProc(mConverter, &packets, &list, mPacketBytes == 0 ? &descriptions : nullptr, mUserData);
    if (status != noErr)
        return status;
    return Accept(asked, packets, list.mBuffers[0], descriptions);
}

OSStatus InputPull::Accept(UInt32 inAsked, UInt32 inPackets, const AudioBuffer& inBuffer,
                           const AudioStreamPacketDescription* inDescriptions)
{
    mHasEnded = inPackets == 0;
    if (mHasEnded)
        return noErr;
    if (inBuffer.mData == nullptr)
        return kAudioConverterErr_InvalidInputSize;
    mBytes = static_cast<const UInt8*>(inBuffer.mData);
    if (mPacketBytes != 0)
        return AcceptConstant(inPackets, inBuffer.mDataByteSize);
    return AcceptDescribed(inAsked, inPackets, inBuffer.mDataByteSize, inDescriptions);
}

OSStatus InputPull::AcceptConstant(UInt32 inPackets, UInt32 inByteCount)
{
    const UInt32 whole = inByteCount / mPacketBytes;
    const UInt32 begun = whole + (inByteCount % mPacketBytes != 0 ? 1 : 0);
    if (inPackets > begun)
        return kAudioConverterErr_InvalidInputSize;
    mCount = std::min(inPackets, whole);  // a packet that is cut off is dropped
    mHasEnded = mCount == 0;
    return noErr;
}

OSStatus InputPull::AcceptDescribed(UInt32 inAsked, UInt32 inPackets, UInt32 inByteCount,
                                    const AudioStreamPacketDescription* inDescriptions)
{
    if (inDescriptions == nullptr)
        return kAudioConverterErr_RequiresPacketDescriptionsError;
    if (inPackets > inAsked)
        return kAudioConverterErr_InvalidInputSize;  // nobody tells how many are described
    for (UInt32 i = 0; i < inPackets; ++i)
    {
        const AudioStreamPacketDescription& packet = inDescriptions[i];
        if (packet.mStartOffset < 0 || packet.mStartOffset > inByteCount ||
            packet.mDataByteSize > inByteCount - packet.mStartOffset)
            return kAudioConverterErr_InvalidInputSize;
    }
    mDescriptions = inDescriptions;
    mCount = inPackets;
    return noErr;
}

InputPacket InputPull::Front() const
{
    if (mPacketBytes != 0)
        return {mBytes + std::size_t{mIndex} * mPacketBytes, mPacketBytes, 0};
    const AudioStreamPacketDescription& packet = mDescriptions[mIndex];
    return {mBytes + packet.mStartOffset, packet.mDataByteSize, packet.mVariableFramesInPacket};
}

void InputPull::KeepRest()
{
    if (PacketsLeft() == 0 || mIsKept)
        return;
    mIsKept = true;
    if (mPacketBytes == 0)
        return KeepDescribed();
    const UInt8* first = Front().mBytes;
    mKeptBytes.assign(first, first + std::size_t{PacketsLeft()} * mPacketBytes);
    mBytes = mKeptBytes.data();
    mCount = PacketsLeft();
    mIndex = 0;
}

void InputPull::KeepDescribed()
{
    std::vector<AudioStreamPacketDescription> kept(mDescriptions + mIndex, mDescriptions + mCount);
    mKeptBytes.clear();
    for (AudioStreamPacketDescription& packet : kept)
    {
        const UInt8* bytes = mBytes + packet.mStartOffset;
        packet.mStartOffset = static_cast<SInt64>(mKeptBytes.size());
        mKeptBytes.insert(mKeptBytes.end(), bytes, bytes + packet.mDataByteSize);
    }
    mKeptDescriptions.swap(kept);
    mBytes = mKeptBytes.data();
    mDescriptions = mKeptDescriptions.data();
    mCount = PacketsLeft();
    mIndex = 0;
}

void InputPull::Reset()
{
    mIndex = mCount = 0;
    mHasEnded = false;
}

}  // namespace audiotoolbox
