// ATUtils: small questions about files and formats, and channel layouts in the host's terms and in
// the platform's.
//
// Nothing here keeps state, and results are new values. Failures are quiet: false, an empty text or
// an empty list. Rates in Hz, sizes in bytes.
#ifndef APPLEAUDIOTOOLBOX_UTILITY_ATUTILS_H
#define APPLEAUDIOTOOLBOX_UTILITY_ATUTILS_H

#include "CoreAudio/PublicUtility/CAStreamBasicDescription.h"
#include "kelpcore/Strings.h"
#include "kelpmediatypes/AudioTypes.h"

#include <AudioToolbox/AudioToolbox.h>

namespace appleaudiotoolbox
{

/// The type of an open file. False, with *outFileType as it was, when the platform does not tell or
/// outFileType is null.
bool GetFileTypeIDFromFile(AudioFileID inFile, unsigned int* outFileType);

/// The last MIME type that the platform lists for a file type; empty without one.
UTF8String GetMIMEType(unsigned int inFileType);

/// The format word of an XMP record for a file type; four blanks for a type without one.
unsigned int GetXMPType(unsigned int inFileType);

/// What one sample of one channel costs on average, in bits, in a format whose stream description
/// has no depth; 0 for a format outside the table.
double GetEstimatedBitDepthFromCompressedFormat(unsigned int inFormatID);

/// The linear PCM format in which a file of this format is delivered: native byte order, packed,
/// interleaved, the same channels, the rate in whole Hz, and a depth that loses nothing (8, 16 or
/// 24 bits, else float). inForceFloat chooses float for any depth.
CAStreamBasicDescription GetClientFormatFromInputFormat(const CAStreamBasicDescription& inInput,
                                                        bool inForceFloat);

/// A linear PCM format from bare numbers, which are taken at face value: 8, 16 and 24 bits are
/// integers, all others float, with 64 narrowed to 32.
CAStreamBasicDescription ConstructClientFormatFromArgs(double inSampleRate,
                                                       unsigned int inBitsPerSample,
                                                       unsigned int inChannelCount);

/// Platform to host; 0 for a label that the host does not name.
kelpmediatypes::AudioChannelLabel TranslateChannelLabel(unsigned int inPlatformLabel);

/// Host to platform; the discrete label for one that the platform does not name.
unsigned int TranslateChannelLabel(kelpmediatypes::AudioChannelLabel inHostLabel);

/// Platform to host, one label for each channel in order. Empty for a tag that is neither
/// descriptions nor bitmap nor in the table of layouts.
kelpmediatypes::AudioChannelDescriptions ConvertChannelLayout(const AudioChannelLayout* inLayout);

/// Host to platform, always with one description for each channel and never by tag. The caller
/// gives the result to CAAudioChannelLayout::Destroy.
AudioChannelLayout* ConvertChannelLayout(const kelpmediatypes::AudioChannelDescriptions& inLabels);

}  // namespace appleaudiotoolbox

#endif
