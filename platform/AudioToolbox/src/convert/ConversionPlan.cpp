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

}  // namespace

OSStatus PlanConversion(const AudioStreamBasicDescription& inSource,
                        const AudioStreamBasicDescription& inDestination, ConversionPlan& outPlan)
{
    outPlan = ConversionPlan();
    outPlan.mSource = inSource;
    outPlan.mDestination = inDestination;
    outPlan.mShape.mInChannels = inSource.mChannelsPerFrame;
    outPlan.mShape.mOutChannels = inDestination.mChannelsPerFrame;
    if (!PlanSource(outPlan) || !ReadSampleLayout(inDestination, outPlan.mTo) ||
        !PlanRate(outPlan) || !FrameMixer::CanMix(outPlan.mShape))
        return kAudioConverterErr_FormatNotSupported;
    outPlan.mNeedsMixer = outPlan.mShape.mInRate != outPlan.mShape.mOutRate ||
                          outPlan.mShape.mInChannels != outPlan.mShape.mOutChannels;
    return noErr;
}

}  // namespace audiotoolbox
