#include "convert/EncoderSettings.h"

#include <AudioToolbox/AudioConverter.h>
#include <AudioToolbox/AudioFile.h>

#include <algorithm>

namespace audiotoolbox
{

namespace
{

constexpr UInt32 kVariable = kAudioCodecBitRateControlMode_Variable;
constexpr Float32 kHighestQuality = 127.0f;

UInt32 FirstMode(const EncoderRow& inRow)
{
    return HasBitRateMode(inRow, kAudioCodecBitRateControlMode_LongTermAverage)
               ? kAudioCodecBitRateControlMode_LongTermAverage
               : kAudioCodecBitRateControlMode_Constant;
}

std::vector<AudioValueRange> AsRanges(const std::vector<UInt32>& inBitRates)
{
    std::vector<AudioValueRange> ranges;
    for (const UInt32 bitRate : inBitRates)
        ranges.push_back({Float64(bitRate), Float64(bitRate)});
    return ranges;
}

}  // namespace

EncoderSettings::EncoderSettings(const EncoderRow& inRow, const StreamShape& inShape)
    : mRow(&inRow), mShape(inShape)
{
    if (HasBitRates())
        (void)SetMode(FirstMode(inRow));  // one of the row's own
}

OSStatus EncoderSettings::SetMode(UInt32 inMode)
{
    if (!HasBitRateMode(*mRow, inMode))
        return kAudio_ParamError;
    mMode = inMode;
    mBitRate = DefaultBitRate(*mRow, mMode, mShape.mRate, mShape.mChannelCount);
    return noErr;
}

OSStatus EncoderSettings::SetBitRate(UInt32 inBitRate)
{
    const std::vector<UInt32> listed =
        EncoderBitRates(*mRow, mMode, mShape.mRate, mShape.mChannelCount);
    if (mMode == kVariable || !std::binary_search(listed.begin(), listed.end(), inBitRate))
        return kAudio_ParamError;
    mBitRate = inBitRate;
    return noErr;
}

OSStatus EncoderSettings::SetQuality(Float32 inQuality)
{
    if (!(inQuality >= 0.0f && inQuality <= kHighestQuality))
        return kAudio_ParamError;
    mQuality = inQuality;
    return noErr;
}

std::vector<AudioValueRange> EncoderSettings::ApplicableBitRates() const
{
    return AsRanges(EncoderBitRates(*mRow, mMode, mShape.mRate, mShape.mChannelCount));
}

std::vector<AudioValueRange> EncoderSettings::AvailableBitRates() const
{
    return AsRanges(AllBitRates(*mRow, mMode, mShape.mChannelCount));
}

}  // namespace audiotoolbox
