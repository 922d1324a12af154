// Readers: programs and libraries that are not ours, as judges of the files that we write.
#ifndef TESTS_ROADS_EXPORT_MATRIX_READERS_H
#define TESTS_ROADS_EXPORT_MATRIX_READERS_H

#include "Pairs.h"

#include "tests/roads/import/Imported.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace export_matrix
{

using testing_support::Audio;

enum class Length
{
    kExact,   // cuts what the encoder added
    kPadded,  // gives it all: up to two packets more
};

/// What a reader makes of the files of one pair.
struct Reading
{
    const char* mReader;
    /// A shell command that reads $1 and writes a WAVE file $2; null: libsndfile.
    const char* mCommand;
    std::size_t mDelay;  // frames that it delivers in front of the first exported one
    Length mLength;
};

/// Every reader that is to read this file; each pair has one at least.
std::vector<Reading> ReadingsOf(const Variant& inVariant, std::uint32_t inChannels);

/// Empty when the reader cannot. One channel that the reader doubles is one again.
Audio ReadBy(const Reading& inReading, const std::string& inPath, const std::string& inScratchPath,
             std::uint32_t inChannels);

}  // namespace export_matrix

#endif
