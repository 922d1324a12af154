#include "convert/ConversionPlan.h"

#include <AudioToolbox/AudioConverter.h>

#include <cmath>

namespace audiotoolbox
{

namespace
{

constexpr double kHighestRate = 4294967295.0;  // Hz, what a client's 32 bits hold
constexpr double kHighestRateToChange = 2147483647.0;
constexpr UInt32 kMostPacketBytes = 1 << 24;
constexpr UInt32 kMostFramesPerPacket = 1 << 20;

bool IsRate(double inRate)
{
    return inRate > 0.0 && inRate <= kHighestRate;  // false for what is not a number
}

bool IsCodecSource(const AudioStreamBasicDescription& inSource, const DataFormat& inFormat)
{
    return inSource.mChannelsPerFrame >= 1 &&
           inSource.mChannelsPerFrame <= inFormat.mMaximumChannels &&
           inSource.mBytesPerPacket <= kMostPacketBytes &&
           inSource.mFramesPerPacket <= kMostFramesPerPacket;
}

// One byte is one sample, and a packet is a frame.
bool IsLogLawSource(const AudioStreamBasicDescription& inSource)
{
    return inSource.mChannelsPerFrame >= 1 && inSource.mChannelsPerFrame <= kMaxChannels &&
           inSource.mFramesPerPacket == 1 && inSource.mBytesPerPacket == inSource.mChannelsPerFrame;
}

bool PlanSource(ConversionPlan& ioPlan)
{
    const AudioStreamBasicDescription& source = ioPlan.mSource;
    ioPlan.mFormat = FindDataFormat(source.mFormatID);
    if (ioPlan.mFormat == nullptr || !IsRate(source.mSampleRate))
        return false;
    if (source.mFormatID == kAudioFormatLinearPCM)
        return ReadSampleLayout(source, ioPlan.mFrom) && !IsNonInterleaved(source);
    switch (ioPlan.mFormat->mDecoder)
    {
        case DecoderRoad::Sample:
            return IsLogLawSource(source);
        case DecoderRoad::Codec:
            return IsCodecSource(source, *ioPlan.mFormat);
        case DecoderRoad::None:
            break;
    }
    return false;
}

bool PlanRate(ConversionPlan& ioPlan)
{
    const double from = ioPlan.mSource.mSampleRate;
    double& to = ioPlan.mDestination.mSampleRate;
    if (to == 0.0)
        to = from;
    if (!IsRate(to))
        return false;
    ioPlan.mShape.mInRate = static_cast<UInt32>(std::min(std::floor(from + 0.5), kHighestRate));
    ioPlan.mShape.mOutRate = static_cast<UInt32>(std::min(std::floor(to + 0.5), kHighestRate));
    // A client's rate in whole hertz is no rate change.
    if (ioPlan.mShape.mInRate == ioPlan.mShape.mOutRate)
        return true;
    return ioPlan.mShape.mInRate > 0 && ioPlan.mShape.mOutRate > 0 &&
           from <= kHighestRateToChange && to <= kHighestRateToChange;
}

// The depth of a lossless stream, in bits; 0 for flags that no encoder obeys.
UInt32 LosslessDepth(const AudioStreamBasicDescription& inDestination, const SampleLayout& inFrom)
{
    switch (inDestination.mFormatFlags)
    {
        case 0:
            return !IsFloat(inFrom.mWord) && inFrom.mBits <= 16 ? 16 : 24;
        case kAppleLosslessFormatFlag_16BitSourceData:
            return 16;
        case kAppleLosslessFormatFlag_24BitSourceData:
            return 24;
        default:
            return 0;
    }
}

SampleLayout EncoderInput(const EncoderRow& inRow, UInt32 inDepth)
{
    const SampleLayout words16 = {SampleWord::Int16, false, false, false, 16};
    switch (inRow.mSamples)
    {
        case EncoderSamples::Floats:
            return SampleLayout();
        case EncoderSamples::Lossless:
            return inDepth == 16 ? words16
                                 : SampleLayout{SampleWord::Int32, false, false, false, 24};
        case EncoderSamples::Words16:
            break;
    }
    return words16;
}

AudioStreamBasicDescription DescribeInput(const SampleLayout& inLayout, Float64 inRate,
                                          UInt32 inChannels)
{
    AudioFormatFlags flags =
        IsFloat(inLayout.mWord) ? kAudioFormatFlagIsFloat : kAudioFormatFlagIsSignedInteger;
    const UInt32 wordBytes = WordBytes(inLayout.mWord);
    flags |=
        inLayout.mBits == wordBytes * 8 ? kAudioFormatFlagIsPacked : kAudioFormatFlagIsAlignedHigh;
    const UInt32 frameBytes = wordBytes * inChannels;
    return {inRate,     kAudioFormatLinearPCM, flags, frameBytes, 1, frameBytes,
            inChannels, inLayout.mBits,        0};
}

// What the destination leaves open becomes the encoder's nearest to the source.
bool PlanStream(ConversionPlan& ioPlan)
{
    const EncoderRow& row = *ioPlan.mEncoder;
    AudioStreamBasicDescription& format = ioPlan.mDestination;
    if (format.mSampleRate == 0.0)
        format.mSampleRate = NearestRate(row, ioPlan.mSource.mSampleRate);
    if (format.mChannelsPerFrame == 0)
        format.mChannelsPerFrame = NearestChannels(row, ioPlan.mSource.mChannelsPerFrame);
    if (!IsRate(format.mSampleRate) || format.mSampleRate > Float64{kHighestEncodedRate})
        return false;
    ioPlan.mStream.mRate = static_cast<UInt32>(std::floor(format.mSampleRate + 0.5));
    ioPlan.mStream.mChannelCount = format.mChannelsPerFrame;
    return TakesRate(row, ioPlan.mStream.mRate) && TakesChannels(row, ioPlan.mStream.mChannelCount);
}

bool PlanDepth(ConversionPlan& ioPlan)
{
    if (ioPlan.mEncoder->mSamples != EncoderSamples::Lossless)
        return ioPlan.mDestination.mFormatFlags == 0;
    ioPlan.mStream.mDepth = LosslessDepth(ioPlan.mDestination, ioPlan.mFrom);
    ioPlan.mDestination.mFormatFlags = ioPlan.mStream.mDepth == 16
                                           ? kAppleLosslessFormatFlag_16BitSourceData
                                           : kAppleLosslessFormatFlag_24BitSourceData;
    return ioPlan.mStream.mDepth != 0;
}

bool PlanEncoding(ConversionPlan& ioPlan)
{
    if (ioPlan.mSource.mFormatID != kAudioFormatLinearPCM || !PlanStream(ioPlan) ||
        !PlanDepth(ioPlan))
        return false;
    AudioStreamBasicDescription& format = ioPlan.mDestination;
    ioPlan.mTo = EncoderInput(*ioPlan.mEncoder, ioPlan.mStream.mDepth);
    ioPlan.mLinear = DescribeInput(ioPlan.mTo, format.mSampleRate, format.mChannelsPerFrame);
    format.mFramesPerPacket = FramesPerPacket(*ioPlan.mEncoder, ioPlan.mStream);
    format.mBytesPerPacket = BytesPerPacket(*ioPlan.mEncoder, ioPlan.mStream);
    format.mBytesPerFrame = format.mFramesPerPacket == 1 ? format.mBytesPerPacket : 0;
    format.mBitsPerChannel = 0;
    ioPlan.mShape.mOutChannels = format.mChannelsPerFrame;
    return PlanRate(ioPlan);
}

bool PlanDestination(ConversionPlan& ioPlan)
{
    ioPlan.mEncoder = FindEncoder(ioPlan.mDestination.mFormatID);
    if (ioPlan.mEncoder != nullptr && ioPlan.mEncoder->mRoad != EncoderRoad::Linear)
        return PlanEncoding(ioPlan);
    ioPlan.mEncoder = nullptr;
    if (!ReadSampleLayout(ioPlan.mDestination, ioPlan.mTo) || !PlanRate(ioPlan))
        return false;
    ioPlan.mLinear = ioPlan.mDestination;
    return true;
}

}  // namespace

OSStatus PlanConversion(const AudioStreamBasicDescription& inSource,
                        const AudioStreamBasicDescription& inDestination, ConversionPlan& outPlan)
{
    outPlan = ConversionPlan();
    outPlan.mSource = inSource;
    outPlan.mDestination = inDestination;
    outPlan.mShape.mInChannels = inSource.mChannelsPerFrame;
    outPlan.mShape.mOutChannels = inDestination.mChannelsPerFrame;
    if (!PlanSource(outPlan) || !PlanDestination(outPlan))
        return kAudioConverterErr_FormatNotSupported;
    outPlan.mNeedsMixer = outPlan.mShape.mInRate != outPlan.mShape.mOutRate ||
                          outPlan.mShape.mInChannels != outPlan.mShape.mOutChannels;
    return noErr;
}

}  // namespace audiotoolbox
