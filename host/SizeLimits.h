// SizeLimits: whether a file type can hold audio of some size, and which can instead.
#ifndef HOST_SIZELIMITS_H
#define HOST_SIZELIMITS_H

#include <cstddef>
#include <cstdint>
#include <optional>

namespace host
{

/// Bytes that a file of this type can have; the greatest number where there is no limit.
std::int64_t SizeLimit(std::uint32_t inFileType);

/// A file of this type can have that many bytes.
inline bool CanHold(std::uint32_t inFileType, std::int64_t inBytes)
{
    return inBytes <= SizeLimit(inFileType);
}

/// The type for what a file type with a limit cannot hold: RF64 for WAVE, CAF for AIFF, AIFC and
/// AU; 0 for types without a limit.
std::uint32_t TypeForLargeFiles(std::uint32_t inFileType);

/// Bits that a sample has in a format whose samples all cost the same, though its description tells
/// none: companded and block-coded ones; 0 for the others.
double BitsOfSample(std::uint32_t inFormat);

/// Bytes of a file in such a format; nothing for the others.
std::optional<std::int64_t> SizeOfSamples(std::uint32_t inFormat, std::int64_t inFrameCount,
                                          std::size_t inChannelCount);

}  // namespace host

#endif
