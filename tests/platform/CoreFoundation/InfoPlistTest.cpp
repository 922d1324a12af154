// Reading a bundle's description, a good one and hostile ones.
#include "platform/CoreFoundation/src/InfoPlist.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace
{

std::string Plist(const std::string& inEntries)
{
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
)" + inEntries +
           "</dict></plist>";
}

std::string FindIn(const std::string& inXML)
{
    return cf::FindPlistString(inXML, "ID");
}

}  // namespace

TEST(InfoPlist, FindsTheStringBehindTheKey)
{
    EXPECT_EQ(FindIn(Plist("<key>A</key><string>1</string> <key>ID</key>\n<string>com.x</string>")),
              "com.x");
}

TEST(InfoPlist, ResolvesTheEntitiesOfXML)
{
    EXPECT_EQ(FindIn(Plist("<key>ID</key><string>a&amp;b&#233;</string>")), "a&b\xC3\xA9");
}

TEST(InfoPlist, TheFirstOfTwoKeysCounts)
{
    EXPECT_EQ(FindIn(Plist("<key>ID</key><string>one</string><key>ID</key><string>two</string>")),
              "one");
}

TEST(InfoPlist, OnlyKeysOfTheOutermostDictionaryCount)
{
    EXPECT_EQ(FindIn(Plist("<key>Sub</key><dict><key>ID</key><string>inner</string></dict>"
                           "<key>ID</key><string>outer</string>")),
              "outer");
    EXPECT_EQ(FindIn(Plist("<key>Sub</key><dict><key>ID</key><string>inner</string></dict>")), "");
}

TEST(InfoPlist, AValueOfAnotherTypeIsNoString)
{
    EXPECT_EQ(FindIn(Plist("<key>ID</key><integer>7</integer>")), "");
    EXPECT_EQ(FindIn(Plist("<key>ID</key><true/><string>stray</string>")), "");
    EXPECT_EQ(FindIn(Plist("<key>ID</key><array><string>x</string></array>")), "");
}

TEST(InfoPlist, AMissingKeyAndAnEmptyTextGiveNothing)
{
    EXPECT_EQ(FindIn(Plist("<key>IDs</key><string>x</string>")), "");
    EXPECT_EQ(FindIn(""), "");
}

TEST(InfoPlist, WhatIsNotWellFormedHasNoKeys)
{
    EXPECT_EQ(FindIn("<plist><dict><key>ID</key><string>x</string>"), "");
    EXPECT_EQ(FindIn("<plist><dict><key>ID</key><string>x</string></dict></plist>junk"), "");
    EXPECT_EQ(FindIn("bplist00"), "");
    EXPECT_EQ(FindIn(std::string("\0\xFF\xFE", 3)), "");
}

TEST(InfoPlist, DeclaredEntitiesAreRefused)
{
    EXPECT_EQ(FindIn("<!DOCTYPE plist [<!ENTITY e \"com.x\">]>"
                     "<plist><dict><key>ID</key><string>&e;</string></dict></plist>"),
              "");
    EXPECT_EQ(FindIn("<!DOCTYPE plist [<!ENTITY e SYSTEM \"file:///etc/hostname\">]>"
                     "<plist><dict><key>ID</key><string>x</string></dict></plist>"),
              "");
}

TEST(InfoPlist, DeepNestingIsNoTrouble)
{
    std::string deep;
    for (int depth = 0; depth < 50000; ++depth)
        deep += "<a>";
    for (int depth = 0; depth < 50000; ++depth)
        deep += "</a>";
    EXPECT_EQ(FindIn(Plist(deep + "<key>ID</key><string>x</string>")), "x");
}

TEST(BundleIdentifier, ReadsRegularFilesUpToOneMebibyte)
{
    const std::filesystem::path folder = std::filesystem::path(::testing::TempDir()) /
                                         ("InfoPlistTest" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder);
    const std::string entries = "<key>CFBundleIdentifier</key><string>com.x</string>";
    const std::string text = Plist(entries);
    const auto write = [&](const char* inName, std::size_t inBytes)
    {
        std::ofstream file(folder / inName, std::ios::binary);
        file << text << std::string(inBytes - text.size(), '\n');
        return (folder / inName).string();
    };
    const std::string fitting = write("fitting", 1u << 20);
    const std::string larger = write("larger", (1u << 20) + 1);
    const std::string fifo = (folder / "fifo").string();
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);

    EXPECT_EQ(cf::ReadBundleIdentifier(fitting), "com.x");
    EXPECT_EQ(cf::ReadBundleIdentifier(larger), "");
    EXPECT_EQ(cf::ReadBundleIdentifier(fifo), "");
    EXPECT_EQ(cf::ReadBundleIdentifier(folder.string()), "");
    EXPECT_EQ(cf::ReadBundleIdentifier((folder / "missing").string()), "");
    std::filesystem::remove_all(folder);
}
