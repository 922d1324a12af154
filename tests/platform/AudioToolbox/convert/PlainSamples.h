// PlainSamples: every sample layout, and reading and writing one sample without vectors, as the
// reference for the kernels.
#ifndef TESTS_CONVERT_PLAINSAMPLES_H
#define TESTS_CONVERT_PLAINSAMPLES_H

#include "convert/SampleLayout.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

namespace plain
{

using audiotoolbox::SampleLayout;
using audiotoolbox::SampleWord;

inline std::vector<SampleLayout> AllLayouts()
{
    std::vector<SampleLayout> layouts;
    for (const UInt32 bits : {8u, 5u})
        for (const bool isUnsigned : {false, true})
            for (const bool isLow : {false, true})
                if (bits != 8 || !isLow)
                    layouts.push_back({SampleWord::Int8, false, isUnsigned, isLow, bits});
    const UInt32 depths[][3] = {{16, 12, 9}, {24, 20, 17}, {32, 24, 20}};
    for (UInt32 word = 1; word <= 3; ++word)
        for (const bool isBig : {false, true})
            for (const UInt32 bits : depths[word - 1])
                for (const bool isLow : {false, true})
                    if (bits != (word + 1) * 8 || !isLow)
                        layouts.push_back(
                            {static_cast<SampleWord>(word), isBig, false, isLow, bits});
    for (const bool isBig : {false, true})
    {
        layouts.push_back({SampleWord::Float32, isBig, false, false, 32});
        layouts.push_back({SampleWord::Float64, isBig, false, false, 64});
    }
    return layouts;
}

inline std::string NameOf(const SampleLayout& inLayout)
{
    return std::to_string(inLayout.mBits) + " bits in word " +
           std::to_string(static_cast<int>(inLayout.mWord)) +
           (inLayout.mIsBigEndian ? " big" : "") + (inLayout.mIsUnsigned ? " unsigned" : "") +
           (inLayout.mIsLow ? " low" : "");
}

inline UInt64 ReadWord(const SampleLayout& inLayout, const UInt8* inBytes)
{
    const UInt32 bytes = audiotoolbox::WordBytes(inLayout.mWord);
    UInt64 word = 0;
    for (UInt32 i = 0; i < bytes; ++i)
        word |= UInt64{inBytes[i]} << (8 * (inLayout.mIsBigEndian ? bytes - 1 - i : i));
    return word;
}

inline void WriteWord(const SampleLayout& inLayout, UInt64 inWord, UInt8* outBytes)
{
    const UInt32 bytes = audiotoolbox::WordBytes(inLayout.mWord);
    for (UInt32 i = 0; i < bytes; ++i)
        outBytes[i] =
            static_cast<UInt8>(inWord >> (8 * (inLayout.mIsBigEndian ? bytes - 1 - i : i)));
}

// The value as a signed integer of all bits above the padding, at the upper end of 32 bits.
inline SInt32 ReadInteger(const SampleLayout& inLayout, const UInt8* inBytes)
{
    const UInt32 wordBits = audiotoolbox::WordBytes(inLayout.mWord) * 8;
    UInt64 word = ReadWord(inLayout, inBytes) << (32 - wordBits);
    if (inLayout.mIsLow)
        word <<= wordBits - inLayout.mBits;
    const UInt32 left = static_cast<UInt32>(word) ^ (inLayout.mIsUnsigned ? 0x80000000u : 0u);
    return static_cast<SInt32>(left);
}

inline void WriteInteger(const SampleLayout& inLayout, SInt64 inValue, UInt8* outBytes)
{
    const UInt32 wordBits = audiotoolbox::WordBytes(inLayout.mWord) * 8;
    SInt64 value = inLayout.mIsUnsigned ? inValue + (SInt64{1} << (inLayout.mBits - 1)) : inValue;
    if (!inLayout.mIsLow)
        value *= SInt64{1} << (wordBits - inLayout.mBits);
    WriteWord(inLayout, static_cast<UInt64>(value), outBytes);
}

inline double ReadFloat(const SampleLayout& inLayout, const UInt8* inBytes)
{
    const UInt64 word = ReadWord(inLayout, inBytes);
    if (inLayout.mWord == SampleWord::Float32)
    {
        const UInt32 bits = static_cast<UInt32>(word);
        float value = 0;
        std::memcpy(&value, &bits, sizeof(value));
        return value;
    }
    double value = 0;
    std::memcpy(&value, &word, sizeof(value));
    return value;
}

inline void WriteFloat(const SampleLayout& inLayout, double inValue, UInt8* outBytes)
{
    UInt64 word = 0;
    if (inLayout.mWord == SampleWord::Float32)
    {
        const float value = static_cast<float>(inValue);
        std::memcpy(&word, &value, sizeof(value));
    }
    else
        std::memcpy(&word, &inValue, sizeof(inValue));
    WriteWord(inLayout, word, outBytes);
}

inline SInt64 Saturate(double inValue, UInt32 inBits)
{
    const double full = std::ldexp(1.0, static_cast<int>(inBits) - 1);
    if (std::isnan(inValue))
        return 0;
    return static_cast<SInt64>(std::clamp(std::nearbyint(inValue * full), -full, full - 1));
}

inline SInt64 Narrow(SInt32 inLeft, UInt32 inFromBits, UInt32 inToBits)
{
    const SInt64 half = inFromBits > inToBits ? SInt64{1} << (31 - inToBits) : 0;
    const SInt64 highest = (SInt64{1} << (inToBits - 1)) - 1;
    return std::min((SInt64{inLeft} + half) >> (32 - inToBits), highest);
}

inline void Convert(const SampleLayout& inFrom, const SampleLayout& inTo, const UInt8* inBytes,
                    UInt8* outBytes)
{
    const bool fromFloat = audiotoolbox::IsFloat(inFrom.mWord);
    const bool toFloat = audiotoolbox::IsFloat(inTo.mWord);
    if (fromFloat && toFloat)
        WriteFloat(inTo, ReadFloat(inFrom, inBytes), outBytes);
    else if (fromFloat)
        WriteInteger(inTo, Saturate(ReadFloat(inFrom, inBytes), inTo.mBits), outBytes);
    else if (toFloat)
        WriteFloat(inTo, std::ldexp(double{0} + ReadInteger(inFrom, inBytes), -31), outBytes);
    else
        WriteInteger(inTo, Narrow(ReadInteger(inFrom, inBytes), inFrom.mBits, inTo.mBits),
                     outBytes);
}

}  // namespace plain

#endif
