#include "BundleSearch.h"

#include "InfoPlist.h"
#include "LoadedLibraries.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <vector>

#include <dirent.h>

namespace cf
{
namespace
{

constexpr std::string_view kContents = "/Contents";
constexpr std::string_view kBundleExtension = ".bundle";

struct CloseFolder
{
    void operator()(DIR* inFolder) const { ::closedir(inFolder); }
};

bool HasIdentifier(const std::string& inBundle, const std::string& inIdentifier)
{
    return ReadBundleIdentifier(inBundle + "/Contents/Info.plist") == inIdentifier;
}

// What stands before the innermost "/Contents" of the path; empty without one.
std::string BundleAround(const std::string& inFolder)
{
    const std::string whole = inFolder + '/';
    const std::size_t at = whole.rfind(std::string(kContents) + '/');
    return at == std::string::npos ? std::string() : whole.substr(0, at);
}

std::vector<std::string> BundlesBeside(const std::string& inFolder)
{
    std::vector<std::string> bundles;
    const std::unique_ptr<DIR, CloseFolder> folder(::opendir(inFolder.c_str()));
    if (!folder)
        return bundles;
    while (const dirent* entry = ::readdir(folder.get()))
        if (std::string_view(entry->d_name).ends_with(kBundleExtension))
            bundles.push_back(inFolder + '/' + entry->d_name);
    std::sort(bundles.begin(), bundles.end());  // a folder's own order changes from day to day
    return bundles;
}

}  // namespace

std::string FindBundleFolder(const std::string& inIdentifier)
{
    const std::vector<std::string> folders = FoldersOfLoadedLibraries();
    for (const std::string& folder : folders)
        if (std::string bundle = BundleAround(folder);
            !bundle.empty() && HasIdentifier(bundle, inIdentifier))
            return bundle;
    for (const std::string& folder : folders)
        for (std::string& bundle : BundlesBeside(folder))
            if (HasIdentifier(bundle, inIdentifier))
                return std::move(bundle);
    return {};
}

}  // namespace cf
