// ADTS: opening streams of raw AAC.
//
// Packets keep their headers, so there is no cookie. Headers never tell of spectral band
// replication, which encoders use up to a core rate of 24 kHz; only there is the decoder asked.
#include "convert/AACProbe.h"
#include "file/streams/ADTSHeader.h"
#include "file/streams/StreamOpening.h"
#include "file/streams/Survey.h"
#include "file/streams/SyncFramer.h"

namespace audiotoolbox
{
namespace streams
{
namespace
{

constexpr UInt32 kHighestRateWithLayers = 24000;
constexpr int kProbedFrames = 8;

constexpr UInt32 kChannels[] = {0, 1, 2, 3, 4, 5, 6, 8};  // by channel configuration

AACConfig ConfigOf(StreamWindow& ioWindow, SInt64 inPosition, const ADTSHeader& inHeader)
{
    AACConfig config;
    config.mObjectType = inHeader.mObjectType;
    config.mSampleRate = inHeader.mSampleRate;
    config.mChannelConfig = inHeader.mChannelConfig;
    config.mChannelCount = kChannels[inHeader.mChannelConfig];
    config.mFramesPerPacket = 1024;
    if (config.mChannelConfig == 0)
        config.mChannelCount = ChannelsOfProgramConfig(
            inHeader, ioWindow.Look(inPosition, inHeader.mByteCount).first(inHeader.mByteCount));
    return config;
}

// The first frames that lie right behind one another.
std::span<const UInt8> FirstFrames(StreamWindow& ioWindow, SInt64 inPosition)
{
    std::size_t size = 0;
    ADTSHeader header;
    const auto bytes = ioWindow.Look(inPosition, kProbedFrames * kLargestADTSFrame);
    for (int i = 0;
         i < kProbedFrames && bytes.size() >= size + ADTSSyntax::kHeaderBytes &&
         ADTSSyntax::Parse(bytes.data() + size, header) && bytes.size() >= size + header.mByteCount;
         ++i)
        size += header.mByteCount;
    return bytes.first(size);
}

// Frames of several blocks make packets of several lengths possible.
void TellVariableFrames(FileFacts& ioFacts)
{
    ioFacts.mDataFormat.mFramesPerPacket = 0;
    for (AudioFormatListItem& item : ioFacts.mFormats)
        item.mASBD.mFramesPerPacket = 0;
}

OSStatus StatusWithoutFrames(Opening& ioOpening)
{
    const auto bytes = ioOpening.mWindow->Look(ioOpening.mStart, 2);
    const bool hasSync = bytes.size() >= 2 && bytes[0] == 0xFF && (bytes[1] & 0xF6) == 0xF0;
    return hasSync ? kAudioFileInvalidFileError : kAudioFileUnsupportedFileTypeError;
}

OSStatus DescribeADTS(Opening& ioOpening)
{
    StreamWindow& window = *ioOpening.mWindow;
    FileFacts& facts = ioOpening.mFacts;
    ADTSHeader first;
    SInt64 position = ioOpening.mStart;
    if (!FindFirst<ADTSSyntax>(window, position, first))
        return StatusWithoutFrames(ioOpening);

    AACConfig config = ConfigOf(window, position, first);
    if (config.mSampleRate <= kHighestRateWithLayers)
        (void)ProbeAACLayers(FirstFrames(window, position), config);  // else it stays plain
    if (config.mChannelCount == 0)
        return kAudioFileInvalidFileError;
    facts.mFileType = kAudioFileAAC_ADTSType;
    DescribeAAC(config, facts);
    facts.mPacketSizeUpperBound = kLargestADTSFrame;
    SetDataRange(ioOpening, position);

    ioOpening.mFramer = std::make_unique<SyncFramer<ADTSSyntax>>(first);
    const Survey survey = SurveyPackets(*ioOpening.mFramer, window, position);
    if (survey.mPackets > 0 && survey.mFramesPerPacket != config.mFramesPerPacket)
        TellVariableFrames(facts);
    CompleteStreamFacts(survey, facts);
    return noErr;
}

}  // namespace
}  // namespace streams

OSStatus OpenADTS(AudioFileTypeID inType, ByteSourcePtr& ioSource, PacketReaderPtr& outReader)
{
    return streams::OpenStream(inType, streams::DescribeADTS, ioSource, outReader);
}

}  // namespace audiotoolbox
