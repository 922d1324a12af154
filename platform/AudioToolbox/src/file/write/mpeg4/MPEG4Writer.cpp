// Writing files of the MPEG-4 family: the audio as one 'mdat', the head ('moov') behind it.
//
// In front of 'mdat' stands an empty box. Beyond 4 GiB its room makes the head of 'mdat' one with
// a size of 64 bits; below, it stays, since not every reader understands that form. Memory grows
// by the index of the packets only.
#include "file/write/PacketWriter.h"

#include "file/write/mpeg4/MovieHead.h"
#include "tables/Encoders.h"
#include "tables/WritableTypes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

namespace audiotoolbox
{
namespace mpeg4writer
{
namespace
{

using Packets = std::span<const AudioStreamPacketDescription>;

constexpr std::size_t kDataHeadBytes = 8;  // of 'mdat', as of the empty box in front of it

// The tables' boxes have sizes of 32 bits; this many packets stay well below.
constexpr UInt32 kMostPackets = UInt32{1} << 28;

// Packets that came with one call.
struct Batch
{
    std::span<const UInt8> mBytes;
    Packets mPackets;
    UInt32 mConstantBytes;  // of a packet, where there are no descriptions
    UInt32 mFramesPerPacket;

    std::size_t Count() const
    {
        return mPackets.empty() ? mBytes.size() / mConstantBytes : mPackets.size();
    }
    UInt32 BytesOf(std::size_t inPacket) const
    {
        return mPackets.empty() ? mConstantBytes : mPackets[inPacket].mDataByteSize;
    }
    UInt32 FramesOf(std::size_t inPacket) const
    {
        const UInt32 frames = mPackets.empty() ? 0 : mPackets[inPacket].mVariableFramesInPacket;
        return frames > 0 ? frames : mFramesPerPacket;
    }
    UInt64 BytesOfFirst(std::size_t inCount) const
    {
        UInt64 bytes = 0;
        for (std::size_t packet = 0; packet < inCount; ++packet)
            bytes += BytesOf(packet);
        return bytes;
    }
    /// The bytes are those of whole packets, all of them.
    bool IsWhole() const
    {
        if (mPackets.empty() && mConstantBytes == 0)
            return mBytes.empty();
        return BytesOfFirst(Count()) == mBytes.size();
    }
};

// 16 bytes, whatever the size.
void PutDataHead(UInt64 inDataBytes, BoxBuilder& ioBoxes)
{
    constexpr UInt32 kSizeBehindType = 1;
    const UInt64 size = kDataHeadBytes + inDataBytes;
    const bool isWide = size > std::numeric_limits<UInt32>::max();
    if (!isWide)
    {
        ioBoxes.Begin(CA_FOUR_CHAR_CODE('f', 'r', 'e', 'e'));
        ioBoxes.End();
    }
    ioBoxes.PutU32(isWide ? kSizeBehindType : static_cast<UInt32>(size));
    ioBoxes.PutU32(CA_FOUR_CHAR_CODE('m', 'd', 'a', 't'));
    if (isWide)
        ioBoxes.PutU64(size + kDataHeadBytes);
}

class MPEG4Writer : public PacketWriter
{
public:
    explicit MPEG4Writer(const WriteRequest& inRequest)
    {
        mFacts.mType = inRequest.mType;
        mFacts.mEntry.mFormat = inRequest.mFormat;
    }

    OSStatus Start(ByteSink& inSink, const StreamStart& inStart) override;
    OSStatus Write(std::span<const UInt8> inBytes, Packets inPackets) override;
    OSStatus Finish(const StreamEnd& inEnd) override;

private:
    const AudioStreamBasicDescription& Format() const { return mFacts.mEntry.mFormat; }
    SInt64 DataEnd() const { return mFacts.mDataStart + static_cast<SInt64>(mIndex.TotalBytes()); }

    OSStatus AppendFront();
    OSStatus AppendBatch(const Batch& inBatch);
    void KeepHead(const Batch& inBatch);
    OSStatus DropPartialPacket();
    OSStatus SettleFacts(const StreamEnd& inEnd);
    OSStatus PatchDataSize();

    MovieFacts mFacts;
    SampleIndex mIndex;
    ByteSink* mSink = nullptr;  // from the start on
    OSStatus mStatus = noErr;   // of the first write that failed: nothing follows it
};

OSStatus MPEG4Writer::Start(ByteSink& inSink, const StreamStart& inStart)
try
{
    if (const OSStatus status = TakeCookie(Format(), inStart.mCookie, mFacts.mEntry.mCookie);
        status != noErr)
        return status;
    mSink = &inSink;
    return mStatus = AppendFront();
}
catch (const std::bad_alloc&)
{
    return mStatus = kAudio_MemFullError;
}

OSStatus MPEG4Writer::AppendFront()
{
    BoxBuilder boxes;
    PutFileType(mFacts.mType, boxes);
    PutDataHead(0, boxes);
    mFacts.mDataStart = static_cast<SInt64>(boxes.Bytes().size());
    return mSink->Append(boxes.Bytes());
}

OSStatus MPEG4Writer::Write(std::span<const UInt8> inBytes, Packets inPackets)
try
{
    if (mSink == nullptr)
        return kAudioFileNotOpenError;
    if (mStatus != noErr)
        return mStatus;
    const Batch batch = {inBytes, inPackets, Format().mBytesPerPacket, Format().mFramesPerPacket};
    if (!batch.IsWhole())
        return kAudio_ParamError;
    return inBytes.empty() && inPackets.empty() ? OSStatus{noErr} : AppendBatch(batch);
}
catch (const std::bad_alloc&)
{
    return mStatus = kAudio_MemFullError;
}

OSStatus MPEG4Writer::AppendBatch(const Batch& inBatch)
{
    const std::size_t room = kMostPackets - mIndex.Count();
    const std::size_t count = std::min(inBatch.Count(), room);
    if (mIndex.Count() == 0)
        KeepHead(inBatch);
    mStatus = mSink->Append(inBatch.mBytes.first(inBatch.BytesOfFirst(count)));
    // Of a write that failed, the packets that are wholly in the file count.
    for (std::size_t packet = 0; packet < count; ++packet)
    {
        const UInt32 bytes = inBatch.BytesOf(packet);
        if (DataEnd() + SInt64{bytes} > mSink->Size())
            return mStatus;
        mIndex.Add(bytes, inBatch.FramesOf(packet));
    }
    if (mStatus == noErr && count < inBatch.Count())
        mStatus = kAudioFileDoesNotAllow64BitDataSizeError;
    return mStatus;
}

void MPEG4Writer::KeepHead(const Batch& inBatch)
{
    const std::size_t bytes = std::min<std::size_t>(inBatch.BytesOf(0), kPacketHeadBytes);
    std::copy_n(inBatch.mBytes.begin(), bytes, mFacts.mEntry.mPacketHead.begin());
}

OSStatus MPEG4Writer::Finish(const StreamEnd& inEnd)
try
{
    if (mSink == nullptr)
        return kAudioFileNotOpenError;
    if (mSink->Size() < mFacts.mDataStart)
        return mStatus;  // there was no room for the front, so there is no file
    OSStatus status = SettleFacts(inEnd);
    if (status == noErr)
        status = DropPartialPacket();
    if (status == noErr)
        status = PatchDataSize();
    return status == noErr ? AppendMovie(mFacts, mIndex, *mSink) : status;
}
catch (const std::bad_alloc&)
{
    return kAudio_MemFullError;
}

OSStatus MPEG4Writer::DropPartialPacket()
{
    return mSink->Size() > DataEnd() ? mSink->Truncate(DataEnd()) : OSStatus{noErr};
}

// The encoder counts what went into it; no more than what was written can be in the file.
OSStatus MPEG4Writer::SettleFacts(const StreamEnd& inEnd)
{
    EntryFacts& entry = mFacts.mEntry;
    const UInt32 rate = static_cast<UInt32>(Format().mSampleRate);
    const UInt64 frames = mIndex.TotalFrames();
    mFacts.mPriming = std::min<UInt64>(inEnd.mPrimingFrames, frames);
    mFacts.mValid = std::min(static_cast<UInt64>(std::max<SInt64>(inEnd.mValidFrames, 0)),
                             frames - mFacts.mPriming);
    entry.mLargestPacket = mIndex.LargestSize();
    entry.mAverageBitRate = AverageBitRate(mIndex, rate);
    entry.mPeakBitRate = PeakBitRate(mIndex, rate);
    return inEnd.mCookie.empty() ? OSStatus{noErr}
                                 : TakeCookie(Format(), inEnd.mCookie, entry.mCookie);
}

OSStatus MPEG4Writer::PatchDataSize()
{
    BoxBuilder head;
    PutDataHead(mIndex.TotalBytes(), head);
    const SInt64 place = mFacts.mDataStart - static_cast<SInt64>(head.Bytes().size());
    return mSink->Patch(place, head.Bytes());
}

// Ticks are frames, so the rate is a whole number; and what the encoder's row does not take, no
// packet can hold.
bool CanDescribe(const WriteRequest& inRequest)
{
    const AudioStreamBasicDescription& format = inRequest.mFormat;
    const EncoderRow* encoder = FindEncoder(format.mFormatID);
    const double rate = format.mSampleRate;
    return HasBrands(inRequest.mType) && CanWrite(inRequest.mType, format.mFormatID) &&
           encoder != nullptr && TakesChannels(*encoder, format.mChannelsPerFrame) && rate >= 1.0 &&
           rate <= std::numeric_limits<UInt32>::max() && std::floor(rate) == rate &&
           TakesRate(*encoder, static_cast<UInt32>(rate)) && format.mFramesPerPacket > 0;
}

}  // namespace
}  // namespace mpeg4writer

OSStatus MakeMPEG4Writer(const WriteRequest& inRequest, PacketWriterPtr& outWriter)
{
    if (!mpeg4writer::CanDescribe(inRequest))
        return kAudioFileUnsupportedDataFormatError;
    try
    {
        outWriter = std::make_unique<mpeg4writer::MPEG4Writer>(inRequest);
    }
    catch (const std::bad_alloc&)
    {
        return kAudio_MemFullError;
    }
    return noErr;
}

}  // namespace audiotoolbox
