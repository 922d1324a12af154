#include "Layouts.h"

#include <AudioToolbox/AudioToolbox.h>

#include <algorithm>
#include <utility>

namespace export_matrix
{

namespace
{

constexpr std::uint32_t kLeftSurround = 104;
constexpr std::uint32_t kRightSurround = 105;
constexpr std::uint32_t kLeftSide = 109;
constexpr std::uint32_t kRightSide = 110;
constexpr std::uint32_t kLeftRear = 129;
constexpr std::uint32_t kRightRear = 130;

enum class Naming
{
    kNone,    // no record of the channels
    kMask,    // a mask of speakers
    kAny,     // a name for each
    kEncoder  // one layout for each count
};

constexpr std::uint32_t kMaskedTypes[] = {kAudioFileWAVEType, kAudioFileRF64Type,
                                          kAudioFileBW64Type, kAudioFileWave64Type};

bool Has(const Labels& inLabels, std::uint32_t inLabel)
{
    return std::find(inLabels.begin(), inLabels.end(), inLabel) != inLabels.end();
}

bool HasPlainSamples(std::uint32_t inFormat)
{
    return inFormat == kAudioFormatLinearPCM || inFormat == kAudioFormatALaw ||
           inFormat == kAudioFormatULaw;
}

Naming NamingOf(const Pair& inPair)
{
    if (!HasPlainSamples(inPair.mFormat))
        return Naming::kEncoder;
    if (inPair.mType == kAudioFileNextType)
        return Naming::kNone;
    const bool isMasked = std::find(std::begin(kMaskedTypes), std::end(kMaskedTypes),
                                    inPair.mType) != std::end(kMaskedTypes);
    return isMasked ? Naming::kMask : Naming::kAny;
}

// The rear pair as the surrounds, and surrounds beside a rear pair as the sides: what masks tell.
std::uint32_t AsSpeaker(std::uint32_t inLabel, const Labels& inLabels)
{
    if (inLabel == kLeftRear || inLabel == kRightRear)
        return inLabel - kLeftRear + kLeftSurround;
    if (Has(inLabels, kLeftRear) && (inLabel == kLeftSurround || inLabel == kRightSurround))
        return inLabel - kLeftSurround + kLeftSide;
    return inLabel;
}

Labels AsSpeakers(const Labels& inLabels)
{
    Labels speakers;
    for (const std::uint32_t label : inLabels)
        speakers.push_back(AsSpeaker(label, inLabels));
    return speakers;
}

std::size_t MaskPlace(std::uint32_t inLabel, const Labels& inLabels)
{
    constexpr std::uint32_t kOrder[] = {100, 101, 102, 103, 104, 105, 107, 108, 106,
                                        109, 110, 111, 112, 114, 113, 115, 117, 116};
    const auto* place =
        std::find(std::begin(kOrder), std::end(kOrder), AsSpeaker(inLabel, inLabels));
    return static_cast<std::size_t>(place - std::begin(kOrder));
}

// Sides alone are surrounds.
Labels WithoutLoneSides(Labels inLabels)
{
    if (!Has(inLabels, kLeftSurround))
        for (std::uint32_t& label : inLabels)
            if (label == kLeftSide || label == kRightSide)
                label = label - kLeftSide + kLeftSurround;
    return inLabels;
}

Labels Sorted(Labels inLabels)
{
    std::sort(inLabels.begin(), inLabels.end());
    return inLabels;
}

bool IsEachOnce(const Labels& inLabels)
{
    const Labels sorted = Sorted(inLabels);
    return std::adjacent_find(sorted.begin(), sorted.end()) == sorted.end();
}

struct EncoderLayouts
{
    std::vector<std::uint32_t> mFormats;
    std::vector<Labels> mLayouts;  // sorted, for each count
};

const std::vector<EncoderLayouts>& KnownEncoders()
{
    static const std::vector<EncoderLayouts> sEncoders = {
        {{kAudioFormatMPEG4AAC},
         {{100, 101},
          {100, 101, 102},
          {100, 101, 102, 106},
          {100, 101, 102, 104, 105},
          {100, 101, 102, 103, 104, 105},
          {100, 101, 102, 103, 104, 105, 109, 110}}},
        {{kAudioFormatAppleLossless},
         {{100, 101},
          {100, 101, 102},
          {100, 101, 102, 106},
          {100, 101, 102, 104, 105},
          {100, 101, 102, 103, 104, 105},
          {100, 101, 102, 103, 104, 105, 106},
          {100, 101, 102, 103, 104, 105, 107, 108}}},
        {{kAudioFormatFLAC, kAudioFormatOpus},
         {{100, 101},
          {100, 101, 102},
          {100, 101, 104, 105},
          {100, 101, 102, 104, 105},
          {100, 101, 102, 103, 104, 105},
          {100, 101, 102, 103, 104, 105, 106},
          {100, 101, 102, 103, 104, 105, 109, 110}}},
        {{kAudioFormatAC3, kAudioFormatEnhancedAC3},
         {{100, 101},
          {100, 101, 102},
          {100, 101, 102, 106},
          {100, 101, 102, 104, 105},
          {100, 101, 102, 103, 104, 105}}},
    };
    return sEncoders;
}

// Codecs that nobody else is known of take mono and stereo.
bool IsEncodersLayout(std::uint32_t inFormat, const Labels& inSpeakers)
{
    const Labels sorted = Sorted(WithoutLoneSides(inSpeakers));
    for (const EncoderLayouts& encoder : KnownEncoders())
        if (std::find(encoder.mFormats.begin(), encoder.mFormats.end(), inFormat) !=
            encoder.mFormats.end())
            return std::find(encoder.mLayouts.begin(), encoder.mLayouts.end(), sorted) !=
                   encoder.mLayouts.end();
    return sorted == Labels{100, 101};
}

// Of 7.1, readers call the surrounds rear ones and the sides surrounds; those of native FLAC go by
// its channel mask instead, where the surrounds of 6.1 stand at the sides.
Labels AsTold(const Pair& inPair, Labels inSpeakers)
{
    const bool isNativeFLAC = inPair.mType == kAudioFileFLACType;
    const bool hasSides = isNativeFLAC && inSpeakers.size() == 7;
    const bool hasRear = !isNativeFLAC && Has(inSpeakers, kLeftSide);
    for (std::uint32_t& label : inSpeakers)
    {
        const bool isSurround = label == kLeftSurround || label == kRightSurround;
        if (isSurround && (hasRear || hasSides))
            label = label - kLeftSurround + (hasRear ? kLeftRear : kLeftSide);
        else if (hasRear && (label == kLeftSide || label == kRightSide))
            label = label - kLeftSide + kLeftSurround;
    }
    return inSpeakers;
}

// The surrounds of 6.1 stand at the sides with these encoders, whatever readers call them.
std::uint32_t AtSide(const Pair& inPair, std::uint32_t inLabel, const Labels& inLabels)
{
    const bool isSixOne = inLabels.size() == 7 && (inPair.mFormat == kAudioFormatFLAC ||
                                                   inPair.mFormat == kAudioFormatOpus);
    const bool isSurround = inLabel == kLeftSurround || inLabel == kRightSurround;
    return isSixOne && isSurround ? inLabel - kLeftSurround + kLeftSide : inLabel;
}

bool IsSpeaker(std::uint32_t inLabel)
{
    return inLabel >= 100 && inLabel <= 117;
}

Labels Backwards(Labels inLabels)
{
    std::reverse(inLabels.begin(), inLabels.end());
    return inLabels;
}

}  // namespace

const std::vector<Labels>& EveryLayout()
{
    static const std::vector<Labels> sLayouts = {
        {100, 101},
        {132, 133},
        {0, 0},
        {134, 135, 136, 137},
        {100, 101, 104, 105},
        {100, 101, 104, 105, 102},
        {100, 101, 104, 105, 102, 106},
        {100, 101, 104, 105, 102, 106, 109, 110},
        {100, 101, 104, 105, 112, 113, 115, 116},
        {100, 101, 102},
        {102, 100, 101},
        {100, 101, 102, 106},
        {102, 100, 101, 106},
        {100, 101, 102, 104, 105},
        {100, 102, 101, 104, 105},
        {102, 100, 101, 104, 105},
        {100, 101, 102, 103, 104, 105},
        {100, 101, 104, 105, 102, 103},
        {100, 102, 101, 104, 105, 103},
        {102, 100, 101, 104, 105, 103},
        {100, 101, 102, 103, 104, 105, 106},
        {100, 101, 102, 103, 104, 105, 107, 108},
        {102, 107, 108, 100, 101, 104, 105, 103},
        {100, 101, 102, 103, 104, 105, 129, 130},
        {100, 101, 104, 105, 102, 103, 107, 108},
        {100, 101, 102, 103, 104, 105, 132, 133},
        {100, 101, 106},
        {100, 101, 103},
        {100, 101, 103, 106},
        {100, 101, 103, 104, 105},
        {100, 101, 102, 103},
        {100, 101, 102, 103, 106},
        {100, 101, 104, 105, 103},
        {100, 101, 104, 105, 102, 129, 130},
        {102, 100, 101, 104, 105, 106},
        {102, 100, 101, 104, 105, 106, 103},
        {102, 100, 101, 104, 105, 129, 130},
        {102, 100, 101, 104, 105, 129, 130, 106},
        {100, 101, 104, 105, 102, 107, 108},
        {102, 103},
        {100, 102, 101},
        {100, 102, 101, 106},
        {100, 102, 101, 103},
        {100, 101, 106, 103},
        {100, 102, 101, 106, 103},
        Backwards({100, 101}),
        Backwards({100, 101, 102}),
        Backwards({100, 101, 102, 106}),
        Backwards({100, 101, 102, 104, 105}),
        Backwards({100, 101, 102, 103, 104, 105}),
        Backwards({100, 101, 102, 103, 104, 105, 106}),
        Backwards({100, 101, 102, 103, 104, 105, 107, 108}),
        Backwards({100, 101, 102, 103, 104, 105, 109, 110}),
    };
    return sLayouts;
}

Labels LabelsInFile(const Pair& inPair, const Labels& inLabels)
{
    const Naming naming = NamingOf(inPair);
    if (naming == Naming::kNone || Has(inLabels, 0) || !IsEachOnce(inLabels))
        return {};
    if (naming == Naming::kAny)
        return inLabels;
    const Labels speakers = AsSpeakers(inLabels);
    if (!std::all_of(speakers.begin(), speakers.end(), &IsSpeaker) || !IsEachOnce(speakers))
        return {};
    if (naming == Naming::kMask)
        return speakers;
    if (!IsEncodersLayout(inPair.mFormat, speakers))
        return {};
    return AsTold(inPair, WithoutLoneSides(speakers));
}

Labels OrderInFile(const Pair& inPair, const Labels& inLabelsInFile)
{
    if (NamingOf(inPair) == Naming::kAny)
        return inLabelsInFile;
    std::vector<std::pair<std::size_t, std::uint32_t>> places;
    for (const std::uint32_t label : inLabelsInFile)
        places.emplace_back(MaskPlace(AtSide(inPair, label, inLabelsInFile), inLabelsInFile),
                            label);
    std::sort(places.begin(), places.end());
    Labels order;
    for (const auto& place : places)
        order.push_back(place.second);
    return order;
}

}  // namespace export_matrix
