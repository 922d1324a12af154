// HostText: texts as they cross the interface, as the host keeps them (UTF-8).
#ifndef HOST_HOSTTEXT_H
#define HOST_HOSTTEXT_H

#include "TarvoSDK/TarvoSDKTypes.h"
#include "kelpcore/utility/StringConversion.h"

#include <string>
#include <string_view>

namespace host
{

/// Copies a NUL-terminated text of the plug-in.
inline std::string FromPlugIn(const uint16* inText)
{
    const UTF8String text = kelpcore::utility::UTF16to8(inText);
    return {text.data(), text.size()};
}

/// For the plug-in, from UTF-8; whatever is none becomes U+FFFD.
inline std::u16string ToPlugIn(std::string_view inText)
{
    const UTF16String text = kelpcore::utility::UTF8to16(inText);
    return {text.data(), text.size()};
}

}  // namespace host

#endif
