// AC3: opening streams of AC-3 and E-AC-3.
//
// The first frame decides between the two. A packet of E-AC-3 is the independent frame of the first
// programme with the dependent frames behind it; further programmes are passed over. In a stream of
// AC-3, E-AC-3 frames that extend it are passed over too.
#include "file/streams/AC3Channels.h"
#include "file/streams/LossFinder.h"
#include "file/streams/StreamOpening.h"
#include "file/streams/Survey.h"

namespace audiotoolbox
{
namespace streams
{
namespace
{

constexpr UInt32 kLargestAC3Frame = 3840;
constexpr UInt32 kLargestEnhancedFrame = 4096;
constexpr UInt32 kMaxDependents = 8;

class AC3Framer final : public Framer
{
public:
    /// inDependents  how many dependent frames belong to a packet at the most
    AC3Framer(const AC3Header& inFirst, UInt32 inDependents)
        : mFirst(inFirst), mDependents(inDependents), mLosses(inFirst)
    {
    }

    bool FindPacket(StreamWindow& ioWindow, SInt64 inPosition, UInt64,
                    StreamPacket& outPacket) override
    {
        SInt64 position = inPosition;
        AC3Header header;
        if (!HasFrameAt(ioWindow, position, header) && mDependents == 0 &&
            mLosses.FindDamaged(ioWindow, position, outPacket))
            return true;
        while (FindFrame(ioWindow, position, header))
        {
            if (!header.LeadsPacket() || header.mIsEnhanced != mFirst.mIsEnhanced)
            {
                position += header.mByteCount;
                continue;
            }
            if (mDependents == 0 && !IsConfirmed<AC3Syntax>(ioWindow, position, header))
                header.mByteCount = mLosses.TrueSize(ioWindow, position, header);
            outPacket = PacketOf(position, header);
            return AddDependents(ioWindow, outPacket);
        }
        return false;
    }

private:
    bool HasFrameAt(StreamWindow& ioWindow, SInt64 inPosition, AC3Header& outHeader) const
    {
        return ReadFrame<AC3Syntax>(ioWindow, inPosition, outHeader) &&
               AC3Syntax::AreAlike(mFirst, outHeader);
    }

    bool FindFrame(StreamWindow& ioWindow, SInt64& ioPosition, AC3Header& outHeader) const
    {
        return HasFrameAt(ioWindow, ioPosition, outHeader) ||
               Resynchronise<AC3Syntax>(ioWindow, mFirst, ioPosition, outHeader);
    }

    // False when the data ends within the packet.
    bool AddDependents(StreamWindow& ioWindow, StreamPacket& ioPacket) const
    {
        for (UInt32 i = 0; i < mDependents; ++i)
        {
            AC3Header header;
            const SInt64 end = ioPacket.End();
            const auto bytes = ioWindow.Look(end, AC3Syntax::kHeaderBytes);
            if (bytes.size() < AC3Syntax::kHeaderBytes)
                return false;
            if (!AC3Syntax::Parse(bytes.data(), header) || !header.mIsDependent)
                return true;
            if (end + header.mByteCount > ioWindow.End())
                return false;
            ioPacket.mByteCount += header.mByteCount;
        }
        return true;
    }

    AC3Header mFirst;
    UInt32 mDependents;
    LossFinder<AC3Syntax> mLosses;
};

// The first packet's dependent frames: how many, and the channels that they add.
UInt32 CountDependents(StreamWindow& ioWindow, SInt64 inPosition, const AC3Header& inFirst,
                       AC3Speakers& ioSpeakers)
{
    UInt32 count = 0;
    AC3Header header;
    SInt64 position = inPosition + inFirst.mByteCount;
    while (inFirst.mIsEnhanced && count < kMaxDependents &&
           ReadFrame<AC3Syntax>(ioWindow, position, header) && header.mIsDependent)
    {
        ioSpeakers |= SpeakersOf(header);
        position += header.mByteCount;
        ++count;
    }
    return count;
}

OSStatus StatusWithoutFrames(Opening& ioOpening)
{
    const auto bytes = ioOpening.mWindow->Look(ioOpening.mStart, 2);
    const bool hasSync = bytes.size() >= 2 && bytes[0] == 0x0B && bytes[1] == 0x77;
    return hasSync ? kAudioFileInvalidFileError : kAudioFileUnsupportedFileTypeError;
}

// The first frame that begins a packet: a stream may be joined between frames of one.
bool FindLead(StreamWindow& ioWindow, SInt64& ioPosition, AC3Header& outHeader)
{
    if (!FindFirst<AC3Syntax>(ioWindow, ioPosition, outHeader))
        return false;
    const SInt64 limit = ioPosition + kSearchBytes;
    while (!outHeader.LeadsPacket() && ioPosition < limit)
    {
        ioPosition += outHeader.mByteCount;
        if (!ReadFrame<AC3Syntax>(ioWindow, ioPosition, outHeader))
            return false;
    }
    return outHeader.LeadsPacket();
}

OSStatus DescribeAC3(Opening& ioOpening)
{
    StreamWindow& window = *ioOpening.mWindow;
    FileFacts& facts = ioOpening.mFacts;
    AC3Header first;
    SInt64 position = ioOpening.mStart;
    if (!FindLead(window, position, first))
        return StatusWithoutFrames(ioOpening);

    AC3Speakers speakers = SpeakersOf(first);
    const UInt32 dependents = CountDependents(window, position, first, speakers);
    const bool isEnhanced = first.mIsEnhanced;
    facts.mFileType = isEnhanced ? kAudioFileEAC3Type : kAudioFileAC3Type;
    facts.mDataFormat =
        DescribeFormat(isEnhanced ? kAudioFormatEnhancedAC3 : kAudioFormatAC3, first.mSampleRate,
                       CountSpeakers(speakers), first.mFrameCount);
    facts.mChannelLayout = LayoutOfSpeakers(speakers);
    facts.mPacketSizeUpperBound =
        isEnhanced ? kLargestEnhancedFrame * (1 + dependents) : kLargestAC3Frame;
    SetDataRange(ioOpening, position);

    ioOpening.mFramer = std::make_unique<AC3Framer>(first, dependents);
    const Survey survey = SurveyPackets(*ioOpening.mFramer, window, position);
    if (survey.mPackets > 0)
        facts.mDataFormat.mFramesPerPacket = survey.mFramesPerPacket;
    CompleteStreamFacts(survey, facts);
    return noErr;
}

}  // namespace
}  // namespace streams

OSStatus OpenAC3(AudioFileTypeID inType, ByteSourcePtr& ioSource, PacketReaderPtr& outReader)
{
    return streams::OpenStream(inType, streams::DescribeAC3, ioSource, outReader);
}

}  // namespace audiotoolbox
