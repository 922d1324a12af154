// SampleConversion: samples of one channel between the widths that cross the plug-in's interface.
//
// By bytes a sample: 1 is unsigned with its middle at 128, 2 and 3 are packed signed integers, 4 is
// a 32-bit float with full scale 1. Native byte order. Integers are fractions of full scale: what
// is widened gets zeros below, what is narrowed is rounded and saturated.
#ifndef HOST_SAMPLECONVERSION_H
#define HOST_SAMPLECONVERSION_H

#include "host/Dither.h"

#include <cstddef>
#include <cstdint>

namespace host
{

/// Exact for every width.
void ToFloat(const char* inSamples, std::size_t inBytes, std::int64_t inCount, float* outSamples);

/// To the nearest step, halves to even; NaN becomes 0. ioNoise is added before, null for none.
/// inBytes 4 copies.
void FromFloat(const float* inSamples, std::int64_t inCount, std::size_t inBytes, char* outSamples,
               DitherNoise* ioNoise);

/// From one width to another, integers without a way over floats. ioNoise is added where an
/// integer becomes narrower, null for none. in and out do not overlap.
void ChangeWidth(const char* inSamples, std::size_t inFromBytes, std::int64_t inCount,
                 std::size_t inToBytes, char* outSamples, DitherNoise* ioNoise);

/// The largest distance from 0, 1 for full scale; NaN counts as 0.
double PeakOf(const char* inSamples, std::size_t inBytes, std::int64_t inCount);

/// Silence of one channel.
void FillWithSilence(char* outSamples, std::size_t inBytes, std::int64_t inCount);

}  // namespace host

#endif
