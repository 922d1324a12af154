// TarvoSDKTypes: the plain values that cross the host interface: results, labels, sample types.
//
// What the interface keeps in its own house stands in the namespace tarvo. The host objects, the
// results and the entry function are known to hosts by their bare names and stand outside it.
#ifndef TARVOSDK_TARVOSDKTYPES_H
#define TARVOSDK_TARVOSDKTYPES_H

#include <cstdint>

/// One UTF-16 code unit in native byte order. Texts are pointers to units that end in a zero unit.
using uint16 = char16_t;

/// What every entry call answers: 0 or a failure below 0. The values -5 and -7 are not given.
enum TarvoResult : std::int32_t
{
    kTarvoResultSuccess = 0,
    kTarvoResultFailed = -1,
    kTarvoResultUnknownSelector = -2,
    kTarvoResultNotImplemented = -3,
    kTarvoResultFileFormatError = -4,
    kTarvoResultBadArgument = -6,
    kTarvoResultUnsupportedFormat = -8,
    kTarvoResultInputFormatError = -9,
    kTarvoResultOutputFormatError = -10
};

namespace tarvo
{

/// A channel's place. Any 32-bit value may cross; these have a name here.
enum AudioChannelLabel : std::uint32_t
{
    kTarvoChannelLabelUnnamed = 0,
    kTarvoChannelLabelLeft = 100,
    kTarvoChannelLabelRight = 101
};

/// Bits of one sample of one channel.
enum AudioSampleType : std::int32_t
{
    kTarvoSampleType8 = 10,
    kTarvoSampleType16 = 20,
    kTarvoSampleType24 = 30,
    kTarvoSampleType32 = 40
};

/// One channel of a layout.
struct AudioChannelDescription
{
    AudioChannelLabel mLabel = kTarvoChannelLabelUnnamed;
};
static_assert(sizeof(AudioChannelDescription) == 4);

/// Kinds of metadata that a host may ask a plug-in for.
inline constexpr const char* kTarvoMetadataTypeID_XMP = "0D2AE778-D75A-41EA-8B43-55E42F73BA5B";
inline constexpr const char* kTarvoMetadataTypeID_GenericWaveMetadataChunk =
    "D3F80001-8DFA-4E93-B85C-B94A96522E45";
inline constexpr const char* kTarvoMetadataTypeID_GenericAiffMetadataChunk =
    "FBB4209D-D2CA-4EE9-A569-B9EB30D33B81";

}  // namespace tarvo

#endif
