// Strings: the two string types of the framework and of everything built on it.
//
// UTF16String holds 16-bit code units in native byte order, UTF8String holds bytes of UTF-8 (paths,
// extensions, keys). Both allocate through the small block allocator.
#ifndef KELPCORE_STRINGS_H
#define KELPCORE_STRINGS_H

#include "kelpcore/utility/SmallBlockAllocator.h"

#include <string>

/// One UTF-16 code unit, as it crosses the host interface.
using uint16 = char16_t;

using UTF16String = std::basic_string<char16_t, std::char_traits<char16_t>,
                                      kelpcore::utility::SmallBlockAllocator<char16_t>>;
using UTF8String =
    std::basic_string<char, std::char_traits<char>, kelpcore::utility::SmallBlockAllocator<char>>;

#endif
