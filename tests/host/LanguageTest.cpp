#include "host/Language.h"

#include "host/Failure.h"
#include "host/HostText.h"
#include "kelpcore/config/Localizer.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>

namespace
{

namespace fs = std::filesystem;

constexpr const char* kVariables[] = {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"};

// A bundle with dictionaries for de, pt-BR and en, and no variable that tells a language.
class LanguageTest : public testing::Test
{
protected:
    LanguageTest()
    {
        std::string name = (fs::temp_directory_path() / "language-test-XXXXXX").string();
        mBundle = mkdtemp(name.data());
        AddDictionary("de", "$$$/test/Greeting=Hallo\n");
        AddDictionary("pt-BR", "$$$/test/Greeting=Oi\n");
        AddDictionary("en", "");
        for (const char* const variable : kVariables)
        {
            const char* const value = std::getenv(variable);
            mBefore.push_back(value ? std::optional<std::string>(value) : std::nullopt);
            unsetenv(variable);
        }
    }
    ~LanguageTest() override
    {
        for (std::size_t i = 0; i < std::size(kVariables); ++i)
            mBefore[i] ? setenv(kVariables[i], mBefore[i]->c_str(), 1) : unsetenv(kVariables[i]);
        kelpcore::config::Localizer::Get().Clear();
        fs::remove_all(mBundle);
    }

    void AddDictionary(const char* inLanguage, const char* inText) const
    {
        const fs::path folder =
            mBundle / "Contents/Resources" / (std::string(inLanguage) + ".lproj");
        fs::create_directories(folder);
        std::ofstream(folder / "Localizable.dictionary") << inText;
    }

    // Empty: by the variables.
    std::string Greeting(const std::string& inLanguage = "") const
    {
        kelpcore::config::Localizer::Get().Clear();
        host::UseLanguage(mBundle.string(), inLanguage);
        return host::FromPlugIn(
            kelpcore::config::Localizer::Get().Translate("$$$/test/Greeting=Hello").c_str());
    }

    std::string Refusal(const std::string& inLanguage, host::ExitCode inCode) const
    {
        try
        {
            return "none: " + Greeting(inLanguage);
        }
        catch (const host::Failure& failure)
        {
            EXPECT_EQ(failure.mExitCode, inCode);
            return failure.what();
        }
    }

    fs::path mBundle;
    std::vector<std::optional<std::string>> mBefore;
};

TEST_F(LanguageTest, IsEnglishWithoutALocale)
{
    EXPECT_EQ(Greeting(), "Hello");
    setenv("LANG", "C.UTF-8", 1);
    EXPECT_EQ(Greeting(), "Hello");
}

TEST_F(LanguageTest, IsTheLocales)
{
    setenv("LANG", "de_AT.UTF-8@euro", 1);
    EXPECT_EQ(Greeting(), "Hallo");
    setenv("LC_MESSAGES", "pt_BR.UTF-8", 1);
    EXPECT_EQ(Greeting(), "Oi");
    setenv("LC_ALL", "fr_FR.UTF-8", 1);
    EXPECT_EQ(Greeting(), "Hello");
}

TEST_F(LanguageTest, IsTheFirstOfAListThatHasADictionary)
{
    setenv("LANG", "de_DE.UTF-8", 1);
    setenv("LANGUAGE", "fr:pt_BR:de", 1);
    EXPECT_EQ(Greeting(), "Oi");
    setenv("LANGUAGE", "en:pt_BR:de", 1);
    EXPECT_EQ(Greeting(), "Hello");
    setenv("LANGUAGE", "fr:../de", 1);
    EXPECT_EQ(Greeting(), "Hallo") << "the locale comes last";
}

TEST_F(LanguageTest, IsTheOneThatIsNamed)
{
    setenv("LANG", "pt_BR.UTF-8", 1);
    EXPECT_EQ(Greeting("de"), "Hallo");
    EXPECT_STREQ(std::getenv("LANGUAGE"), "de");
    EXPECT_EQ(Greeting("en"), "Hello");
}

TEST_F(LanguageTest, RefusesOneWithoutADictionary)
{
    EXPECT_EQ(Refusal("fr", host::kExitUsage),
              "--lang fr: there are no texts; possible: de, en, pt-BR");
    EXPECT_EQ(Refusal("../Resources/de", host::kExitUsage),
              "--lang ../Resources/de: there are no texts; possible: de, en, pt-BR");
}

TEST_F(LanguageTest, RefusesADamagedDictionary)
{
    AddDictionary("de", "no key\n");
    const std::string text = Refusal("de", host::kExitFailed);
    EXPECT_NE(text.find("de.lproj/Localizable.dictionary: is no dictionary"), std::string::npos)
        << text;
}

TEST_F(LanguageTest, PassesOverABundleWithoutResources)
{
    fs::remove_all(mBundle / "Contents");
    setenv("LANG", "de_DE.UTF-8", 1);
    EXPECT_EQ(Greeting(), "Hello");
    EXPECT_EQ(Refusal("de", host::kExitUsage), "--lang de: there are no texts; possible: none");
}

}  // namespace
