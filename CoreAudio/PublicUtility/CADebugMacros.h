// CADebugMacros: four-character codes as text, and lines for the system's log.
#ifndef CADEBUGMACROS_H
#define CADEBUGMACROS_H

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>

/// Prints a code as four characters in single quotes, or as "0x" and eight hexadecimal digits
/// where one of them is not printable or is a backslash.
///
/// outText  inSize bytes; cut and NUL-terminated where the text is longer, untouched with a size
///          of 0
/// Returns outText.
char* CAStringForOSType(UInt32 inCode, char* outText, std::size_t inSize);

/// One line in the system's log, composed as printf does.
void LogError(const char* inFormat, ...) __attribute__((format(printf, 1, 2)));
void LogWarning(const char* inFormat, ...) __attribute__((format(printf, 1, 2)));

#endif
