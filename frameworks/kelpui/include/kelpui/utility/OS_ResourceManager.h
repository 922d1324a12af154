// OS_ResourceManager: resources as files of a bundle's resources folder.
//
// The file of a resource is NAME.TYPE, that of the user's language (LANGUAGE.lproj) before the
// common one.
#ifndef KELPUI_UTILITY_OS_RESOURCEMANAGER_H
#define KELPUI_UTILITY_OS_RESOURCEMANAGER_H

#include "kelpui/utility/ResourceManager.h"

#include <CoreFoundation/CoreFoundation.h>

namespace kelpui::utility
{

class KELPUI_EXPORT OS_ResourceManager final : public ResourceManager
{
public:
    /// inBundle may be null: there is no resource then. Bundles live to the end of the process, so
    /// none is retained.
    explicit OS_ResourceManager(CFBundleRef inBundle);
    ~OS_ResourceManager() override;

    /// A name or type that holds a "/" or a NUL, and an empty name, is no resource.
    bool HasResource(const UTF8String& inName, const UTF8String& inType) const override;
    bool LoadResource(const UTF8String& inName, const UTF8String& inType,
                      ResourceBytes& outBytes) const override;

private:
    CFBundleRef mBundle;
};

}  // namespace kelpui::utility

#endif
