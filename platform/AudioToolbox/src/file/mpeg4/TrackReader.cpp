#include "file/mpeg4/TrackReader.h"

#include "file/mpeg4/FrameHeaders.h"

#include <algorithm>
#include <span>
#include <utility>

namespace audiotoolbox::mpeg4
{

struct TrackReader::Request
{
    UInt8* mOut;
    UInt32 mBytes;    // room
    UInt32 mPackets;  // wanted
    AudioStreamPacketDescription* mDescriptions;
    UInt32 mBytesDone = 0;
    UInt32 mPacketsDone = 0;
};

namespace
{

// Of the packets up to inPackets those count that came whole; answers where they end.
UInt32 CountWhole(const AudioStreamPacketDescription* inPlaces, UInt32 inBytes, UInt32 inPackets,
                  UInt32& ioPacketsDone)
{
    for (; ioPacketsDone < inPackets; ++ioPacketsDone)
    {
        const AudioStreamPacketDescription& place = inPlaces[ioPacketsDone];
        if (place.mStartOffset + SInt64{place.mDataByteSize} > SInt64{inBytes})
            return static_cast<UInt32>(place.mStartOffset);
    }
    return inBytes;
}

}  // namespace

TrackReader::TrackReader(ByteSourcePtr inSource, FileFacts inFacts, PacketIndex inIndex)
    : mSource(std::move(inSource)), mIndex(std::move(inIndex)), mCursor(mIndex)
{
    mFacts = std::move(inFacts);
    mCursor.Seek(0);
}

OSStatus TrackReader::ReadPackets(SInt64 inStart, UInt32* ioBytes, UInt32* ioPackets,
                                  AudioStreamPacketDescription* outDescriptions, void* outBytes)
{
    Request request = {static_cast<UInt8*>(outBytes), *ioBytes, *ioPackets, outDescriptions};
    *ioBytes = 0;
    *ioPackets = 0;
    if (inStart < 0)
        return kAudio_ParamError;
    if (request.mPackets == 0)
        return noErr;
    if (outDescriptions == nullptr && mIndex.ConstantSize() == 0)
        return kAudio_ParamError;
    if (inStart >= SInt64{mIndex.Count()})
        return noErr;
    const UInt32 start = static_cast<UInt32>(inStart);
    if (mIndex.SizeOf(start) > request.mBytes)
        return kAudioFileBadPropertySizeError;
    if (mCursor.Packet() != start)
        mCursor.Seek(start);
    const OSStatus status =
        mIndex.ConstantSize() > 0 ? ReadConstant(request) : ReadVarying(request);
    if (status != noErr)
        return status;
    *ioBytes = request.mBytesDone;
    *ioPackets = request.mPacketsDone;
    return noErr;
}

// Whole stretches of neighbours. A file that became shorter since it was opened ends the audio.
OSStatus TrackReader::ReadVarying(Request& ioRequest)
{
    for (bool isWhole = true; isWhole && mCursor.Packet() < mIndex.Count();)
    {
        const UInt32 first = ioRequest.mPacketsDone;
        UInt32 bytes = ioRequest.mBytesDone;
        UInt32 packets = first;
        SInt64 offset = 0;
        const auto take = [&](UInt32 inSize)
        {
            if (packets == ioRequest.mPackets || inSize > ioRequest.mBytes - bytes)
                return false;
            ioRequest.mDescriptions[packets++] = {SInt64{bytes}, 0, inSize};
            bytes += inSize;
            return true;
        };
        mCursor.TakeStretch(offset, take);
        if (packets == first)
            return noErr;
        const OSStatus status = ReadStretch(offset, bytes, ioRequest, isWhole);
        if (status != noErr)
            return status;
        ioRequest.mBytesDone = CountWhole(ioRequest.mDescriptions, ioRequest.mBytesDone, packets,
                                          ioRequest.mPacketsDone);
        TellFrames(first, ioRequest);
    }
    return noErr;
}

// Fills the buffer up to inEnd; mBytesDone is then what really came.
OSStatus TrackReader::ReadStretch(SInt64 inOffset, UInt32 inEnd, Request& ioRequest,
                                  bool& outIsWhole)
{
    const UInt32 wanted = inEnd - ioRequest.mBytesDone;
    UInt32 came = 0;
    UInt8* place = ioRequest.mOut + ioRequest.mBytesDone;
    const OSStatus status = wanted == 0 ? noErr : mSource->ReadAt(inOffset, wanted, place, &came);
    outIsWhole = came == wanted;
    ioRequest.mBytesDone += came;
    return status;
}

void TrackReader::TellFrames(UInt32 inFirst, const Request& inRequest) const
{
    if (mFacts.mDataFormat.mFramesPerPacket != 0)
        return;
    const bool isOpus = mFacts.mDataFormat.mFormatID == kAudioFormatOpus;
    for (UInt32 packet = inFirst; packet < inRequest.mPacketsDone; ++packet)
    {
        AudioStreamPacketDescription& place = inRequest.mDescriptions[packet];
        const std::span<const UInt8> bytes(inRequest.mOut + place.mStartOffset,
                                           place.mDataByteSize);
        place.mVariableFramesInPacket =
            isOpus ? FramesOfOpusPacket(bytes) : FramesOfFLACPacket(bytes);
    }
}

OSStatus TrackReader::ReadConstant(Request& ioRequest)
{
    const UInt32 size = mIndex.ConstantSize();
    const UInt32 fitting = std::min(ioRequest.mPackets, ioRequest.mBytes / size);
    bool isWhole = true;
    while (isWhole && ioRequest.mPacketsDone < fitting && mCursor.Packet() < mIndex.Count())
    {
        const UInt32 packets = std::min(fitting - ioRequest.mPacketsDone, mCursor.PacketsInRun());
        const UInt32 end = ioRequest.mBytesDone + packets * size;
        const OSStatus status = ReadStretch(mCursor.Offset(), end, ioRequest, isWhole);
        if (status != noErr)
            return status;
        mCursor.AdvanceConstant(packets);
        ioRequest.mPacketsDone = ioRequest.mBytesDone / size;
        ioRequest.mBytesDone = ioRequest.mPacketsDone * size;
    }
    if (ioRequest.mDescriptions != nullptr)
        for (UInt32 packet = 0; packet < ioRequest.mPacketsDone; ++packet)
            ioRequest.mDescriptions[packet] = {SInt64{packet} * size, 0, size};
    return noErr;
}

}  // namespace audiotoolbox::mpeg4
