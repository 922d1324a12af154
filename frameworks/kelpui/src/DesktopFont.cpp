#include "DesktopFont.h"

#include "kelpcore/utility/FileBytes.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <vector>

namespace kelpui::inkwright
{
namespace
{

constexpr std::size_t kMaxSettingsBytes = 1u << 20;
constexpr double kSmallestPointSize = 1.0;
constexpr double kLargestPointSize = 200.0;

std::string_view Trim(std::string_view inText)
{
    constexpr std::string_view kBlanks = " \t\r";
    const std::size_t first = inText.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return inText.substr(first, inText.find_last_not_of(kBlanks) - first + 1);
}

// The value of a key in a group of a file of "[group]" and "key=value" lines; empty without one.
std::string_view FindValue(std::string_view inFile, std::string_view inGroup,
                           std::string_view inKey)
{
    bool inside = false;
    while (!inFile.empty())
    {
        const std::size_t end = std::min(inFile.find('\n'), inFile.size());
        const std::string_view line = Trim(inFile.substr(0, end));
        inFile.remove_prefix(std::min(end + 1, inFile.size()));
        if (line.starts_with('['))
            inside = line == inGroup;
        const std::size_t equals = line.find('=');
        if (inside && equals != std::string_view::npos && Trim(line.substr(0, equals)) == inKey)
            return Trim(line.substr(equals + 1));
    }
    return {};
}

std::optional<BaseFont> MakeFont(std::string_view inFamily, std::string_view inSize)
{
    const std::string_view family = Trim(inFamily);
    const std::string_view size = Trim(inSize);
    double points = 0.0;
    const char* end = size.data() + size.size();
    const auto result = std::from_chars(size.data(), end, points);
    const bool isSize = result.ec == std::errc() && result.ptr == end &&
                        points >= kSmallestPointSize && points <= kLargestPointSize;
    if (family.empty() || !isSize)
        return std::nullopt;
    return BaseFont{UTF8String(family), points};
}

struct SettingsFile
{
    const char* mPath;
    std::optional<BaseFont> (*mRead)(std::string_view inFile);
};

constexpr SettingsFile kSettingsFiles[] = {
    {"/gtk-4.0/settings.ini", &ReadGTKFont},
    {"/gtk-3.0/settings.ini", &ReadGTKFont},
    {"/kdeglobals", &ReadKDEFont},
};

}  // namespace

std::optional<BaseFont> ReadGTKFont(std::string_view inFile)
{
    const std::string_view value = FindValue(inFile, "[Settings]", "gtk-font-name");
    const std::size_t blank = value.find_last_of(" \t");
    if (blank == std::string_view::npos)
        return std::nullopt;
    return MakeFont(value.substr(0, blank), value.substr(blank + 1));
}

std::optional<BaseFont> ReadKDEFont(std::string_view inFile)
{
    const std::string_view value = FindValue(inFile, "[General]", "font");
    const std::size_t comma = value.find(',');
    if (comma == std::string_view::npos)
        return std::nullopt;
    const std::string_view rest = value.substr(comma + 1);
    return MakeFont(value.substr(0, comma), rest.substr(0, rest.find(',')));
}

BaseFont FindDesktopFont(const UTF8String& inConfigFolder)
{
    for (const SettingsFile& file : kSettingsFiles)
    {
        std::vector<char> bytes;
        if (!kelpcore::utility::ReadFileBytes((inConfigFolder + file.mPath).c_str(),
                                              kMaxSettingsBytes, bytes))
            continue;
        if (auto font = file.mRead(std::string_view(bytes.data(), bytes.size())))
            return *std::move(font);
    }
    return {"Sans", 10.0};
}

UTF8String ConfigFolder()
{
    // A relative folder is to be ignored, by the rule of the variable.
    if (const char* config = std::getenv("XDG_CONFIG_HOME"); config && config[0] == '/')
        return config;
    const char* home = std::getenv("HOME");
    return home && home[0] == '/' ? UTF8String(home) + "/.config" : UTF8String();
}

}  // namespace kelpui::inkwright
