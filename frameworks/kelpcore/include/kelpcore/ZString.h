// ZString: a localised text with its placeholders filled.
#ifndef KELPCORE_ZSTRING_H
#define KELPCORE_ZSTRING_H

#include "kelpcore/Strings.h"

namespace kelpcore
{

/// Translates the literal, turns each "#{endl}" into a line feed and fills "@0" to "@9" with the
/// ten parameters.
KELPCORE_EXPORT UTF16String
ZString(const char* inLiteral, const UTF16String& inParameter0 = {},
        const UTF16String& inParameter1 = {}, const UTF16String& inParameter2 = {},
        const UTF16String& inParameter3 = {}, const UTF16String& inParameter4 = {},
        const UTF16String& inParameter5 = {}, const UTF16String& inParameter6 = {},
        const UTF16String& inParameter7 = {}, const UTF16String& inParameter8 = {},
        const UTF16String& inParameter9 = {});

}  // namespace kelpcore

#endif
