#include "Tarvo_PlugIns/Common/SDKGlue/TarvoSDKGlueUtilities.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace
{

struct DSPSampleTypePair
{
    tarvo::AudioSampleType mType;
    int mDSPType;
};

constexpr DSPSampleTypePair kDSPSampleTypes[] = {
    {tarvo::kTarvoSampleType8, 1},
    {tarvo::kTarvoSampleType16, 2},
    {tarvo::kTarvoSampleType24, 3},
    {tarvo::kTarvoSampleType32, 4},
};

// The label in the type of the vector's elements.
void Translate(tarvo::AudioChannelLabel inLabel, tarvo::AudioChannelLabel& outLabel)
{
    outLabel = inLabel;
}

void Translate(tarvo::AudioChannelLabel inLabel, kelpmediatypes::AudioChannelLabel& outLabel)
{
    outLabel = ConvertAudioChannelLabel(inLabel);
}

}  // namespace

tarvo::AudioChannelLabel ConvertAudioChannelLabel(kelpmediatypes::AudioChannelLabel inLabel)
{
    return static_cast<tarvo::AudioChannelLabel>(inLabel);
}

kelpmediatypes::AudioChannelLabel ConvertAudioChannelLabel(tarvo::AudioChannelLabel inLabel)
{
    return static_cast<kelpmediatypes::AudioChannelLabel>(inLabel);
}

tarvo::AudioSampleType ConvertSampleType(kelpmediatypes::AudioSampleType inType)
{
    return static_cast<tarvo::AudioSampleType>(inType);
}

kelpmediatypes::AudioSampleType ConvertSampleType(tarvo::AudioSampleType inType)
{
    return static_cast<kelpmediatypes::AudioSampleType>(inType);
}

int ConvertToDSPSampleType(tarvo::AudioSampleType inType)
{
    for (const DSPSampleTypePair& pair : kDSPSampleTypes)
        if (pair.mType == inType)
            return pair.mDSPType;
    return 0;
}

template <typename Vector>
Vector GetAudioChannelLayout(const TarvoFormatInterface& inFormat)
{
    Vector layout;
    const std::int64_t count = inFormat.GetChannelCount();
    if (count == 0)
        return layout;

    layout.reserve(static_cast<std::size_t>(count));
    for (std::int64_t channel = 0; channel < count; ++channel)
        Translate(inFormat.GetChannelLabel(channel), layout.emplace_back().mLabel);
    return layout;
}

template std::vector<tarvo::AudioChannelDescription> GetAudioChannelLayout(
    const TarvoFormatInterface& inFormat);
template kelpmediatypes::AudioChannelDescriptions GetAudioChannelLayout(
    const TarvoFormatInterface& inFormat);

void SetAudioChannelLayout(const kelpmediatypes::AudioChannelDescriptions& inLayout,
                           TarvoFormatInterface& inFormat)
{
    if (inLayout.empty())
        return;

    const std::int64_t count =
        std::min(inFormat.GetChannelCount(), static_cast<std::int64_t>(inLayout.size()));
    for (std::int64_t channel = 0; channel < count; ++channel)
    {
        const auto& description = inLayout.at(static_cast<std::size_t>(channel));
        inFormat.SetChannelLabel(channel, ConvertAudioChannelLabel(description.mLabel));
    }
}
