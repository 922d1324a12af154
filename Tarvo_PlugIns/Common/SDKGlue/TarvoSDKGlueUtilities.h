// TarvoSDKGlueUtilities: labels, sample types and channel layouts between host and house.
//
// Both sides number labels and sample types alike, so a translation is a change of type.
#ifndef TARVO_PLUGINS_COMMON_SDKGLUE_TARVOSDKGLUEUTILITIES_H
#define TARVO_PLUGINS_COMMON_SDKGLUE_TARVOSDKGLUEUTILITIES_H

#include "TarvoSDK/TarvoSDK.h"

#include <kelpmediatypes/AudioTypes.h>

#include <vector>

tarvo::AudioChannelLabel ConvertAudioChannelLabel(kelpmediatypes::AudioChannelLabel inLabel);
kelpmediatypes::AudioChannelLabel ConvertAudioChannelLabel(tarvo::AudioChannelLabel inLabel);

tarvo::AudioSampleType ConvertSampleType(kelpmediatypes::AudioSampleType inType);
kelpmediatypes::AudioSampleType ConvertSampleType(tarvo::AudioSampleType inType);

/// Bytes of one sample as the processing code counts them, 1 to 4; 0 for any other type.
int ConvertToDSPSampleType(tarvo::AudioSampleType inType);

/// The format's channels in order, empty without channels. Vector is a vector of
/// tarvo::AudioChannelDescription or kelpmediatypes::AudioChannelDescriptions.
template <typename Vector>
Vector GetAudioChannelLayout(const TarvoFormatInterface& inFormat);

extern template std::vector<tarvo::AudioChannelDescription> GetAudioChannelLayout(
    const TarvoFormatInterface& inFormat);
extern template kelpmediatypes::AudioChannelDescriptions GetAudioChannelLayout(
    const TarvoFormatInterface& inFormat);

/// Tells the format a label for each channel that it has. Channels behind the last label keep
/// theirs; without labels nothing is called.
void SetAudioChannelLayout(const kelpmediatypes::AudioChannelDescriptions& inLayout,
                           TarvoFormatInterface& inFormat);

#endif
