// Pairs: what the catalogue offers for writing, file type by file type.
#ifndef TESTS_ROADS_EXPORT_MATRIX_PAIRS_H
#define TESTS_ROADS_EXPORT_MATRIX_PAIRS_H

#include "CoreAudio/PublicUtility/CAStreamBasicDescription.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace export_matrix
{

/// A file type and one of its formats.
struct Pair
{
    std::uint32_t mType = 0;
    std::uint32_t mFormat = 0;
};

/// Every one of the catalogue, ascending.
std::vector<Pair> EveryPair();

/// "WAVE_lpcm"; what is no letter or digit is left out, or stands as two hexadecimal digits.
std::string NameOf(const Pair& inPair);

/// The name of a test that a pair is the parameter of.
template <typename Info>
std::string TestName(const Info& inInfo)
{
    return NameOf(inInfo.param);
}

void PrintTo(const Pair& inPair, std::ostream* outStream);

/// One form of a pair: linear PCM has one for each depth and byte order, FLAC and Apple Lossless
/// one for each depth and one without, others one. Rate, channels and byte counts are 0.
struct Variant
{
    Pair mPair;
    std::uint32_t mFlags = 0;
    std::uint32_t mBits = 0;

    bool IsPCM() const;
    bool IsFloat() const;
};

std::vector<Variant> VariantsOf(const Pair& inPair);

/// "WAVE_lpcm flags 12 bits 16".
std::string NameOf(const Variant& inVariant);

/// All but linear PCM, FLAC and Apple Lossless.
bool IsLossy(const Pair& inPair);

/// Ascending, of 1 to 8.
std::vector<std::uint32_t> ChannelCountsOf(const Pair& inPair);

/// A rate in Hz that the encoder takes: 48000 where it has a choice.
std::int32_t RateOf(const Pair& inPair);

/// Frames of a packet; 1 of linear PCM.
std::uint32_t FramesPerPacket(const Pair& inPair, std::uint32_t inChannels);

}  // namespace export_matrix

#endif
