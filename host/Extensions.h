// Extensions: copies a list of extensions before the plug-in takes it away.
#ifndef HOST_EXTENSIONS_H
#define HOST_EXTENSIONS_H

#include "TarvoSDK/TarvoExtensionList.h"

#include <string>
#include <vector>

namespace host
{

/// In the list's order, UTF-8.
inline std::vector<std::string> CopyExtensions(const TarvoExtensionList& inList)
{
    std::vector<std::string> extensions;
    for (const TarvoExtensionLink* link = inList.mNext; link != &inList; link = link->mNext)
        extensions.emplace_back(static_cast<const TarvoExtensionNode*>(link)->mText);
    return extensions;
}

}  // namespace host

#endif
