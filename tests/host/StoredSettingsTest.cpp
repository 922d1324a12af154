#include "host/StoredSettings.h"

#include <gtest/gtest.h>

namespace
{

using host::CodeText;
using host::SettingsNumber;

TEST(SettingsNumberTest, ReadsIntegerAttributesByName)
{
    const char* text = "Bitrate:0:64000;BitrateMode:0:3;FormatFlags:0:-2147483648;";
    EXPECT_EQ(SettingsNumber(text, "Bitrate"), 64000);
    EXPECT_EQ(SettingsNumber(text, "BitrateMode"), 3);
    EXPECT_EQ(SettingsNumber(text, "FormatFlags"), INT32_MIN);
}

TEST(SettingsNumberTest, GivesTheDefaultForWhatIsNotThere)
{
    EXPECT_EQ(SettingsNumber("", "Bitrate", 7), 7);
    EXPECT_EQ(SettingsNumber("Bitrate:0:5", "Bitrate", 7), 7);
    EXPECT_EQ(SettingsNumber("Bitrate:0:5x;", "Bitrate", 7), 7);
    EXPECT_EQ(SettingsNumber("Bitrate:0:;", "Bitrate", 7), 7);
    EXPECT_EQ(SettingsNumber("Bitrate:1:5;", "Bitrate", 7), 7);
    EXPECT_EQ(SettingsNumber("Bitrate:0:99999999999;", "Bitrate", 7), 7);
    EXPECT_EQ(SettingsNumber("XBitrate:0:5;", "Bitrate", 7), 7);
}

TEST(CodeTextTest, ShowsEachByteAsACharacter)
{
    EXPECT_EQ(CodeText(0x57415645), "WAVE");
    EXPECT_EQ(CodeText(0), "");
    EXPECT_EQ(CodeText(0x6D730011), std::string("ms\0\x11", 4));
    EXPECT_EQ(CodeText(0xA9616263),
              "\xC2\xA9"
              "abc");
}

TEST(CodeTextTest, PeopleGetANumberForWhatCannotBeShown)
{
    EXPECT_EQ(host::CodeForPeople(0x57415645), "WAVE");
    EXPECT_EQ(host::CodeForPeople(0x6D730011), "0x6D730011");
    EXPECT_EQ(host::CodeForPeople(0xA9616263), "0xA9616263");
    EXPECT_EQ(host::CodeForPeople(0), "");
}

}  // namespace
