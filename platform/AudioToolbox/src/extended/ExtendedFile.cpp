#include "extended/ExtendedFile.h"

#include "extended/GatheringWriter.h"
#include "tables/WritableTypes.h"

#include <AudioToolbox/ExtendedAudioFile.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

namespace audiotoolbox
{
namespace
{

AudioStreamBasicDescription Words16(Float64 inRate, UInt32 inChannels)
{
    constexpr UInt32 kWordBytes = 2;
    return {inRate,
            kAudioFormatLinearPCM,
            kAudioFormatFlagIsSignedInteger | kAudioFormatFlagIsPacked,
            kWordBytes * inChannels,
            1,
            kWordBytes * inChannels,
            inChannels,
            8 * kWordBytes,
            0};
}

// Who has not told a client format yet writes the file's own frames where it has frames.
AudioStreamBasicDescription PresumedClient(const AudioStreamBasicDescription& inFormat)
{
    return inFormat.mFormatID == kAudioFormatLinearPCM
               ? inFormat
               : Words16(inFormat.mSampleRate, inFormat.mChannelsPerFrame);
}

bool IsWritable(AudioFileTypeID inType)
{
    const std::vector<AudioFileTypeID> types = WritableTypes();
    return std::find(types.begin(), types.end(), inType) != types.end();
}

// Bits beside the sample are the converter's to clear.
bool NeedsNoPass(const ConversionPlan& inPlan)
{
    return inPlan.mEncoder == nullptr && !inPlan.mNeedsMixer && inPlan.mFrom == inPlan.mTo &&
           inPlan.mTo.mBits == 8 * WordBytes(inPlan.mTo.mWord);
}

}  // namespace

ExtendedFile::ExtendedFile(ExtendedFileRequest inRequest) : mRequest(std::move(inRequest))
{
    mStored.mFormat = mRequest.mFormat;
}

OSStatus ExtendedFile::Check()
{
    const AudioStreamBasicDescription& format = mRequest.mFormat;
    if (!IsWritable(mRequest.mType))
        return kAudioFileUnsupportedFileTypeError;
    if (!CanWrite(mRequest.mType, format.mFormatID) || format.mChannelsPerFrame == 0 ||
        !(format.mSampleRate > 0.0))
        return kAudioFileUnsupportedDataFormatError;
    ConversionPlan plan;
    return Plan(PresumedClient(format), plan, mStored, mWriter);
}

ChannelOrder ExtendedFile::OrderFor(const AudioStreamBasicDescription& inClient) const
{
    const UInt32 channels = mRequest.mFormat.mChannelsPerFrame;
    // Channels that are mixed have no names of their own.
    if (inClient.mChannelsPerFrame != channels)
        return {};
    return OrderChannels(mRequest.mType, mRequest.mFormat.mFormatID, channels, mRequest.mLabels);
}

OSStatus ExtendedFile::Plan(const AudioStreamBasicDescription& inClient, ConversionPlan& outPlan,
                            WriteRequest& outStored, PacketWriterPtr& outWriter) const
{
    if (const OSStatus status = PlanConversion(inClient, mRequest.mFormat, outPlan);
        status != noErr)
        return status;
    if (IsNonInterleaved(outPlan.mDestination))
        return kAudioFileUnsupportedDataFormatError;
    WriteRequest stored = {mRequest.mType, outPlan.mDestination, OrderFor(inClient).mLabels};
    PacketWriterPtr writer;
    if (const OSStatus status = mRequest.mMakeWriter(stored, writer); status != noErr)
        return status;
    outStored = std::move(stored);
    outWriter = std::make_unique<GatheringWriter>(std::move(writer));
    return noErr;
}

OSStatus ExtendedFile::MakeConverter(const AudioStreamBasicDescription& inClient)
{
    ConversionPlan plan;
    if (const OSStatus status = Plan(inClient, plan, mStored, mWriter); status != noErr)
        return status;
    mConverter.emplace(plan);
    mPermuter.emplace(OrderFor(inClient).mSources, WordBytes(plan.mFrom.mWord));
    mIsDirect = NeedsNoPass(plan);
    return noErr;
}

OSStatus ExtendedFile::SetClientFormat(const AudioStreamBasicDescription& inFormat)
{
    if (inFormat.mFormatID != kAudioFormatLinearPCM)
        return kExtAudioFileError_NonPCMClientFormat;
    if (mIsStarted)
        return kExtAudioFileError_InvalidOperationOrder;
    return MakeConverter(inFormat);
}

OSStatus ExtendedFile::TakeSettings()
{
    if (!mConverter || mIsStarted)
        return kExtAudioFileError_InvalidOperationOrder;
    return mConverter->Start();
}

OSStatus ExtendedFile::Start()
{
    mIsStarted = true;
    if (!mConverter)
        if (const OSStatus status = MakeConverter(PresumedClient(mRequest.mFormat));
            status != noErr)
            return status;
    if (const OSStatus status = mConverter->Start(); status != noErr)
        return status;
    StreamStart start;
    if (const OSStatus status = mConverter->Describe(start); status != noErr)
        return status;
    const OSStatus status = mWriter->Start(*mSink, start);
    mHasHeader = status == noErr;
    return status;
}

OSStatus ExtendedFile::Write(const UInt8* inFrames, UInt32 inFrameCount, UInt32 inByteCount)
{
    if (mFailure != noErr)
        return mFailure;
    const AudioStreamBasicDescription* client = ClientFormat();
    if (client == nullptr)
        return kExtAudioFileError_InvalidOperationOrder;
    if (inByteCount / client->mBytesPerFrame < inFrameCount)
        return kAudio_ParamError;
    if (inFrameCount == 0)
        return noErr;
    try
    {
        if (!mIsStarted)
            Note(Start());
        if (mFailure == noErr)
            Note(WriteFrames(inFrames, inFrameCount));
    }
    catch (const std::bad_alloc&)
    {
        Note(kAudio_MemFullError);
    }
    return mFailure;
}

OSStatus ExtendedFile::WriteFrames(const UInt8* inFrames, UInt32 inFrameCount)
{
    if (!mPermuter->MovesChannels())
        return WriteBlock(inFrames, inFrameCount);
    const std::size_t frameBytes = mConverter->Plan().mSource.mBytesPerFrame;
    OSStatus status = noErr;
    for (UInt32 done = 0; status == noErr && done < inFrameCount;)
    {
        const UInt32 count = std::min(mPermuter->BlockFrames(), inFrameCount - done);
        status = WriteBlock(mPermuter->Permute(inFrames + done * frameBytes, count), count);
        done += count;
    }
    return status;
}

OSStatus ExtendedFile::WriteBlock(const UInt8* inFrames, UInt32 inFrameCount)
{
    mFramesTaken += inFrameCount;
    if (!mIsDirect)
        return mConverter->Push(inFrames, inFrameCount, *mWriter);
    const std::size_t frameBytes = mStored.mFormat.mBytesPerFrame;
    return mWriter->Write({inFrames, inFrameCount * frameBytes}, {});
}

OSStatus ExtendedFile::Close()
{
    try
    {
        if (!mIsStarted)
            Note(Start());
        if (mFailure == noErr && !mIsDirect)
            Note(mConverter->Drain(*mWriter));
        if (mHasHeader)
            Note(Complete());
    }
    catch (const std::bad_alloc&)
    {
        Note(kAudio_MemFullError);
    }
    Note(mSink->Close());
    return mFailure;
}

OSStatus ExtendedFile::Complete()
{
    StreamEnd end;
    const OSStatus described = mConverter->DescribeEnd(end);
    end.mValidFrames = FrameCount();
    const OSStatus finished = mWriter->Finish(end);
    return described != noErr ? described : finished;
}

void ExtendedFile::Note(OSStatus inStatus)
{
    if (mFailure == noErr)
        mFailure = inStatus;
}

const AudioStreamBasicDescription* ExtendedFile::ClientFormat() const
{
    if (mConverter)
        return &mConverter->Plan().mSource;
    return mRequest.mFormat.mFormatID == kAudioFormatLinearPCM ? &mRequest.mFormat : nullptr;
}

SInt64 ExtendedFile::FrameCount() const
{
    if (!mConverter || mConverter->Plan().mShape.mInRate == mConverter->Plan().mShape.mOutRate)
        return static_cast<SInt64>(mFramesTaken);
    const MixShape& shape = mConverter->Plan().mShape;
    const double frames = static_cast<double>(mFramesTaken) * shape.mOutRate / shape.mInRate;
    return static_cast<SInt64>(std::floor(frames + 0.5));
}

}  // namespace audiotoolbox
