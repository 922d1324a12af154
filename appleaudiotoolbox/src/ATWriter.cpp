#include "appleaudiotoolbox/ATWriter.h"

#include "CoreAudio/PublicUtility/CAAudioChannelLayout.h"
#include "appleaudiotoolbox/src/InputFormat.h"
#include "appleaudiotoolbox/src/TracePlace.h"
#include "appleaudiotoolbox/utility/ATUtils.h"
#include "appleaudiotoolbox/utility/EncodableQueries.h"

namespace appleaudiotoolbox
{

namespace
{

// The encoder chooses its rate by itself in this mode and takes a quality.
constexpr UInt32 kVariableMode = 3;

UInt32 CreationFlags(UInt32 inFileTypeID)
{
    constexpr UInt32 kPacked = kAudioFileFlags_EraseFile | kAudioFileFlags_DontPageAlignAudioData;
    return inFileTypeID == kAudioFileWAVEType ? kPacked : UInt32(kAudioFileFlags_EraseFile);
}

}  // namespace

ATWriter::ATWriter()
    : mFile(nullptr),
      mBufferList{1, {{0, 0, nullptr}}},
      mFileTypeID(0),
      mChannelLayout(nullptr),
      mBitrateMode(0),
      mBitrate(0),
      mVBRQuality(0)
{
}

ATWriter::~ATWriter()
{
    // Nobody is left who could act on a status.
    if (mFile)
        (void)ExtAudioFileDispose(mFile);
    if (mChannelLayout)
        CAAudioChannelLayout::Destroy(mChannelLayout);
}

bool ATWriter::Initialize(const UTF8String& inPath, unsigned int inFileTypeID,
                          CAStreamBasicDescription inOutputFormat,
                          kelpmediatypes::AudioChannelDescriptions inChannels,
                          unsigned int inBytesPerSample, long long /*inSampleCount*/,
                          ExtendedErrorInfo& outInfo, unsigned int inBitrateMode,
                          unsigned int inBitrate, unsigned int inVBRQuality)
{
    mFileTypeID = inFileTypeID;
    mOutputFormat = inOutputFormat;
    mChannelLayout = ConvertChannelLayout(inChannels);
    mBitrateMode = inBitrateMode;
    mBitrate = inBitrate;
    mVBRQuality = static_cast<Float32>(inVBRQuality);
    mClientFormat = ConstructClientFormatFromArgs(mOutputFormat.mSampleRate, inBytesPerSample * 8,
                                                  mOutputFormat.mChannelsPerFrame);
    static constinit TracePlace sClientFormatPlace(6);
    if (sClientFormatPlace.IsWanted())
        sClientFormatPlace.Write("Client Format: " + FormatText(mClientFormat));

    mURL.Reset(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(inPath.data()),
        static_cast<CFIndex>(inPath.size()), false));
    return CreateFile(outInfo) && SetUpEncoder(outInfo);
}

bool ATWriter::CreateFile(ExtendedErrorInfo& outInfo)
{
    OSStatus status = ExtAudioFileCreateWithURL(mURL.Get(), mFileTypeID, &mOutputFormat,
                                                mChannelLayout, CreationFlags(mFileTypeID), &mFile);
    // The trace is wanted most when the file could not be created.
    static constinit TracePlace sOutputFormatPlace(6);
    if (sOutputFormatPlace.IsWanted())
        sOutputFormatPlace.Write("Output Format: " + FormatText(mOutputFormat));
    if (status != noErr)
        return NoteFailure(outInfo, kATError_ExtAudioFileCreateWithURL, status);

    status = ExtAudioFileSetProperty(mFile, kExtAudioFileProperty_ClientDataFormat,
                                     sizeof(AudioStreamBasicDescription), &mClientFormat);
    if (status != noErr)
        return NoteFailure(outInfo, kATError_ExtAudioFileSetClientDataFormat, status);
    return true;
}

bool ATWriter::SetUpEncoder(ExtendedErrorInfo& outInfo)
{
    if (GetEncodableBitrateModes(mFileTypeID, mOutputFormat.mFormatID).empty())
        return true;  // the format has nothing to set

    AudioConverterRef converter = nullptr;
    UInt32 bytes = sizeof(converter);
    OSStatus status =
        ExtAudioFileGetProperty(mFile, kExtAudioFileProperty_AudioConverter, &bytes, &converter);
    if (status != noErr)
        return NoteFailure(outInfo, kATError_ExtAudioFileGetAudioConverter, status);

    status = AudioConverterSetProperty(converter, kAudioCodecPropertyBitRateControlMode,
                                       sizeof(mBitrateMode), &mBitrateMode);
    if (status != noErr)
        return NoteFailure(outInfo, kATError_AudioConverterSetBitRateControl, status);
    if (!SetBitrateOrQuality(converter, outInfo))
        return false;

    const void* const noConfiguration = nullptr;
    status = ExtAudioFileSetProperty(mFile, kExtAudioFileProperty_ConverterConfig,
                                     sizeof(noConfiguration), &noConfiguration);
    if (status != noErr)
        return NoteFailure(outInfo, kATError_ExtAudioFileSetConverterConfig, status);
    return true;
}

bool ATWriter::SetBitrateOrQuality(AudioConverterRef inConverter, ExtendedErrorInfo& outInfo)
{
    if (mBitrateMode == kVariableMode)
    {
        // The property takes a whole number elsewhere; here it gets the bits of the float.
        const OSStatus status = AudioConverterSetProperty(
            inConverter, kAudioCodecPropertySoundQualityForVBR, sizeof(mVBRQuality), &mVBRQuality);
        return status == noErr ||
               NoteFailure(outInfo, kATError_AudioConverterSetBitRateControl, status);
    }
    const OSStatus status = AudioConverterSetProperty(inConverter, kAudioConverterEncodeBitRate,
                                                      sizeof(mBitrate), &mBitrate);
    return status == noErr || NoteFailure(outInfo, kATError_AudioConverterSetEncodeBitRate, status);
}

int ATWriter::GetChannelsPerFrame() const
{
    return static_cast<int>(mClientFormat.mChannelsPerFrame);
}

unsigned int ATWriter::GetNumWriteBytesPerFrame() const
{
    const UInt32 channels = mClientFormat.mChannelsPerFrame;
    return channels == 0 ? 0 : mClientFormat.mBytesPerFrame / channels;
}

bool ATWriter::WriteSampleBytes(long long /*inPosition*/, int inByteCount, char* inBytes,
                                ExtendedErrorInfo& outInfo)
{
    const auto bytes = static_cast<UInt32>(inByteCount);
    mBufferList.mBuffers[0] = {mClientFormat.mChannelsPerFrame, bytes, inBytes};
    if (!mFile)
        return NoteFailure(outInfo, kATError_General, outInfo.mStatus);

    const UInt32 frameBytes = mClientFormat.mBytesPerFrame;
    const UInt32 frames = frameBytes == 0 ? 0 : bytes / frameBytes;
    const OSStatus status = ExtAudioFileWrite(mFile, frames, &mBufferList);
    if (status != noErr)
        return NoteFailure(outInfo, kATError_ExtAudioFileWrite, status);
    return true;
}

bool ATWriter::FinishWrite(bool /*inOK*/, void* /*inData*/, int /*inSize*/,
                           ExtendedErrorInfo& outInfo)
{
    if (!mFile)
        return true;
    const OSStatus status = ExtAudioFileDispose(mFile);
    mFile = nullptr;
    if (status != noErr)
        return NoteFailure(outInfo, kATError_ExtAudioFileDispose, status);
    return true;
}

}  // namespace appleaudiotoolbox
