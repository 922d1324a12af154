// Channel layouts: labels and whole layouts in the host's terms and in the platform's.
#include "appleaudiotoolbox/utility/ATUtils.h"

#include "CoreAudio/PublicUtility/CAAudioChannelLayout.h"

#include <algorithm>
#include <iterator>

namespace appleaudiotoolbox
{

namespace
{

using kelpmediatypes::AudioChannelDescriptions;

constexpr UInt32 kFirstHostLabel = 100;

// The platform's label of each host label from 100 on; the discrete one where it has none.
constexpr UInt32 kPlatformLabels[] = {
    kAudioChannelLabel_Left,
    kAudioChannelLabel_Right,
    kAudioChannelLabel_Center,
    kAudioChannelLabel_LFEScreen,
    kAudioChannelLabel_LeftSurround,
    kAudioChannelLabel_RightSurround,
    kAudioChannelLabel_CenterSurround,
    kAudioChannelLabel_LeftCenter,
    kAudioChannelLabel_RightCenter,
    kAudioChannelLabel_LeftSurroundDirect,
    kAudioChannelLabel_RightSurroundDirect,
    kAudioChannelLabel_TopCenterSurround,
    kAudioChannelLabel_VerticalHeightLeft,
    kAudioChannelLabel_VerticalHeightRight,
    kAudioChannelLabel_VerticalHeightCenter,
    kAudioChannelLabel_TopBackLeft,
    kAudioChannelLabel_TopBackRight,
    kAudioChannelLabel_TopBackCenter,
    kAudioChannelLabel_LeftWide,
    kAudioChannelLabel_RightWide,
    kAudioChannelLabel_Discrete,
    kAudioChannelLabel_Discrete,
    kAudioChannelLabel_Discrete,
    kAudioChannelLabel_Discrete,
    kAudioChannelLabel_Discrete,
    kAudioChannelLabel_Discrete,
    kAudioChannelLabel_Discrete,
    kAudioChannelLabel_Discrete,
    kAudioChannelLabel_Discrete,
    kAudioChannelLabel_RearSurroundLeft,
    kAudioChannelLabel_RearSurroundRight,
    kAudioChannelLabel_LFE2,
    kAudioChannelLabel_LeftTotal,
    kAudioChannelLabel_RightTotal,
    kAudioChannelLabel_Ambisonic_W,
    kAudioChannelLabel_Ambisonic_X,
    kAudioChannelLabel_Ambisonic_Y,
    kAudioChannelLabel_Ambisonic_Z,
};
static_assert(std::size(kPlatformLabels) == 38);

// One layout that the platform tells by a tag alone. The low half of a tag is its channel count.
struct TaggedLayout
{
    AudioChannelLayoutTag mTag;
    unsigned char mHostLabels[21];  // 0 for a channel without a name
};

// Ascending by tag. A mono file's channel has no name on the host's side.
// clang-format off
constexpr TaggedLayout kTaggedLayouts[] = {
    {kAudioChannelLayoutTag_Mono, {0}},
    {kAudioChannelLayoutTag_Stereo, {100, 101}},
    {kAudioChannelLayoutTag_StereoHeadphones, {100, 101}},
    {kAudioChannelLayoutTag_MatrixStereo, {132, 133}},
    {kAudioChannelLayoutTag_MidSide, {0, 0}},
    {kAudioChannelLayoutTag_XY, {0, 0}},
    {kAudioChannelLayoutTag_Binaural, {100, 101}},
    {kAudioChannelLayoutTag_Ambisonic_B_Format, {134, 135, 136, 137}},
    {kAudioChannelLayoutTag_Quadraphonic, {100, 101, 104, 105}},
    {kAudioChannelLayoutTag_Pentagonal, {100, 101, 104, 105, 102}},
    {kAudioChannelLayoutTag_Hexagonal, {100, 101, 104, 105, 102, 106}},
    {kAudioChannelLayoutTag_Octagonal, {100, 101, 104, 105, 102, 106, 109, 110}},
    {kAudioChannelLayoutTag_Cube, {100, 101, 104, 105, 112, 113, 115, 116}},
    {kAudioChannelLayoutTag_MPEG_3_0_A, {100, 101, 102}},
    {kAudioChannelLayoutTag_MPEG_3_0_B, {102, 100, 101}},
    {kAudioChannelLayoutTag_MPEG_4_0_A, {100, 101, 102, 106}},
    {kAudioChannelLayoutTag_MPEG_4_0_B, {102, 100, 101, 106}},
    {kAudioChannelLayoutTag_MPEG_5_0_A, {100, 101, 102, 104, 105}},
    {kAudioChannelLayoutTag_MPEG_5_0_B, {100, 101, 104, 105, 102}},
    {kAudioChannelLayoutTag_MPEG_5_0_C, {100, 102, 101, 104, 105}},
    {kAudioChannelLayoutTag_MPEG_5_0_D, {102, 100, 101, 104, 105}},
    {kAudioChannelLayoutTag_MPEG_5_1_A, {100, 101, 102, 103, 104, 105}},
    {kAudioChannelLayoutTag_MPEG_5_1_B, {100, 101, 104, 105, 102, 103}},
    {kAudioChannelLayoutTag_MPEG_5_1_C, {100, 102, 101, 104, 105, 103}},
    {kAudioChannelLayoutTag_MPEG_5_1_D, {102, 100, 101, 104, 105, 103}},
    {kAudioChannelLayoutTag_MPEG_6_1_A, {100, 101, 102, 103, 104, 105, 106}},
    {kAudioChannelLayoutTag_MPEG_7_1_A, {100, 101, 102, 103, 104, 105, 107, 108}},
    {kAudioChannelLayoutTag_MPEG_7_1_B, {102, 107, 108, 100, 101, 104, 105, 103}},
    {kAudioChannelLayoutTag_MPEG_7_1_C, {100, 101, 102, 103, 104, 105, 129, 130}},
    {kAudioChannelLayoutTag_Emagic_Default_7_1, {100, 101, 104, 105, 102, 103, 107, 108}},
    {kAudioChannelLayoutTag_SMPTE_DTV, {100, 101, 102, 103, 104, 105, 132, 133}},
    {kAudioChannelLayoutTag_ITU_2_1, {100, 101, 106}},
    {kAudioChannelLayoutTag_ITU_2_2, {100, 101, 104, 105}},
    {kAudioChannelLayoutTag_DVD_4, {100, 101, 103}},
    {kAudioChannelLayoutTag_DVD_5, {100, 101, 103, 106}},
    {kAudioChannelLayoutTag_DVD_6, {100, 101, 103, 104, 105}},
    {kAudioChannelLayoutTag_DVD_10, {100, 101, 102, 103}},
    {kAudioChannelLayoutTag_DVD_11, {100, 101, 102, 103, 106}},
    {kAudioChannelLayoutTag_DVD_18, {100, 101, 104, 105, 103}},
    {kAudioChannelLayoutTag_AudioUnit_6_0, {100, 101, 104, 105, 102, 106}},
    {kAudioChannelLayoutTag_AudioUnit_7_0, {100, 101, 104, 105, 102, 129, 130}},
    {kAudioChannelLayoutTag_AAC_6_0, {102, 100, 101, 104, 105, 106}},
    {kAudioChannelLayoutTag_AAC_6_1, {102, 100, 101, 104, 105, 106, 103}},
    {kAudioChannelLayoutTag_AAC_7_0, {102, 100, 101, 104, 105, 129, 130}},
    {kAudioChannelLayoutTag_AAC_Octagonal, {102, 100, 101, 104, 105, 129, 130, 106}},
    {kAudioChannelLayoutTag_TMH_10_2_std, {100, 101, 102, 114, 109, 110, 104, 105, 112, 113, 118, 119, 0, 106, 103, 131}},
    {kAudioChannelLayoutTag_TMH_10_2_full, {100, 101, 102, 114, 109, 110, 104, 105, 112, 113, 118, 119, 0, 106, 103, 131, 107, 108, 0, 0, 0}},
    {kAudioChannelLayoutTag_AudioUnit_7_0_Front, {100, 101, 104, 105, 102, 107, 108}},
    {kAudioChannelLayoutTag_AC3_1_0_1, {102, 103}},
    {kAudioChannelLayoutTag_AC3_3_0, {100, 102, 101}},
    {kAudioChannelLayoutTag_AC3_3_1, {100, 102, 101, 106}},
    {kAudioChannelLayoutTag_AC3_3_0_1, {100, 102, 101, 103}},
    {kAudioChannelLayoutTag_AC3_2_1_1, {100, 101, 106, 103}},
    {kAudioChannelLayoutTag_AC3_3_1_1, {100, 102, 101, 106, 103}},
};
// clang-format on
static_assert(std::size(kTaggedLayouts) == 54);

void Append(AudioChannelDescriptions& ioLabels, kelpmediatypes::AudioChannelLabel inLabel)
{
    ioLabels.push_back({inLabel});
}

AudioChannelDescriptions LabelsOfDescriptions(const AudioChannelLayout& inLayout)
{
    AudioChannelDescriptions labels;
    const AudioChannelDescription* const first = inLayout.mChannelDescriptions;
    std::for_each(first, first + inLayout.mNumberChannelDescriptions,
                  [&labels](const AudioChannelDescription& inDescription)
                  { Append(labels, TranslateChannelLabel(inDescription.mChannelLabel)); });
    return labels;
}

// Bit k stands for the platform's label k + 1, up to the last one of this row of labels.
AudioChannelDescriptions LabelsOfBitmap(AudioChannelBitmap inBitmap)
{
    AudioChannelDescriptions labels;
    for (UInt32 bit = 0; bit < kAudioChannelLabel_TopBackRight; ++bit)
        if ((inBitmap >> bit & 1) != 0)
            Append(labels, TranslateChannelLabel(bit + 1));
    return labels;
}

AudioChannelDescriptions LabelsOfTag(AudioChannelLayoutTag inTag)
{
    AudioChannelDescriptions labels;
    for (const TaggedLayout& layout : kTaggedLayouts)
        if (layout.mTag == inTag)
            for (UInt32 channel = 0; channel < (inTag & 0xFFFF); ++channel)
                Append(labels, kelpmediatypes::AudioChannelLabel{layout.mHostLabels[channel]});
    return labels;
}

}  // namespace

kelpmediatypes::AudioChannelLabel TranslateChannelLabel(unsigned int inPlatformLabel)
{
    if (inPlatformLabel == kAudioChannelLabel_HeadphonesLeft)
        return kelpmediatypes::AudioChannelLabel::Left;
    if (inPlatformLabel == kAudioChannelLabel_HeadphonesRight)
        return kelpmediatypes::AudioChannelLabel::Right;

    const UInt32* const found =
        std::find(std::begin(kPlatformLabels), std::end(kPlatformLabels), inPlatformLabel);
    if (found == std::end(kPlatformLabels) || *found == kAudioChannelLabel_Discrete)
        return kelpmediatypes::AudioChannelLabel::Unnamed;
    return kelpmediatypes::AudioChannelLabel{
        static_cast<UInt32>(kFirstHostLabel + (found - std::begin(kPlatformLabels)))};
}

unsigned int TranslateChannelLabel(kelpmediatypes::AudioChannelLabel inHostLabel)
{
    // A label below the first wraps around and lies behind the table.
    const UInt32 index = static_cast<UInt32>(inHostLabel) - kFirstHostLabel;
    return index < std::size(kPlatformLabels) ? kPlatformLabels[index]
                                              : kAudioChannelLabel_Discrete;
}

AudioChannelDescriptions ConvertChannelLayout(const AudioChannelLayout* inLayout)
{
    switch (inLayout->mChannelLayoutTag)
    {
        case kAudioChannelLayoutTag_UseChannelDescriptions:
            return LabelsOfDescriptions(*inLayout);
        case kAudioChannelLayoutTag_UseChannelBitmap:
            return LabelsOfBitmap(inLayout->mChannelBitmap);
        default:
            return LabelsOfTag(inLayout->mChannelLayoutTag);
    }
}

AudioChannelLayout* ConvertChannelLayout(const AudioChannelDescriptions& inLabels)
{
    const auto channelCount = static_cast<UInt32>(inLabels.size());
    AudioChannelLayout* const layout = CAAudioChannelLayout::Create(channelCount);
    AudioChannelDescription* description = layout->mChannelDescriptions;
    for (const kelpmediatypes::AudioChannelDescription& label : inLabels)
        (description++)->mChannelLabel = TranslateChannelLabel(label.mLabel);
    return layout;
}

}  // namespace appleaudiotoolbox
