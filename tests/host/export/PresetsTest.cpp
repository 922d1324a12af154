#include "host/export/Presets.h"

#include "host/Failure.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace host
{

namespace
{

namespace fs = std::filesystem;

class PresetsTest : public testing::Test
{
protected:
    PresetsTest()
    {
        std::string name = (fs::temp_directory_path() / "presets-test-XXXXXX").string();
        mFolder = mkdtemp(name.data());
        setenv("XDG_CONFIG_HOME", mFolder.c_str(), 1);
    }
    ~PresetsTest() override
    {
        unsetenv("XDG_CONFIG_HOME");
        fs::remove_all(mFolder);
    }

    fs::path Presets() const { return mFolder / "tarvo" / "presets"; }
    void Put(const char* inName, const std::string& inText) const
    {
        fs::create_directories(Presets());
        std::ofstream(Presets() / inName, std::ios::binary) << inText;
    }
    template <typename Act>
    static int ExitCodeOf(Act inAct)
    {
        try
        {
            inAct();
            return kExitDone;
        }
        catch (const Failure& failure)
        {
            return failure.mExitCode;
        }
    }
    static int LoadingExitsWith(const char* inName)
    {
        return ExitCodeOf([&] { (void)LoadPreset(inName); });
    }

    fs::path mFolder;
};

TEST_F(PresetsTest, WhatIsSavedIsLoadedAgain)
{
    SavePreset("podcast 96k", "FormatID:0:5;", false);
    EXPECT_EQ(LoadPreset("podcast 96k"), "FormatID:0:5;");
    fs::create_directory(Presets() / "folder");  // cannot be loaded
    EXPECT_EQ(PresetNames(), std::vector<std::string>{"podcast 96k"});
}

TEST_F(PresetsTest, AnExistingPresetIsReplacedOnlyOnDemand)
{
    SavePreset("one", "AB:0:1;", false);
    EXPECT_EQ(ExitCodeOf([] { SavePreset("one", "AB:0:2;", false); }), 4);
    EXPECT_EQ(LoadPreset("one"), "AB:0:1;");
    SavePreset("one", "AB:0:2;", true);
    EXPECT_EQ(LoadPreset("one"), "AB:0:2;");
    EXPECT_EQ(std::distance(fs::directory_iterator(Presets()), fs::directory_iterator()), 1);
}

TEST_F(PresetsTest, NoNameLeadsOutOfTheFolder)
{
    fs::create_directories(Presets());
    std::ofstream(mFolder / "outside") << "AB:0:1;";
    for (const char* name : {"../../outside", "..", ".", ".hidden", "a/b", "/etc/passwd", "a\nb",
                             "a:b", "a;b", "~", "$HOME", "caf\xC3\xA9", " a", "a ", "-rf"})
    {
        EXPECT_FALSE(IsPresetName(name)) << name;
        EXPECT_EQ(LoadingExitsWith(name), 2) << name;
        EXPECT_EQ(ExitCodeOf([&] { SavePreset(name, "AB:0:1;", true); }), 2) << name;
    }
    EXPECT_FALSE(IsPresetName(""));
    EXPECT_FALSE(IsPresetName(std::string(65, 'a')));
    EXPECT_FALSE(IsPresetName(std::string("a\0b", 3)));
    EXPECT_TRUE(IsPresetName("mp3_192.v2-new+"));
}

TEST_F(PresetsTest, AnUnknownNameTellsTheKnownOnes)
{
    Put("alpha", "AB:0:1;");
    Put("beta", "AB:0:1;");
    try
    {
        (void)LoadPreset("gamma");
        FAIL();
    }
    catch (const Failure& failure)
    {
        EXPECT_EQ(failure.mExitCode, 2);
        EXPECT_STREQ(failure.what(), "there is no preset \"gamma\"; there are: alpha, beta");
    }
}

TEST_F(PresetsTest, AFileThatIsNoSettingsTextIsRefused)
{
    Put("empty", "");
    Put("prose", "just some words\n");
    Put("long", std::string(70000, ':'));
    for (const char* name : {"empty", "prose", "long"})
        EXPECT_EQ(LoadingExitsWith(name), 3) << name;
}

TEST_F(PresetsTest, OnlyRegularFilesAreRead)
{
    fs::create_directories(Presets() / "folder");
    ASSERT_EQ(mkfifo((Presets() / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(LoadingExitsWith("folder"), 2);
    EXPECT_EQ(LoadingExitsWith("pipe"), 2);
}

TEST_F(PresetsTest, ALineEndOfAnEditorIsNoPartOfTheText)
{
    Put("edited", "AB:0:1;\r\n\n");
    EXPECT_EQ(LoadPreset("edited"), "AB:0:1;");
}

TEST_F(PresetsTest, ARelativeConfigFolderIsPassedOver)
{
    setenv("XDG_CONFIG_HOME", "relative", 1);
    const char* before = std::getenv("HOME");
    const std::string home = before ? before : "";
    setenv("HOME", mFolder.c_str(), 1);
    SavePreset("one", "AB:0:1;", false);
    EXPECT_TRUE(fs::exists(mFolder / ".config" / "tarvo" / "presets" / "one"));
    setenv("HOME", home.c_str(), 1);
    EXPECT_FALSE(fs::exists("relative"));
}

TEST_F(PresetsTest, AFolderThatCannotBeMadeIsAnOutputFailure)
{
    std::ofstream(mFolder / "tarvo") << "in the way";
    EXPECT_EQ(ExitCodeOf([] { SavePreset("one", "AB:0:1;", false); }), 4);
    EXPECT_TRUE(PresetNames().empty());
}

TEST(SettingsText, IsToldFromANameByItsColons)
{
    EXPECT_TRUE(IsSettingsText(""));
    EXPECT_TRUE(IsSettingsText("AB:0:1;"));
    EXPECT_FALSE(IsSettingsText("podcast"));
}

}  // namespace

}  // namespace host
