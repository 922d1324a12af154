// SampleKernels: one pass from one sample layout to another.
//
// Integers are fractions of full scale: widening fills the lower bits with zeros, narrowing rounds
// to the nearest (halves upwards) and saturates. An integer becomes a float by 2^-(bits-1). A
// float becomes the nearest integer (halves to even), saturated, not-a-number becoming 0. 8-bit
// unsigned samples have their middle at 128. Equal layouts and mere byte order move bits alone.
#ifndef AUDIOTOOLBOX_CONVERT_SAMPLEKERNELS_H
#define AUDIOTOOLBOX_CONVERT_SAMPLEKERNELS_H

#include "convert/SampleLayout.h"

#include <cstddef>

namespace audiotoolbox
{

/// What a kernel needs beside its two words; the meaning of each number is in SampleKernels.cpp.
struct KernelNumbers
{
    int mInShift = 0;
    UInt32 mInFlip = 0;
    int mOutRight = 0;
    int mOutLeft = 0;
    UInt32 mOutFlip = 0;
    UInt32 mOutMask = 0;
    SInt32 mRound = 0;
    SInt32 mHighest = 0;
    double mScale = 1.0;
};

/// Converts inSampleCount samples of any alignment. The buffers do not overlap.
using KernelFunction = void (*)(const UInt8* inSamples, UInt8* outSamples,
                                std::size_t inSampleCount, const KernelNumbers& inNumbers);

class SampleKernel
{
public:
    /// Chosen for the processor at run time.
    SampleKernel(const SampleLayout& inFrom, const SampleLayout& inTo);

    void operator()(const void* inSamples, void* outSamples, std::size_t inSampleCount) const
    {
        mFunction(static_cast<const UInt8*>(inSamples), static_cast<UInt8*>(outSamples),
                  inSampleCount, mNumbers);
    }

private:
    KernelFunction mFunction;
    KernelNumbers mNumbers;
};

}  // namespace audiotoolbox

#endif
