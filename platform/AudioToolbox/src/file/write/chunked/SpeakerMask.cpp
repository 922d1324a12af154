#include "file/write/chunked/SpeakerMask.h"

#include <algorithm>

namespace audiotoolbox
{
namespace
{

// Labels beyond the first 18, whose bits stand in the labels' own order.
struct SpeakerRow
{
    AudioChannelLabel mLabel;
    AudioChannelLabel mPlace;            // of which it takes the bit
    AudioChannelLabel mPlaceBesideRear;  // the same, in a layout with rear surrounds
};

// The bits 4 and 5 are the back pair. The plain surrounds have them too, but give way to a pair
// that is farther back and are then the side pair.
constexpr SpeakerRow kSpeakers[] = {
    {kAudioChannelLabel_LeftSurround, kAudioChannelLabel_LeftSurround,
     kAudioChannelLabel_LeftSurroundDirect},
    {kAudioChannelLabel_RightSurround, kAudioChannelLabel_RightSurround,
     kAudioChannelLabel_RightSurroundDirect},
    {kAudioChannelLabel_RearSurroundLeft, kAudioChannelLabel_LeftSurround,
     kAudioChannelLabel_LeftSurround},
    {kAudioChannelLabel_RearSurroundRight, kAudioChannelLabel_RightSurround,
     kAudioChannelLabel_RightSurround},
    {kAudioChannelLabel_Mono, kAudioChannelLabel_Center, kAudioChannelLabel_Center},
};

AudioChannelBitmap BitOf(AudioChannelLabel inLabel, bool inHasRear)
{
    for (const SpeakerRow& row : kSpeakers)
        if (row.mLabel == inLabel)
            return AudioChannelBitmap{1} << ((inHasRear ? row.mPlaceBesideRear : row.mPlace) - 1);
    const bool hasBit =
        inLabel >= kAudioChannelLabel_Left && inLabel <= kAudioChannelLabel_TopBackRight;
    return hasBit ? AudioChannelBitmap{1} << (inLabel - 1) : 0;
}

}  // namespace

AudioChannelBitmap SpeakerMaskOf(const std::vector<AudioChannelLabel>& inLabels)
{
    const bool hasRear = std::any_of(inLabels.begin(), inLabels.end(),
                                     [](AudioChannelLabel inLabel)
                                     {
        return inLabel == kAudioChannelLabel_RearSurroundLeft ||
               inLabel == kAudioChannelLabel_RearSurroundRight;
    });
    AudioChannelBitmap mask = 0;
    for (const AudioChannelLabel label : inLabels)
    {
        const AudioChannelBitmap bit = BitOf(label, hasRear);
        if (bit <= mask)
            return 0;
        mask |= bit;
    }
    return mask;
}

}  // namespace audiotoolbox
