// ExportAudio: what the host's format tells of the audio to be saved, in the terms of settings.
#ifndef TARVO_PLUGINS_TARVOAT_PRIVATE_EXPORTAUDIO_H
#define TARVO_PLUGINS_TARVOAT_PRIVATE_EXPORTAUDIO_H

#include "TarvoSDK/TarvoFormatInterface.h"

#include <CoreAudio/CoreAudioTypes.h>

namespace tarvo
{

/// 0 for a number that is no tarvo::AudioSampleType.
UInt32 BitsPerChannelOfSampleType(std::int32_t inSampleType);

/// The low 32 bits of what the host counts in 64.
inline UInt32 ChannelCountOf(const TarvoFormatInterface& inFormat)
{
    return static_cast<UInt32>(inFormat.GetChannelCount());
}

/// The file type that the user's export filter asks for, 0 without one. The filter AAC alone, of
/// kAudioFileAAC_ADTSType, is one of this plug-in's. Throws what the conversion throws for an id
/// that is no number.
UInt32 QueryFilterFileType(const TarvoFormatInterface& inFormat);

}  // namespace tarvo

#endif
