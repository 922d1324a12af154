// BitrateProbe: the bit rates of a format, learned from a converter into it.
//
// Nothing is reported: a converter that cannot be made offers no rates, and a refused mode costs
// that mode alone.
#ifndef APPLEAUDIOTOOLBOX_UTILITY_BITRATEPROBE_H
#define APPLEAUDIOTOOLBOX_UTILITY_BITRATEPROBE_H

#include "appleaudiotoolbox/utility/CatalogueRecords.h"

namespace appleaudiotoolbox
{

/// What encoders are asked with where there is no real source: 44.1 kHz, two channels, 16 bits,
/// big-endian.
inline constexpr AudioStreamBasicDescription kReferenceSourceFormat = {
    44100.0,
    kAudioFormatLinearPCM,
    kAudioFormatFlagIsBigEndian | kAudioFormatFlagIsSignedInteger | kAudioFormatFlagIsPacked,
    4,
    1,
    4,
    2,
    16,
    0};

/// Fills in lists, defaults and the variable mode's flag of a record that has none of them yet.
///
/// ioFormatType    its mFormatDescription is the destination
/// inSourceFormat  null for the reference source. With a source of the caller's, every rate is
///                 tried on the converter, refused ones are left out, and a default is the rate
///                 that was accepted last: the first of its list.
/// A range that begins at 0 is never listed.
void QueryFormatBitrateInformation(ATFormatType& ioFormatType,
                                   const CAStreamBasicDescription* inSourceFormat);

}  // namespace appleaudiotoolbox

#endif
