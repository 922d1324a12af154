// ResourceManager: named pieces of data that a module brings along, such as the archive of a
// dialog.
//
// A resource has a name and a type, "FormatOptions" and "ui" say, both in UTF-8. Where it lies is
// the derived class's business.
#ifndef KELPUI_UTILITY_RESOURCEMANAGER_H
#define KELPUI_UTILITY_RESOURCEMANAGER_H

#include "kelpcore/Strings.h"
#include "kelpui/Export.h"

#include <vector>

namespace kelpui::utility
{

/// The bytes of one resource.
using ResourceBytes = std::vector<char>;

class KELPUI_EXPORT ResourceManager
{
public:
    ResourceManager() = default;
    virtual ~ResourceManager();
    ResourceManager(const ResourceManager&) = delete;
    ResourceManager& operator=(const ResourceManager&) = delete;

    /// Whether there is such a resource. An empty type means a name without one.
    virtual bool HasResource(const UTF8String& inName, const UTF8String& inType) const = 0;

    /// Loads all bytes of a resource. False, with outBytes empty, when there is none, and when it
    /// cannot be read or is larger than kMaxResourceBytes.
    virtual bool LoadResource(const UTF8String& inName, const UTF8String& inType,
                              ResourceBytes& outBytes) const = 0;

    static constexpr std::size_t kMaxResourceBytes = 64u << 20;
};

}  // namespace kelpui::utility

#endif
