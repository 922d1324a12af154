#include "file/streams/StreamReader.h"

#include <cstring>
#include <new>
#include <utility>

namespace audiotoolbox::streams
{

// One call's room and what has come so far.
struct StreamReader::Delivery
{
    UInt32 mRoom;
    UInt32 mWanted;
    AudioStreamPacketDescription* mDescriptions;
    UInt8* mPlace;
    UInt32 mBytes = 0;
    UInt32 mPackets = 0;
};

StreamReader::StreamReader(ByteSourcePtr& ioSource, std::unique_ptr<StreamWindow> inWindow,
                           std::unique_ptr<Framer> inFramer, FileFacts inFacts)
    : mWindow(std::move(inWindow)),
      mFramer(std::move(inFramer)),
      mIndex(inFacts.mDataOffset),
      mNextPosition(inFacts.mDataOffset)
{
    mFacts = std::move(inFacts);
    mSource = std::move(ioSource);
}

// False at the end of the stream or after a failed read.
bool StreamReader::Locate()
{
    if (mHasFound)
        return true;
    if (mNextPacket >= mPacketsInStream)
        return false;
    mHasFound = mFramer->FindPacket(*mWindow, mNextPosition, mNextPacket, mFound);
    if (!mHasFound && mWindow->Status() == noErr)
        mPacketsInStream = mNextPacket;
    return mHasFound;
}

void StreamReader::StepOver()
{
    mNextPosition = mFound.End();
    ++mNextPacket;
    mHasFound = false;
    mIndex.Note(mNextPacket, mNextPosition);
}

bool StreamReader::GoTo(UInt64 inPacket)
{
    if (inPacket >= mPacketsInStream)
        return false;
    const WalkIndex::Entry entry = mIndex.Before(inPacket);
    if (inPacket < mNextPacket || entry.mPacket > mNextPacket)
    {
        mNextPacket = entry.mPacket;
        mNextPosition = entry.mPosition;
        mHasFound = false;
    }
    while (mNextPacket < inPacket && Locate())
        StepOver();
    return mNextPacket == inPacket;
}

OSStatus StreamReader::Deliver(Delivery& ioDelivery)
{
    while (ioDelivery.mPackets < ioDelivery.mWanted && Locate())
    {
        const UInt32 size = mFound.mByteCount;
        if (size > ioDelivery.mRoom - ioDelivery.mBytes)
            return ioDelivery.mPackets > 0 ? OSStatus{noErr} : kAudioFileBadPropertySizeError;
        const auto bytes = mWindow->Look(mFound.mPosition, size);
        if (bytes.size() < size)
        {
            mHasFound = false;
            if (mWindow->Status() == noErr)  // the file has become shorter
                mPacketsInStream = mNextPacket;
            break;
        }
        std::memcpy(ioDelivery.mPlace + ioDelivery.mBytes, bytes.data(), size);
        AudioStreamPacketDescription& description = ioDelivery.mDescriptions[ioDelivery.mPackets];
        description.mStartOffset = ioDelivery.mBytes;
        description.mVariableFramesInPacket =
            mFacts.mDataFormat.mFramesPerPacket == 0 ? mFound.mFrameCount : 0;
        description.mDataByteSize = size;
        ioDelivery.mBytes += size;
        ++ioDelivery.mPackets;
        StepOver();
    }
    // What came before a failing read is whole; the failure shows when it is met again.
    return ioDelivery.mPackets > 0 ? OSStatus{noErr} : mWindow->Status();
}

OSStatus StreamReader::ReadPackets(SInt64 inStart, UInt32* ioBytes, UInt32* ioPackets,
                                   AudioStreamPacketDescription* outDescriptions, void* outBytes)
{
    Delivery delivery{std::exchange(*ioBytes, 0), std::exchange(*ioPackets, 0), outDescriptions,
                      static_cast<UInt8*>(outBytes)};
    if (outDescriptions == nullptr || outBytes == nullptr)
        return kAudio_ParamError;
    if (inStart < 0)
        return kAudioFileInvalidPacketOffsetError;
    mWindow->ForgetFailure();
    try
    {
        if (!GoTo(static_cast<UInt64>(inStart)))
            return mWindow->Status();
        const OSStatus status = Deliver(delivery);
        if (status == noErr)
        {
            *ioBytes = delivery.mBytes;
            *ioPackets = delivery.mPackets;
        }
        return status;
    }
    catch (const std::bad_alloc&)
    {
        return kAudio_MemFullError;
    }
}

}  // namespace audiotoolbox::streams
