// CADebugMacros: four-character codes as text, and lines for the system's log.
#include "CoreAudio/PublicUtility/CADebugMacros.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <iterator>

#include <syslog.h>

namespace
{

// In the C locale's sense, whatever locale the host has set.
bool IsPlain(unsigned char inByte)
{
    return inByte >= 0x20 && inByte <= 0x7E && inByte != '\\';
}

}  // namespace

char* CAStringForOSType(UInt32 inCode, char* outText, std::size_t inSize)
{
    const unsigned char bytes[4] = {
        static_cast<unsigned char>(inCode >> 24), static_cast<unsigned char>(inCode >> 16),
        static_cast<unsigned char>(inCode >> 8), static_cast<unsigned char>(inCode)};
    if (std::all_of(std::begin(bytes), std::end(bytes), IsPlain))
        std::snprintf(outText, inSize, "'%c%c%c%c'", bytes[0], bytes[1], bytes[2], bytes[3]);
    else
        std::snprintf(outText, inSize, "0x%02X%02X%02X%02X", bytes[0], bytes[1], bytes[2],
                      bytes[3]);
    return outText;
}

void LogError(const char* inFormat, ...)
{
    va_list arguments;
    va_start(arguments, inFormat);
    vsyslog(LOG_ERR, inFormat, arguments);
    va_end(arguments);
}

void LogWarning(const char* inFormat, ...)
{
    va_list arguments;
    va_start(arguments, inFormat);
    vsyslog(LOG_WARNING, inFormat, arguments);
    va_end(arguments);
}
