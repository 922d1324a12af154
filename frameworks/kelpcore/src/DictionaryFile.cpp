#include "DictionaryFile.h"

#include "UTFCharacters.h"

#include <algorithm>

namespace kelpcore::config
{
namespace
{

constexpr std::string_view kKeyStart = "$$$/";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view TakeLine(std::string_view& ioBytes)
{
    const std::size_t end = std::min(ioBytes.find('\n'), ioBytes.size());
    std::string_view line = ioBytes.substr(0, end);
    ioBytes.remove_prefix(std::min(end + 1, ioBytes.size()));
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

bool Unescape(std::string_view inText, UTF8String& outText)
{
    outText.reserve(inText.size());
    for (std::size_t at = 0; at < inText.size(); ++at)
    {
        if (inText[at] != '\\')
        {
            outText += inText[at];
            continue;
        }
        const char next = ++at < inText.size() ? inText[at] : '\0';
        if (next != 'n' && next != '\\')
            return false;
        outText += next == 'n' ? '\n' : '\\';
    }
    return true;
}

bool ParseEntry(std::string_view inLine, Dictionary& ioDictionary)
{
    const std::size_t equals = inLine.find('=');
    if (!inLine.starts_with(kKeyStart) || equals == std::string_view::npos ||
        equals == kKeyStart.size() || inLine.find('\0') != std::string_view::npos)
        return false;
    const std::string_view key = inLine.substr(0, equals);
    UTF16String keyUnits;
    UTF8String text;
    UTF16String units;
    if (!utility::AppendValidUTF8(key, keyUnits) || !Unescape(inLine.substr(equals + 1), text) ||
        !utility::AppendValidUTF8(text, units))
        return false;
    ioDictionary.insert_or_assign(UTF8String(key), std::move(units));
    return true;
}

}  // namespace

bool ParseDictionary(std::string_view inBytes, Dictionary& outDictionary)
{
    outDictionary.clear();
    if (inBytes.starts_with(kByteOrderMark))
        inBytes.remove_prefix(kByteOrderMark.size());
    while (!inBytes.empty())
    {
        const std::string_view line = TakeLine(inBytes);
        UTF16String comment;
        if (line.starts_with('#') ? !utility::AppendValidUTF8(line, comment)
                                  : !line.empty() && !ParseEntry(line, outDictionary))
            return false;
    }
    return true;
}

}  // namespace kelpcore::config
