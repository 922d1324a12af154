#include "convert/Converter.h"

#include "convert/CodecEncoder.h"
#include "convert/LogLawEncoder.h"
#include "convert/PlainSources.h"

#include <AudioToolbox/AudioFile.h>

#include <algorithm>
#include <cmath>
#include <new>

namespace audiotoolbox
{

namespace
{

std::unique_ptr<SampleSource> MakeSource(const ConversionPlan& inPlan, InputPull& inInput)
{
    const AudioStreamBasicDescription& source = inPlan.mSource;
    if (source.mFormatID == kAudioFormatLinearPCM)
        return std::make_unique<LinearSource>(inInput, inPlan.mFrom);
    if (inPlan.mFormat->mDecoder == DecoderRoad::Codec)
        return std::make_unique<CodecSource>(inInput, source);
    const LogLaw law = source.mFormatID == kAudioFormatALaw ? LogLaw::A : LogLaw::Mu;
    return std::make_unique<LogLawSource>(inInput, law, source.mChannelsPerFrame);
}

std::unique_ptr<PacketEncoder> MakeEncoder(const ConversionPlan& inPlan,
                                           const EncoderSettings& inSettings)
{
    const EncoderRow& row = *inPlan.mEncoder;
    if (row.mRoad == EncoderRoad::Codec)
        return std::make_unique<CodecEncoder>(inPlan, inSettings);
    const LogLaw law = row.mFormatID == kAudioFormatALaw ? LogLaw::A : LogLaw::Mu;
    return std::make_unique<LogLawEncoder>(law, inPlan.mStream.mChannelCount);
}

std::size_t FrameBytes(const ConversionPlan& inPlan)
{
    return std::size_t{WordBytes(inPlan.mTo.mWord)} * inPlan.mShape.mOutChannels;
}

}  // namespace

Converter::Converter(const ConversionPlan& inPlan)
    : mPlan(inPlan),
      mInput(inPlan.mSource.mBytesPerPacket),
      mSource(MakeSource(inPlan, mInput)),
      mWriter(inPlan.mShape.mInChannels, inPlan.mTo),
      mQueue(FrameBytes(inPlan))
{
    if (mPlan.mNeedsMixer)
        mMixer.emplace(mPlan.mShape, mPlan.mTo);
    if (mPlan.mEncoder == nullptr)
        return;
    mSettings.emplace(*mPlan.mEncoder, mPlan.mStream);
    mEncoder = MakeEncoder(mPlan, *mSettings);
}

OSStatus Converter::Fill(AudioConverterRef inSelf, AudioConverterComplexInputDataProc inProc,
                         void* inUserData, UInt32& ioPackets, AudioBufferList& ioList,
                         AudioStreamPacketDescription* outPackets)
{
    mInput.Bind(inSelf, inProc, inUserData);
    OSStatus status = noErr;
    try
    {
        if (mEncoder)
        {
            const FrameSupply supply = [this](UInt8* outFrames, UInt32& ioFrames)
            {
                AudioBufferList list = {1,
                                        {{0, ioFrames * mPlan.mLinear.mBytesPerFrame, outFrames}}};
                return FillLinear(ioFrames, list);
            };
            status = mEncoder->Fill(supply, ioPackets, ioList, outPackets);
        }
        else
            status = FillLinear(ioPackets, ioList);
        mInput.KeepRest();
    }
    catch (const std::bad_alloc&)
    {
        mInput.Reset();  // its data is the client's and goes with this call
        status = kAudio_MemFullError;
    }
    return status;
}

OSStatus Converter::FillLinear(UInt32& ioFrames, AudioBufferList& ioList)
{
    OutputFrames output(mPlan.mLinear, ioFrames, ioList);
    ioFrames = 0;
    if (!output.IsUsable())
        return kAudioConverterErr_InvalidOutputSize;
    OSStatus status = noErr;
    std::size_t frames = 1;
    try
    {
        while (status == noErr && frames > 0 && output.Room() > 0)
            status = FillStep(output, frames);
    }
    catch (const std::bad_alloc&)
    {
        mInput.Reset();
        status = kAudio_MemFullError;
    }
    output.Finish();
    ioFrames = output.Done();
    return status;
}

OSStatus Converter::FillStep(OutputFrames& ioOutput, std::size_t& outFrames)
{
    outFrames = 0;
    if (mMixer || mPrime.trailingFrames > 0)
        return FillFromQueue(ioOutput, outFrames);
    return FillDirect(ioOutput, outFrames);
}

OSStatus Converter::FillDirect(OutputFrames& ioOutput, std::size_t& outFrames)
{
    SampleBlock block;
    if (const OSStatus status = PeekValid(ioOutput.Room(), block); status != noErr)
        return status;
    outFrames = std::min(block.mFrameCount, ioOutput.Room());
    if (outFrames == 0)
        return noErr;
    WriteToOutput(block, outFrames, ioOutput);
    mSource->Consume(outFrames);
    return noErr;
}

void Converter::WriteToOutput(const SampleBlock& inBlock, std::size_t inFrames,
                              OutputFrames& ioOutput)
{
    if (UInt8* place = ioOutput.Place())
    {
        mWriter.Write(inBlock, inFrames, place);
        ioOutput.Advance(inFrames);
        return;
    }
    mQueue.Clear();  // serves as scratch here: nothing else uses it on this way
    mWriter.Write(inBlock, inFrames, mQueue.Back(inFrames));
    ioOutput.Put(mQueue.Front(), inFrames);
}

OSStatus Converter::PeekValid(std::size_t inWanted, SampleBlock& outBlock)
{
    for (;;)
    {
        const std::size_t wanted = inWanted + static_cast<std::size_t>(mLeadingLeft);
        const OSStatus status = mSource->Peek(wanted, outBlock);
        if (status != noErr || mLeadingLeft == 0 || outBlock.mFrameCount == 0)
            return status;
        const UInt64 dropped = std::min<UInt64>(mLeadingLeft, outBlock.mFrameCount);
        mSource->Consume(static_cast<std::size_t>(dropped));
        mLeadingLeft -= dropped;
    }
}

std::size_t Converter::HeldFrames() const
{
    const double trailing = mPrime.trailingFrames;
    const double ratio = static_cast<double>(mPlan.mShape.mOutRate) / mPlan.mShape.mInRate;
    return static_cast<std::size_t>(
        std::floor(mPlan.mNeedsMixer ? trailing * ratio + 0.5 : trailing));
}

OSStatus Converter::FillFromQueue(OutputFrames& ioOutput, std::size_t& outFrames)
{
    const std::size_t held = HeldFrames();
    while (mQueue.FrameCount() <= held && !mHasEnded)
        if (const OSStatus status = FeedQueue(ioOutput.Room()); status != noErr)
            return status;
    if (mQueue.FrameCount() <= held)
        return noErr;
    outFrames = std::min(mQueue.FrameCount() - held, ioOutput.Room());
    ioOutput.Put(mQueue.Front(), outFrames);
    mQueue.DropFront(outFrames);
    return noErr;
}

OSStatus Converter::FeedQueue(std::size_t inWanted)
{
    SampleBlock block;
    if (const OSStatus status = PeekValid(inWanted, block); status != noErr)
        return status;
    mHasEnded = block.mFrameCount == 0;
    if (mHasEnded)
        return mMixer ? mMixer->Finish(mQueue) : OSStatus{noErr};
    std::size_t taken = block.mFrameCount;
    if (mMixer)
    {
        if (const OSStatus status = mMixer->Mix(block, taken, mQueue); status != noErr)
            return status;
    }
    else
    {
        mWriter.Write(block, taken, mQueue.Back(taken));
        mQueue.Added(taken);
    }
    mSource->Consume(taken);
    return noErr;
}

void Converter::Reset()
{
    mInput.Reset();
    mSource->Reset();
    if (mMixer)
        mMixer->Reset();
    mQueue.Clear();
    mLeadingLeft = mPrime.leadingFrames;
    mHasEnded = false;
    if (mEncoder)
        mEncoder->Reset();
}

CodecSource* Converter::CookieTaker() const
{
    if (mPlan.mFormat->mDecoder != DecoderRoad::Codec || mPlan.mFormat->mCookie == CookieForm::None)
        return nullptr;
    return static_cast<CodecSource*>(mSource.get());
}

void Converter::SetPrime(const AudioConverterPrimeInfo& inPrime)
{
    mPrime = inPrime;
    mLeadingLeft = inPrime.leadingFrames;
}

}  // namespace audiotoolbox
