// UTF8: strict translation between UTF-8 and UTF-16.
#ifndef COREFOUNDATION_UTF8_H
#define COREFOUNDATION_UTF8_H

#include <string>
#include <string_view>

namespace cf
{

/// Appends. False at the first byte that is no well-formed UTF-8: no overlong forms, no surrogates,
/// nothing beyond U+10FFFF.
bool AppendUTF16(std::string_view inBytes, std::u16string& ioUnits);

/// Appends. False at a surrogate without its other half.
bool AppendUTF8(std::u16string_view inUnits, std::string& ioBytes);

inline bool IsLeadSurrogate(char16_t inUnit)
{
    return (inUnit & 0xFC00) == 0xD800;
}
inline bool IsTrailSurrogate(char16_t inUnit)
{
    return (inUnit & 0xFC00) == 0xDC00;
}

/// Whether every surrogate stands in a pair.
bool IsWellFormed(std::u16string_view inUnits);

}  // namespace cf

#endif
