#include "file/streams/AC3Channels.h"

#include "file/ChannelLayouts.h"

#include <bit>
#include <iterator>

namespace audiotoolbox::streams
{
namespace
{

// The labels in the order in which decoders deliver; the place in the table is the bit in a set.
constexpr AudioChannelLabel kLabels[] = {
    kAudioChannelLabel_Left,
    kAudioChannelLabel_Right,
    kAudioChannelLabel_Center,
    kAudioChannelLabel_LFEScreen,
    kAudioChannelLabel_RearSurroundLeft,
    kAudioChannelLabel_RearSurroundRight,
    kAudioChannelLabel_LeftCenter,
    kAudioChannelLabel_RightCenter,
    kAudioChannelLabel_CenterSurround,
    kAudioChannelLabel_LeftSurround,
    kAudioChannelLabel_RightSurround,
    kAudioChannelLabel_TopCenterSurround,
    kAudioChannelLabel_VerticalHeightLeft,
    kAudioChannelLabel_VerticalHeightCenter,
    kAudioChannelLabel_VerticalHeightRight,
    kAudioChannelLabel_TopBackLeft,
    kAudioChannelLabel_TopBackRight,
    kAudioChannelLabel_LeftWide,
    kAudioChannelLabel_RightWide,
    kAudioChannelLabel_LeftSurroundDirect,
    kAudioChannelLabel_RightSurroundDirect,
    kAudioChannelLabel_LFE2,
};

constexpr AC3Speakers Bit(AudioChannelLabel inLabel)
{
    for (std::size_t i = 0; i < std::size(kLabels); ++i)
        if (kLabels[i] == inLabel)
            return AC3Speakers{1} << i;
    return 0;
}

template <typename... Labels>
constexpr AC3Speakers Set(Labels... inLabels)
{
    return (Bit(inLabels) | ...);
}

constexpr AC3Speakers kFront = Set(kAudioChannelLabel_Left, kAudioChannelLabel_Right);
constexpr AC3Speakers kCentre = Bit(kAudioChannelLabel_Center);
constexpr AC3Speakers kBackCentre = Bit(kAudioChannelLabel_CenterSurround);
constexpr AC3Speakers kSurrounds =
    Set(kAudioChannelLabel_LeftSurround, kAudioChannelLabel_RightSurround);

// By acmod. Mode 0 is two programmes of one channel, which come out as left and right.
constexpr AC3Speakers kModes[] = {
    kFront,
    kCentre,
    kFront,
    kFront | kCentre,
    kFront | kBackCentre,
    kFront | kCentre | kBackCentre,
    kFront | kSurrounds,
    kFront | kCentre | kSurrounds,
};

// By the bit of a channel map, its most significant first.
constexpr AC3Speakers kLocations[] = {
    Bit(kAudioChannelLabel_Left),
    Bit(kAudioChannelLabel_Center),
    Bit(kAudioChannelLabel_Right),
    Bit(kAudioChannelLabel_LeftSurround),
    Bit(kAudioChannelLabel_RightSurround),
    Set(kAudioChannelLabel_LeftCenter, kAudioChannelLabel_RightCenter),
    Set(kAudioChannelLabel_RearSurroundLeft, kAudioChannelLabel_RearSurroundRight),
    Bit(kAudioChannelLabel_CenterSurround),
    Bit(kAudioChannelLabel_TopCenterSurround),
    Set(kAudioChannelLabel_LeftSurroundDirect, kAudioChannelLabel_RightSurroundDirect),
    Set(kAudioChannelLabel_LeftWide, kAudioChannelLabel_RightWide),
    Set(kAudioChannelLabel_VerticalHeightLeft, kAudioChannelLabel_VerticalHeightRight),
    Bit(kAudioChannelLabel_VerticalHeightCenter),
    Set(kAudioChannelLabel_TopBackLeft, kAudioChannelLabel_TopBackRight),
    Bit(kAudioChannelLabel_LFE2),
    Bit(kAudioChannelLabel_LFEScreen),
};

// Labels up to here have the bit of their number less one in a bitmap.
constexpr AudioChannelLabel kLastLabelInBitmap = kAudioChannelLabel_TopBackRight;

std::vector<AudioChannelLabel> LabelsOf(AC3Speakers inSpeakers)
{
    std::vector<AudioChannelLabel> labels;
    for (std::size_t i = 0; i < std::size(kLabels); ++i)
        if ((inSpeakers >> i & 1) != 0)
            labels.push_back(kLabels[i]);
    return labels;
}

}  // namespace

AC3Speakers SpeakersOf(const AC3Header& inHeader)
{
    if (inHeader.mChannelMap == 0)
        return kModes[inHeader.mMode] | (inHeader.mHasLFE ? Bit(kAudioChannelLabel_LFEScreen) : 0);
    AC3Speakers speakers = 0;
    for (std::size_t i = 0; i < std::size(kLocations); ++i)
        if ((inHeader.mChannelMap >> (15 - i) & 1) != 0)
            speakers |= kLocations[i];
    return speakers;
}

UInt32 CountSpeakers(AC3Speakers inSpeakers)
{
    return static_cast<UInt32>(std::popcount(inSpeakers));
}

std::vector<UInt8> LayoutOfSpeakers(AC3Speakers inSpeakers)
{
    if (inSpeakers == kCentre)
        return LayoutOfTag(kAudioChannelLayoutTag_Mono);
    if (inSpeakers == kFront)
        return LayoutOfTag(kAudioChannelLayoutTag_Stereo);
    const std::vector<AudioChannelLabel> labels = LabelsOf(inSpeakers);
    AudioChannelBitmap bitmap = 0;
    for (const AudioChannelLabel label : labels)
    {
        const AudioChannelBitmap bit =
            label <= kLastLabelInBitmap ? AudioChannelBitmap{1} << (label - 1) : 0;
        if (bit <= bitmap)  // no bit, or not in ascending order
            return LayoutOfLabels(labels);
        bitmap |= bit;
    }
    return LayoutOfBitmap(bitmap);
}

}  // namespace audiotoolbox::streams
