// The desktop's base font.
#include "frameworks/kelpui/src/DesktopFont.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using kelpui::inkwright::BaseFont;

// "family size", "none" without a font.
std::string Describe(const std::optional<BaseFont>& inFont)
{
    if (!inFont)
        return "none";
    return std::string(inFont->mFamily) + ' ' +
           std::to_string(static_cast<int>(inFont->mPointSize * 10));
}

std::string GTK(const std::string& inFile)
{
    return Describe(kelpui::inkwright::ReadGTKFont(inFile));
}
std::string KDE(const std::string& inFile)
{
    return Describe(kelpui::inkwright::ReadKDEFont(inFile));
}

class ConfigFolder : public ::testing::Test
{
protected:
    ConfigFolder()
        : mFolder(fs::path(::testing::TempDir()) / ("SupplierTest" + std::to_string(::getpid())))
    {
        fs::create_directories(mFolder);
    }
    ~ConfigFolder() override { fs::remove_all(mFolder); }

    void Write(const char* inName, const char* inText)
    {
        fs::create_directories((mFolder / inName).parent_path());
        std::ofstream(mFolder / inName) << inText;
    }

    std::string Find() const
    {
        return Describe(kelpui::inkwright::FindDesktopFont(mFolder.c_str()));
    }

    const fs::path mFolder;
};

}  // namespace

TEST(DesktopFont, ReadsTheSettingsOfGTK)
{
    EXPECT_EQ(GTK("[Settings]\ngtk-theme-name=x\ngtk-font-name=Noto Sans 10.5\n"), "Noto Sans 105");
    EXPECT_EQ(GTK("[Settings]\r\n gtk-font-name = Cantarell 11 \r\n"), "Cantarell 110");
}

TEST(DesktopFont, ReadsTheSettingsOfKDE)
{
    EXPECT_EQ(KDE("[General]\nfixed=Hack,9\nfont=Noto Sans,12,-1,5,50,0,0,0,0,0\n"),
              "Noto Sans 120");
    EXPECT_EQ(KDE("[General]\nfont=Noto Sans,12"), "Noto Sans 120");
}

TEST(DesktopFont, OnlyItsOwnGroupCounts)
{
    EXPECT_EQ(GTK("gtk-font-name=A 9\n[Other]\ngtk-font-name=B 9\n"), "none");
    EXPECT_EQ(KDE("[WM]\nfont=Noto Sans,12\n[General]\n"), "none");
}

TEST(DesktopFont, WhatIsNoFontIsNone)
{
    for (const char* value : {"", "Sans", "10", " 10", "Sans x", "Sans 0", "Sans -4", "Sans 1000",
                              "Sans nan", "Sans 10x"})
        EXPECT_EQ(GTK(std::string("[Settings]\ngtk-font-name=") + value), "none") << value;
    for (const char* value : {"", "Sans", ",10", "Sans,", "Sans,-1", "Sans,inf"})
        EXPECT_EQ(KDE(std::string("[General]\nfont=") + value), "none") << value;
}

TEST_F(ConfigFolder, TheNewerSettingsComeFirst)
{
    EXPECT_EQ(Find(), "Sans 100");
    Write("kdeglobals", "[General]\nfont=K,9\n");
    EXPECT_EQ(Find(), "K 90");
    Write("gtk-3.0/settings.ini", "[Settings]\ngtk-font-name=Three 9\n");
    EXPECT_EQ(Find(), "Three 90");
    Write("gtk-4.0/settings.ini", "[Settings]\ngtk-font-name=Four 9\n");
    EXPECT_EQ(Find(), "Four 90");
    Write("gtk-4.0/settings.ini", "[Settings]\n");
    EXPECT_EQ(Find(), "Three 90");
}

TEST_F(ConfigFolder, TheSupplierTellsTheFontOfTheUsersFolder)
{
    Write("gtk-3.0/settings.ini", "[Settings]\ngtk-font-name=Mine 12\n");
    ::setenv("XDG_CONFIG_HOME", mFolder.c_str(), 1);
    const std::unique_ptr<kelpui::inkwright::SupplierInterface> supplier(
        kelpui::inkwright::NewOSSupplier());
    ::setenv("XDG_CONFIG_HOME", "relative", 1);
    ::setenv("HOME", mFolder.c_str(), 1);
    const std::unique_ptr<kelpui::inkwright::SupplierInterface> other(
        kelpui::inkwright::NewOSSupplier());
    EXPECT_EQ(Describe(supplier->GetBaseFont()), "Mine 120");
    EXPECT_EQ(Describe(other->GetBaseFont()), "Sans 100");
}

TEST(ConfigFolderOfTheUser, IsTheVariableElseBelowHome)
{
    ::setenv("XDG_CONFIG_HOME", "/config", 1);
    ::setenv("HOME", "/people/somebody", 1);
    EXPECT_EQ(kelpui::inkwright::ConfigFolder(), "/config");
    ::unsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(kelpui::inkwright::ConfigFolder(), "/people/somebody/.config");
    ::unsetenv("HOME");
    EXPECT_EQ(kelpui::inkwright::ConfigFolder(), "");
}
