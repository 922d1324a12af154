#include "host/ChannelMap.h"

#include "host/ChannelNames.h"
#include "host/Failure.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace host
{

namespace
{

constexpr float kHalfPower = 0.70710678F;

enum Label : std::uint32_t
{
    kNone = 0,
    kL = 100,
    kR = 101,
    kC = 102,
    kLFE = 103,
    kLs = 104,
    kRs = 105,
    kCs = 106,
    kLc = 107,
    kRc = 108,
    kLsd = 109,
    kRsd = 110,
    kTs = 111,
    kVhl = 112,
    kVhr = 113,
    kVhc = 114,
    kTbl = 115,
    kTbr = 116,
    kTbc = 117,
    kLw = 118,
    kRw = 119,
    kRls = 129,
    kRrs = 130,
    kLFE2 = 131,
    kLt = 132,
    kRt = 133
};

// Where a channel goes that has no counterpart: to the first row whose channels are all there, else
// on from those of its last row. A row to nowhere drops the channel.
struct Fold
{
    std::uint32_t mFrom;
    std::uint32_t mTo[2];
    float mGain;
};

constexpr Fold kFolds[] = {
    {kL, {kLt}, 1.0F},
    {kL, {kC}, kHalfPower},
    {kR, {kRt}, 1.0F},
    {kR, {kC}, kHalfPower},
    {kC, {kL, kR}, kHalfPower},
    {kLFE, {}, 0.0F},
    {kLs, {kRls}, 1.0F},
    {kLs, {kLsd}, 1.0F},
    {kLs, {kCs}, kHalfPower},
    {kLs, {kL}, kHalfPower},
    {kRs, {kRrs}, 1.0F},
    {kRs, {kRsd}, 1.0F},
    {kRs, {kCs}, kHalfPower},
    {kRs, {kR}, kHalfPower},
    {kCs, {kLs, kRs}, kHalfPower},
    {kCs, {kRls, kRrs}, kHalfPower},
    {kCs, {kL, kR}, 0.5F},
    {kLc, {kL, kC}, kHalfPower},
    {kLc, {kL}, 1.0F},
    {kRc, {kR, kC}, kHalfPower},
    {kRc, {kR}, 1.0F},
    {kLsd, {kLs}, 1.0F},
    {kLsd, {kRls}, 1.0F},
    {kLsd, {kL}, kHalfPower},
    {kRsd, {kRs}, 1.0F},
    {kRsd, {kRrs}, 1.0F},
    {kRsd, {kR}, kHalfPower},
    {kTs, {kL, kR}, 0.5F},
    {kVhl, {kL}, kHalfPower},
    {kVhr, {kR}, kHalfPower},
    {kVhc, {kC}, kHalfPower},
    {kTbl, {kRls}, kHalfPower},
    {kTbl, {kLs}, kHalfPower},
    {kTbl, {kL}, 0.5F},
    {kTbr, {kRrs}, kHalfPower},
    {kTbr, {kRs}, kHalfPower},
    {kTbr, {kR}, 0.5F},
    {kTbc, {kCs}, kHalfPower},
    {kTbc, {kLs, kRs}, 0.5F},
    {kTbc, {kL, kR}, 0.5F * kHalfPower},
    {kLw, {kL}, kHalfPower},
    {kRw, {kR}, kHalfPower},
    {kRls, {kLs}, 1.0F},
    {kRls, {kCs}, kHalfPower},
    {kRls, {kL}, kHalfPower},
    {kRrs, {kRs}, 1.0F},
    {kRrs, {kCs}, kHalfPower},
    {kRrs, {kR}, kHalfPower},
    {kLFE2, {kLFE}, 1.0F},
    {kLt, {kL}, 1.0F},
    {kRt, {kR}, 1.0F},
};

// The usual layouts of audio that does not tell its own.
constexpr std::uint32_t kUsualLabels[][8] = {
    {kC},
    {kL, kR},
    {kL, kR, kC},
    {kL, kR, kC, kCs},
    {kL, kR, kC, kLs, kRs},
    {kL, kR, kC, kLFE, kLs, kRs},
    {kL, kR, kC, kLFE, kLs, kRs, kCs},
    {kL, kR, kC, kLFE, kLs, kRs, kRls, kRrs},
};

// A channel is passed on at most from a height to a surround, a front and the centre.
constexpr int kMostSteps = 5;

ChannelLabels UsualLabels(std::size_t inCount)
{
    if (inCount == 0 || inCount > std::size(kUsualLabels))
        return ChannelLabels(inCount, kNone);
    const std::uint32_t* labels = kUsualLabels[inCount - 1];
    return {labels, labels + inCount};
}

bool Has(const ChannelLabels& inLabels, std::uint32_t inLabel)
{
    return std::find(inLabels.begin(), inLabels.end(), inLabel) != inLabels.end();
}

// Every channel has a name of its own.
bool IsNamed(const ChannelLabels& inLabels)
{
    ChannelLabels sorted = inLabels;
    std::sort(sorted.begin(), sorted.end());
    return !Has(sorted, kNone) && std::adjacent_find(sorted.begin(), sorted.end()) == sorted.end();
}

// The names of channels without any are guessed from their number.
ChannelLabels Named(const ChannelLabels& inLabels)
{
    const bool hasNone = std::all_of(inLabels.begin(), inLabels.end(),
                                     [](std::uint32_t inLabel) { return inLabel == kNone; });
    return hasNone ? UsualLabels(inLabels.size()) : inLabels;
}

const Fold* FindFold(std::uint32_t inLabel, const ChannelLabels& inTarget)
{
    const Fold* last = nullptr;
    for (const Fold& fold : kFolds)
    {
        if (fold.mFrom != inLabel)
            continue;
        last = &fold;
        const auto isThere = [&inTarget](std::uint32_t inTo)
        { return inTo == kNone || Has(inTarget, inTo); };
        if (fold.mTo[0] != kNone && isThere(fold.mTo[0]) && isThere(fold.mTo[1]))
            break;
    }
    return last;
}

// Adds the part of a channel to the targets that it reaches.
void Place(ChannelPart inPart, std::uint32_t inLabel, const ChannelLabels& inTarget, int inSteps,
           std::vector<std::vector<ChannelPart>>& ioParts)
{
    const auto found = std::find(inTarget.begin(), inTarget.end(), inLabel);
    if (found != inTarget.end())
    {
        ioParts[static_cast<std::size_t>(found - inTarget.begin())].push_back(inPart);
        return;
    }
    const Fold* fold = FindFold(inLabel, inTarget);
    if (!fold)
        throw Failure(kExitSettings, 0,
                      "Channel " + ChannelName(inLabel) + " cannot be mixed into other channels.");
    if (inSteps == 0)
        return;
    for (const std::uint32_t label : fold->mTo)
        if (label != kNone)
            Place({inPart.mSource, inPart.mGain * fold->mGain}, label, inTarget, inSteps - 1,
                  ioParts);
}

[[noreturn]] void FailForCounts(std::size_t inSource, std::size_t inTarget)
{
    throw Failure(kExitSettings, 0,
                  std::to_string(inSource) + " channels without names cannot be mixed to " +
                      std::to_string(inTarget) + ".");
}

}  // namespace

ChannelMap::ChannelMap(const ChannelLabels& inSource, const ChannelLabels& inTarget)
    : mSourceCount(inSource.size()), mParts(inTarget.size())
{
    Fill(inSource, inTarget);
    Normalise();
}

void ChannelMap::Fill(const ChannelLabels& inSource, const ChannelLabels& inTarget)
{
    const bool areCountsEqual = SourceCount() == TargetCount();
    if (areCountsEqual && (inSource == inTarget || !IsNamed(inSource) || !IsNamed(inTarget)))
        return FillInOrder();

    const ChannelLabels source = Named(inSource);
    const ChannelLabels target = Named(inTarget);
    if (IsNamed(source) && IsNamed(target))
        return FillByName(source, target);
    if (TargetCount() == 1)
        return FillWithAll();
    if (SourceCount() > TargetCount())
        FailForCounts(SourceCount(), TargetCount());
    FillInOrder();
}

void ChannelMap::FillInOrder()
{
    for (std::size_t channel = 0; channel < SourceCount(); ++channel)
        mParts[channel].push_back({static_cast<int>(channel), 1.0F});
}

void ChannelMap::FillWithAll()
{
    for (std::size_t channel = 0; channel < SourceCount(); ++channel)
        mParts[0].push_back({static_cast<int>(channel), 1.0F});
}

void ChannelMap::FillByName(const ChannelLabels& inSource, const ChannelLabels& inTarget)
{
    for (std::size_t channel = 0; channel < SourceCount(); ++channel)
        Place({static_cast<int>(channel), 1.0F}, inSource[channel], inTarget, kMostSteps, mParts);
    if (SourceCount() != 1)
        return;
    // What is alone keeps its level in each channel that it goes to.
    for (std::vector<ChannelPart>& parts : mParts)
        for (ChannelPart& part : parts)
            part.mGain = 1.0F;
}

void ChannelMap::Normalise()
{
    float largest = 1.0F;
    for (const std::vector<ChannelPart>& parts : mParts)
    {
        float sum = 0.0F;
        for (const ChannelPart& part : parts)
            sum += part.mGain;
        largest = std::max(largest, sum);
    }
    for (std::vector<ChannelPart>& parts : mParts)
        for (ChannelPart& part : parts)
            part.mGain /= largest;
}

bool ChannelMap::IsSelection() const
{
    return std::all_of(mParts.begin(), mParts.end(),
                       [](const std::vector<ChannelPart>& inParts) {
        return inParts.empty() || (inParts.size() == 1 && inParts[0].mGain == 1.0F);
    });
}

int ChannelMap::Source(std::size_t inTarget) const
{
    const std::vector<ChannelPart>& parts = mParts[inTarget];
    return parts.empty() ? kSilent : parts[0].mSource;
}

bool ChannelMap::IsIdentity() const
{
    if (SourceCount() != TargetCount() || !IsSelection())
        return false;
    for (std::size_t channel = 0; channel < TargetCount(); ++channel)
        if (Source(channel) != static_cast<int>(channel))
            return false;
    return true;
}

ChannelLabels LabelsForCount(const ChannelLabels& inSource, std::size_t inCount)
{
    if (inSource.size() == inCount)
        return inSource;
    return inCount == 1 ? ChannelLabels{kNone} : UsualLabels(inCount);
}

}  // namespace host
