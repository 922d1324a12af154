// FileBytes: small files as a whole.
#ifndef KELPCORE_UTILITY_FILEBYTES_H
#define KELPCORE_UTILITY_FILEBYTES_H

#include "kelpcore/Export.h"

#include <cstddef>
#include <vector>

namespace kelpcore::utility
{

/// Reads a regular file of at most inMaxBytes bytes. False, with outBytes empty, for anything else
/// and when reading fails. Never waits for a pipe or a device.
KELPCORE_EXPORT bool ReadFileBytes(const char* inPath, std::size_t inMaxBytes,
                                   std::vector<char>& outBytes);

}  // namespace kelpcore::utility

#endif
