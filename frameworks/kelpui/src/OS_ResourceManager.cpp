#include "kelpui/utility/OS_ResourceManager.h"

#include "kelpcore/utility/AutoCFRef.h"
#include "kelpcore/utility/FileBytes.h"

#include <climits>
#include <string_view>

namespace kelpui::utility
{
namespace
{

using StringRef = kelpcore::utility::AutoCFRef<CFStringRef>;
using URLRef = kelpcore::utility::AutoCFRef<CFURLRef>;

// Resources lie in one folder; a name that could lead out of it is none.
bool IsFileName(std::string_view inText)
{
    return inText.find('/') == std::string_view::npos &&
           inText.find('\0') == std::string_view::npos;
}

StringRef NewString(const UTF8String& inText)
{
    return StringRef(
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(inText.data()),
                                static_cast<CFIndex>(inText.size()), kCFStringEncodingUTF8, false));
}

URLRef FindFile(CFBundleRef inBundle, const UTF8String& inName, const UTF8String& inType)
{
    if (!inBundle || inName.empty() || !IsFileName(inName) || !IsFileName(inType))
        return URLRef();
    const StringRef name = NewString(inName);
    const StringRef type = NewString(inType);
    if (!name || !type)
        return URLRef();
    return URLRef(CFBundleCopyResourceURL(inBundle, name.Get(), type.Get(), nullptr));
}

}  // namespace

OS_ResourceManager::OS_ResourceManager(CFBundleRef inBundle) : mBundle(inBundle) {}

OS_ResourceManager::~OS_ResourceManager() = default;

bool OS_ResourceManager::HasResource(const UTF8String& inName, const UTF8String& inType) const
{
    return static_cast<bool>(FindFile(mBundle, inName, inType));
}

bool OS_ResourceManager::LoadResource(const UTF8String& inName, const UTF8String& inType,
                                      ResourceBytes& outBytes) const
{
    outBytes.clear();
    const URLRef file = FindFile(mBundle, inName, inType);
    UInt8 path[PATH_MAX];
    if (!file || !CFURLGetFileSystemRepresentation(file.Get(), true, path, sizeof path))
        return false;
    return kelpcore::utility::ReadFileBytes(reinterpret_cast<const char*>(path), kMaxResourceBytes,
                                            outBytes);
}

}  // namespace kelpui::utility
