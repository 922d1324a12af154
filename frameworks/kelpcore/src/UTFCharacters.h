// UTFCharacters: one character at a time out of UTF-8 and UTF-16, and into them.
#ifndef KELPCORE_UTFCHARACTERS_H
#define KELPCORE_UTFCHARACTERS_H

#include "kelpcore/Strings.h"

#include <string_view>

namespace kelpcore::utility
{

/// What no text can contain; stands for bytes or units that are no character.
constexpr char32_t kNoCharacter = 0xFFFFFFFF;
constexpr char32_t kReplacementCharacter = 0xFFFD;

/// Takes the first character off a text that is not empty. kNoCharacter for the longest start of a
/// sequence that goes wrong behind it, as Unicode recommends for replacement.
char32_t TakeCharacter(std::string_view& ioText);
char32_t TakeCharacter(std::u16string_view& ioText);

void AppendCharacter(char32_t inCharacter, UTF8String& ioText);
void AppendCharacter(char32_t inCharacter, UTF16String& ioText);

/// Appends the text as UTF-16. False at the first byte that is no UTF-8.
bool AppendValidUTF8(std::string_view inText, UTF16String& ioText);

}  // namespace kelpcore::utility

#endif
