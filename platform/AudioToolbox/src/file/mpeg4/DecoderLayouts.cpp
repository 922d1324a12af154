#include "file/mpeg4/DecoderLayouts.h"

#include "file/ChannelLayouts.h"

namespace audiotoolbox::mpeg4
{
namespace
{

using Labels = std::vector<AudioChannelLabel>;

struct TagRow
{
    AudioChannelLayoutTag mTag;
    Labels mLabels;
};

// The tags whose order is the decoders' own. Mono stands under the centre's label.
const TagRow kTags[] = {
    {kAudioChannelLayoutTag_Mono, {3}},
    {kAudioChannelLayoutTag_Stereo, {1, 2}},
    {kAudioChannelLayoutTag_MPEG_3_0_A, {1, 2, 3}},
    {kAudioChannelLayoutTag_ITU_2_1, {1, 2, 9}},
    {kAudioChannelLayoutTag_DVD_4, {1, 2, 4}},
    {kAudioChannelLayoutTag_MPEG_4_0_A, {1, 2, 3, 9}},
    {kAudioChannelLayoutTag_ITU_2_2, {1, 2, 5, 6}},
    {kAudioChannelLayoutTag_MPEG_5_0_A, {1, 2, 3, 5, 6}},
    {kAudioChannelLayoutTag_MPEG_5_1_A, {1, 2, 3, 4, 5, 6}},
    {kAudioChannelLayoutTag_MPEG_6_1_A, {1, 2, 3, 4, 5, 6, 9}},
    {kAudioChannelLayoutTag_MPEG_7_1_A, {1, 2, 3, 4, 5, 6, 7, 8}},
};

struct OrderRow
{
    UInt32 mKey;  // channel count, or AAC's channel configuration
    Labels mLabels;
};

// ISO/IEC 14496-3, channelConfiguration. Row 7 is defined with a pair in front of the centre's
// sides, but written by encoders, and so read by the decoder, with a back and a side pair.
const OrderRow kAACOrders[] = {
    {1, {3}},
    {2, {1, 2}},
    {3, {1, 2, 3}},
    {4, {1, 2, 3, 9}},
    {5, {1, 2, 3, 5, 6}},
    {6, {1, 2, 3, 4, 5, 6}},
    {7, {1, 2, 3, 4, 33, 34, 5, 6}},
    {11, {1, 2, 3, 4, 5, 6, 9}},
    {12, {1, 2, 3, 4, 33, 34, 5, 6}},
    {14, {1, 2, 3, 4, 5, 6, 13, 15}},
};

const OrderRow kFLACOrders[] = {
    {1, {3}},
    {2, {1, 2}},
    {3, {1, 2, 3}},
    {4, {1, 2, 5, 6}},
    {5, {1, 2, 3, 5, 6}},
    {6, {1, 2, 3, 4, 5, 6}},
    {7, {1, 2, 3, 4, 9, 5, 6}},
    {8, {1, 2, 3, 4, 33, 34, 5, 6}},
};

const OrderRow kALACOrders[] = {
    {1, {3}},
    {2, {1, 2}},
    {3, {1, 2, 3}},
    {4, {1, 2, 3, 9}},
    {5, {1, 2, 3, 5, 6}},
    {6, {1, 2, 3, 4, 5, 6}},
    {7, {1, 2, 3, 4, 5, 6, 9}},
    {8, {1, 2, 3, 4, 5, 6, 7, 8}},
};

// Without the LFE channel, which stands behind the front channels.
const OrderRow kAC3Orders[] = {
    {0, {1, 2}},    {1, {3}},          {2, {1, 2}},       {3, {1, 2, 3}},
    {4, {1, 2, 9}}, {5, {1, 2, 3, 9}}, {6, {1, 2, 5, 6}}, {7, {1, 2, 3, 5, 6}},
};

template <std::size_t kCount>
const Labels* FindOrder(const OrderRow (&inRows)[kCount], UInt32 inKey)
{
    for (const OrderRow& row : inRows)
        if (row.mKey == inKey)
            return &row.mLabels;
    return nullptr;
}

DecoderLayout UnknownLayout(UInt32 inChannelCount)
{
    return {kAudioChannelLayoutTag_Unknown | (inChannelCount & 0xFFFFu), {}};
}

DecoderLayout LayoutOrUnknown(const Labels* inLabels, UInt32 inChannelCount)
{
    const bool fits = inLabels != nullptr && inLabels->size() == inChannelCount;
    return fits ? LayoutOfOrder(*inLabels) : UnknownLayout(inChannelCount);
}

}  // namespace

DecoderLayout LayoutOfOrder(const std::vector<AudioChannelLabel>& inLabels)
{
    for (const TagRow& row : kTags)
        if (row.mLabels == inLabels)
            return {row.mTag, LayoutOfTag(row.mTag)};
    DecoderLayout layout = UnknownLayout(static_cast<UInt32>(inLabels.size()));
    layout.mRecord = LayoutOfLabels(inLabels);
    return layout;
}

DecoderLayout LayoutOfAACConfiguration(UInt32 inConfiguration, UInt32 inChannelCount)
{
    if (inConfiguration == 0)
        return LayoutOfCount(inChannelCount);
    return LayoutOrUnknown(FindOrder(kAACOrders, inConfiguration), inChannelCount);
}

DecoderLayout LayoutOfFLACOrOpus(UInt32 inChannelCount)
{
    return LayoutOrUnknown(FindOrder(kFLACOrders, inChannelCount), inChannelCount);
}

DecoderLayout LayoutOfALAC(UInt32 inChannelCount)
{
    return LayoutOrUnknown(FindOrder(kALACOrders, inChannelCount), inChannelCount);
}

DecoderLayout LayoutOfAC3(UInt32 inMode, bool inHasLFE)
{
    const Labels* order = FindOrder(kAC3Orders, inMode);
    if (order == nullptr)
        return UnknownLayout(0);
    Labels labels = *order;
    if (inHasLFE)
    {
        auto place = labels.begin();
        while (place != labels.end() && *place <= kAudioChannelLabel_Center)
            ++place;
        labels.insert(place, kAudioChannelLabel_LFEScreen);
    }
    return LayoutOfOrder(labels);
}

DecoderLayout LayoutOfCount(UInt32 inChannelCount)
{
    if (inChannelCount == 1 || inChannelCount == 2)
        return LayoutOrUnknown(FindOrder(kFLACOrders, inChannelCount), inChannelCount);
    return UnknownLayout(inChannelCount);
}

}  // namespace audiotoolbox::mpeg4
