#include "host/export/Presets.h"

#include "host/Failure.h"
#include "host/OutputFile.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace host
{

namespace
{

namespace fs = std::filesystem;

constexpr std::size_t kLongestName = 64;
constexpr std::size_t kLongestText = 65536;  // many times what a settings text has

const char* Variable(const char* inName)
{
    const char* value = std::getenv(inName);
    return value && value[0] == '/' ? value : nullptr;
}

// Empty where the user has no home.
fs::path Folder()
{
    if (const char* config = Variable("XDG_CONFIG_HOME"))
        return fs::path(config) / "tarvo" / "presets";
    if (const char* home = Variable("HOME"))
        return fs::path(home) / ".config" / "tarvo" / "presets";
    return {};
}

void RequireName(const std::string& inName)
{
    if (!IsPresetName(inName))
        throw Failure(
            kExitUsage, 0,
            "\"" + inName + "\" is no name for a preset: use letters, digits and . _ - + inside");
}

[[noreturn]] void FailUnknown(const std::string& inName)
{
    std::string text = "there is no preset \"" + inName + "\"";
    const std::vector<std::string> names = PresetNames();
    for (const std::string& name : names)
        text += (name == names.front() ? "; there are: " : ", ") + name;
    throw Failure(kExitUsage, 0, text);
}

std::string ReadText(const fs::path& inPath)
{
    std::ifstream file(inPath, std::ios::binary);
    std::string text(kLongestText + 1, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(file.gcount()));
    while (text.ends_with('\n') || text.ends_with('\r'))
        text.pop_back();
    if (file.bad() || text.size() > kLongestText || !IsSettingsText(text) || text.empty())
        throw Failure(kExitInput, 0, inPath.string() + ": is no settings text");
    return text;
}

void MakeFolder(const fs::path& inFolder)
{
    std::error_code error;
    fs::create_directories(inFolder, error);
    if (error)
        throw Failure(kExitOutput, 0,
                      inFolder.string() + ": cannot make the folder: " + error.message());
}

}  // namespace

bool IsSettingsText(std::string_view inText)
{
    return inText.empty() || inText.find(':') != std::string_view::npos;
}

bool IsPresetName(std::string_view inName)
{
    const auto isPlain = [](char inCharacter)
    {
        return (inCharacter >= 'a' && inCharacter <= 'z') ||
               (inCharacter >= 'A' && inCharacter <= 'Z') ||
               (inCharacter >= '0' && inCharacter <= '9');
    };
    const auto isAllowed = [&](char inCharacter)
    {
        return isPlain(inCharacter) ||
               std::string_view("._-+ ").find(inCharacter) != std::string_view::npos;
    };
    return !inName.empty() && inName.size() <= kLongestName && isPlain(inName.front()) &&
           inName.back() != ' ' && std::all_of(inName.begin(), inName.end(), isAllowed);
}

std::string LoadPreset(const std::string& inName)
{
    RequireName(inName);
    const fs::path folder = Folder();
    std::error_code error;
    // Anything else that lies there, a pipe say, would be waited for.
    if (folder.empty() || !fs::is_regular_file(folder / inName, error))
        FailUnknown(inName);
    return ReadText(folder / inName);
}

void SavePreset(const std::string& inName, const std::string& inSettings, bool inMayReplace)
{
    RequireName(inName);
    const fs::path folder = Folder();
    if (folder.empty())
        throw Failure(kExitOutput, 0, "there is no home folder to keep presets in");
    MakeFolder(folder);
    const std::string line = inSettings + "\n";
    OutputFile file((folder / inName).string(), inMayReplace, "");
    file.Write(line.data(), line.size());
    file.Commit();
}

std::vector<std::string> PresetNames()
{
    std::vector<std::string> names;
    const fs::path folder = Folder();
    std::error_code error, ignored;
    if (folder.empty())
        return names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error))
        if (IsPresetName(entry.path().filename().string()) && entry.is_regular_file(ignored))
            names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace host
