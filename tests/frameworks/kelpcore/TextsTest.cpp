// Placeholders, the localiser and its dictionaries.
#include "kelpcore/ZString.h"
#include "kelpcore/config/Localizer.h"
#include "kelpcore/utility/ReplaceInString.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

namespace
{

using kelpcore::ZString;
using kelpcore::config::Localizer;
using kelpcore::utility::ReplaceAllStringInString;
using kelpcore::utility::ReplaceInString;

UTF16String Replaced(UTF16String inText, const UTF16String& inOld, const UTF16String& inNew)
{
    ReplaceAllStringInString(inText, inOld, inNew);
    return inText;
}

class Dictionaries : public ::testing::Test
{
protected:
    Dictionaries() : mPath(::testing::TempDir() + "dictionary" + std::to_string(::getpid())) {}
    ~Dictionaries() override
    {
        Localizer::Get().Clear();
        std::remove(mPath.c_str());
    }

    bool Load(const std::string& inBytes)
    {
        std::ofstream(mPath, std::ios::binary) << inBytes;
        return Localizer::Get().LoadDictionary(mPath.c_str());
    }

    static UTF16String Translate(const char* inLiteral)
    {
        return Localizer::Get().Translate(inLiteral);
    }

    const std::string mPath;
};

}  // namespace

TEST(ReplaceInString, FillsEveryMark)
{
    EXPECT_EQ(ReplaceInString(u"@0 of @1", u"3", u"7"), u"3 of 7");
    EXPECT_EQ(ReplaceInString(u"@1@0@1", u"a", u"b"), u"bab");
    EXPECT_EQ(ReplaceInString(u"@0@1@2@3@4@5@6@7@8@9", u"a", u"b", u"c", u"d", u"e", u"f", u"g",
                              u"h", u"i", u"j"),
              u"abcdefghij");
    EXPECT_EQ(ReplaceInString(u"@10", u"a", u"b"), u"b0");
    EXPECT_EQ(ReplaceInString(u"<@5>", u"a"), u"<>");
}

TEST(ReplaceInString, AMarkInsideAParameterStays)
{
    EXPECT_EQ(ReplaceInString(u"@0-@1", u"@1", u"@0"), u"@1-@0");
    EXPECT_EQ(ReplaceInString(u"@0", u"@"), u"@");
    EXPECT_EQ(ReplaceInString(u"@01", u"@"), u"@1");
}

TEST(ReplaceInString, AnAtWithoutADigitStays)
{
    EXPECT_EQ(ReplaceInString(u"a@b @", u"x"), u"a@b @");
    EXPECT_EQ(ReplaceInString(u"@@0", u"x"), u"@x");
    EXPECT_EQ(ReplaceInString(u"@\uFF10", u"x"), u"@\uFF10");
    EXPECT_EQ(ReplaceInString(u"", u"x"), u"");
}

TEST(ReplaceAllStringInString, ReplacesFromTheLeftAndGoesOnBehind)
{
    EXPECT_EQ(Replaced(u"aXbXc", u"X", u"--"), u"a--b--c");
    EXPECT_EQ(Replaced(u"aaa", u"aa", u"b"), u"ba");
    EXPECT_EQ(Replaced(u"aa", u"a", u"aa"), u"aaaa");
    EXPECT_EQ(Replaced(u"abc", u"abc", u""), u"");
    EXPECT_EQ(Replaced(u"abc", u"x", u"y"), u"abc");
    EXPECT_EQ(Replaced(u"", u"x", u"y"), u"");
}

TEST(ReplaceAllStringInString, AnEmptyTextToReplaceChangesNothing)
{
    EXPECT_EQ(Replaced(u"abc", u"", u"y"), u"abc");
}

TEST_F(Dictionaries, WithoutOneTheEnglishDefaultIsTaken)
{
    EXPECT_EQ(Translate("$$$/tarvo/Bitrate=Bitrate:"), u"Bitrate:");
    EXPECT_EQ(Translate("$$$/k=a=b"), u"a=b");
    EXPECT_EQ(Translate("$$$/k= kbps"), u" kbps");
    EXPECT_EQ(Translate("$$$/k="), u"");
    EXPECT_EQ(Translate("plain text"), u"plain text");
    EXPECT_EQ(Translate(""), u"");
    EXPECT_EQ(Translate("$$$/k=caf\xC3\xA9"), u"caf\u00E9");
}

TEST_F(Dictionaries, TheTextOfTheKeyReplacesTheDefault)
{
    ASSERT_TRUE(
        Load("\xEF\xBB\xBF# Deutsch\n\n$$$/k=Gr\xC3\xB6\xC3\x9F"
             "e\r\n$$$/e=\n$$$/eq=a=b"));
    EXPECT_EQ(Translate("$$$/k=Size"), u"Gr\u00F6\u00DFe");
    EXPECT_EQ(Translate("$$$/k"), u"Gr\u00F6\u00DFe");
    EXPECT_EQ(Translate("$$$/e=Something"), u"");
    EXPECT_EQ(Translate("$$$/eq=x"), u"a=b");
    EXPECT_EQ(Translate("$$$/other=Other"), u"Other");
}

TEST_F(Dictionaries, EscapesStandForLineFeedAndBackslash)
{
    ASSERT_TRUE(Load("$$$/k=a\\nb\\\\n\n"));
    EXPECT_EQ(Translate("$$$/k=x"), u"a\nb\\n");
}

TEST_F(Dictionaries, ALaterEntryReplacesAnEarlierOne)
{
    ASSERT_TRUE(Load("$$$/a=1\n$$$/a=2\n$$$/b=3\n"));
    EXPECT_EQ(Translate("$$$/a=x"), u"2");
    ASSERT_TRUE(Load("$$$/a=4\n$$$/c=5\n"));
    EXPECT_EQ(Translate("$$$/a=x"), u"4");
    EXPECT_EQ(Translate("$$$/b=x"), u"3");
    EXPECT_EQ(Translate("$$$/c=x"), u"5");
}

TEST_F(Dictionaries, ABadFileLeavesTheDictionaryAsItWas)
{
    ASSERT_TRUE(Load("$$$/a=1\n"));
    const std::string good = "$$$/a=2\n";
    for (const std::string& bad :
         {std::string("no key\n"), std::string("$$$/k\n"), std::string("$$$/=text\n"),
          std::string("k=text\n"), std::string(" $$$/k=text\n"), std::string("$$$/k=\\t\n"),
          std::string("$$$/k=end\\"), std::string("$$$/k=\xFF\n"), std::string("$$$/\xC3=a\n"),
          std::string("# \xED\xA0\x80\n"), std::string("$$$/k=a\0b\n", 9)})
    {
        EXPECT_FALSE(Load(good + bad)) << ::testing::PrintToString(bad);
        EXPECT_EQ(Translate("$$$/a=x"), u"1") << ::testing::PrintToString(bad);
    }
}

TEST_F(Dictionaries, AnEmptyFileIsADictionaryAndAMissingOneIsNot)
{
    EXPECT_TRUE(Load(""));
    EXPECT_FALSE(Localizer::Get().LoadDictionary((mPath + ".missing").c_str()));
    EXPECT_FALSE(Localizer::Get().LoadDictionary("/"));
    EXPECT_FALSE(Localizer::Get().LoadDictionary("/dev/zero"));
}

TEST_F(Dictionaries, ClearingGoesBackToEnglish)
{
    ASSERT_TRUE(Load("$$$/a=1\n"));
    Localizer::Get().Clear();
    EXPECT_EQ(Translate("$$$/a=x"), u"x");
}

TEST_F(Dictionaries, ThreadsTranslateAtOnce)
{
    ASSERT_TRUE(Load("$$$/a=eins\n"));
    std::vector<UTF16String> texts(4);
    std::vector<std::thread> threads;
    for (UTF16String& text : texts)
        threads.emplace_back(
            [&text]
            {
            for (int round = 0; round < 1000; ++round)
                text = Translate("$$$/a=one");
        });
    for (std::thread& thread : threads)
        thread.join();
    for (const UTF16String& text : texts)
        EXPECT_EQ(text, u"eins");
}

TEST_F(Dictionaries, ZStringBreaksLinesAndFillsMarks)
{
    EXPECT_EQ(ZString("$$$/k=Cannot open @0.#{endl}Error Code: @1", u"a.wav", u"-43"),
              u"Cannot open a.wav.\nError Code: -43");
    EXPECT_EQ(ZString("$$$/k=@9#{endl}#{endl}@0", u"a", {}, {}, {}, {}, {}, {}, {}, {}, u"j"),
              u"j\n\na");
    EXPECT_EQ(ZString("$$$/k=plain"), u"plain");
}

TEST_F(Dictionaries, ZStringLeavesParametersAlone)
{
    EXPECT_EQ(ZString("$$$/k=<@0><@1>", u"#{endl}", u"@0"), u"<#{endl}><@0>");
}

TEST_F(Dictionaries, ZStringTranslatesFirst)
{
    ASSERT_TRUE(Load("$$$/k=Fehler#{endl}@0\n"));
    EXPECT_EQ(ZString("$$$/k=Error @0", u"7"), u"Fehler\n7");
}
