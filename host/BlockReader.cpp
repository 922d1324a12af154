#include "host/BlockReader.h"

#include "host/StoredSettings.h"

#include <algorithm>
#include <cstring>

namespace host
{

namespace
{

constexpr std::int64_t kMemoryLimit = 64 << 20;  // bytes of one block, however many channels
constexpr std::int64_t kLongestCodecFrame = 1 << 16;

std::int64_t Tolerance(const AudioInfo& inInfo, bool inKeepAll)
{
    if (inKeepAll || inInfo.mFrameCount <= 0)
        return 0;
    const std::int64_t codecFrame = SettingsNumber(inInfo.mSettings, "FramesPerPacket");
    return codecFrame > 0 && codecFrame <= kLongestCodecFrame ? 2 * codecFrame : 0;
}

std::int64_t BlockLength(const AudioInfo& inInfo)
{
    const auto frameBytes =
        static_cast<std::int64_t>(inInfo.ChannelCount() * inInfo.BytesPerSample());
    if (frameBytes == 0)
        return BlockReader::kBlockFrames;
    return std::clamp<std::int64_t>(kMemoryLimit / frameBytes, 1, BlockReader::kBlockFrames);
}

template <std::size_t kBytes>
void InterleaveSamples(char* const* inChannels, std::size_t inChannelCount,
                       std::int64_t inFrameCount, char* outFrames)
{
    for (std::size_t channel = 0; channel < inChannelCount; ++channel)
    {
        const char* source = inChannels[channel];
        char* place = outFrames + channel * kBytes;
        for (std::int64_t frame = 0; frame < inFrameCount; ++frame)
        {
            std::memcpy(place, source, kBytes);
            source += kBytes;
            place += inChannelCount * kBytes;
        }
    }
}

}  // namespace

BlockReader::BlockReader(ReadSession& inSession, bool inKeepAll)
    : mSession(inSession),
      mBytesPerSample(inSession.Info().BytesPerSample()),
      mTold(inSession.Info().mFrameCount),
      mTolerance(Tolerance(inSession.Info(), inKeepAll)),
      mBlock(BlockLength(inSession.Info())),
      mMemory(inSession.Info().ChannelCount() * static_cast<std::size_t>(mTolerance + mBlock) *
              mBytesPerSample),
      mChannels(inSession.Info().ChannelCount())
{
    PointChannels(0);
}

void BlockReader::PointChannels(std::int64_t inFramesBefore)
{
    const auto stride = static_cast<std::size_t>(mTolerance + mBlock) * mBytesPerSample;
    const auto first = static_cast<std::size_t>(mTolerance - inFramesBefore) * mBytesPerSample;
    for (std::size_t channel = 0; channel < mChannels.size(); ++channel)
        mChannels[channel] = mMemory.data() + channel * stride + first;
}

// Up to the told length, and only then behind it: the plug-in cuts the padding off a read that
// spans the whole file, and may then fill the place from what is behind over the first frames.
std::int64_t BlockReader::FramesToAsk() const
{
    const std::int64_t left = mTold - mRead;
    return left > 0 ? std::min(left, mBlock) : mBlock;
}

std::int64_t BlockReader::ReadBlock()
{
    PointChannels(0);
    const std::int64_t count =
        mSession.IsAtEnd() ? 0 : mSession.Read(mChannels.data(), FramesToAsk());
    mRead += count;
    return count;
}

// Moves what lies behind the told length in front of the next block; returns what is left.
std::int64_t BlockReader::HoldBack(std::int64_t inCount)
{
    const std::int64_t surplus = std::min(mRead - mTold, inCount);
    const std::int64_t kept = inCount - surplus;
    const std::int64_t held = mHeld + surplus;
    const auto sample = static_cast<std::ptrdiff_t>(mBytesPerSample);
    for (char* block : mChannels)
    {
        // With frames held already the whole block is surplus, so both lie side by side.
        const char* source = block + (kept - mHeld) * sample;
        std::memmove(block - held * sample, source, static_cast<std::size_t>(held * sample));
    }
    mHeld = held;
    return kept;
}

std::int64_t BlockReader::Next()
{
    for (;;)
    {
        const std::int64_t count = ReadBlock();
        if (count == 0)
            return 0;
        const std::int64_t surplus = mRead - mTold;
        if (mTolerance == 0 || surplus <= 0)
            return count;
        if (surplus >= mTolerance)
        {
            const std::int64_t held = mHeld;
            mHeld = 0;
            PointChannels(held);
            return held + count;
        }
        if (const std::int64_t kept = HoldBack(count); kept > 0)
            return kept;
    }
}

void Interleave(char* const* inChannels, std::size_t inChannelCount, std::size_t inBytesPerSample,
                std::int64_t inFrameCount, char* outFrames)
{
    switch (inBytesPerSample)
    {
        case 1:
            return InterleaveSamples<1>(inChannels, inChannelCount, inFrameCount, outFrames);
        case 2:
            return InterleaveSamples<2>(inChannels, inChannelCount, inFrameCount, outFrames);
        case 3:
            return InterleaveSamples<3>(inChannels, inChannelCount, inFrameCount, outFrames);
        default:
            return InterleaveSamples<4>(inChannels, inChannelCount, inFrameCount, outFrames);
    }
}

}  // namespace host
