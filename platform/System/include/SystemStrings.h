// SystemStrings: string calls of the BSD family, for C libraries without them.
#ifndef SYSTEM_STRINGS_H
#define SYSTEM_STRINGS_H

#include <stddef.h>
#include <string.h>

/// Copies a NUL-terminated text, cut to inSize - 1 bytes, and terminates it unless inSize is 0.
/// Returns the length of inSource, so that a result of inSize or more tells of a cut.
inline size_t strlcpy(char* outText, const char* inSource, size_t inSize)
{
    const size_t length = strlen(inSource);
    if (inSize > 0)
    {
        const size_t copied = length < inSize ? length : inSize - 1;
        memcpy(outText, inSource, copied);
        outText[copied] = '\0';
    }
    return length;
}

#endif
