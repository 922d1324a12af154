#include "file/mpeg4/PacketTable.h"

#include "file/FactArithmetic.h"

#include <algorithm>
#include <cmath>

namespace audiotoolbox::mpeg4
{
namespace
{

// Frames beyond this are no count but a damaged field.
constexpr SInt64 kMostFrames = SInt64{1} << 53;

using Format = AudioStreamBasicDescription;

UInt64 FramesInPackets(const Format& inFormat, const TimingSources& inSources)
{
    if (inFormat.mFramesPerPacket > 0)
        return UInt64{inSources.mPacketCount} * inFormat.mFramesPerPacket;
    return static_cast<UInt64>(TotalFrames(inFormat, inSources));
}

// A coarse movie timescale rounds the duration; where the tables' exact one lies within one tick of
// it, that is what was meant.
SInt64 ValidByEdit(const Format& inFormat, const TimingSources& inSources, SInt64 inPriming)
{
    const SInt64 exact = TotalFrames(inFormat, inSources) - inPriming;
    const double rate = inFormat.mSampleRate;
    const UInt32 scale = inSources.mMovieTimescale;
    if (inSources.mEdits.mDuration == 0 || scale == 0 || inSources.mEdits.mCount > 1)
        return exact;
    const SInt64 stated = FramesOfTicks(inSources.mEdits.mDuration, scale, rate);
    const bool isCoarse = scale < inSources.mMediaTimescale;
    const double tick = std::ceil(rate / scale);
    return isCoarse && std::abs(static_cast<double>(exact - stated)) <= tick ? exact : stated;
}

// An edit that shows everything from the first frame on tells nothing of priming.
bool TellsNothing(const Format& inFormat, const TimingSources& inSources)
{
    return inSources.mEdits.mCount == 0 ||
           (inSources.mEdits.mMediaTime == 0 &&
            ValidByEdit(inFormat, inSources, 0) >= TotalFrames(inFormat, inSources));
}

AudioFilePacketTableInfo TableByEdit(const Format& inFormat, const TimingSources& inSources)
{
    const SInt64 priming = FramesOfTicks(static_cast<UInt64>(inSources.mEdits.mMediaTime),
                                         inSources.mMediaTimescale, inFormat.mSampleRate);
    return MakePacketTable(FramesInPackets(inFormat, inSources), priming,
                           ValidByEdit(inFormat, inSources, priming));
}

// The text counts at the core's rate, or, by some writers of layered AAC, at twice that rate.
AudioFilePacketTableInfo TableByText(const Format& inFormat, const TimingSources& inSources)
{
    const GaplessText& text = *inSources.mGapless;
    const UInt64 frames = FramesInPackets(inFormat, inSources);
    const bool isDoubled = text.mPriming + text.mValid + text.mRemainder == 2 * frames;
    const UInt32 divisor = isDoubled && frames > 0 ? 2 : 1;
    return MakePacketTable(frames, text.mPriming / divisor,
                           static_cast<SInt64>((text.mValid + divisor - 1) / divisor));
}

bool IsLossless(AudioFormatID inFormat)
{
    return inFormat == kAudioFormatAppleLossless || inFormat == kAudioFormatFLAC;
}

}  // namespace

SInt64 FramesOfTicks(UInt64 inTicks, UInt32 inTimescale, double inRate)
{
    if (inTimescale == 0)
        return 0;
    const long double frames =
        static_cast<long double>(inTicks) * static_cast<long double>(inRate) / inTimescale;
    return frames < static_cast<long double>(kMostFrames) ? std::llround(frames) : kMostFrames;
}

SInt64 TotalFrames(const Format& inFormat, const TimingSources& inSources)
{
    const double rate = inFormat.mSampleRate;
    const SInt64 byTimes = FramesOfTicks(inSources.mTimes.Total(), inSources.mMediaTimescale, rate);
    if (inFormat.mFramesPerPacket == 0)
        return byTimes;
    const SInt64 byPackets = SInt64{inSources.mPacketCount} * inFormat.mFramesPerPacket;
    // Durations speak only of all packets; and a scale coarser than the rate cannot tell frames.
    const bool isCoarse = inSources.mMediaTimescale < rate;
    const double tick = isCoarse ? std::ceil(rate / std::max(inSources.mMediaTimescale, 1u)) : 0.0;
    const bool isSame = std::abs(static_cast<double>(byTimes - byPackets)) <= tick;
    const bool isWhole = inSources.mTimes.Count() == inSources.mPacketCount;
    return isWhole && byTimes > 0 && !isSame ? std::min(byTimes, byPackets) : byPackets;
}

std::optional<AudioFilePacketTableInfo> MakeTable(const Format& inFormat,
                                                  const TimingSources& inSources)
{
    if (inFormat.mFramesPerPacket == 1)
        return std::nullopt;
    const bool hasText = inSources.mGapless.has_value();
    if (inSources.mEdits.mCount > 0 && !(hasText && TellsNothing(inFormat, inSources)))
        return TableByEdit(inFormat, inSources);
    if (hasText)
        return TableByText(inFormat, inSources);
    const bool isTold = inSources.mPreSkip > 0 || inSources.mTimes.HasShortLast() ||
                        inFormat.mFramesPerPacket == 0 || IsLossless(inFormat.mFormatID);
    if (!isTold)
        return std::nullopt;
    return MakePacketTable(FramesInPackets(inFormat, inSources), inSources.mPreSkip,
                           TotalFrames(inFormat, inSources) - SInt64{inSources.mPreSkip});
}

}  // namespace audiotoolbox::mpeg4
