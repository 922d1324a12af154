// FLAC: opening native FLAC files.
#include "file/ChannelLayouts.h"
#include "file/FactArithmetic.h"
#include "file/streams/FLACFramer.h"
#include "file/streams/FLACMetadata.h"
#include "file/streams/StreamOpening.h"
#include "file/streams/Survey.h"

#include <algorithm>
#include <bit>

namespace audiotoolbox
{
namespace streams
{
namespace
{

constexpr UInt32 kSmallestFLACFrame = 10;  // bytes: header, one constant channel, checksum

// The format's own layouts by channel count, as WAVE masks.
constexpr AudioChannelBitmap kStandardMasks[] = {0, 0x4, 0x3, 0x7, 0x33, 0x37, 0x3F, 0x70F, 0x63F};
constexpr AudioChannelBitmap kKnownSpeakers = 0x3FFFF;

struct DepthFlag
{
    UInt32 mBits;
    AudioFormatFlags mFlag;
};
constexpr DepthFlag kDepthFlags[] = {{16, kAppleLosslessFormatFlag_16BitSourceData},
                                     {20, kAppleLosslessFormatFlag_20BitSourceData},
                                     {24, kAppleLosslessFormatFlag_24BitSourceData},
                                     {32, kAppleLosslessFormatFlag_32BitSourceData}};

AudioFormatFlags FlagOfDepth(UInt32 inBits)
{
    for (const DepthFlag& row : kDepthFlags)
        if (row.mBits == inBits)
            return row.mFlag;
    return 0;
}

std::vector<UInt8> LayoutOfMask(AudioChannelBitmap inMask, UInt32 inChannels)
{
    const bool isUsable =
        static_cast<UInt32>(std::popcount(inMask)) == inChannels && (inMask & ~kKnownSpeakers) == 0;
    const AudioChannelBitmap mask = isUsable ? inMask : kStandardMasks[inChannels];
    const bool isPlain = inChannels <= 2 && mask == kStandardMasks[inChannels];
    return isPlain ? MonoOrStereo(inChannels) : LayoutOfBitmap(mask);
}

void DescribeInfo(const FLACMetadata& inMetadata, FileFacts& ioFacts)
{
    const FLACStreamInfo& info = inMetadata.mStreamInfo;
    ioFacts.mFileType = kAudioFileFLACType;
    ioFacts.mDataFormat = DescribeFormat(kAudioFormatFLAC, info.mSampleRate, info.mChannels,
                                         info.HasConstantBlocks() ? info.mLargestBlock : 0);
    ioFacts.mDataFormat.mFormatFlags = FlagOfDepth(info.mBits);
    ioFacts.mChannelLayout = LayoutOfMask(inMetadata.mChannelMask, info.mChannels);
    ioFacts.mCookie.assign(inMetadata.mStreamInfoBytes.begin(), inMetadata.mStreamInfoBytes.end());
    ioFacts.mPacketSizeUpperBound = LargestFLACFrame(info);
}

// Moves ioPosition on to the first header that agrees with the stream's description.
bool FindFirstHeader(StreamWindow& ioWindow, const FLACStreamInfo& inInfo, SInt64& ioPosition,
                     FLACHeader& outHeader)
{
    const auto bytes = ioWindow.Look(ioPosition, kSearchBytes);
    for (std::size_t at = FindFLACSync(bytes, 0); at < bytes.size();
         at = FindFLACSync(bytes, at + 1))
        if (ParseFLACHeader(bytes.subspan(at), inInfo, outHeader) &&
            outHeader.mChannels == inInfo.mChannels && outHeader.mBits == inInfo.mBits &&
            outHeader.mBlock <= inInfo.mLargestBlock)
        {
            ioPosition += static_cast<SInt64>(at);
            return true;
        }
    return false;
}

// Packets of the stated length; 0 when packets differ in length.
UInt64 StatedPackets(const FLACStreamInfo& inInfo)
{
    return inInfo.HasConstantBlocks()
               ? (inInfo.mAllFrames + inInfo.mLargestBlock - 1) / inInfo.mLargestBlock
               : 0;
}

// False for a length that is unknown or that the file cannot hold.
bool IsLengthCredible(const FLACStreamInfo& inInfo, const Survey& inSurvey, SInt64 inByteCount)
{
    if (inInfo.mAllFrames == 0)
        return false;
    if (inSurvey.mIsWhole)
        return inSurvey.mFrames == inInfo.mAllFrames;
    const UInt64 packets = (inInfo.mAllFrames - 1) / inInfo.mLargestBlock;  // full ones
    const UInt64 smallest = std::max(inInfo.mSmallestPacket, kSmallestFLACFrame);
    return packets * smallest <= static_cast<UInt64>(inByteCount);
}

void TakeLength(const FLACStreamInfo& inInfo, FileFacts& ioFacts)
{
    if (const UInt64 packets = StatedPackets(inInfo); packets > 0)
    {
        ioFacts.mPacketCount = packets;
        ioFacts.mPacketTable = MakePacketTable(packets * inInfo.mLargestBlock, 0,
                                               static_cast<SInt64>(inInfo.mAllFrames));
    }
    CompleteFacts(ioFacts);
    ioFacts.mEstimatedDuration = DurationOfFrames(inInfo.mAllFrames, inInfo.mSampleRate);
    ioFacts.mBitRate = AverageBitRate(ioFacts.mDataByteCount, ioFacts.mEstimatedDuration);
}

void DescribeLength(Opening& ioOpening, const FLACStreamInfo& inInfo)
{
    FileFacts& facts = ioOpening.mFacts;
    // A stated length saves the survey, unless the file is so small that it costs nothing.
    Survey survey;
    if (inInfo.mAllFrames == 0 || facts.mDataByteCount <= kSearchBytes)
        survey = SurveyPackets(*ioOpening.mFramer, *ioOpening.mWindow, facts.mDataOffset);
    if (IsLengthCredible(inInfo, survey, facts.mDataByteCount))
        return TakeLength(inInfo, facts);
    if (survey.mPackets == 0)
        survey = SurveyPackets(*ioOpening.mFramer, *ioOpening.mWindow, facts.mDataOffset);
    CompleteStreamFacts(survey, facts);
}

OSStatus DescribeFLAC(Opening& ioOpening)
{
    StreamWindow& window = *ioOpening.mWindow;
    FLACMetadata metadata;
    const OSStatus status = ReadFLACMetadata(window, ioOpening.mStart, metadata);
    if (status != noErr)
        return status;
    const FLACStreamInfo& info = metadata.mStreamInfo;
    FLACHeader first;
    SInt64 position = metadata.mEnd;
    const bool hasFrames = FindFirstHeader(window, info, position, first);
    // A file that was cut behind its metadata is in order and empty.
    if (!hasFrames && window.End() - position >= static_cast<SInt64>(FLACHeader::kLongest))
        return kAudioFileInvalidFileError;
    DescribeInfo(metadata, ioOpening.mFacts);
    SetDataRange(ioOpening, position);
    ioOpening.mFramer = std::make_unique<FLACFramer>(info, first);
    DescribeLength(ioOpening, info);
    return noErr;
}

}  // namespace
}  // namespace streams

OSStatus OpenFLAC(AudioFileTypeID inType, ByteSourcePtr& ioSource, PacketReaderPtr& outReader)
{
    return streams::OpenStream(inType, streams::DescribeFLAC, ioSource, outReader);
}

}  // namespace audiotoolbox
