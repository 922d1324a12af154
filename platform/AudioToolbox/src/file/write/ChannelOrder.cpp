#include "file/write/ChannelOrder.h"

#include "tables/Encoders.h"

#include <algorithm>
#include <bit>
#include <numeric>

namespace audiotoolbox
{
namespace
{

using Label = AudioChannelLabel;
using Labels = std::vector<Label>;

constexpr AudioFileTypeID kMaskedTypes[] = {
    kAudioFileWAVEType,
    kAudioFileRF64Type,
    kAudioFileBW64Type,
    kAudioFileWave64Type,
};

constexpr Label kHighestSpeaker = kAudioChannelLabel_TopBackRight;  // of the channel mask
constexpr UInt32 kFirstPrivateLabel = 1 << 16;                      // discrete channels by number
constexpr UInt32 kBackPair = 0x30;
constexpr UInt32 kSidePair = 0x600;
constexpr UInt32 kFromBackToSide = 5;  // bits of the mask

bool Has(const Labels& inLabels, Label inLabel)
{
    return std::find(inLabels.begin(), inLabels.end(), inLabel) != inLabels.end();
}

bool NamesChannel(Label inLabel)
{
    return inLabel != kAudioChannelLabel_Unused && inLabel != kAudioChannelLabel_Discrete &&
           inLabel < kFirstPrivateLabel;
}

bool AreUsable(const Labels& inLabels, UInt32 inChannelCount)
{
    Labels sorted = inLabels;
    std::sort(sorted.begin(), sorted.end());
    return inLabels.size() == inChannelCount &&
           std::all_of(sorted.begin(), sorted.end(), &NamesChannel) &&
           std::adjacent_find(sorted.begin(), sorted.end()) == sorted.end();
}

// The bit of the channel mask; 0 for a label without one. Rear surrounds are the back pair, and
// beside them the plain surrounds stand at the sides.
UInt32 SpeakerBit(Label inLabel, const Labels& inLabels)
{
    constexpr Label kLeft = kAudioChannelLabel_LeftSurround;
    constexpr Label kRearLeft = kAudioChannelLabel_RearSurroundLeft;
    for (UInt32 side = 0; side < 2; ++side)
    {
        if (inLabel == kRearLeft + side)
            return 1u << (kLeft - 1 + side);
        if (inLabel == kLeft + side && Has(inLabels, kRearLeft + side))
            return 1u << (kLeft - 1 + side + kFromBackToSide);
    }
    return inLabel >= 1 && inLabel <= kHighestSpeaker ? 1u << (inLabel - 1) : 0;
}

UInt32 Union(const std::vector<UInt32>& inBits)
{
    return std::accumulate(inBits.begin(), inBits.end(), 0u,
                           [](UInt32 inSum, UInt32 inBit) { return inSum | inBit; });
}

// Empty where a label has no bit, or two share one.
std::vector<UInt32> SpeakerBits(const Labels& inLabels)
{
    std::vector<UInt32> bits;
    for (const Label label : inLabels)
    {
        const UInt32 bit = SpeakerBit(label, inLabels);
        if (bit == 0 || (Union(bits) & bit) != 0)
            return {};
        bits.push_back(bit);
    }
    return bits;
}

UInt32 OtherSurround(UInt32 inBit)
{
    if ((inBit & kBackPair) != 0)
        return inBit << kFromBackToSide;
    return (inBit & kSidePair) != 0 ? inBit >> kFromBackToSide : inBit;
}

// True when the bits are those of the mask, perhaps with the surrounds at the other place.
bool Fit(std::vector<UInt32>& ioBits, UInt32 inMask)
{
    if (Union(ioBits) == inMask)
        return true;
    std::transform(ioBits.begin(), ioBits.end(), ioBits.begin(), &OtherSurround);
    return Union(ioBits) == inMask;
}

std::vector<UInt32> AscendingSources(const std::vector<UInt32>& inBits)
{
    std::vector<UInt32> sources(inBits.size());
    std::iota(sources.begin(), sources.end(), 0u);
    std::sort(sources.begin(), sources.end(),
              [&](UInt32 inLeft, UInt32 inRight) { return inBits[inLeft] < inBits[inRight]; });
    return sources;
}

ChannelOrder OrderOf(const std::vector<UInt32>& inBits, const Labels& inLabels)
{
    ChannelOrder order;
    const std::vector<UInt32> sources = AscendingSources(inBits);
    for (const UInt32 source : sources)
        order.mLabels.push_back(inLabels[source]);
    if (!std::is_sorted(sources.begin(), sources.end()))
        order.mSources = sources;
    return order;
}

// The labels that a reader of the mask tells.
Labels LabelsOf(const std::vector<UInt32>& inBits)
{
    Labels labels;
    for (const UInt32 bit : inBits)
        labels.push_back(static_cast<Label>(std::countr_zero(bit)) + 1);
    return labels;
}

}  // namespace

ChannelOrder OrderChannels(AudioFileTypeID inType, AudioFormatID inFormat, UInt32 inChannelCount,
                           const Labels& inLabels)
{
    if (!AreUsable(inLabels, inChannelCount))
        return {};
    const EncoderRow* encoder = FindEncoder(inFormat);
    const UInt32 mask = encoder != nullptr ? EncoderMask(*encoder, inChannelCount) : 0;
    const bool isMasked = std::find(std::begin(kMaskedTypes), std::end(kMaskedTypes), inType) !=
                          std::end(kMaskedTypes);
    if (mask == 0 && !isMasked)
        return {{}, inLabels};

    std::vector<UInt32> bits = SpeakerBits(inLabels);
    if (bits.empty() || (mask != 0 && !Fit(bits, mask)))
        return {};
    return OrderOf(bits, isMasked ? LabelsOf(bits) : inLabels);
}

}  // namespace audiotoolbox
