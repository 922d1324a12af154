// ChannelLayouts: makes the layout record that a file's facts carry.
#ifndef AUDIOTOOLBOX_FILE_CHANNELLAYOUTS_H
#define AUDIOTOOLBOX_FILE_CHANNELLAYOUTS_H

#include <CoreAudio/CoreAudioTypes.h>

#include <cstddef>
#include <cstring>
#include <span>
#include <vector>

namespace audiotoolbox
{

/// The 12 bytes of a layout without descriptions.
inline std::vector<UInt8> LayoutHead(AudioChannelLayoutTag inTag, AudioChannelBitmap inBitmap,
                                     UInt32 inDescriptionCount)
{
    const UInt32 head[3] = {inTag, inBitmap, inDescriptionCount};
    std::vector<UInt8> bytes(sizeof(head) + inDescriptionCount * sizeof(AudioChannelDescription));
    std::memcpy(bytes.data(), head, sizeof(head));
    return bytes;
}

inline std::vector<UInt8> LayoutOfTag(AudioChannelLayoutTag inTag)
{
    return LayoutHead(inTag, 0, 0);
}

/// Bits as in the WAVE channel mask; channels in ascending bit order.
inline std::vector<UInt8> LayoutOfBitmap(AudioChannelBitmap inBitmap)
{
    return LayoutHead(kAudioChannelLayoutTag_UseChannelBitmap, inBitmap, 0);
}

/// One description a channel, in the order of the channels.
inline std::vector<UInt8> LayoutOfLabels(std::span<const AudioChannelLabel> inLabels)
{
    std::vector<UInt8> bytes = LayoutHead(kAudioChannelLayoutTag_UseChannelDescriptions, 0,
                                          static_cast<UInt32>(inLabels.size()));
    UInt8* place = bytes.data() + offsetof(AudioChannelLayout, mChannelDescriptions);
    for (const AudioChannelLabel label : inLabels)
    {
        AudioChannelDescription description = {};
        description.mChannelLabel = label;
        std::memcpy(place, &description, sizeof(description));
        place += sizeof(description);
    }
    return bytes;
}

}  // namespace audiotoolbox

#endif
