// Coding: what a lossy pair is held to, as numbers.
#ifndef TESTS_ROADS_EXPORT_MATRIX_CODING_H
#define TESTS_ROADS_EXPORT_MATRIX_CODING_H

#include "Pairs.h"

#include <cstddef>

namespace export_matrix
{

struct Coding
{
    /// Of the imported audio behind the exported one: none where the file tells its priming.
    std::size_t mDelay = 0;
    /// Imported frames are whole packets of so many, in which the audio and mDelay fit; 1: as many
    /// as were exported.
    std::size_t mRoundedTo = 1;
    /// Frames that the encoder needs in front, as the file tells them in its packet table.
    std::int32_t mPriming = 0;
    bool mHasPacketTable = false;
    /// Signal to noise of Tones at 96000 bits per second a channel.
    double mLeastDecibels = 0.0;
};

Coding CodingOf(const Pair& inPair);

/// Of an export of so many frames.
std::size_t ImportedFrames(const Coding& inCoding, std::size_t inExported);

}  // namespace export_matrix

#endif
