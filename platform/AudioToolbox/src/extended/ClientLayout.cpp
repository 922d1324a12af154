#include "extended/ClientLayout.h"

#include <bit>

namespace audiotoolbox
{
namespace
{

using Labels = std::vector<AudioChannelLabel>;

constexpr UInt32 kMostTaggedChannels = 8;

struct TagRow
{
    AudioChannelLayoutTag mTag;
    AudioChannelLabel mLabels[kMostTaggedChannels];  // as many as the tag says
};

// clang-format off
constexpr TagRow kTags[] = {
    {kAudioChannelLayoutTag_Mono,          {3}},
    {kAudioChannelLayoutTag_Stereo,        {1, 2}},
    {kAudioChannelLayoutTag_MatrixStereo,  {38, 39}},
    {kAudioChannelLayoutTag_Quadraphonic,  {1, 2, 5, 6}},
    {kAudioChannelLayoutTag_Pentagonal,    {1, 2, 5, 6, 3}},
    {kAudioChannelLayoutTag_Hexagonal,     {1, 2, 5, 6, 3, 9}},
    {kAudioChannelLayoutTag_MPEG_3_0_A,    {1, 2, 3}},
    {kAudioChannelLayoutTag_MPEG_3_0_B,    {3, 1, 2}},
    {kAudioChannelLayoutTag_MPEG_4_0_A,    {1, 2, 3, 9}},
    {kAudioChannelLayoutTag_MPEG_4_0_B,    {3, 1, 2, 9}},
    {kAudioChannelLayoutTag_MPEG_5_0_A,    {1, 2, 3, 5, 6}},
    {kAudioChannelLayoutTag_MPEG_5_0_B,    {1, 2, 5, 6, 3}},
    {kAudioChannelLayoutTag_MPEG_5_0_C,    {1, 3, 2, 5, 6}},
    {kAudioChannelLayoutTag_MPEG_5_0_D,    {3, 1, 2, 5, 6}},
    {kAudioChannelLayoutTag_MPEG_5_1_A,    {1, 2, 3, 4, 5, 6}},
    {kAudioChannelLayoutTag_MPEG_5_1_B,    {1, 2, 5, 6, 3, 4}},
    {kAudioChannelLayoutTag_MPEG_5_1_C,    {1, 3, 2, 5, 6, 4}},
    {kAudioChannelLayoutTag_MPEG_5_1_D,    {3, 1, 2, 5, 6, 4}},
    {kAudioChannelLayoutTag_MPEG_6_1_A,    {1, 2, 3, 4, 5, 6, 9}},
    {kAudioChannelLayoutTag_MPEG_7_1_A,    {1, 2, 3, 4, 5, 6, 7, 8}},
    {kAudioChannelLayoutTag_MPEG_7_1_B,    {3, 7, 8, 1, 2, 5, 6, 4}},
    {kAudioChannelLayoutTag_MPEG_7_1_C,    {1, 2, 3, 4, 5, 6, 33, 34}},
    {kAudioChannelLayoutTag_ITU_2_1,       {1, 2, 9}},
    {kAudioChannelLayoutTag_ITU_2_2,       {1, 2, 5, 6}},
    {kAudioChannelLayoutTag_DVD_4,         {1, 2, 4}},
    {kAudioChannelLayoutTag_DVD_5,         {1, 2, 4, 9}},
    {kAudioChannelLayoutTag_DVD_6,         {1, 2, 4, 5, 6}},
    {kAudioChannelLayoutTag_DVD_10,        {1, 2, 3, 4}},
    {kAudioChannelLayoutTag_DVD_11,        {1, 2, 3, 4, 9}},
    {kAudioChannelLayoutTag_DVD_18,        {1, 2, 5, 6, 4}},
    {kAudioChannelLayoutTag_AudioUnit_6_0, {1, 2, 5, 6, 3, 9}},
    {kAudioChannelLayoutTag_AudioUnit_7_0, {1, 2, 5, 6, 3, 33, 34}},
    {kAudioChannelLayoutTag_AAC_6_0,       {3, 1, 2, 5, 6, 9}},
    {kAudioChannelLayoutTag_AAC_6_1,       {3, 1, 2, 5, 6, 9, 4}},
    {kAudioChannelLayoutTag_AAC_7_0,       {3, 1, 2, 5, 6, 33, 34}},
    {kAudioChannelLayoutTag_AC3_3_0,       {1, 3, 2}},
    {kAudioChannelLayoutTag_AC3_3_1,       {1, 3, 2, 9}},
    {kAudioChannelLayoutTag_AC3_3_0_1,     {1, 3, 2, 4}},
    {kAudioChannelLayoutTag_AC3_2_1_1,     {1, 2, 9, 4}},
    {kAudioChannelLayoutTag_AC3_3_1_1,     {1, 3, 2, 9, 4}},
};
// clang-format on

Labels LabelsOfDescriptions(const AudioChannelLayout& inLayout, UInt32 inChannelCount)
{
    if (inLayout.mNumberChannelDescriptions != inChannelCount)
        return {};
    const AudioChannelDescription* descriptions = inLayout.mChannelDescriptions;
    Labels labels;
    for (UInt32 channel = 0; channel < inChannelCount; ++channel)
        labels.push_back(descriptions[channel].mChannelLabel);
    return labels;
}

// Bits are those of the WAVE channel mask, and label k + 1 is bit k.
Labels LabelsOfBitmap(AudioChannelBitmap inBitmap, UInt32 inChannelCount)
{
    if (static_cast<UInt32>(std::popcount(inBitmap)) != inChannelCount)
        return {};
    Labels labels;
    for (AudioChannelBitmap bits = inBitmap; bits != 0; bits &= bits - 1)
        labels.push_back(static_cast<AudioChannelLabel>(std::countr_zero(bits)) + 1);
    return labels;
}

Labels LabelsOfTag(AudioChannelLayoutTag inTag, UInt32 inChannelCount)
{
    for (const TagRow& row : kTags)
        if (row.mTag == inTag && (inTag & 0xFFFF) == inChannelCount)
            return {row.mLabels, row.mLabels + inChannelCount};
    return {};
}

}  // namespace

Labels LabelsOfLayout(const AudioChannelLayout* inLayout, UInt32 inChannelCount)
{
    if (inLayout == nullptr)
        return {};
    switch (inLayout->mChannelLayoutTag)
    {
        case kAudioChannelLayoutTag_UseChannelDescriptions:
            return LabelsOfDescriptions(*inLayout, inChannelCount);
        case kAudioChannelLayoutTag_UseChannelBitmap:
            return LabelsOfBitmap(inLayout->mChannelBitmap, inChannelCount);
        default:
            return LabelsOfTag(inLayout->mChannelLayoutTag, inChannelCount);
    }
}

}  // namespace audiotoolbox
