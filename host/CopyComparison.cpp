#include "host/CopyComparison.h"

#include "host/ChannelMap.h"
#include "host/DelaySearch.h"
#include "host/Failure.h"
#include "host/Interrupt.h"
#include "host/SampleConversion.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace host
{

namespace
{

constexpr std::int64_t kMostSilenceHeld = 4 * kDelayWindow;

constexpr double kStepOf32Bits = 1.0 / 2147483648.0;  // full scale is 1

void RequireSameForm(const AudioShape& inCopy, const AudioShape& inReference)
{
    if (inCopy.mSampleRate == inReference.mSampleRate &&
        inCopy.ChannelCount() == inReference.ChannelCount())
        return;
    throw Failure(kExitFailed, 0,
                  "The copy has " + std::to_string(inCopy.ChannelCount()) + " channels at " +
                      std::to_string(inCopy.mSampleRate) + " Hz and not " +
                      std::to_string(inReference.ChannelCount()) + " at " +
                      std::to_string(inReference.mSampleRate) + " Hz.");
}

// By name where each channel is found so, else in order: containers have orders of their own.
std::vector<std::size_t> MatchChannels(const ChannelLabels& inCopy,
                                       const ChannelLabels& inReference)
{
    const ChannelMap map(inCopy, inReference);
    std::vector<std::size_t> sources(inReference.size());
    bool areAllFound = map.IsSelection();
    for (std::size_t channel = 0; channel < sources.size() && areAllFound; ++channel)
    {
        areAllFound = map.Source(channel) != ChannelMap::kSilent;
        sources[channel] = static_cast<std::size_t>(std::max(map.Source(channel), 0));
    }
    if (!areAllFound)
        for (std::size_t channel = 0; channel < sources.size(); ++channel)
            sources[channel] = channel;
    return sources;
}

}  // namespace

void FloatQueue::Append(const char* const* inChannels, std::size_t inBytesPerSample,
                        std::int64_t inCount)
{
    for (std::size_t channel = 0; channel < mChannels.size(); ++channel)
    {
        std::vector<float>& samples = mChannels[channel];
        const std::size_t before = samples.size();
        samples.resize(before + static_cast<std::size_t>(inCount));
        ToFloat(inChannels[channel], inBytesPerSample, inCount, samples.data() + before);
    }
}

void FloatQueue::Drop(std::int64_t inCount)
{
    for (std::vector<float>& samples : mChannels)
        samples.erase(samples.begin(), samples.begin() + inCount);
}

std::vector<float> FloatQueue::Sum(std::int64_t inCount) const
{
    std::vector<float> sum(static_cast<std::size_t>(inCount));
    for (const std::vector<float>& samples : mChannels)
        for (std::size_t frame = 0; frame < sum.size(); ++frame)
            sum[frame] += samples[frame];
    return sum;
}

CopyComparison::CopyComparison(ReadSession& ioCopy, const AudioShape& inReference, CopyLoss inLoss)
    : mShape(inReference),
      mLoss(inLoss),
      mReader(ioCopy, false),
      mCopyBytes(ioCopy.Info().BytesPerSample()),
      mReference(inReference.ChannelCount()),
      mCopy(inReference.ChannelCount()),
      mIsAligned(inLoss != CopyLoss::kLossy)
{
    const AudioShape copy = ShapeOf(ioCopy.Info());
    RequireSameForm(copy, mShape);
    mCopySources = MatchChannels(copy.mLabels, mShape.mLabels);
}

void CopyComparison::Write(const char* const* inChannels, std::int64_t inFrameCount)
{
    mResult.mFramesExpected += inFrameCount;
    mReference.Append(inChannels, mShape.BytesPerSample(), inFrameCount);
    LoseWhatCannotBeHeld(inFrameCount);
    ReadCopy(mReference.FrameCount() + kLargestDelay);
    if (!mIsAligned)
        FindDelay(false);
    if (mIsAligned)
        Compare(mReference.FrameCount());
}

// Integers end at full scale, and neither they nor encoders take what is no number.
void CopyComparison::LoseWhatCannotBeHeld(std::int64_t inFrameCount)
{
    if (mLoss == CopyLoss::kNone)
        return;
    for (std::size_t channel = 0; channel < mShape.ChannelCount(); ++channel)
    {
        float* samples = mReference.Last(channel, inFrameCount);
        for (std::int64_t frame = 0; frame < inFrameCount; ++frame)
        {
            float& sample = samples[frame];
            if (mLoss == CopyLoss::kRounded)
                sample = std::isnan(sample) ? 0.0F : std::clamp(sample, -1.0F, 1.0F);
            else if (!std::isfinite(sample))
                sample = 0.0F;
        }
    }
}

bool CopyComparison::AreAlike(float inReference, float inCopy) const
{
    if (inReference == inCopy || (std::isnan(inReference) && std::isnan(inCopy)))
        return true;
    return mLoss == CopyLoss::kRounded &&
           std::abs(static_cast<double>(inCopy) - inReference) <= kStepOf32Bits;
}

VerificationResult CopyComparison::Finish()
{
    if (!mIsAligned)
        FindDelay(true);
    Compare(mReference.FrameCount());
    while (ReadCopyBlock())
    {
        CheckInterrupt();
        Compare(mReference.FrameCount());
        if (mReference.FrameCount() == 0)
            mCopy.Drop(mCopy.FrameCount());
    }
    // Noise that is no number is the worst, not none.
    mResult.mSignalToNoise = mNoise == 0.0           ? std::numeric_limits<double>::infinity()
                             : std::isfinite(mNoise) ? 10.0 * std::log10(mSignal / mNoise)
                                                     : -std::numeric_limits<double>::infinity();
    return mResult;
}

void CopyComparison::ReadCopy(std::int64_t inFramesWanted)
{
    while (mCopy.FrameCount() < inFramesWanted && ReadCopyBlock())
    {
    }
}

bool CopyComparison::ReadCopyBlock()
{
    const std::int64_t count = mIsCopyAtEnd ? 0 : mReader.Next();
    mIsCopyAtEnd = count == 0;
    if (mIsCopyAtEnd)
        return false;
    mResult.mFramesFound += count;
    std::vector<const char*> channels;
    for (const std::size_t source : mCopySources)
        channels.push_back(mReader.Channels()[source]);
    mCopy.Append(channels.data(), mCopyBytes, count);
    return true;
}

void CopyComparison::FindDelay(bool inIsAtEnd)
{
    const std::vector<float> reference = mReference.Sum(mReference.FrameCount());
    const std::int64_t onset = FindOnset(reference);
    if (onset < 0 && inIsAtEnd)
        return SetDelay(0);
    if (onset < 0)  // silence is held for as long as the copy's sound may have begun in it
        return Compare(mReference.FrameCount() - kMostSilenceHeld);
    if (!inIsAtEnd && mReference.FrameCount() - onset < kDelayWindow)
        return;
    const std::vector<float> copy = mCopy.Sum(mCopy.FrameCount());
    SetDelay(host::FindDelay(reference, copy, onset));
}

void CopyComparison::SetDelay(std::int64_t inDelay)
{
    mIsAligned = true;
    mResult.mDelay = inDelay;
    mCopyToDrop = std::max<std::int64_t>(inDelay, 0);
    mReferenceToDrop = std::max<std::int64_t>(-inDelay, 0);
}

void CopyComparison::DropDelay()
{
    const std::int64_t copy = std::min(mCopyToDrop, mCopy.FrameCount());
    mCopy.Drop(copy);
    mCopyToDrop -= copy;
    const std::int64_t reference = std::min(mReferenceToDrop, mReference.FrameCount());
    mReference.Drop(reference);
    mReferenceToDrop -= reference;
    mPosition += reference;
}

// Compares what both sides have, up to inLimit frames, and takes it off.
void CopyComparison::Compare(std::int64_t inLimit)
{
    DropDelay();
    const std::int64_t count = std::min({inLimit, mReference.FrameCount(), mCopy.FrameCount()});
    if (count <= 0)
        return;
    for (std::size_t channel = 0; channel < mShape.ChannelCount(); ++channel)
        CompareChannel(channel, count);
    mReference.Drop(count);
    mCopy.Drop(count);
    mPosition += count;
}

void CopyComparison::CompareChannel(std::size_t inChannel, std::int64_t inCount)
{
    const float* reference = mReference.Channel(inChannel);
    const float* copy = mCopy.Channel(inChannel);
    for (std::int64_t frame = 0; frame < inCount; ++frame)
    {
        mSignal += static_cast<double>(reference[frame]) * reference[frame];
        if (AreAlike(reference[frame], copy[frame]))
            continue;
        const double error = static_cast<double>(copy[frame]) - reference[frame];
        mNoise += error * error;
        const std::int64_t place = mPosition + frame;
        if (mResult.mFirstDifference < 0 || place < mResult.mFirstDifference)
            mResult.mFirstDifference = place;
    }
}

}  // namespace host
