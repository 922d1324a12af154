// ReplaceInString: placeholders and plain replacement in texts.
#ifndef KELPCORE_UTILITY_REPLACEINSTRING_H
#define KELPCORE_UTILITY_REPLACEINSTRING_H

#include "kelpcore/Strings.h"

namespace kelpcore::utility
{

/// Fills every "@0" to "@9" of inText with the parameter of that number, in one pass from the left,
/// so that a mark inside a parameter stays as it is. An "@" without a digit stays too.
KELPCORE_EXPORT UTF16String
ReplaceInString(const UTF16String& inText, const UTF16String& inParameter0,
                const UTF16String& inParameter1 = {}, const UTF16String& inParameter2 = {},
                const UTF16String& inParameter3 = {}, const UTF16String& inParameter4 = {},
                const UTF16String& inParameter5 = {}, const UTF16String& inParameter6 = {},
                const UTF16String& inParameter7 = {}, const UTF16String& inParameter8 = {},
                const UTF16String& inParameter9 = {});

/// Replaces every inOld by inNew, left to right, going on behind each inserted text. An empty inOld
/// changes nothing.
KELPCORE_EXPORT void ReplaceAllStringInString(UTF16String& ioText, const UTF16String& inOld,
                                              const UTF16String& inNew);

}  // namespace kelpcore::utility

#endif
