// SourceTexts: the texts with a key that stand in the sources and forms of some folders.
#ifndef TESTS_TARVO_PLUGINS_TARVOAT_DICTIONARIES_SOURCETEXTS_H
#define TESTS_TARVO_PLUGINS_TARVOAT_DICTIONARIES_SOURCETEXTS_H

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <string>

#include <gtest/gtest.h>

namespace testing_support
{

using Texts = std::map<std::string, std::string>;  // key to English

inline std::string ReadText(const std::filesystem::path& inPath)
{
    std::ifstream file(inPath, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(file)), {});
}

// A key has one English text, wherever it stands.
inline void AddText(const std::string& inText, Texts& ioTexts)
{
    const std::size_t equals = inText.find('=');
    if (equals == std::string::npos)
        return;
    const std::string english = inText.substr(equals + 1);
    const auto entry = ioTexts.emplace(inText.substr(0, equals), english).first;
    EXPECT_EQ(entry->second, english) << entry->first;
}

/// String literals that begin with a key, put together from their pieces. Comments do not count.
inline void AddLiterals(const std::string& inSource, Texts& ioTexts)
{
    static const std::regex kComment("(^|\n)[ \t]*//[^\n]*");
    static const std::regex kLiteral(R"re("\$\$\$/([^"\\\n]|\\.)*"(\s*"([^"\\\n]|\\.)*")*)re");
    static const std::regex kSeam(R"re("\s*")re");
    static const std::regex kQuote(R"re(\\")re");
    const std::string code = std::regex_replace(inSource, kComment, "\n");
    for (std::sregex_iterator match(code.begin(), code.end(), kLiteral), end; match != end; ++match)
    {
        // Marked first, so that a quote at a piece's end is no seam.
        std::string text = std::regex_replace(match->str(), kQuote, "\x01");
        text = std::regex_replace(text.substr(1, text.size() - 2), kSeam, "");
        std::replace(text.begin(), text.end(), '\x01', '"');
        AddText(text, ioTexts);
    }
}

inline void AddFormTexts(const std::string& inForm, Texts& ioTexts)
{
    for (std::size_t at = inForm.find("$$$/"); at != std::string::npos;
         at = inForm.find("$$$/", at + 1))
        AddText(inForm.substr(at, inForm.find('<', at) - at), ioTexts);
}

inline void AddTextsOf(const std::filesystem::path& inFolder, Texts& ioTexts)
{
    for (const auto& entry : std::filesystem::recursive_directory_iterator(inFolder))
    {
        const std::string type = entry.path().extension();
        if (type == ".cpp" || type == ".h")
            AddLiterals(ReadText(entry.path()), ioTexts);
        else if (type == ".ui")
            AddFormTexts(ReadText(entry.path()), ioTexts);
    }
}

}  // namespace testing_support

#endif
