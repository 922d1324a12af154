// StringConversion: between ASCII, UTF-8, UTF-16 and the platform's string objects.
//
// Nothing here fails: what cannot be expressed becomes U+FFFD (UTF-16, UTF-8) in its place.
#ifndef KELPCORE_UTILITY_STRINGCONVERSION_H
#define KELPCORE_UTILITY_STRINGCONVERSION_H

#include "kelpcore/Strings.h"

#include <CoreFoundation/CoreFoundation.h>

#include <string_view>

namespace kelpcore::utility
{

/// Widens each byte to one unit; bytes above 0x7F become U+FFFD.
KELPCORE_EXPORT UTF16String AsciiToUTF16(std::string_view inText);

/// Characters beyond the basic plane come whole; a lone surrogate becomes U+FFFD.
KELPCORE_EXPORT UTF8String UTF16to8(std::u16string_view inText);
KELPCORE_EXPORT UTF16String UTF8to16(std::string_view inText);

/// The text of a platform string; empty for null. The reference stays the caller's.
KELPCORE_EXPORT UTF16String MACtoKELP(CFStringRef inString);
/// The same as bytes in a platform text encoding (0x8000100 is UTF-8); empty for null and for an
/// encoding that cannot express it.
KELPCORE_EXPORT UTF8String MACtoKELP(CFStringRef inString, CFStringEncoding inEncoding);

}  // namespace kelpcore::utility

#endif
