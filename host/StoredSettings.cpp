#include "host/StoredSettings.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace host
{

std::int32_t SettingsNumber(std::string_view inSettings, std::string_view inKey,
                            std::int32_t inDefault)
{
    while (!inSettings.empty())
    {
        const std::size_t end = inSettings.find(';');
        if (end == std::string_view::npos)
            break;
        const std::string_view entry = inSettings.substr(0, end);
        inSettings.remove_prefix(end + 1);

        if (!entry.starts_with(inKey) || !entry.substr(inKey.size()).starts_with(":0:"))
            continue;
        const std::string_view digits = entry.substr(inKey.size() + 3);
        std::int32_t number = 0;
        const auto [last, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), number);
        if (error == std::errc() && last == digits.data() + digits.size())
            return number;
    }
    return inDefault;
}

std::string CodeText(std::uint32_t inCode)
{
    std::string text;
    if (inCode == 0)
        return text;
    for (int shift = 24; shift >= 0; shift -= 8)
    {
        const auto byte = static_cast<unsigned char>(inCode >> shift);
        if (byte < 0x80)
        {
            text += static_cast<char>(byte);
            continue;
        }
        text += static_cast<char>(0xC0 | (byte >> 6));
        text += static_cast<char>(0x80 | (byte & 0x3F));
    }
    return text;
}

std::string CodeForPeople(std::uint32_t inCode)
{
    std::string text = CodeText(inCode);
    const auto isShown = [](char inCharacter) { return inCharacter >= ' ' && inCharacter <= '~'; };
    if (std::all_of(text.begin(), text.end(), isShown))
        return text;
    char number[16];
    std::snprintf(number, sizeof(number), "0x%08X", inCode);
    return number;
}

}  // namespace host
