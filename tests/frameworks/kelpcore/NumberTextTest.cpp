// Numbers to text and back.
#include "kelpcore/utility/NumberText.h"
#include "kelpcore/utility/StringConversion.h"

#include <gtest/gtest.h>

#include <clocale>
#include <limits>
#include <string>

namespace
{

using kelpcore::utility::NumberFormatError;
using kelpcore::utility::UTF16to8;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::string Text(double inNumber, int inMinIntegerDigits = 1, int inMaxFractionDigits = 2,
                 int inMaxLength = 31)
{
    return UTF16to8(kelpcore::utility::NumberToString(inNumber, inMinIntegerDigits,
                                                      inMaxFractionDigits, 0, inMaxLength))
        .c_str();
}

template <typename Number>
Number Parse(const UTF16String& inText)
{
    Number number = 77;
    kelpcore::utility::StringToNumber(inText, number);
    return number;
}

struct Row
{
    double mNumber;
    const char* mText;
};

}  // namespace

TEST(NumberToString, DropsZerosAtTheEnd)
{
    for (const Row& row : {Row{128, "128"},
                           {64, "64"},
                           {1411.2, "1411.2"},
                           {44.099, "44.1"},
                           {44.1, "44.1"},
                           {0, "0"},
                           {0.5, "0.5"},
                           {100, "100"},
                           {-1, "-1"},
                           {1000000, "1000000"},
                           {22.05, "22.05"},
                           {0.01, "0.01"},
                           {10.10, "10.1"}})
        EXPECT_EQ(Text(row.mNumber), row.mText);
}

TEST(NumberToString, RoundsAHalfAwayFromZeroInDecimal)
{
    for (const Row& row : {Row{0.005, "0.01"},
                           {1.005, "1.01"},
                           {2.675, "2.68"},
                           {0.125, "0.13"},
                           {0.015, "0.02"},
                           {64.125, "64.13"},
                           {8.345, "8.35"},
                           {1.115, "1.12"},
                           {-0.005, "-0.01"},
                           {-2.675, "-2.68"},
                           {-0.125, "-0.13"},
                           {0.004999, "0"},
                           {0.0049999999999999996, "0"},
                           {1.0049999999, "1"},
                           {2.6749999999, "2.67"},
                           {0.135, "0.14"}})
        EXPECT_EQ(Text(row.mNumber), row.mText);
}

TEST(NumberToString, ACarryRunsThroughTheNines)
{
    for (const Row& row : {Row{0.995, "1"},
                           {9.995, "10"},
                           {99.999, "100"},
                           {999999.996, "1000000"},
                           {0.095, "0.1"},
                           {1.994, "1.99"},
                           {0.0095, "0.01"},
                           {-9.999, "-10"}})
        EXPECT_EQ(Text(row.mNumber), row.mText);
}

TEST(NumberToString, WhatRoundsToZeroHasNoSign)
{
    for (const double number : {-0.0, -0.004, -1e-300, 1e-300, 5e-324, -5e-324})
        EXPECT_EQ(Text(number), "0");
}

TEST(NumberToString, NumbersWithoutDigitsHaveNames)
{
    EXPECT_EQ(Text(std::numeric_limits<double>::quiet_NaN()), "nan");
    EXPECT_EQ(Text(-std::numeric_limits<double>::quiet_NaN()), "nan");
    EXPECT_EQ(Text(kInfinity), "inf");
    EXPECT_EQ(Text(-kInfinity), "-inf");
}

TEST(NumberToString, HugeNumbersAreDigitsUpToTheLength)
{
    EXPECT_EQ(Text(1e20), "100000000000000000000");
    EXPECT_EQ(Text(9007199254740993.0), "9007199254740992");
    EXPECT_EQ(Text(1e300), "1" + std::string(30, '0'));
    EXPECT_EQ(Text(-1e300), "-1" + std::string(29, '0'));
    EXPECT_EQ(Text(1e30).size(), 31u);
    EXPECT_EQ(Text(std::numeric_limits<double>::max()).substr(0, 17), "17976931348623157");
}

TEST(NumberToString, ALengthCutsAndLeavesNoBarePoint)
{
    EXPECT_EQ(Text(123.45, 1, 2, 5), "123.4");
    EXPECT_EQ(Text(123.45, 1, 2, 4), "123");
    EXPECT_EQ(Text(123.45, 1, 2, 3), "123");
    EXPECT_EQ(Text(123.45, 1, 2, 0), "");
    EXPECT_EQ(Text(123.45, 1, 2, -5), "");
}

TEST(NumberToString, FillsTheIntegerDigits)
{
    EXPECT_EQ(Text(7.5, 3), "007.5");
    EXPECT_EQ(Text(-7, 2), "-07");
    EXPECT_EQ(Text(0, 2), "00");
    EXPECT_EQ(Text(0.5, 0), ".5");
    EXPECT_EQ(Text(0, 0), "0");
    EXPECT_EQ(Text(1, 1000000, 0), std::string(30, '0') + "1");
}

TEST(NumberToString, KeepsAsManyFractionDigitsAsAsked)
{
    EXPECT_EQ(Text(2.5, 1, 0), "3");
    EXPECT_EQ(Text(-2.5, 1, 0), "-3");
    EXPECT_EQ(Text(0.5, 1, 0), "1");
    EXPECT_EQ(Text(0.4, 1, 0), "0");
    EXPECT_EQ(Text(0.000123, 1, 6), "0.000123");
    EXPECT_EQ(Text(0.1, 1, 30), "0.1");
    EXPECT_EQ(Text(2.5, 1, -1), "3");
}

TEST(NumberToString, TheLocaleHasNoSay)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    bool german = false;
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8"})
        german = german || std::setlocale(LC_ALL, name) != nullptr;
    const std::string text = Text(1411.2);
    std::setlocale(LC_ALL, before.c_str());
    if (!german)
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    EXPECT_EQ(text, "1411.2");
}

TEST(StringToNumber, ReadsWholeNumbers)
{
    EXPECT_EQ(Parse<std::int32_t>(u"0"), 0);
    EXPECT_EQ(Parse<std::int32_t>(u"-0"), 0);
    EXPECT_EQ(Parse<std::int32_t>(u"-12"), -12);
    EXPECT_EQ(Parse<std::int32_t>(u"007"), 7);
    EXPECT_EQ(Parse<std::uint32_t>(u"1635148593"), 1635148593u);
}

TEST(StringToNumber, ReachesTheEndsOfTheRange)
{
    EXPECT_EQ(Parse<std::int32_t>(u"2147483647"), 2147483647);
    EXPECT_EQ(Parse<std::int32_t>(u"-2147483648"), -2147483647 - 1);
    EXPECT_EQ(Parse<std::uint32_t>(u"4294967295"), 4294967295u);
}

TEST(StringToNumber, ThrowsBeyondTheRange)
{
    EXPECT_THROW(Parse<std::int32_t>(u"2147483648"), NumberFormatError);
    EXPECT_THROW(Parse<std::int32_t>(u"-2147483649"), NumberFormatError);
    EXPECT_THROW(Parse<std::uint32_t>(u"4294967296"), NumberFormatError);
    EXPECT_THROW(Parse<std::uint32_t>(u"-1"), NumberFormatError);
    EXPECT_THROW(Parse<std::uint32_t>(UTF16String(1000, u'9')), NumberFormatError);
}

TEST(StringToNumber, ThrowsForTextThatIsNotWhollyANumber)
{
    for (const char16_t* text : {u"", u"-", u"abc", u"12a", u"a12", u" 1", u"1 ", u"+1", u"1.5",
                                 u"--1", u"1-", u"\uFF11", u"0x10", u"1e3"})
    {
        EXPECT_THROW(Parse<std::int32_t>(text), NumberFormatError) << UTF16to8(text);
        EXPECT_THROW(Parse<std::uint32_t>(text), NumberFormatError) << UTF16to8(text);
    }
    EXPECT_THROW(Parse<std::int32_t>(UTF16String(u"1\0", 2)), NumberFormatError);
}

TEST(StringToNumber, LeavesTheTargetAloneWhenItThrows)
{
    std::uint32_t number = 77;
    EXPECT_THROW(kelpcore::utility::StringToNumber(u"12a", number), NumberFormatError);
    EXPECT_EQ(number, 77u);
}
