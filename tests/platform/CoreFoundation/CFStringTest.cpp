// Strings in every encoding.
#include <CoreFoundation/CoreFoundation.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace
{

struct Release
{
    void operator()(CFStringRef inString) const { CFRelease(inString); }
};
using StringPtr = std::unique_ptr<const __CFString, Release>;

StringPtr FromBytes(const std::string& inBytes, CFStringEncoding inEncoding,
                    bool inExternal = false)
{
    return StringPtr(
        CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(inBytes.data()),
                                static_cast<CFIndex>(inBytes.size()), inEncoding, inExternal));
}

StringPtr FromUnits(const std::u16string& inUnits)
{
    return StringPtr(CFStringCreateWithCharacters(nullptr,
                                                  reinterpret_cast<const UniChar*>(inUnits.data()),
                                                  static_cast<CFIndex>(inUnits.size())));
}

std::u16string Units(const StringPtr& inString)
{
    std::u16string units(static_cast<std::size_t>(CFStringGetLength(inString.get())), u'\0');
    CFStringGetCharacters(inString.get(), {0, CFStringGetLength(inString.get())},
                          reinterpret_cast<UniChar*>(units.data()));
    return units;
}

// "none" for what the encoding cannot express.
std::string Bytes(const StringPtr& inString, CFStringEncoding inEncoding)
{
    char buffer[64];
    return CFStringGetCString(inString.get(), buffer, sizeof buffer, inEncoding) ? buffer : "none";
}

// Encodings that a terminated text of bytes cannot carry.
bool IsWide(CFStringEncoding inEncoding)
{
    return inEncoding == kCFStringEncodingUTF16 || inEncoding == kCFStringEncodingUTF16BE ||
           inEncoding == kCFStringEncodingUTF16LE;
}

struct Sample
{
    CFStringEncoding mEncoding;
    std::string mBytes;
    std::u16string mUnits;
};

const std::vector<Sample> kValid = {
    {kCFStringEncodingASCII, "AIFF", u"AIFF"},
    {kCFStringEncodingASCII, "", u""},
    {kCFStringEncodingISOLatin1, "\xE9\x80", u"\u00E9\u0080"},
    {kCFStringEncodingMacRoman, "\x8E\xDB\xCA\xFF\xF0", u"\u00E9\u20AC\u00A0\u02C7\uF8FF"},
    {kCFStringEncodingUTF8, "\xC3\xA9", u"\u00E9"},
    {kCFStringEncodingUTF8, "\xF0\x9D\x84\x9E", u"\U0001D11E"},
    {kCFStringEncodingUTF8, "\xEF\xBF\xBF\xF4\x8F\xBF\xBF", u"\uFFFF\U0010FFFF"},
    {kCFStringEncodingUTF8, "\xEE\x80\x80\xED\x9F\xBF\xE0\xA0\x80", u"\uE000\uD7FF\u0800"},
    {kCFStringEncodingUTF16, std::string("\xE9\x00", 2), u"\u00E9"},
    {kCFStringEncodingUTF16BE, std::string("\x00\xE9\xD8\x34\xDD\x1E", 6), u"\u00E9\U0001D11E"},
    {kCFStringEncodingUTF16LE, std::string("\xE9\x00\x34\xD8\x1E\xDD", 6), u"\u00E9\U0001D11E"},
};

const std::vector<Sample> kInvalid = {
    {kCFStringEncodingASCII, "\x80", u""},
    {kCFStringEncodingUTF8, "\x80", u""},              // a continuation first
    {kCFStringEncodingUTF8, "\xC3", u""},              // cut off
    {kCFStringEncodingUTF8, "\xE2\x82", u""},          // cut off
    {kCFStringEncodingUTF8, "\xC3\x28", u""},          // no continuation
    {kCFStringEncodingUTF8, "\xC0\xAF", u""},          // longer than needed
    {kCFStringEncodingUTF8, "\xE0\x9F\xBF", u""},      // longer than needed
    {kCFStringEncodingUTF8, "\xF0\x8F\xBF\xBF", u""},  // longer than needed
    {kCFStringEncodingUTF8, "\xED\xA0\x80", u""},      // a surrogate
    {kCFStringEncodingUTF8, "\xF4\x90\x80\x80", u""},  // beyond the last character
    {kCFStringEncodingUTF8, "\xFF", u""},
    {kCFStringEncodingUTF16LE, "\x41", u""},                      // half a unit
    {kCFStringEncodingUTF16BE, std::string("\xD8\x34", 2), u""},  // half a pair
    {kCFStringEncodingUTF16BE, std::string("\xDD\x1E", 2), u""},  // the wrong half
    {kCFStringEncodingUTF16BE, std::string("\xD8\x34\x00\x41", 4), u""},
    {0x0B01, "A", u""},  // an encoding that is not known here
};

}  // namespace

TEST(CFString, DecodesEveryEncoding)
{
    for (const Sample& sample : kValid)
    {
        const StringPtr string = FromBytes(sample.mBytes, sample.mEncoding);
        ASSERT_NE(string, nullptr) << std::hex << sample.mEncoding;
        EXPECT_EQ(Units(string), sample.mUnits) << std::hex << sample.mEncoding;
    }
}

TEST(CFString, EncodesWhatItDecodes)
{
    for (const Sample& sample : kValid)
    {
        const std::string expected = IsWide(sample.mEncoding) ? "none" : sample.mBytes;
        EXPECT_EQ(Bytes(FromUnits(sample.mUnits), sample.mEncoding), expected)
            << std::hex << sample.mEncoding;
    }
}

TEST(CFString, InvalidBytesGiveNull)
{
    for (const Sample& sample : kInvalid)
        EXPECT_EQ(FromBytes(sample.mBytes, sample.mEncoding), nullptr)
            << std::hex << sample.mEncoding << ' ' << ::testing::PrintToString(sample.mBytes);
}

TEST(CFString, AnEmptyStringIsAnOrdinaryObject)
{
    const CFStringRef string = CFStringCreateWithCString(nullptr, "", kCFStringEncodingUTF8);
    ASSERT_NE(string, nullptr);
    EXPECT_EQ(CFStringGetLength(string), 0);
    EXPECT_EQ(CFGetRetainCount(string), 1);
    CFRelease(string);
}

TEST(CFString, TakesTextUpToItsTerminator)
{
    const StringPtr string(
        CFStringCreateWithCString(nullptr, "MPEG\0Layer", kCFStringEncodingUTF8));
    EXPECT_EQ(Units(string), u"MPEG");
}

TEST(CFString, ANullTextAndAWideEncodingGiveNull)
{
    EXPECT_EQ(CFStringCreateWithCString(nullptr, nullptr, kCFStringEncodingUTF8), nullptr);
    EXPECT_EQ(CFStringCreateWithCString(nullptr, "a", kCFStringEncodingUTF16), nullptr);
    EXPECT_EQ(CFStringCreateWithBytes(nullptr, nullptr, 1, kCFStringEncodingUTF8, false), nullptr);
    EXPECT_EQ(CFStringCreateWithCharacters(nullptr, nullptr, 1), nullptr);
    EXPECT_EQ(CFStringCreateWithCharacters(nullptr, nullptr, -1), nullptr);
}

TEST(CFString, AByteOrderMarkCountsOnlyInTextFromOutside)
{
    const std::string little("\xFF\xFE\x41\x00", 4);
    const std::string big("\xFE\xFF\x00\x41", 4);
    const std::string unmarked("\x00\x41", 2);
    EXPECT_EQ(Units(FromBytes(little, kCFStringEncodingUTF16, true)), u"A");
    EXPECT_EQ(Units(FromBytes(big, kCFStringEncodingUTF16, true)), u"A");
    EXPECT_EQ(Units(FromBytes(unmarked, kCFStringEncodingUTF16, true)), u"A");
    EXPECT_EQ(Units(FromBytes(little, kCFStringEncodingUTF16, false)), u"\uFEFFA");
    EXPECT_EQ(Units(FromBytes("\xEF\xBB\xBF\x41", kCFStringEncodingUTF8, true)), u"A");
    EXPECT_EQ(Units(FromBytes("\xEF\xBB\xBF\x41", kCFStringEncodingUTF8, false)), u"\uFEFFA");
}

TEST(CFString, WhatAnEncodingCannotExpressFails)
{
    const StringPtr euro = FromUnits(u"\u20AC");
    EXPECT_EQ(Bytes(euro, kCFStringEncodingASCII), "none");
    EXPECT_EQ(Bytes(euro, kCFStringEncodingISOLatin1), "none");
    EXPECT_EQ(Bytes(euro, kCFStringEncodingMacRoman), "\xDB");
    EXPECT_EQ(Bytes(FromUnits(u"\u4E2D"), kCFStringEncodingMacRoman), "none");
    EXPECT_EQ(Bytes(FromUnits({0xD834}), kCFStringEncodingUTF8), "none");
    EXPECT_EQ(Bytes(FromUnits({0xD834, u'A'}), kCFStringEncodingUTF8), "none");
    EXPECT_EQ(Bytes(FromUnits({0xDD1E}), kCFStringEncodingUTF8), "none");
    EXPECT_EQ(Bytes(euro, kCFStringEncodingUTF16), "none");
    EXPECT_EQ(Bytes(euro, 0x0B01), "none");
}

TEST(CFString, ABufferNeedsRoomForTheTerminator)
{
    const StringPtr string = FromUnits(u"\u00E9");
    char buffer[4] = "zzz";
    EXPECT_FALSE(CFStringGetCString(string.get(), buffer, 2, kCFStringEncodingUTF8));
    EXPECT_FALSE(CFStringGetCString(string.get(), buffer, 0, kCFStringEncodingUTF8));
    EXPECT_FALSE(CFStringGetCString(string.get(), buffer, -1, kCFStringEncodingUTF8));
    EXPECT_STREQ(buffer, "zzz");
    EXPECT_TRUE(CFStringGetCString(string.get(), buffer, 3, kCFStringEncodingUTF8));
    EXPECT_STREQ(buffer, "\xC3\xA9");
}

TEST(CFString, GivesARangeOfUnits)
{
    const StringPtr string = FromUnits(u"abcdef");
    UniChar units[3] = {'z', 'z', 'z'};
    CFStringGetCharacters(string.get(), {4, 2}, units);
    EXPECT_EQ(units[0], u'e');
    EXPECT_EQ(units[1], u'f');
    EXPECT_EQ(units[2], u'z');
}

TEST(CFString, TellsTheMostBytesALengthCanTake)
{
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(10, kCFStringEncodingUTF8), 30);
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(10, kCFStringEncodingUTF16), 20);
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(10, kCFStringEncodingMacRoman), 10);
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(0, kCFStringEncodingUTF8), 0);
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(10, 0x0B01), -1);
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(-1, kCFStringEncodingUTF8), -1);
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(0x7FFFFFFFFFFFFFFF, kCFStringEncodingUTF8), -1);
}

TEST(CFString, TranslatesTheOtherNumberingOfEncodings)
{
    EXPECT_EQ(CFStringConvertNSStringEncodingToEncoding(1), 0x0600u);
    EXPECT_EQ(CFStringConvertNSStringEncodingToEncoding(4), 0x08000100u);
    EXPECT_EQ(CFStringConvertNSStringEncodingToEncoding(5), 0x0201u);
    EXPECT_EQ(CFStringConvertNSStringEncodingToEncoding(10), 0x0100u);
    EXPECT_EQ(CFStringConvertNSStringEncodingToEncoding(30), 0u);
    EXPECT_EQ(CFStringConvertNSStringEncodingToEncoding(0x90000100), 0x10000100u);
    EXPECT_EQ(CFStringConvertNSStringEncodingToEncoding(0x94000100), 0x14000100u);
    EXPECT_EQ(CFStringConvertNSStringEncodingToEncoding(12345), 0xFFFFFFFFu);
}
