#include "host/Language.h"

#include "host/Failure.h"
#include "kelpcore/config/Localizer.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <vector>

namespace host
{

namespace
{

namespace fs = std::filesystem;

std::string Environment(const char* inName)
{
    const char* const value = std::getenv(inName);
    return value ? value : "";
}

// "de_AT.UTF-8@euro" may mean the dictionaries de_AT, de-AT and de.
void AddNames(const std::string& inLocale, std::vector<std::string>& ioNames)
{
    std::string name = inLocale.substr(0, inLocale.find_first_of(".@"));
    if (name.empty() || name.find('/') != std::string::npos)
        return;
    ioNames.push_back(name);
    const std::size_t region = name.find('_');
    if (region == std::string::npos)
        return;
    name[region] = '-';
    ioNames.push_back(name);
    ioNames.push_back(name.substr(0, region));
}

std::vector<std::string> LanguagesOfUser()
{
    std::vector<std::string> names;
    std::istringstream languages(Environment("LANGUAGE"));
    for (std::string language; std::getline(languages, language, ':');)
        AddNames(language, names);
    for (const char* const variable : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const std::string locale = Environment(variable); !locale.empty())
        {
            AddNames(locale, names);
            break;
        }
    return names;
}

fs::path Resources(const std::string& inBundle)
{
    return fs::path(inBundle) / "Contents/Resources";
}

fs::path Dictionary(const std::string& inBundle, const std::string& inLanguage)
{
    return Resources(inBundle) / (inLanguage + ".lproj") / "Localizable.dictionary";
}

// For people, in the order of the alphabet.
std::string LanguagesOf(const std::string& inBundle)
{
    std::vector<std::string> names;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(Resources(inBundle), error))
        if (entry.path().extension() == ".lproj")
            names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text.empty() ? "none" : text;
}

bool Load(const std::string& inBundle, const std::string& inLanguage)
{
    const fs::path dictionary = Dictionary(inBundle, inLanguage);
    std::error_code error;
    if (!fs::is_regular_file(dictionary, error))
        return false;
    if (!kelpcore::config::Localizer::Get().LoadDictionary(dictionary.c_str()))
        throw Failure(kExitFailed, 0, dictionary.string() + ": is no dictionary");
    return true;
}

}  // namespace

void UseLanguage(const std::string& inBundle, const std::string& inLanguage)
{
    if (inLanguage.empty())
    {
        for (const std::string& language : LanguagesOfUser())
            if (Load(inBundle, language))
                return;
        return;
    }
    if (inLanguage.find('/') != std::string::npos || !Load(inBundle, inLanguage))
        throw Failure(
            kExitUsage, 0,
            "--lang " + inLanguage + ": there are no texts; possible: " + LanguagesOf(inBundle));
    // Other resources of the bundle are looked for in this language too.
    (void)setenv("LANGUAGE", inLanguage.c_str(), 1);
}

}  // namespace host
