#include "kelpcore/utility/StringConversion.h"

#include "UTFCharacters.h"

namespace kelpcore::utility
{
namespace
{

template <typename Result, typename View>
Result Convert(View inText)
{
    Result result;
    result.reserve(inText.size());
    while (!inText.empty())
    {
        const char32_t character = TakeCharacter(inText);
        AppendCharacter(character == kNoCharacter ? kReplacementCharacter : character, result);
    }
    return result;
}

}  // namespace

UTF16String AsciiToUTF16(std::string_view inText)
{
    UTF16String result;
    result.reserve(inText.size());
    for (const char character : inText)
    {
        const unsigned char byte = static_cast<unsigned char>(character);
        result += byte < 0x80 ? static_cast<char16_t>(byte)
                              : static_cast<char16_t>(kReplacementCharacter);
    }
    return result;
}

UTF8String UTF16to8(std::u16string_view inText)
{
    return Convert<UTF8String>(inText);
}

UTF16String UTF8to16(std::string_view inText)
{
    return Convert<UTF16String>(inText);
}

UTF16String MACtoKELP(CFStringRef inString)
{
    UTF16String result;
    if (!inString)
        return result;
    const CFIndex length = CFStringGetLength(inString);
    result.resize(static_cast<std::size_t>(length));
    static_assert(sizeof(UniChar) == sizeof(char16_t));
    CFStringGetCharacters(inString, CFRange{0, length}, reinterpret_cast<UniChar*>(result.data()));
    return result;
}

UTF8String MACtoKELP(CFStringRef inString, CFStringEncoding inEncoding)
{
    UTF8String result;
    if (!inString)
        return result;
    const CFIndex room = CFStringGetMaximumSizeForEncoding(CFStringGetLength(inString), inEncoding);
    if (room < 0)
        return result;
    result.resize(static_cast<std::size_t>(room) + 1);
    if (!CFStringGetCString(inString, result.data(), room + 1, inEncoding))
        return {};
    result.resize(result.find('\0'));
    return result;
}

}  // namespace kelpcore::utility
