#include "file/streams/LOASReader.h"

#include "file/streams/LOASHeader.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace audiotoolbox::streams
{

LOASReader::LOASReader(PacketReaderPtr inElements)
    : mElements(std::move(inElements)),
      mFrame(LOASSyntax::kHeaderBytes + kLargestLOASElement),
      mPacket(kLargestLOASElement)
{
    mFacts = mElements->Facts();
}

// Fills mPacket; mPacketBytes is 0 behind the last packet.
OSStatus LOASReader::Hold(SInt64 inPacket)
{
    if (mHeld == inPacket)
        return noErr;
    mHeld = -1;
    UInt32 bytes = static_cast<UInt32>(mFrame.size());
    UInt32 count = 1;
    AudioStreamPacketDescription description = {};
    if (const OSStatus status =
            mElements->ReadPackets(inPacket, &bytes, &count, &description, mFrame.data());
        status != noErr)
        return status;
    mPacketBytes = 0;
    if (count == 0)
        return noErr;

    // Bytes in the place of a lost element may be as few as one.
    const std::size_t head = std::min<std::size_t>(LOASSyntax::kHeaderBytes, bytes - 1);
    const auto element = std::span(mFrame).first(bytes).subspan(head);
    LOASElement parsed;
    const bool isWhole = ParseLOASElement(element, parsed, nullptr) && parsed.mIsUnderstood;
    if (isWhole)
        CopyLOASPayload(element, parsed, mPacket.data());
    else
        std::copy(element.begin(), element.end(), mPacket.begin());
    mPacketBytes = static_cast<UInt32>(isWhole ? parsed.mPayloadBytes : element.size());
    mHeld = inPacket;
    return noErr;
}

OSStatus LOASReader::ReadPackets(SInt64 inStart, UInt32* ioBytes, UInt32* ioPackets,
                                 AudioStreamPacketDescription* outDescriptions, void* outBytes)
{
    const UInt32 room = std::exchange(*ioBytes, 0);
    const UInt32 wanted = std::exchange(*ioPackets, 0);
    if (outDescriptions == nullptr || outBytes == nullptr)
        return kAudio_ParamError;
    if (inStart < 0)
        return kAudioFileInvalidPacketOffsetError;
    UInt32 bytes = 0;
    UInt32 count = 0;
    OSStatus status = noErr;
    for (; count < wanted; ++count)
    {
        status = Hold(inStart + count);
        if (status != noErr || mPacketBytes == 0)
            break;
        if (mPacketBytes > room - bytes)
        {
            status = kAudioFileBadPropertySizeError;
            break;
        }
        std::memcpy(static_cast<UInt8*>(outBytes) + bytes, mPacket.data(), mPacketBytes);
        outDescriptions[count] = {SInt64{bytes}, 0, mPacketBytes};
        bytes += mPacketBytes;
    }
    // What came before a failure is whole; the failure shows when it is met again.
    *ioBytes = bytes;
    *ioPackets = count;
    return count > 0 ? OSStatus{noErr} : status;
}

}  // namespace audiotoolbox::streams
