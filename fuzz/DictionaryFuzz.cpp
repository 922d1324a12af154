// Dictionaries are files that anybody may change. What is read of one, written again, reads the
// same.

#include "frameworks/kelpcore/src/DictionaryFile.h"

#include <kelpcore/utility/StringConversion.h>

#include <cstdint>
#include <cstdlib>
#include <string>

namespace
{

using kelpcore::config::Dictionary;

void Require(bool inHolds)
{
    if (!inHolds)
        std::abort();
}

std::string Escaped(const UTF8String& inText)
{
    std::string escaped;
    for (const char byte : inText)
        if (byte == '\\')
            escaped += "\\\\";
        else if (byte == '\n')
            escaped += "\\n";
        else
            escaped += byte;
    return escaped;
}

// Lines end with CR LF, since a text may end with a CR of its own.
std::string Written(const Dictionary& inDictionary)
{
    std::string bytes;
    for (const auto& [key, text] : inDictionary)
        bytes += std::string(key) + '=' + Escaped(kelpcore::utility::UTF16to8(text)) + "\r\n";
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* inData, std::size_t inSize)
{
    Dictionary dictionary;
    if (!kelpcore::config::ParseDictionary({reinterpret_cast<const char*>(inData), inSize},
                                           dictionary))
        return 0;
    for (const auto& [key, text] : dictionary)
        Require(key.starts_with("$$$/") && key.find('=') == UTF8String::npos);
    Dictionary again;
    Require(kelpcore::config::ParseDictionary(Written(dictionary), again));
    Require(again == dictionary);
    return 0;
}
