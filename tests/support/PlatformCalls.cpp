#include "tests/support/PlatformCalls.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace testing_support
{

namespace
{

ScriptedPlatform* sCurrent = nullptr;

// The next of a list of statuses, 0 behind its end.
OSStatus TakeStatus(std::deque<OSStatus>& ioStatuses)
{
    if (ioStatuses.empty())
        return noErr;
    const OSStatus status = ioStatuses.front();
    ioStatuses.pop_front();
    return status;
}

OSStatus UnknownProperty(Family inFamily)
{
    if (inFamily == Family::ExtFile)
        return kExtAudioFileError_InvalidProperty;
    const bool isFile = inFamily == Family::File || inFamily == Family::Global;
    return isFile ? kAudioFileUnsupportedPropertyError : kAudioConverterErr_PropertyNotSupported;
}

}  // namespace

PlatformCalls PlatformCalls::Current()
{
    if (!sCurrent)
    {
        std::fputs("A platform call outside the life of a ScriptedPlatform\n", stderr);
        std::abort();
    }
    return PlatformCalls(*sCurrent);
}

void PlatformCalls::SetCurrent(ScriptedPlatform* inPlatform)
{
    if (inPlatform && sCurrent)
    {
        std::fputs("Two ScriptedPlatforms at once\n", stderr);
        std::abort();
    }
    sCurrent = inPlatform;
}

void PlatformCalls::Cross(bool inIsInside)
{
    if (mPlatform.mCrossingHook)
        mPlatform.mCrossingHook(inIsInside);
}

void PlatformCalls::Expect(bool inKept, const std::string& inBreach)
{
    if (!inKept)
        mPlatform.mBreaches.push_back(inBreach);
}

OSStatus PlatformCalls::Outcome(OSStatus inStatus)
{
    ++mPlatform.mFallibleCalls;
    return mPlatform.mFallibleCalls == mPlatform.mFailingCall ? mPlatform.mFailingStatus : inStatus;
}

OSStatus PlatformCalls::OpenFile(AudioFileID* outFile)
{
    Expect(outFile != nullptr, "opening without a place for the file");
    const OSStatus status = Outcome(mPlatform.mOpenStatus);
    if (status != noErr || !outFile)
        return status;
    mPlatform.mLastHandle += 16;
    *outFile = reinterpret_cast<AudioFileID>(mPlatform.mLastHandle);
    mPlatform.mFiles[*outFile] = 1;
    return noErr;
}

void PlatformCalls::SetOpened(const std::string& inPath, void* inClientData)
{
    mPlatform.mOpenedPath = inPath;
    mPlatform.mOpenedClientData = inClientData;
}

OSStatus PlatformCalls::CloseFile(AudioFileID inFile)
{
    ExpectFile(inFile);
    return mPlatform.mFiles.erase(inFile) > 0 ? static_cast<OSStatus>(noErr)
                                              : kAudioFileNotOpenError;
}

void PlatformCalls::ExpectFile(AudioFileID inFile)
{
    Expect(mPlatform.mFiles.count(inFile) > 0, "a file that is not open");
}

OSStatus PlatformCalls::MakeConverter(const AudioStreamBasicDescription& inSource,
                                      const AudioStreamBasicDescription& inDestination,
                                      AudioConverterRef* outConverter)
{
    Expect(outConverter != nullptr, "making a converter without a place for it");
    NewConverterAnswer answer;
    if (mPlatform.mConverterMaker)
        answer = mPlatform.mConverterMaker(inSource, inDestination);
    answer.mStatus = Outcome(answer.mStatus);
    const bool hasConverter =
        answer.mStatus == noErr ? !answer.mForgetsConverter : answer.mLeavesConverter;
    if (outConverter && hasConverter)
    {
        mPlatform.mLastHandle += 16;
        *outConverter = reinterpret_cast<AudioConverterRef>(mPlatform.mLastHandle);
        mPlatform.mConverters[*outConverter] = {inSource, inDestination};
    }
    return answer.mStatus;
}

OSStatus PlatformCalls::DisposeConverter(AudioConverterRef inConverter)
{
    ExpectConverter(inConverter);
    mPlatform.mConverters.erase(inConverter);
    return noErr;
}

void PlatformCalls::ExpectConverter(AudioConverterRef inConverter)
{
    Expect(mPlatform.mConverters.count(inConverter) > 0, "a converter that is not there");
}

PropertyAnswer PlatformCalls::Ask(Family inFamily, UInt32 inProperty, Question::Kind inKind,
                                  const Bytes& inSpecifier, const Bytes& inData,
                                  AudioConverterRef inConverter)
{
    const ScriptedPlatform::PropertyKey key(inFamily, inProperty);
    Question question{inFamily,    inProperty, inKind, mPlatform.mTurns[{key, inKind}]++,
                      inSpecifier, inData,     {},     {}};
    if (const auto converter = mPlatform.mConverters.find(inConverter);
        converter != mPlatform.mConverters.end())
    {
        question.mSource = converter->second.mSource;
        question.mDestination = converter->second.mDestination;
    }
    if (const auto answerer = mPlatform.mAnswerers.find(key);
        answerer != mPlatform.mAnswerers.end())
        return answerer->second(question);
    return PropertyAnswer::Missing(UnknownProperty(inFamily));
}

OSStatus PlatformCalls::TellInfo(const PropertyAnswer& inAnswer, UInt32* outSize, bool& outWritable)
{
    const OSStatus status = Outcome(inAnswer.mInfoStatus);
    if (outSize && inAnswer.mSize)
        *outSize = *inAnswer.mSize;
    else if (outSize && status == noErr)
        *outSize = static_cast<UInt32>(inAnswer.mBytes.size());
    if (inAnswer.mWritable)
        outWritable = *inAnswer.mWritable;
    else if (status == noErr)
        outWritable = false;
    return status;
}

OSStatus PlatformCalls::TellValue(const PropertyAnswer& inAnswer, UInt32* ioSize, void* outData)
{
    Expect(ioSize != nullptr, "reading a property without its size");
    Expect(outData != nullptr || (ioSize && *ioSize == 0), "reading a property into nothing");
    const OSStatus status = Outcome(inAnswer.mGetStatus);
    if (!ioSize || (!outData && *ioSize > 0))
        return status;
    if (status == noErr)
    {
        const Bytes bytes = inAnswer.mMake ? inAnswer.mMake() : inAnswer.mBytes;
        const std::size_t copied = std::min<std::size_t>(bytes.size(), *ioSize);
        std::copy_n(bytes.begin(), copied, static_cast<UInt8*>(outData));
        *ioSize = static_cast<UInt32>(copied);
    }
    if (inAnswer.mDelivered)
        *ioSize = *inAnswer.mDelivered;
    return status;
}

OSStatus PlatformCalls::ReadPackets(UInt32* ioBytes, AudioStreamPacketDescription* outDescriptions,
                                    UInt32* ioPackets, void* outBuffer)
{
    PacketRead read;
    if (!mPlatform.mPacketReads.empty())
    {
        read = mPlatform.mPacketReads.front();
        mPlatform.mPacketReads.pop_front();
    }
    if (const OSStatus status = Outcome(read.mStatus); status != noErr)
        return status;
    const bool fits = read.mBytes.size() <= *ioBytes && read.mPackets <= *ioPackets;
    Expect(fits, "a scripted packet read larger than its room");
    Expect(read.mDescriptions.empty() || outDescriptions, "packet descriptions without a place");
    if (!fits)
        return kAudio_ParamError;
    std::copy(read.mBytes.begin(), read.mBytes.end(), static_cast<UInt8*>(outBuffer));
    if (outDescriptions)
        std::copy(read.mDescriptions.begin(), read.mDescriptions.end(), outDescriptions);
    *ioBytes = static_cast<UInt32>(read.mBytes.size());
    *ioPackets = read.mPackets;
    return noErr;
}

OSStatus PlatformCalls::Fill(AudioConverterRef inConverter,
                             AudioConverterComplexInputDataProc inProc, void* inUser,
                             UInt32* ioPackets, AudioBufferList* ioData)
{
    AudioBuffer& buffer = ioData->mBuffers[0];
    mPlatform.mFillBuffer = buffer.mData;
    if (const OSStatus status = Outcome(noErr); status != noErr)
        return status;
    if (mPlatform.mFills.empty())
    {
        DeliverAudio(inConverter, ioPackets, buffer);
        return noErr;
    }
    const std::vector<FillStep> steps = mPlatform.mFills.front();
    mPlatform.mFills.pop_front();

    UInt32 frames = 0;
    std::size_t bytes = 0;
    OSStatus status = noErr;
    for (const FillStep& step : steps)
    {
        if (step.mKind == FillStep::Kind::Pull || step.mKind == FillStep::Kind::PullBare)
            status = Pull(inConverter, inProc, inUser, step);
        else if (step.mKind == FillStep::Kind::Return)
            status = step.mStatus;
        else if (bytes + step.mBytes.size() > buffer.mDataByteSize)
            Expect(false, "a scripted fill larger than the caller's buffer");
        else
        {
            std::copy(step.mBytes.begin(), step.mBytes.end(),
                      static_cast<UInt8*>(buffer.mData) + bytes);
            bytes += step.mBytes.size();
            frames += step.mCount;
        }
        if (status != noErr)
            break;
    }
    *ioPackets = frames;
    buffer.mDataByteSize = static_cast<UInt32>(bytes);
    return status;
}

OSStatus PlatformCalls::Pull(AudioConverterRef inConverter,
                             AudioConverterComplexInputDataProc inProc, void* inUser,
                             const FillStep& inStep)
{
    AudioStreamPacketDescription untouched = {};
    AudioStreamPacketDescription* descriptions = &untouched;
    AudioBufferList list = {1, {{0, 0, nullptr}}};
    UInt32 packets = inStep.mCount;
    const bool isBare = inStep.mKind == FillStep::Kind::PullBare;
    Cross(false);
    const OSStatus status =
        inProc(inConverter, &packets, &list, isBare ? nullptr : &descriptions, inUser);
    Cross(true);

    const AudioBuffer& input = list.mBuffers[0];
    const auto* data = static_cast<const UInt8*>(input.mData);
    const Bytes copy = status == noErr && data ? Bytes(data, data + input.mDataByteSize) : Bytes();
    const bool told = descriptions != &untouched;
    mPlatform.mPulls.push_back({status, packets, copy, input.mNumberChannels, list.mNumberBuffers,
                                input.mData, told, told ? descriptions : nullptr});
    return status;
}

void PlatformCalls::DeliverAudio(AudioConverterRef inConverter, UInt32* ioPackets,
                                 AudioBuffer& ioBuffer)
{
    const auto converter = mPlatform.mConverters.find(inConverter);
    const UInt32 frameBytes = converter == mPlatform.mConverters.end()
                                  ? 0
                                  : converter->second.mDestination.mBytesPerFrame;
    const std::size_t left = mPlatform.mAudio.size() - mPlatform.mAudioPosition;
    const std::size_t room = std::min<std::size_t>(left, ioBuffer.mDataByteSize);
    const std::size_t frames =
        frameBytes == 0 ? 0 : std::min<std::size_t>(*ioPackets, room / frameBytes);
    const std::size_t bytes = frames * frameBytes;
    std::copy_n(mPlatform.mAudio.begin() + static_cast<std::ptrdiff_t>(mPlatform.mAudioPosition),
                bytes, static_cast<UInt8*>(ioBuffer.mData));
    mPlatform.mAudioPosition += bytes;
    *ioPackets = static_cast<UInt32>(frames);
    ioBuffer.mDataByteSize = static_cast<UInt32>(bytes);
}

OSStatus PlatformCalls::CreateExtFile(const AudioStreamBasicDescription& inFormat,
                                      ExtAudioFileRef* outFile)
{
    Expect(outFile != nullptr, "creating without a place for the file");
    const OSStatus status = Outcome(mPlatform.mCreationStatus);
    if (!outFile || (status != noErr && !mPlatform.mFailedCreationLeavesFile))
        return status;
    mPlatform.mLastHandle += 16;
    const auto converter = reinterpret_cast<AudioConverterRef>(mPlatform.mLastHandle);
    mPlatform.mConverters[converter] = {{}, inFormat};
    mPlatform.mLastHandle += 16;
    *outFile = reinterpret_cast<ExtAudioFileRef>(mPlatform.mLastHandle);
    mPlatform.mExtFiles[*outFile] = converter;
    return status;
}

void PlatformCalls::ExpectExtFile(ExtAudioFileRef inFile)
{
    Expect(mPlatform.mExtFiles.count(inFile) > 0, "a file that is not there to be written");
}

PropertyAnswer PlatformCalls::AskExtFile(ExtAudioFileRef inFile, UInt32 inProperty,
                                         Question::Kind inKind, const Bytes& inData)
{
    ExpectExtFile(inFile);
    const bool isScripted = mPlatform.mAnswerers.count({Family::ExtFile, inProperty}) > 0;
    const auto file = mPlatform.mExtFiles.find(inFile);
    if (inProperty == kExtAudioFileProperty_AudioConverter && !isScripted &&
        file != mPlatform.mExtFiles.end())
        return PropertyAnswer::Value(file->second);
    return Ask(Family::ExtFile, inProperty, inKind, {}, inData);
}

OSStatus PlatformCalls::WriteExtFile(UInt32 inFrames, const AudioBufferList& inData)
{
    const AudioBuffer& buffer = inData.mBuffers[0];
    const auto* data = static_cast<const UInt8*>(buffer.mData);
    const bool isCopied = data && buffer.mDataByteSize <= ScriptedPlatform::kMostCopied;
    mPlatform.mWritten.push_back({inFrames, inData.mNumberBuffers, buffer.mNumberChannels,
                                  buffer.mData,
                                  isCopied ? Bytes(data, data + buffer.mDataByteSize) : Bytes()});
    return Outcome(TakeStatus(mPlatform.mWriteStatuses));
}

OSStatus PlatformCalls::DisposeExtFile(ExtAudioFileRef inFile)
{
    ExpectExtFile(inFile);
    if (const auto file = mPlatform.mExtFiles.find(inFile); file != mPlatform.mExtFiles.end())
    {
        // The converter is the file's own; whoever took it to be theirs has disposed of it.
        ExpectConverter(file->second);
        mPlatform.mConverters.erase(file->second);
        mPlatform.mExtFiles.erase(file);
    }
    return Outcome(TakeStatus(mPlatform.mDisposalStatuses));
}

}  // namespace testing_support
