// TextEncoding: between bytes in a text encoding and UTF-16 code units.
//
// Strict in both directions: what the encoding does not allow or cannot express is a failure.
#ifndef COREFOUNDATION_TEXTENCODING_H
#define COREFOUNDATION_TEXTENCODING_H

#include <CoreFoundation/CoreFoundation.h>

#include <string>
#include <string_view>

namespace cf
{

/// Whether the encoding is known and its unit is a byte, so that a NUL can end its texts.
bool IsByteEncoding(CFStringEncoding inEncoding);

/// Most bytes that one code unit takes; 0 for an unknown encoding.
CFIndex MostBytesPerUnit(CFStringEncoding inEncoding);

/// inExternal: the bytes come from a file, so that a byte order mark at the start of UTF-8 and
/// UTF-16 says how to read the rest and is no part of the text; UTF-16 without one is big-endian.
/// False, with outUnits undefined, for invalid bytes and unknown encodings.
bool DecodeText(std::string_view inBytes, CFStringEncoding inEncoding, bool inExternal,
                std::u16string& outUnits);

/// False, with outBytes undefined, for what cannot be expressed and for unknown encodings.
bool EncodeText(std::u16string_view inUnits, CFStringEncoding inEncoding, std::string& outBytes);

}  // namespace cf

#endif
