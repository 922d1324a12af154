// What the reader's converter is told before the first frame: cookie and priming, and how packets
// are to be read for it.
#include "appleaudiotoolbox/ATReader.h"
#include "appleaudiotoolbox/src/PlatformQuestions.h"
#include "appleaudiotoolbox/src/Scratch.h"

#include <algorithm>
#include <limits>

namespace appleaudiotoolbox
{

namespace
{

// Rounds halves up and cuts; what does not fit becomes the nearest that does, and no number 0.
template <typename Integer>
Integer Rounded(double inValue)
{
    using Limits = std::numeric_limits<Integer>;
    const double value = inValue + 0.5;
    if (value != value)
        return 0;
    if (value >= static_cast<double>(Limits::max()))
        return Limits::max();
    if (value <= static_cast<double>(Limits::min()))
        return Limits::min();
    return static_cast<Integer>(value);
}

// A rate of 0 is unknown, and unknown rates are taken to be the same.
double RateRatio(double inRate, double inReference, bool inIsKnown)
{
    return inIsKnown && inRate != inReference ? inRate / inReference : 1.0;
}

bool IsLaw(AudioFormatID inFormatID)
{
    return inFormatID == kAudioFormatALaw || inFormatID == kAudioFormatULaw;
}

// A-law and mu-law need no cookie. The converter gets one only if it fails to tell its own and
// nevertheless claims to take one that is longer than the file's.
bool WantsLawCookie(AudioConverterRef inConverter, UInt32 inFileBytes)
{
    UInt32 bytes = 0;
    Boolean isWritable = 0;
    const OSStatus status = AudioConverterGetPropertyInfo(
        inConverter, kAudioConverterDecompressionMagicCookie, &bytes, &isWritable);
    if (status == noErr || status == kAudioConverterErr_PropertyNotSupported)
        return false;
    return isWritable && inFileBytes < bytes;
}

}  // namespace

bool ATReader::ReadCookie(ExtendedErrorInfo& outInfo)
{
    UInt32 bytes = 0;
    OSStatus status =
        AudioFileGetPropertyInfo(mAudioFile, kAudioFilePropertyMagicCookieData, &bytes, nullptr);
    if (status != noErr || bytes == 0)
        return true;  // most files have none

    const Scratch cookie = MakeScratch(bytes);
    if (!cookie->Get())
        return NoteGeneralFailure(outInfo);
    const UInt32 room = bytes;
    status =
        AudioFileGetProperty(mAudioFile, kAudioFilePropertyMagicCookieData, &bytes, cookie->Get());
    if (status != noErr)
        return NoteFailure(outInfo, kATError_AudioFileGetMagicCookieData, status);
    bytes = std::min(bytes, room);

    if (mInputFormat.mFormatID == kAudioFormatLinearPCM)
        return true;
    if (IsLaw(mInputFormat.mFormatID) && !WantsLawCookie(mConverter, bytes))
        return true;
    return SetCookie(bytes, cookie->Get(), outInfo);
}

bool ATReader::SetCookie(UInt32 inBytes, const void* inCookie, ExtendedErrorInfo& outInfo)
{
    const OSStatus status = AudioConverterSetProperty(
        mConverter, kAudioConverterDecompressionMagicCookie, inBytes, inCookie);
    if (status != noErr)
        return NoteFailure(outInfo, kATError_AudioConverterSetDecompressionMagicCookie, status);
    return true;
}

bool ATReader::SetUpTheConverter(ExtendedErrorInfo& outInfo)
{
    // The converter knows more about both formats by now than the file did.
    AudioStreamBasicDescription& inputFormat = mInputFormat;
    AudioStreamBasicDescription& clientFormat = mClientFormat;
    AudioStreamBasicDescription fileFormat = {};
    const bool isAnswered =
        NoteUnlessAnswered(
            AskConverter(mConverter, kAudioConverterCurrentInputStreamDescription, inputFormat),
            outInfo) &&
        NoteUnlessAnswered(
            AskConverter(mConverter, kAudioConverterCurrentOutputStreamDescription, clientFormat),
            outInfo) &&
        NoteUnlessAnswered(AskFile(mAudioFile, kAudioFilePropertyDataFormat, fileFormat), outInfo);
    if (!isAnswered)
        return false;

    const bool isCompressed = mInputFormat.mBitsPerChannel == 0;
    if (isCompressed && !SetUpPriming(fileFormat, outInfo))
        return false;
    return SetUpPackets(outInfo);
}

bool ATReader::SetUpPriming(const AudioStreamBasicDescription& inFileFormat,
                            ExtendedErrorInfo& outInfo)
{
    AudioFilePacketTableInfo table = {};
    if (!NoteUnlessAnswered(AskFile(mAudioFile, kAudioFilePropertyPacketTableInfo, table), outInfo))
        return true;  // the file opens without; what was noted stays and does no harm

    // The table counts frames at the file's rate, which for a layered file is that of its core.
    const double fileRate = inFileFormat.mSampleRate;
    const double inputRate = mInputFormat.mSampleRate;
    const double clientRate = mClientFormat.mSampleRate;
    const double sourceRatio = RateRatio(inputRate, fileRate, inputRate != 0.0 && fileRate != 0.0);
    const double clientRatio =
        RateRatio(clientRate, inputRate, inputRate != 0.0 && clientRate != 0.0);
    mTotalFrames = Rounded<SInt64>(static_cast<double>(table.mNumberValidFrames) *
                                   (clientRatio * sourceRatio));
    const SInt32 leadingFrames = Rounded<SInt32>(table.mPrimingFrames * sourceRatio);

    UInt32 bytes = 0;
    Boolean isWritable = 0;
    OSStatus status =
        AudioConverterGetPropertyInfo(mConverter, kAudioConverterPrimeInfo, &bytes, &isWritable);
    if (status != noErr)
        return NoteFailure(outInfo, kATError_General, status);
    const AudioConverterPrimeInfo prime = {static_cast<UInt32>(leadingFrames), 0};
    if (!isWritable || bytes > sizeof(prime))
        return false;
    status = AudioConverterSetProperty(mConverter, kAudioConverterPrimeInfo, sizeof(prime), &prime);
    if (status != noErr)
        return NoteFailure(outInfo, kATError_General, status);
    return true;
}

bool ATReader::SetUpPackets(ExtendedErrorInfo& outInfo)
{
    if (mInputFormat.mBytesPerPacket != 0)
    {
        mMaxPacketSize = mInputFormat.mBytesPerPacket;
        mPacketsPerRead = mReadBufferSize / mMaxPacketSize;
        return true;
    }
    const bool isAnswered =
        bool(AskFile(mAudioFile, kAudioFilePropertyPacketSizeUpperBound, mMaxPacketSize));
    if (!isAnswered || mMaxPacketSize == 0)
        return NoteFailure(outInfo, kATError_AudioFileGetPacketSizeUpperBound, noErr);
    mPacketsPerRead = std::max<UInt32>(mReadBufferSize / mMaxPacketSize, 1);
    mPacketDescriptions = new AudioStreamPacketDescription[mPacketsPerRead]();
    return true;
}

}  // namespace appleaudiotoolbox
