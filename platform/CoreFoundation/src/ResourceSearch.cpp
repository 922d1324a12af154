#include "ResourceSearch.h"

#include <algorithm>
#include <cstdlib>

#include <sys/stat.h>

namespace cf
{
namespace
{

bool IsRegularFile(const std::string& inPath)
{
    struct stat status;
    return ::stat(inPath.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

bool IsLanguageName(std::string_view inName)
{
    constexpr std::string_view kAllowed =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-";
    return !inName.empty() && inName != "C" && inName != "POSIX" &&
           inName.find_first_not_of(kAllowed) == std::string_view::npos;
}

void AddOnce(std::string inName, std::vector<std::string>& ioNames)
{
    if (std::find(ioNames.begin(), ioNames.end(), inName) == ioNames.end())
        ioNames.push_back(std::move(inName));
}

// From "de_AT.UTF-8@euro" all names that its folder may have.
void AddLanguage(std::string_view inLocale, std::vector<std::string>& ioNames)
{
    const std::string_view name = inLocale.substr(0, inLocale.find_first_of(".@"));
    if (!IsLanguageName(name))
        return;
    AddOnce(std::string(name), ioNames);
    const std::size_t region = name.find('_');
    if (region == std::string_view::npos)
        return;
    std::string hyphenated(name);
    hyphenated[region] = '-';
    AddOnce(std::move(hyphenated), ioNames);
    if (region > 0)
        AddOnce(std::string(name.substr(0, region)), ioNames);
}

std::string_view Environment(const char* inName)
{
    const char* value = std::getenv(inName);
    return value ? value : "";
}

}  // namespace

std::vector<std::string> PreferredLanguages(std::string_view inLanguages, std::string_view inLocale)
{
    std::vector<std::string> names;
    while (!inLanguages.empty())
    {
        const std::size_t end = std::min(inLanguages.find(':'), inLanguages.size());
        AddLanguage(inLanguages.substr(0, end), names);
        inLanguages.remove_prefix(std::min(end + 1, inLanguages.size()));
    }
    AddLanguage(inLocale, names);
    return names;
}

std::vector<std::string> PreferredLanguages()
{
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const std::string_view locale = Environment(name); !locale.empty())
            return PreferredLanguages(Environment("LANGUAGE"), locale);
    return PreferredLanguages(Environment("LANGUAGE"), {});
}

std::string FindResource(const std::string& inFolder, const std::string& inFile,
                         const std::vector<std::string>& inLanguages)
{
    for (const std::string& language : inLanguages)
        if (std::string path = inFolder + '/' + language + ".lproj/" + inFile; IsRegularFile(path))
            return path;
    std::string path = inFolder + '/' + inFile;
    return IsRegularFile(path) ? path : std::string();
}

}  // namespace cf
