// The bundle's dictionaries against the texts in the sources.
#include "frameworks/kelpcore/src/DictionaryFile.h"
#include "kelpcore/config/Localizer.h"
#include "kelpcore/utility/StringConversion.h"
#include "tests/Tarvo_PlugIns/TarvoAT/dictionaries/SourceTexts.h"

#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using namespace testing_support;
namespace fs = std::filesystem;

const fs::path kSources = SOURCES;
const fs::path kResources = kSources / "Tarvo_PlugIns/TarvoAT/resources";

const Texts& English()
{
    static const Texts sTexts = []
    {
        Texts texts;
        for (const char* folder :
             {"Tarvo_PlugIns", "TarvoSDK", "appleaudiotoolbox", "CoreAudio", "frameworks"})
            AddTextsOf(kSources / folder, texts);
        return texts;
    }();
    return sTexts;
}

std::set<std::string> Keys(const Texts& inTexts)
{
    std::set<std::string> keys;
    for (const auto& [key, text] : inTexts)
        keys.insert(key);
    return keys;
}

// What is filled in or replaced later, in no order, since languages differ in theirs.
std::multiset<std::string> Marks(const std::string& inText)
{
    static const std::regex kMark("@[0-9]|#\\{endl\\}|\n");
    std::multiset<std::string> marks;
    for (std::sregex_iterator match(inText.begin(), inText.end(), kMark), end; match != end;
         ++match)
        marks.insert(match->str());
    return marks;
}

class Dictionaries : public testing::TestWithParam<const char*>
{
protected:
    fs::path Path() const
    {
        return kResources / (std::string(GetParam()) + ".lproj") / "Localizable.dictionary";
    }
    Texts Load() const
    {
        kelpcore::config::Dictionary dictionary;
        EXPECT_TRUE(kelpcore::config::ParseDictionary(ReadText(Path()), dictionary));
        Texts texts;
        for (const auto& [key, text] : dictionary)
            texts[std::string(key)] = std::string(kelpcore::utility::UTF16to8(text));
        return texts;
    }
};

INSTANTIATE_TEST_SUITE_P(Languages, Dictionaries, testing::Values("de", "ja"),
                         [](const auto& inRow) { return std::string(inRow.param); });

TEST(DictionarySources, HaveTheTextsThatAreKnownToBeThere)
{
    EXPECT_GE(English().size(), 75u);
    EXPECT_EQ(English().at("$$$/appleaudiotoolbox/kilobitsPerSecond"), " kbps");
    EXPECT_EQ(English().at("$$$/kelpui/ArchivedDialog/DuplicateID"),
              "The dialog \"@0\" has the control \"@1\" twice.");
    EXPECT_EQ(English().at("$$$/TarvoPlugIns/TarvoAT/WriteStartGeneral"),
              "Error creating file @0.  The destination may be full or no longer available.");
    EXPECT_EQ(English().at("$$$/tarvo/TarvoATSettingsDialog/QualityMedium"), "Medium");
}

TEST_P(Dictionaries, HaveEveryKeyAndNoOther)
{
    EXPECT_EQ(Keys(Load()), Keys(English()));
}

TEST_P(Dictionaries, HaveEachKeyOnce)
{
    std::set<std::string> keys;
    std::istringstream lines(ReadText(Path()));
    for (std::string line; std::getline(lines, line);)
    {
        if (line.compare(0, 4, "$$$/") == 0)
        {
            EXPECT_TRUE(keys.insert(line.substr(0, line.find('='))).second) << line;
        }
    }
}

TEST_P(Dictionaries, KeepTheMarksOfEachText)
{
    const Texts texts = Load();
    for (const auto& [key, english] : English())
    {
        ASSERT_EQ(texts.count(key), 1u) << key;
        EXPECT_EQ(Marks(texts.at(key)), Marks(english)) << key;
    }
}

// Names, codecs' abbreviations and units that the language has too; whatever else is the same as
// the English text was forgotten.
TEST_P(Dictionaries, TranslateAllButNamesAndUnits)
{
    const std::set<std::string> common = {"Apple Audio Toolbox", "CBR: @0", "VBR: @0", "OK"};
    const std::map<std::string, std::set<std::string>> own = {
        {"de", {"Bitrate", "Bitrate:", "Variable Bitrate", "Format", "Format:"}},
        {"ja", {" bps", " kbps", " Mbps"}}};
    const Texts texts = Load();
    for (const auto& [key, english] : English())
        if (common.count(english) == 0 && own.at(GetParam()).count(english) == 0)
        {
            EXPECT_NE(texts.at(key), english) << key;
        }
}

// UTF-8 that was taken for Latin-1 once has these, as have texts that a conversion damaged.
TEST_P(Dictionaries, AreCleanText)
{
    const std::string bytes = ReadText(Path());
    EXPECT_TRUE(bytes.ends_with('\n'));
    for (const char* damage :
         {"\xC3\x83", "\xC3\x82", "\xC3\xA3\xC2", "\xEF\xBF\xBD", "\xEF\xBB\xBF", "\r", "\t", "\\"})
        EXPECT_EQ(bytes.find(damage), std::string::npos);
    for (const char* letters : GetParam() == std::string("de")
                                   ? std::vector<const char*>{"ä", "ö", "ü", "ß", "„", "“"}
                                   : std::vector<const char*>{"ビット", "の", "品質", "「", "」"})
        EXPECT_NE(bytes.find(letters), std::string::npos) << letters;
}

// Texts are put together from pieces, so that blanks at an end and line breaks at a start count.
TEST_P(Dictionaries, KeepBlanksAndColonsAtTheEndsOfEachText)
{
    for (const auto& [key, text] : Load())
    {
        const std::string& english = English().at(key);
        ASSERT_FALSE(text.empty()) << key;
        EXPECT_EQ(text.front() == ' ', english.front() == ' ') << key;
        EXPECT_EQ(text.back() == ' ', english.back() == ' ') << key;
        EXPECT_EQ(text.back() == ':', english.back() == ':') << key;
        EXPECT_EQ(text.starts_with("#{endl}"), english.starts_with("#{endl}")) << key;
    }
}

TEST_P(Dictionaries, AreReadByTheLocalizer)
{
    kelpcore::config::Localizer& localizer = kelpcore::config::Localizer::Get();
    EXPECT_TRUE(localizer.LoadDictionary(Path().c_str()));
    EXPECT_NE(localizer.Translate("$$$/tarvo/TarvoATSettingsDialog/Cancel=Cancel"), u"Cancel");
    localizer.Clear();
}

TEST(EnglishDictionary, TranslatesNothing)
{
    kelpcore::config::Dictionary dictionary;
    EXPECT_TRUE(kelpcore::config::ParseDictionary(
        ReadText(kResources / "en.lproj/Localizable.dictionary"), dictionary));
    EXPECT_TRUE(dictionary.empty());
}

}  // namespace
