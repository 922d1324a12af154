// Opening a file, and what is told about it. The converter is set up in ConverterSetUp.cpp, frames
// are delivered in ReaderDelivery.cpp.
#include "appleaudiotoolbox/ATReader.h"

#include "appleaudiotoolbox/src/InputFormat.h"
#include "appleaudiotoolbox/src/PlatformQuestions.h"
#include "appleaudiotoolbox/src/Scratch.h"
#include "appleaudiotoolbox/src/TracePlace.h"
#include "appleaudiotoolbox/utility/ATFormatUtils.h"
#include "appleaudiotoolbox/utility/ATUtils.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace appleaudiotoolbox
{

namespace
{

// The failure of a question that has no place for one: its text is made as for any other and
// dropped.
void DropFailure(const Asked& inAsked)
{
    ExtendedErrorInfo info;
    NoteUnlessAnswered(inAsked, info);
    SetExtendedErrorString(info);
}

// What a layout from the file may claim is bounded by the bytes that came with it.
void BoundDescriptions(AudioChannelLayout& ioLayout, UInt32 inBytes)
{
    constexpr UInt32 kHeadBytes = offsetof(AudioChannelLayout, mChannelDescriptions);
    const UInt32 room = (inBytes - kHeadBytes) / UInt32(sizeof(AudioChannelDescription));
    ioLayout.mNumberChannelDescriptions = std::min(ioLayout.mNumberChannelDescriptions, room);
}

kelpmediatypes::AudioChannelDescriptions ReadChannelLayout(AudioFileID inFile)
{
    constexpr AudioFilePropertyID kProperty = kAudioFilePropertyChannelLayout;
    UInt32 bytes = 0;
    if (!inFile || AudioFileGetPropertyInfo(inFile, kProperty, &bytes, nullptr) != noErr)
        return {};
    const Scratch block = MakeScratch(bytes);
    if (!block->Get() || bytes < offsetof(AudioChannelLayout, mChannelDescriptions))
        return {};

    // A failing read leaves zeros, which are a layout without channels.
    std::memset(block->Get(), 0, bytes);
    UInt32 delivered = bytes;
    (void)AudioFileGetProperty(inFile, kProperty, &delivered, block->Get());
    auto* layout = reinterpret_cast<AudioChannelLayout*>(block->Get());
    BoundDescriptions(*layout, bytes);
    return ConvertChannelLayout(layout);
}

}  // namespace

ATReader::ATReader()
    : mAudioFile(nullptr),
      mAtEndOfFile(false),
      mOpenedByPath(false),
      mHighestFrame(0),
      mOutputBufferList{1, {{0, 0, nullptr}}},
      mNextPacket(0),
      mMaxPacketSize(0),
      mPacketsPerRead(0),
      mPacketDescriptions(nullptr),
      mPacketsThisFill(0),
      mReadBufferSize(kReadBufferSize),
      mReadBuffer{},
      mConverter(nullptr),
      mTotalFrames(0)
{
}

ATReader::~ATReader()
{
    // Nobody is left who could act on a status.
    if (mAudioFile)
        (void)AudioFileClose(mAudioFile);
    delete[] mPacketDescriptions;
    if (mConverter)
        (void)AudioConverterDispose(mConverter);
}

bool ATReader::Initialize(const UTF8String& inPath, ExtendedErrorInfo& outInfo, bool inForceFloat)
{
    mURL.Reset(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(inPath.data()),
        static_cast<CFIndex>(inPath.size()), false));
    const OSStatus status = AudioFileOpenURL(mURL.Get(), kAudioFileReadPermission, 0, &mAudioFile);
    if (status != noErr)
        return NoteFailure(outInfo, kATError_AudioFileOpenURL, status);
    const bool isInitialized = InitializeImpl(inForceFloat, outInfo);
    mOpenedByPath = true;
    return isInitialized;
}

bool ATReader::Initialize(void* inClientData, const ReadCallbacks& inCallbacks,
                          unsigned int inFileTypeHint, ExtendedErrorInfo& outInfo,
                          bool inForceFloat)
{
    if (!inClientData || !inCallbacks.mRead || !inCallbacks.mGetSize)
        return false;
    const OSStatus status =
        AudioFileOpenWithCallbacks(inClientData, inCallbacks.mRead, nullptr, inCallbacks.mGetSize,
                                   nullptr, inFileTypeHint, &mAudioFile);
    if (status != noErr)
        return NoteFailure(outInfo, kATError_AudioFileOpenURL, status);
    const bool isInitialized = InitializeImpl(inForceFloat, outInfo);
    mOpenedByPath = false;
    return isInitialized;
}

bool ATReader::InitializeImpl(bool inForceFloat, ExtendedErrorInfo& outInfo)
{
    if (!mAudioFile || !GetFormatFromInputFile(mAudioFile, mInputFormat, outInfo))
        return false;
    mOutputBufferList.mBuffers[0].mNumberChannels = mInputFormat.mChannelsPerFrame;
    static constinit TracePlace sInputFormatPlace(6);
    if (sInputFormatPlace.IsWanted())
        sInputFormatPlace.Write(" Input Format: " + FormatText(mInputFormat));

    mClientFormat = GetClientFormatFromInputFormat(mInputFormat, inForceFloat);
    const OSStatus status = AudioConverterNew(&mInputFormat, &mClientFormat, &mConverter);
    if (status != noErr)
        return NoteFailure(outInfo, kATError_AudioConverterNew, status);
    if (!ReadCookie(outInfo) || !SetUpTheConverter(outInfo))
        return false;
    static constinit TracePlace sClientFormatPlace(6);
    if (sClientFormatPlace.IsWanted())
        sClientFormatPlace.Write("Client Format: " + FormatText(mClientFormat));
    return true;
}

unsigned int ATReader::GetFileTypeID() const
{
    unsigned int fileType = 0;
    return GetFileTypeIDFromFile(mAudioFile, &fileType) ? fileType : 0;
}

CAStreamBasicDescription ATReader::GetStreamBasicDescription() const
{
    return mInputFormat;
}

double ATReader::GetSampleRate() const
{
    return mInputFormat.mSampleRate;
}

unsigned int ATReader::GetFormatID() const
{
    return mInputFormat.mFormatID;
}

unsigned int ATReader::GetBytesPerPacket() const
{
    return mInputFormat.mBytesPerPacket;
}

unsigned int ATReader::GetFramesPerPacket() const
{
    return mInputFormat.mFramesPerPacket;
}

unsigned int ATReader::GetBytesPerFrame() const
{
    return mInputFormat.mBytesPerFrame;
}

unsigned int ATReader::GetChannelsPerFrame() const
{
    return mInputFormat.mChannelsPerFrame;
}

unsigned int ATReader::GetBitsPerChannel() const
{
    return mInputFormat.mBitsPerChannel;
}

unsigned int ATReader::GetNumReadBytesPerFrame() const
{
    const UInt32 channels = mClientFormat.mChannelsPerFrame;
    return channels == 0 ? 0 : mClientFormat.mBytesPerFrame / channels;
}

unsigned int ATReader::GetFormatFlags() const
{
    return mInputFormat.mFormatFlags;
}

double ATReader::GetEstimatedDuration() const
{
    Float64 seconds = 0.0;
    if (const Asked asked = AskFile(mAudioFile, kAudioFilePropertyEstimatedDuration, seconds);
        !asked)
    {
        DropFailure(asked);
        return 0.0;
    }
    return seconds;
}

UTF16String ATReader::GetFormatDescription() const
{
    return GetDescriptionString(mInputFormat, GetFileTypeID(), -1, -1, -1);
}

kelpmediatypes::AudioChannelDescriptions ATReader::GetChannelLayout() const
{
    const auto description = [](unsigned int label)
    { return kelpmediatypes::AudioChannelDescription{TranslateChannelLabel(label)}; };

    kelpmediatypes::AudioChannelDescriptions layout = ReadChannelLayout(mAudioFile);
    if (layout.empty() && GetChannelsPerFrame() == 2)
        layout = {description(kAudioChannelLabel_Left), description(kAudioChannelLabel_Right)};
    while (layout.size() < GetChannelsPerFrame())
        layout.push_back(description(kAudioChannelLabel_Discrete));
    return layout;
}

unsigned int ATReader::GetBitrate() const
{
    UInt32 bitsPerSecond = 0;
    if (const Asked asked = AskFile(mAudioFile, kAudioFilePropertyBitRate, bitsPerSecond); !asked)
    {
        DropFailure(asked);
        return 0;
    }
    return bitsPerSecond;
}

}  // namespace appleaudiotoolbox
