#include "file/write/chunked/CodedOrder.h"

#include <algorithm>
#include <iterator>

namespace audiotoolbox
{
namespace
{

constexpr AudioFormatID kReordering[] = {kAudioFormatMPEG4AAC, kAudioFormatAppleLossless};

constexpr AudioChannelLabel kOrder[] = {
    kAudioChannelLabel_Center,
    kAudioChannelLabel_LeftCenter,
    kAudioChannelLabel_RightCenter,
    kAudioChannelLabel_Left,
    kAudioChannelLabel_Right,
    kAudioChannelLabel_LeftSurroundDirect,
    kAudioChannelLabel_RightSurroundDirect,
    kAudioChannelLabel_LeftSurround,
    kAudioChannelLabel_RightSurround,
    kAudioChannelLabel_RearSurroundLeft,
    kAudioChannelLabel_RearSurroundRight,
    kAudioChannelLabel_CenterSurround,
    kAudioChannelLabel_LFEScreen,
};

const AudioChannelLabel* PlaceOf(AudioChannelLabel inLabel)
{
    return std::find(std::begin(kOrder), std::end(kOrder), inLabel);
}

}  // namespace

std::vector<AudioChannelLabel> CodedOrder(AudioFormatID inFormat,
                                          std::vector<AudioChannelLabel> inLabels)
{
    const bool isReordering = std::find(std::begin(kReordering), std::end(kReordering), inFormat) !=
                              std::end(kReordering);
    const bool areKnown =
        std::all_of(inLabels.begin(), inLabels.end(),
                    [](AudioChannelLabel inLabel) { return PlaceOf(inLabel) != std::end(kOrder); });
    if (isReordering && areKnown && inLabels.size() > 2)
        std::sort(inLabels.begin(), inLabels.end(),
                  [](AudioChannelLabel inLeft, AudioChannelLabel inRight)
                  { return PlaceOf(inLeft) < PlaceOf(inRight); });
    return inLabels;
}

}  // namespace audiotoolbox
