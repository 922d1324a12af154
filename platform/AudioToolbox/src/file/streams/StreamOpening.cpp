#include "file/streams/StreamOpening.h"

#include "file/ChannelLayouts.h"
#include "file/ID3Tag.h"
#include "file/streams/StreamReader.h"
#include "file/streams/TailTags.h"

#include <algorithm>
#include <new>

namespace audiotoolbox::streams
{
namespace
{

OSStatus DescribeAndMake(AudioFileTypeID inType, DescribeStream inDescribe, ByteSourcePtr& ioSource,
                         PacketReaderPtr& outReader)
{
    Opening opening{inType, *ioSource, SizeOfID3v2Tags(*ioSource), {}, {}, {}};
    opening.mWindow =
        std::make_unique<StreamWindow>(*ioSource, EndOfAudio(*ioSource, opening.mStart));
    const OSStatus status = inDescribe(opening);
    if (opening.mWindow->Status() != noErr)
        return opening.mWindow->Status();
    if (status != noErr)
        return status;
    outReader =
        std::make_unique<StreamReader>(ioSource, std::move(opening.mWindow),
                                       std::move(opening.mFramer), std::move(opening.mFacts));
    return noErr;
}

}  // namespace

OSStatus OpenStream(AudioFileTypeID inType, DescribeStream inDescribe, ByteSourcePtr& ioSource,
                    PacketReaderPtr& outReader)
{
    try
    {
        return DescribeAndMake(inType, inDescribe, ioSource, outReader);
    }
    catch (const std::bad_alloc&)
    {
        return kAudio_MemFullError;
    }
}

void SetDataRange(Opening& ioOpening, SInt64 inFirstPacket)
{
    ioOpening.mFacts.mDataOffset = inFirstPacket;
    ioOpening.mFacts.mDataByteCount = std::max<SInt64>(ioOpening.mWindow->End() - inFirstPacket, 0);
}

AudioStreamBasicDescription DescribeFormat(AudioFormatID inFormat, double inRate, UInt32 inChannels,
                                           UInt32 inFramesPerPacket)
{
    AudioStreamBasicDescription format = {};
    format.mSampleRate = inRate;
    format.mFormatID = inFormat;
    format.mFramesPerPacket = inFramesPerPacket;
    format.mChannelsPerFrame = inChannels;
    return format;
}

std::vector<UInt8> MonoOrStereo(UInt32 inChannels)
{
    if (inChannels == 1)
        return LayoutOfTag(kAudioChannelLayoutTag_Mono);
    if (inChannels == 2)
        return LayoutOfTag(kAudioChannelLayoutTag_Stereo);
    return {};
}

}  // namespace audiotoolbox::streams
