#include "host/ConversionPipeline.h"

#include "host/BlockReader.h"
#include "host/SampleConversion.h"

#include <algorithm>

namespace host
{

namespace
{

constexpr std::int64_t kMemoryLimit = 64 << 20;  // bytes of one block, however many channels

bool HasSilentChannel(const ChannelMap& inMap)
{
    for (std::size_t channel = 0; channel < inMap.TargetCount(); ++channel)
        if (inMap.Source(channel) == ChannelMap::kSilent)
            return true;
    return false;
}

// Frames that are worked on at a time.
std::int64_t BlockLength(std::size_t inChannelCount)
{
    const auto frameBytes = static_cast<std::int64_t>(std::max<std::size_t>(inChannelCount, 1) * 4);
    return std::clamp<std::int64_t>(kMemoryLimit / frameBytes, 1, BlockReader::kBlockFrames);
}

std::vector<const char*> Advance(const char* const* inChannels, std::size_t inCount,
                                 std::size_t inBytes)
{
    std::vector<const char*> channels(inChannels, inChannels + inCount);
    for (const char*& channel : channels)
        channel += inBytes;
    return channels;
}

}  // namespace

ConversionPipeline::ConversionPipeline(const PipelineOptions& inOptions, const ChannelMap& inMap,
                                       BlockSink& outSink)
    : mOptions(inOptions),
      mMap(inMap),
      mSink(outSink),
      mSelects(inMap.IsSelection()),
      mWorking(mSelects ? inMap.SourceCount() : inMap.TargetCount()),
      mBlock(BlockLength(std::max(inMap.SourceCount(), inMap.TargetCount()))),
      mFloatChannels(std::max(inMap.SourceCount(), mWorking)),
      mSelected(inMap.TargetCount())
{
    const bool resamples = inOptions.mSource.mSampleRate != inOptions.mTarget.mSampleRate;
    const bool needsFloats = resamples || !mSelects;
    const auto frames = static_cast<std::size_t>(mBlock);
    const std::size_t fromBytes = inOptions.mSource.BytesPerSample();
    const std::size_t toBytes = inOptions.mTarget.BytesPerSample();

    if (needsFloats && fromBytes != 4)
        mFloats = Planes<float>(mMap.SourceCount(), frames);
    if (!mSelects)
        mMixed = Planes<float>(mWorking, frames);
    if (resamples)
    {
        const auto quality = toBytes <= 2 ? Resampler::Quality::k16Bit : Resampler::Quality::k24Bit;
        mResampler = std::make_unique<Resampler>(inOptions.mSource.mSampleRate,
                                                 inOptions.mTarget.mSampleRate, mWorking, quality);
        mResampled = Planes<float>(mWorking, frames);
    }
    if (needsFloats ? toBytes != 4 : toBytes != fromBytes)
        mRounded = Planes<char>(mWorking, frames * toBytes);
    if (mSelects && HasSilentChannel(mMap))
    {
        mSilence.resize(frames * toBytes);
        FillWithSilence(mSilence.data(), toBytes, mBlock);
    }
    if (inOptions.mDithers)
        for (std::size_t channel = 0; channel < mWorking; ++channel)
            mNoise.emplace_back(static_cast<std::uint32_t>(channel + 1));
}

void ConversionPipeline::Push(const char* const* inChannels, std::int64_t inFrameCount)
{
    const std::size_t fromBytes = mOptions.mSource.BytesPerSample();
    for (std::int64_t done = 0; done < inFrameCount;)
    {
        const std::int64_t count = std::min(inFrameCount - done, mBlock);
        const std::vector<const char*> channels =
            Advance(inChannels, mMap.SourceCount(), static_cast<std::size_t>(done) * fromBytes);
        if (mResampler || !mSelects)
            PushFloats(channels.data(), count);
        else if (fromBytes == mOptions.mTarget.BytesPerSample())
            WriteSelection(channels.data(), count);
        else
            ChangeWidths(channels.data(), fromBytes, count);
        done += count;
    }
}

void ConversionPipeline::PushFloats(const char* const* inChannels, std::int64_t inFrameCount)
{
    const std::size_t bytes = mOptions.mSource.BytesPerSample();
    for (std::size_t channel = 0; channel < mMap.SourceCount(); ++channel)
    {
        if (bytes == 4)
        {
            mFloatChannels[channel] = reinterpret_cast<const float*>(inChannels[channel]);
            continue;
        }
        ToFloat(inChannels[channel], bytes, inFrameCount, mFloats[channel]);
        mFloatChannels[channel] = mFloats[channel];
    }
    const float* const* channels = mSelects ? mFloatChannels.data() : Mix(inFrameCount);
    if (mResampler)
        Resample(channels, inFrameCount);
    else
        WriteFloats(channels, inFrameCount);
}

const float* const* ConversionPipeline::Mix(std::int64_t inFrameCount)
{
    for (std::size_t target = 0; target < mWorking; ++target)
    {
        float* mixed = mMixed[target];
        std::fill(mixed, mixed + inFrameCount, 0.0F);
        for (const ChannelPart& part : mMap.Parts(target))
        {
            const float* source = mFloatChannels[static_cast<std::size_t>(part.mSource)];
            for (std::int64_t frame = 0; frame < inFrameCount; ++frame)
                mixed[frame] += source[frame] * part.mGain;
        }
    }
    return mMixed.Channels();
}

void ConversionPipeline::Resample(const float* const* inChannels, std::int64_t inFrameCount)
{
    std::vector<const float*> channels(inChannels, inChannels + mWorking);
    for (std::int64_t left = inFrameCount;;)
    {
        const auto [taken, made] =
            mResampler->Process(channels.data(), left, mResampled.Channels(), mBlock);
        if (made > 0)
            WriteFloats(mResampled.Channels(), made);
        left -= taken;
        for (const float*& channel : channels)
            channel += taken;
        if (left == 0 && made < mBlock)
            return;
    }
}

void ConversionPipeline::Finish()
{
    if (!mResampler)
        return;
    while (const std::int64_t made = mResampler->Drain(mResampled.Channels(), mBlock))
        WriteFloats(mResampled.Channels(), made);
}

void ConversionPipeline::WriteFloats(const float* const* inChannels, std::int64_t inFrameCount)
{
    std::vector<const char*> channels(mWorking);
    for (std::size_t channel = 0; channel < mWorking; ++channel)
        channels[channel] = reinterpret_cast<const char*>(inChannels[channel]);
    if (mOptions.mTarget.BytesPerSample() == 4)
        WriteSelection(channels.data(), inFrameCount);
    else
        ChangeWidths(channels.data(), 4, inFrameCount);
}

void ConversionPipeline::ChangeWidths(const char* const* inChannels, std::size_t inFromBytes,
                                      std::int64_t inFrameCount)
{
    for (std::size_t channel = 0; channel < mWorking; ++channel)
        ChangeWidth(inChannels[channel], inFromBytes, inFrameCount,
                    mOptions.mTarget.BytesPerSample(), mRounded[channel],
                    mNoise.empty() ? nullptr : &mNoise[channel]);
    WriteSelection(mRounded.Channels(), inFrameCount);
}

void ConversionPipeline::WriteSelection(const char* const* inChannels, std::int64_t inFrameCount)
{
    if (!mSelects)
        return WriteBlock(inChannels, inFrameCount);
    for (std::size_t channel = 0; channel < mSelected.size(); ++channel)
    {
        const int source = mMap.Source(channel);
        mSelected[channel] = source == ChannelMap::kSilent
                                 ? mSilence.data()
                                 : inChannels[static_cast<std::size_t>(source)];
    }
    WriteBlock(mSelected.data(), inFrameCount);
}

void ConversionPipeline::WriteBlock(const char* const* inChannels, std::int64_t inFrameCount)
{
    if (mOptions.mMeasuresPeak)
        for (std::size_t channel = 0; channel < mMap.TargetCount(); ++channel)
            mPeak = std::max(mPeak, PeakOf(inChannels[channel], mOptions.mTarget.BytesPerSample(),
                                           inFrameCount));
    mSink.Write(inChannels, inFrameCount);
    mFramesWritten += inFrameCount;
}

}  // namespace host
