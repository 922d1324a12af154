// The file's own record of its channels' places ('chan').
#include "file/mpeg4/Codecs.h"

#include "file/ChannelLayouts.h"
#include "file/Endian.h"
#include "file/mpeg4/DecoderLayouts.h"

#include <bit>

namespace audiotoolbox::mpeg4
{
namespace
{

struct ChannelBox
{
    AudioChannelLayoutTag mTag = 0;
    AudioChannelBitmap mBitmap = 0;
    std::vector<AudioChannelLabel> mLabels;

    UInt32 ChannelCount() const
    {
        if (mTag == kAudioChannelLayoutTag_UseChannelDescriptions)
            return static_cast<UInt32>(mLabels.size());
        if (mTag == kAudioChannelLayoutTag_UseChannelBitmap)
            return static_cast<UInt32>(std::popcount(mBitmap));
        return mTag & 0xFFFFu;
    }
};

bool ReadChannelBox(ByteWindow& ioWindow, const SampleEntry& inEntry, ChannelBox& outBox)
{
    constexpr std::size_t kHead = 16;  // version and flags, tag, bitmap, number of descriptions
    constexpr std::size_t kDescription = 20;
    const std::vector<UInt8> bytes =
        inEntry.BytesOf(ioWindow, CA_FOUR_CHAR_CODE('c', 'h', 'a', 'n'));
    if (bytes.size() < kHead)
        return false;
    outBox.mTag = ReadBE32(bytes.data() + 4);
    outBox.mBitmap = ReadBE32(bytes.data() + 8);
    const UInt32 count = ReadBE32(bytes.data() + 12);
    if (count > (bytes.size() - kHead) / kDescription)
        return false;
    for (UInt32 index = 0; index < count; ++index)
        outBox.mLabels.push_back(ReadBE32(bytes.data() + kHead + index * kDescription));
    return true;
}

std::vector<UInt8> RecordOf(const ChannelBox& inBox)
{
    if (inBox.mTag == kAudioChannelLayoutTag_UseChannelDescriptions)
        return LayoutOfLabels(inBox.mLabels);
    if (inBox.mTag == kAudioChannelLayoutTag_UseChannelBitmap)
        return LayoutOfBitmap(inBox.mBitmap);
    return LayoutOfTag(inBox.mTag);
}

// True when decoded channels, which come in ascending order, stand as the box says. Beyond label
// 18 the numbers do not follow the order.
bool IsAscending(const ChannelBox& inBox)
{
    if (inBox.mTag == kAudioChannelLayoutTag_UseChannelBitmap)
        return true;
    if (inBox.mTag != kAudioChannelLayoutTag_UseChannelDescriptions)
        return false;
    UInt32 last = 0;
    for (const AudioChannelLabel label : inBox.mLabels)
    {
        if (label <= last || label > 18)
            return false;
        last = label;
    }
    return true;
}

bool IsPlainTag(AudioChannelLayoutTag inTag)
{
    const UInt32 kind = inTag & 0xFFFF0000u;
    return kind > kAudioChannelLayoutTag_UseChannelBitmap &&
           kind != kAudioChannelLayoutTag_DiscreteInOrder && kind != kAudioChannelLayoutTag_Unknown;
}

}  // namespace

void ApplyChannelBox(ByteWindow& ioWindow, const SampleEntry& inEntry, FileFacts& ioFacts)
{
    const bool isPCM = ioFacts.mDataFormat.mFramesPerPacket == 1;
    const UInt32 channels = ioFacts.mFormats.empty()
                                ? ioFacts.mDataFormat.mChannelsPerFrame
                                : ioFacts.mFormats.front().mASBD.mChannelsPerFrame;
    if (ioFacts.mChannelLayout.empty())
        ioFacts.mChannelLayout = LayoutOfCount(channels).mRecord;
    ChannelBox box;
    if (!ReadChannelBox(ioWindow, inEntry, box) || box.ChannelCount() != channels)
        return;
    // One or two channels cannot be in another order, so the box may tell what kind of pair it is.
    const bool isPairKind = channels <= 2 && IsPlainTag(box.mTag);
    const bool fillsGap = ioFacts.mChannelLayout.empty() && IsAscending(box);
    if (isPCM || isPairKind || fillsGap)
        ioFacts.mChannelLayout = RecordOf(box);
}

}  // namespace audiotoolbox::mpeg4
