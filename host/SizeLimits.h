// SizeLimits: whether a file type can hold audio of some size, and which can instead.
#ifndef HOST_SIZELIMITS_H
#define HOST_SIZELIMITS_H

#include <cstdint>

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

}  // namespace host

#endif
