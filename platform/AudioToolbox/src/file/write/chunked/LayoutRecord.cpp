#include "file/write/chunked/LayoutRecord.h"

#include "file/write/chunked/HeaderBytes.h"
#include "file/write/chunked/RequestChecks.h"

namespace audiotoolbox
{

std::vector<UInt8> MakeLayoutRecord(const std::vector<AudioChannelLabel>& inLabels)
{
    HeaderBytes record;
    if (IsPlainOrder(inLabels))
    {
        const AudioChannelLayoutTag tag =
            inLabels.size() == 1 ? kAudioChannelLayoutTag_Mono : kAudioChannelLayoutTag_Stereo;
        return record.Big(tag, 4).Zeros(8).Get();
    }
    record.Big(kAudioChannelLayoutTag_UseChannelDescriptions, 4).Big(0, 4).Big(inLabels.size(), 4);
    for (const AudioChannelLabel label : inLabels)
        record.Big(label, 4).Zeros(sizeof(AudioChannelDescription) - sizeof(label));
    return record.Get();
}

}  // namespace audiotoolbox
