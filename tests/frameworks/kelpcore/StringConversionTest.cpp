// Between ASCII, UTF-8, UTF-16 and the platform's strings.
#include "kelpcore/utility/AutoCFRef.h"
#include "kelpcore/utility/StringConversion.h"

#include <gtest/gtest.h>

namespace
{

using kelpcore::utility::AsciiToUTF16;
using kelpcore::utility::MACtoKELP;
using kelpcore::utility::UTF16to8;
using kelpcore::utility::UTF8to16;
using StringRef = kelpcore::utility::AutoCFRef<CFStringRef>;

StringRef NewString(const char* inText)
{
    return StringRef(CFStringCreateWithCString(kCFAllocatorDefault, inText, kCFStringEncodingUTF8));
}

struct Pair
{
    const char* mUTF8;
    const char16_t* mUTF16;
};

// The first and last characters of every length.
constexpr Pair kPairs[] = {
    {"", u""},
    {"AIFF", u"AIFF"},
    {"\x7F\xC2\x80", u"\u007F\u0080"},
    {"\xDF\xBF\xE0\xA0\x80", u"\u07FF\u0800"},
    {"\xED\x9F\xBF\xEE\x80\x80", u"\uD7FF\uE000"},
    {"\xEF\xBF\xBF\xF0\x90\x80\x80", u"\uFFFF\U00010000"},
    {"\xF4\x8F\xBF\xBF", u"\U0010FFFF"},
    {"a\xF0\x9D\x84\x9E"
     "b",
     u"a\U0001D11Eb"},
};

}  // namespace

TEST(StringConversion, EveryCharacterGoesThereAndBack)
{
    for (const Pair& pair : kPairs)
    {
        EXPECT_EQ(UTF8to16(pair.mUTF8), pair.mUTF16) << pair.mUTF8;
        EXPECT_EQ(UTF16to8(pair.mUTF16), pair.mUTF8) << pair.mUTF8;
    }
}

TEST(StringConversion, ANulIsACharacter)
{
    EXPECT_EQ(UTF8to16(std::string_view("a\0b", 3)), UTF16String(u"a\0b", 3));
    EXPECT_EQ(UTF16to8(std::u16string_view(u"a\0b", 3)), UTF8String("a\0b", 3));
}

TEST(StringConversion, InvalidUTF8IsReplacedWhereItStands)
{
    constexpr Pair kInvalid[] = {
        {"a\x80z", u"a\uFFFDz"},                            // a continuation first
        {"a\xC3", u"a\uFFFD"},                              // cut off
        {"\xE2\x82z", u"\uFFFDz"},                          // one start, one replacement
        {"\xF0\x9D\x84", u"\uFFFD"},                        // cut off
        {"\xC0\xAF", u"\uFFFD\uFFFD"},                      // longer than needed
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},            // a surrogate
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond the last character
        {"\xFE\xFFz", u"\uFFFD\uFFFDz"},
        {"\xC3\xC3\xA9", u"\uFFFD\u00E9"},
    };
    for (const Pair& pair : kInvalid)
        EXPECT_EQ(UTF8to16(pair.mUTF8), pair.mUTF16) << ::testing::PrintToString(pair.mUTF8);
}

TEST(StringConversion, ALoneSurrogateIsReplacedWhereItStands)
{
    const auto replaced = [](std::initializer_list<char16_t> inUnits)
    { return UTF16to8(std::u16string_view(inUnits.begin(), inUnits.size())); };
    EXPECT_EQ(replaced({0xD834}), "\xEF\xBF\xBD");
    EXPECT_EQ(replaced({0xDD1E, u'a'}),
              "\xEF\xBF\xBD"
              "a");
    EXPECT_EQ(replaced({0xD834, u'a'}),
              "\xEF\xBF\xBD"
              "a");
    EXPECT_EQ(replaced({0xD834, 0xD834, 0xDD1E}), "\xEF\xBF\xBD\xF0\x9D\x84\x9E");
}

TEST(StringConversion, AsciiIsWidened)
{
    EXPECT_EQ(AsciiToUTF16("FLAC"), u"FLAC");
    EXPECT_EQ(AsciiToUTF16(""), u"");
    EXPECT_EQ(AsciiToUTF16("a\x80\xFFz"), u"a\uFFFD\uFFFDz");
}

TEST(StringConversion, PlatformStringsKeepTheirTextAndTheirOwner)
{
    const StringRef string = NewString("caf\xC3\xA9 \xF0\x9D\x84\x9E");
    EXPECT_EQ(MACtoKELP(string.Get()), u"caf\u00E9 \U0001D11E");
    EXPECT_EQ(MACtoKELP(string.Get(), 0x8000100), "caf\xC3\xA9 \xF0\x9D\x84\x9E");
    EXPECT_EQ(CFGetRetainCount(string.Get()), 1);
}

TEST(StringConversion, WhatAnEncodingCannotExpressIsEmpty)
{
    const StringRef string = NewString("\xC3\xA9");
    EXPECT_EQ(MACtoKELP(string.Get(), kCFStringEncodingASCII), "");
    EXPECT_EQ(MACtoKELP(string.Get(), 0x7777), "");
    EXPECT_EQ(MACtoKELP(string.Get(), kCFStringEncodingISOLatin1), "\xE9");
    EXPECT_EQ(MACtoKELP(string.Get(), kCFStringEncodingUTF16), "");
}

TEST(StringConversion, NullAndEmptyPlatformStringsAreEmpty)
{
    const StringRef empty = NewString("");
    EXPECT_EQ(MACtoKELP(nullptr), u"");
    EXPECT_EQ(MACtoKELP(nullptr, 0x8000100), "");
    EXPECT_EQ(MACtoKELP(empty.Get()), u"");
    EXPECT_EQ(MACtoKELP(empty.Get(), 0x8000100), "");
}

TEST(AutoCFRef, ReleasesOnceAndRetainsForCopies)
{
    const CFStringRef string = CFStringCreateWithCString(nullptr, "a", kCFStringEncodingUTF8);
    CFRetain(string);
    {
        StringRef owner(string);
        EXPECT_EQ(CFGetRetainCount(string), 2);
        StringRef copy(owner);
        EXPECT_EQ(CFGetRetainCount(string), 3);
        StringRef moved(std::move(owner));
        EXPECT_EQ(CFGetRetainCount(string), 3);
        EXPECT_FALSE(owner);
        copy.Reset();
        EXPECT_EQ(CFGetRetainCount(string), 2);
        moved.Reset(moved.Get());
        EXPECT_EQ(CFGetRetainCount(string), 2);
    }
    EXPECT_EQ(CFGetRetainCount(string), 1);
    CFRelease(string);
}

TEST(AutoCFRef, ReceivingLetsGoOfWhatWasHeld)
{
    const CFStringRef first = CFStringCreateWithCString(nullptr, "a", kCFStringEncodingUTF8);
    CFRetain(first);
    StringRef owner(first);
    *owner.Receive() = CFStringCreateWithCString(nullptr, "b", kCFStringEncodingUTF8);
    EXPECT_EQ(CFGetRetainCount(first), 1);
    EXPECT_EQ(MACtoKELP(owner.Get()), u"b");
    CFRelease(first);
}
