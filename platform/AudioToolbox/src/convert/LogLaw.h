// LogLaw: A-law and mu-law, ITU-T G.711, one byte a sample.
#ifndef AUDIOTOOLBOX_CONVERT_LOGLAW_H
#define AUDIOTOOLBOX_CONVERT_LOGLAW_H

#include <CoreAudio/CoreAudioTypes.h>

#include <cstddef>

namespace audiotoolbox
{

enum class LogLaw : UInt8
{
    A,
    Mu
};

/// The 16-bit value of one code word; the bits of the law stand at the upper end.
SInt16 ExpandLogLaw(LogLaw inLaw, UInt8 inCode);

/// To 32-bit floats, native byte order, full scale 1.
void ExpandLogLaw(LogLaw inLaw, const UInt8* inCodes, std::size_t inCount, Float32* outSamples);

/// From native 16-bit words to the code in whose step the value lies.
void CompressLogLaw(LogLaw inLaw, const SInt16* inSamples, std::size_t inCount, UInt8* outCodes);

}  // namespace audiotoolbox

#endif
