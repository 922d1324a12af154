// MPEGAudio: opening streams of MPEG audio, layers 1 to 3.
//
// The file type follows the layer of the first frame, whatever type was asked for. Free format is
// refused ('fmt?').
#include "file/ChannelLayouts.h"
#include "file/FactArithmetic.h"
#include "file/streams/MPEGLengthTag.h"
#include "file/streams/StreamOpening.h"
#include "file/streams/Survey.h"
#include "file/streams/SyncFramer.h"

#include <algorithm>

namespace audiotoolbox
{
namespace streams
{
namespace
{

// Frames that a layer 3 decoder itself is late by.
constexpr SInt64 kDecoderDelay = 529;

struct Layer
{
    AudioFileTypeID mFileType;
    AudioFormatID mFormat;
};
constexpr Layer kLayers[] = {{kAudioFileMP1Type, kAudioFormatMPEGLayer1},
                             {kAudioFileMP2Type, kAudioFormatMPEGLayer2},
                             {kAudioFileMP3Type, kAudioFormatMPEGLayer3}};

OSStatus StatusWithoutFrames(Opening& ioOpening)
{
    const auto bytes = ioOpening.mWindow->Look(ioOpening.mStart, MPEGSyntax::kHeaderBytes);
    if (bytes.size() >= MPEGSyntax::kHeaderBytes && IsFreeFormat(bytes.data()))
        return kAudioFileUnsupportedDataFormatError;
    const bool hasSync = bytes.size() >= 2 && bytes[0] == 0xFF && (bytes[1] & 0xE0) == 0xE0;
    return hasSync ? kAudioFileInvalidFileError : kAudioFileUnsupportedFileTypeError;
}

std::optional<MPEGLengthTag> TagAt(StreamWindow& ioWindow, SInt64 inPosition,
                                   const MPEGHeader& inHeader)
{
    const auto bytes = ioWindow.Look(inPosition, inHeader.mByteCount);
    if (bytes.size() < inHeader.mByteCount)
        return std::nullopt;
    return ReadLengthTag(inHeader, bytes.first(inHeader.mByteCount));
}

// A count of which the file could not hold the smallest frames is damaged.
bool IsCredible(UInt32 inPackets, const MPEGHeader& inHeader, SInt64 inByteCount)
{
    constexpr UInt32 kLowestRate[] = {32000, 8000, 8000};
    const UInt64 smallest =
        UInt64{inHeader.mFrameCount} / 8 * kLowestRate[inHeader.mHalvings] / inHeader.mSampleRate;
    return inPackets * smallest <= static_cast<UInt64>(inByteCount);
}

// How the stream's length compares with what its tag says. Tags stay when a stream is cut or
// another one is joined to it; a few bytes of difference are no sign of either.
enum class Length
{
    kShorter,
    kAsStated,
    kLonger
};

Length CompareLength(const MPEGLengthTag& inTag, const MPEGHeader& inTagHeader,
                     const Survey& inSurvey, const FileFacts& inFacts)
{
    if (inSurvey.mIsWhole && inSurvey.mPackets != *inTag.mPackets)
        return inSurvey.mPackets < *inTag.mPackets ? Length::kShorter : Length::kLonger;
    if (inSurvey.mIsWhole || !inTag.mBytes)
        return Length::kAsStated;
    const SInt64 stated = *inTag.mBytes;
    const SInt64 held = inFacts.mDataByteCount + inTagHeader.mByteCount;
    const SInt64 slack = inFacts.mPacketSizeUpperBound;
    if (held + slack < stated)
        return Length::kShorter;
    return held > stated + stated / 16 + slack ? Length::kLonger : Length::kAsStated;
}

void TakeTableFromTag(const MPEGLengthTag& inTag, UInt32 inPackets, FileFacts& ioFacts)
{
    const SInt64 frames = SInt64{inPackets} * ioFacts.mDataFormat.mFramesPerPacket;
    const SInt64 priming = inTag.mDelay + kDecoderDelay;
    const SInt64 valid = frames - inTag.mDelay - inTag.mPadding;
    if (inTag.mHasDelays && valid > 0)
        ioFacts.mPacketTable = MakePacketTable(static_cast<UInt64>(frames), priming, valid);
}

// The tag's numbers as far as they agree with the file. Of a stream that was cut, the table still
// tells how many frames to leave out in front; that of one part of a longer stream would end it
// early.
void TakeLengthFromTag(const MPEGLengthTag& inTag, const MPEGHeader& inTagHeader,
                       const Survey& inSurvey, FileFacts& ioFacts)
{
    const SInt64 bytes = std::max<SInt64>(ioFacts.mDataByteCount, inTag.mBytes.value_or(0));
    if (!inTag.mPackets || *inTag.mPackets == 0 || !IsCredible(*inTag.mPackets, inTagHeader, bytes))
        return CompleteStreamFacts(inSurvey, ioFacts);
    const Length length = CompareLength(inTag, inTagHeader, inSurvey, ioFacts);
    if (length != Length::kLonger)
        TakeTableFromTag(inTag, *inTag.mPackets, ioFacts);
    if (length == Length::kAsStated)
        ioFacts.mPacketCount = *inTag.mPackets;
    CompleteStreamFacts(inSurvey, ioFacts);
    if (length != Length::kAsStated)
        EstimateLength(inSurvey, ioFacts);
    else if (inTag.mIsConstantRate && inSurvey.mBitRate > 0)
        ioFacts.mBitRate = inSurvey.mBitRate;
}

void DescribeLayer(const MPEGHeader& inHeader, FileFacts& ioFacts)
{
    const Layer& layer = kLayers[inHeader.mLayer - 1];
    ioFacts.mFileType = layer.mFileType;
    ioFacts.mDataFormat = DescribeFormat(layer.mFormat, inHeader.mSampleRate, inHeader.mChannels,
                                         inHeader.mFrameCount);
    ioFacts.mChannelLayout = MonoOrStereo(inHeader.mChannels);
    ioFacts.mPacketSizeUpperBound = LargestMPEGFrame(inHeader);
}

OSStatus DescribeMPEG(Opening& ioOpening)
{
    StreamWindow& window = *ioOpening.mWindow;
    MPEGHeader first;
    SInt64 position = ioOpening.mStart;
    if (!FindFirst<MPEGSyntax>(window, position, first))
        return StatusWithoutFrames(ioOpening);

    const MPEGHeader tagHeader = first;
    const auto tag = TagAt(window, position, first);
    if (tag)
    {
        position += first.mByteCount;
        MPEGHeader audio;  // the tag's frame may have other channels and another bit rate
        if (ReadFrame<MPEGSyntax>(window, position, audio) && MPEGSyntax::AreAlike(first, audio))
            first = audio;
    }
    DescribeLayer(first, ioOpening.mFacts);
    SetDataRange(ioOpening, position);
    ioOpening.mFramer = std::make_unique<SyncFramer<MPEGSyntax>>(first);
    const Survey survey = SurveyPackets(*ioOpening.mFramer, window, position);
    if (tag)
        TakeLengthFromTag(*tag, tagHeader, survey, ioOpening.mFacts);
    else
        CompleteStreamFacts(survey, ioOpening.mFacts);
    return noErr;
}

}  // namespace
}  // namespace streams

OSStatus OpenMPEGAudio(AudioFileTypeID inType, ByteSourcePtr& ioSource, PacketReaderPtr& outReader)
{
    return streams::OpenStream(inType, streams::DescribeMPEG, ioSource, outReader);
}

}  // namespace audiotoolbox
