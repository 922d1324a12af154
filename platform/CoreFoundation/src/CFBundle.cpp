// CFBundle: bundles of loaded libraries, and the files in them.
#include "BundleSearch.h"
#include "CFStringObject.h"
#include "CFURLObject.h"
#include "ResourceSearch.h"
#include "TextEncoding.h"
#include "UTF8.h"

#include <mutex>
#include <vector>

struct __CFBundle : cf::Object
{
    __CFBundle(const std::u16string& inIdentifier, std::string&& inFolder)
        : Object(cf::kBundleType),
          mIdentifier(new __CFString(std::u16string(inIdentifier))),
          mFolder(std::move(inFolder))
    {
    }
    ~__CFBundle() override { CFRelease(mIdentifier); }

    const CFStringRef mIdentifier;
    const std::string mFolder;
};

namespace
{

// The bundles found so far. They stay to the end of the process, since nobody owns them.
class KnownBundles
{
public:
    CFBundleRef Find(const std::u16string& inIdentifier)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        return FindLocked(inIdentifier);
    }

    /// The bundle that was there first, if somebody else has added the same meanwhile.
    CFBundleRef Add(const std::u16string& inIdentifier, std::string&& inFolder)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (const CFBundleRef known = FindLocked(inIdentifier))
            return known;
        mBundles.reserve(mBundles.size() + 1);
        mBundles.push_back(new __CFBundle(inIdentifier, std::move(inFolder)));
        return mBundles.back();
    }

private:
    CFBundleRef FindLocked(const std::u16string& inIdentifier) const
    {
        for (const CFBundleRef bundle : mBundles)
            if (bundle->mIdentifier->mUnits == inIdentifier)
                return bundle;
        return nullptr;
    }

    std::mutex mMutex;
    std::vector<CFBundleRef> mBundles;
};

// Never destroyed: a caller may ask until the process is gone.
KnownBundles& Known()
{
    static KnownBundles& sKnown = *new KnownBundles;
    return sKnown;
}

CFURLRef CreateURL(std::string&& inPath)
{
    return inPath.empty() ? nullptr : cf::Create<__CFURL>(std::move(inPath));
}

// False for what cannot be part of a path. A null text is an empty one.
bool AppendText(CFStringRef inText, std::string& ioPath)
{
    return !inText || (inText->mUnits.find(u'\0') == std::u16string::npos &&
                       cf::AppendUTF8(inText->mUnits, ioPath));
}

// Empty for names that cannot be a file's.
std::string ResourceFileName(CFStringRef inName, CFStringRef inType, CFStringRef inSubfolder)
{
    std::string file;
    if (!inName || inName->mUnits.empty() || !AppendText(inSubfolder, file))
        return {};
    if (!file.empty())
        file += '/';
    if (!AppendText(inName, file))
        return {};
    if (inType && !inType->mUnits.empty())
        file += '.';
    return AppendText(inType, file) ? file : std::string();
}

}  // namespace

CFTypeID CFBundleGetTypeID(void)
{
    return cf::kBundleType;
}

CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef identifier)
try
{
    if (!identifier || identifier->mUnits.empty())
        return nullptr;
    if (const CFBundleRef known = Known().Find(identifier->mUnits))
        return known;

    // No lock is held during the search, which takes the loader's own.
    std::string name;
    if (!cf::AppendUTF8(identifier->mUnits, name))
        return nullptr;
    std::string folder = cf::FindBundleFolder(name);
    return folder.empty() ? nullptr : Known().Add(identifier->mUnits, std::move(folder));
}
catch (const std::bad_alloc&)
{
    return nullptr;
}

CFStringRef CFBundleGetIdentifier(CFBundleRef bundle)
{
    return bundle->mIdentifier;
}

CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle)
try
{
    return CreateURL(std::string(bundle->mFolder));
}
catch (const std::bad_alloc&)
{
    return nullptr;
}

CFURLRef CFBundleCopyResourcesDirectoryURL(CFBundleRef bundle)
try
{
    return CreateURL(bundle->mFolder + "/Contents/Resources");
}
catch (const std::bad_alloc&)
{
    return nullptr;
}

CFURLRef CFBundleCopyResourceURL(CFBundleRef bundle, CFStringRef name, CFStringRef type,
                                 CFStringRef subfolder)
try
{
    const std::string file = ResourceFileName(name, type, subfolder);
    if (file.empty())
        return nullptr;
    return CreateURL(
        cf::FindResource(bundle->mFolder + "/Contents/Resources", file, cf::PreferredLanguages()));
}
catch (const std::bad_alloc&)
{
    return nullptr;
}
