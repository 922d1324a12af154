// HostText: texts as they cross the interface, as the host keeps them (UTF-8).
#ifndef HOST_HOSTTEXT_H
#define HOST_HOSTTEXT_H

#include "TarvoSDK/TarvoSDKTypes.h"
#include "kelpcore/utility/StringConversion.h"

#include <string>

namespace host
{

/// Copies a NUL-terminated text of the plug-in.
inline std::string FromPlugIn(const uint16* inText)
{
    const UTF8String text = kelpcore::utility::UTF16to8(inText);
    return {text.data(), text.size()};
}

}  // namespace host

#endif
