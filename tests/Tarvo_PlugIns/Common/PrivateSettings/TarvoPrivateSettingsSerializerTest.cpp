#include "Tarvo_PlugIns/Common/PrivateSettings/TarvoPrivateSettingsSerializer.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{

using tarvo::TarvoPrivateSettingsSerializer;

std::u16string Text(const TarvoPrivateSettingsSerializer& inStore)
{
    return std::u16string(std::u16string_view(inStore.GetSerializedString()));
}

TarvoPrivateSettingsSerializer Read(const UTF16String& inText)
{
    TarvoPrivateSettingsSerializer store;
    store.Initialize(inText);
    return store;
}

// What stays of a text after reading, written again.
std::u16string Kept(const UTF16String& inText)
{
    return Text(Read(inText));
}

TEST(SettingsText, OfAnEmptyStoreIsEmpty)
{
    EXPECT_EQ(Text({}), u"");
}

TEST(SettingsText, HasAllIntegersBeforeAllStrings)
{
    TarvoPrivateSettingsSerializer store;
    store.AddAttribute(u"AA", UTF16String(u"first by key"));
    store.AddAttribute(u"ZZ", 1);
    EXPECT_EQ(Text(store), u"ZZ:0:1;AA:1:first by key;");
}

TEST(SettingsText, IsInKeyOrderByUnsignedUnits)
{
    TarvoPrivateSettingsSerializer store;
    for (const char16_t* key : {u"b", u"\uFFEE", u"ab", u"abc", u"B", u"\u8000", u""})
        store.AddAttribute(key, 1);
    EXPECT_EQ(Text(store), u":0:1;B:0:1;ab:0:1;abc:0:1;b:0:1;\u8000:0:1;\uFFEE:0:1;");
}

TEST(SettingsText, HasNumbersInPlainDecimal)
{
    TarvoPrivateSettingsSerializer store;
    store.AddAttribute(u"a", 0);
    store.AddAttribute(u"b", -1);
    store.AddAttribute(u"c", std::numeric_limits<int>::max());
    store.AddAttribute(u"d", std::numeric_limits<int>::min());
    EXPECT_EQ(Text(store), u"a:0:0;b:0:-1;c:0:2147483647;d:0:-2147483648;");
}

TEST(SettingsText, EscapesNothing)
{
    TarvoPrivateSettingsSerializer store;
    store.AddAttribute(u"a:b", 1);
    store.AddAttribute(u"cd", UTF16String(u"x;y"));
    EXPECT_EQ(Text(store), u"a:b:0:1;cd:1:x;y;");
}

TEST(SettingsStore, KeepsTheFirstValueOfAKey)
{
    TarvoPrivateSettingsSerializer store;
    store.AddAttribute(u"AB", 1);
    store.AddAttribute(u"AB", 2);
    store.AddAttribute(u"CD", UTF16String(u"one"));
    store.AddAttribute(u"CD", UTF16String(u"two"));
    EXPECT_EQ(store.GetAttribute(u"AB", 9), 1);
    EXPECT_EQ(store.GetAttribute(u"CD"), u"one");
}

TEST(SettingsStore, AKeyMayStandForANumberAndAText)
{
    TarvoPrivateSettingsSerializer store;
    store.AddAttribute(u"AB", 1);
    store.AddAttribute(u"AB", UTF16String(u"one"));
    EXPECT_EQ(Text(store), u"AB:0:1;AB:1:one;");
    EXPECT_EQ(store.GetAttribute(u"AB", 9), 1);
    EXPECT_EQ(store.GetAttribute(u"AB"), u"one");
}

TEST(SettingsStore, AnAbsentAttributeIsTheDefault)
{
    const TarvoPrivateSettingsSerializer store;
    int value = 42;
    EXPECT_EQ(store.GetAttribute(u"AB"), u"");
    EXPECT_EQ(store.GetAttribute(u"AB", -7), -7);
    EXPECT_FALSE(store.QueryAttribute(u"AB", value));
    EXPECT_EQ(value, 42);
}

TEST(SettingsStore, APresentAttributeIsToldByQuery)
{
    TarvoPrivateSettingsSerializer store;
    store.AddAttribute(u"AB", -5);
    int value = 42;
    EXPECT_TRUE(store.QueryAttribute(u"AB", value));
    EXPECT_EQ(value, -5);
    EXPECT_FALSE(store.QueryAttribute(u"A", value));
}

TEST(SettingsStore, SerializeEmptiesItsTextFirst)
{
    UTF16String text = u"old";
    TarvoPrivateSettingsSerializer::Serialize(
        TarvoPrivateSettingsSerializer::StringAttributes{{u"a", u"b"}}, text);
    EXPECT_EQ(text, u"a:1:b;");
    TarvoPrivateSettingsSerializer::Serialize(TarvoPrivateSettingsSerializer::IntAttributes{},
                                              text);
    EXPECT_EQ(text, u"");
}

struct ReadingRow
{
    const char16_t* mText;
    const char16_t* mKept;
    const char* mWhy;
};

TEST(SettingsReader, KeepsWhatItCanReadAndSkipsTheRest)
{
    const ReadingRow rows[] = {
        {u"", u"", "nothing"},
        {u"AB:0:1;", u"AB:0:1;", "an integer"},
        {u"AB:0:-5;", u"AB:0:-5;", "a negative integer"},
        {u"AB:1:hello;", u"AB:1:hello;", "a string"},
        {u"AB:0:1;AB:0:2;", u"AB:0:1;", "the first value stays"},
        {u"AB:0:1;AB:1:x;", u"AB:0:1;AB:1:x;", "a number and a text by one key"},
        {u"AB:0:12x;CD:0:1;", u"CD:0:1;", "no number, the next entry reads"},
        {u"AB:0:;CD:0:1;", u"CD:0:1;", "no value, the next entry reads"},
        {u"AB:1:;CD:0:1;", u"CD:0:1;", "no string value either"},
        {u"AB:0:--;CD:0:1;", u"CD:0:1;", "signs only"},
        {u"AB:0:1-2;CD:0:1;", u"CD:0:1;", "a sign inside"},
        {u"AB:0:2147483648;CD:0:1;", u"CD:0:1;", "a number beyond 32 bits"},
        {u"AB:0:2147483647;", u"AB:0:2147483647;", "the largest number"},
        {u"AB:0:-2147483648;", u"AB:0:-2147483648;", "the lowest number"},
        {u"AB:0: 5;CD:0:1;", u"CD:0:1;", "a blank is no number"},
        {u"AB:0:+5;CD:0:1;", u"CD:0:1;", "nor is a plus"},
        {u"AB:0:007;", u"AB:0:7;", "leading zeros"},
        {u"A:0:5;CD:0:1;", u"CD:0:1;", "a key of one unit"},
        {u"CD:0:1;A:0:5;", u"CD:0:1;", "a key of one unit behind another entry"},
        {u":0:5;", u":0:5;", "an empty key at the very start"},
        {u":1:x;", u":1:x;", "an empty key of a string at the very start"},
        {u"CD:0:1;:0:5;", u"CD:0:1;", "an empty key anywhere else"},
        {u"AB:7:hello;", u"AB:1:hello;", "any type but 0 is a string"},
        {u"AB:-1:hello;", u"AB:1:hello;", "a negative one too"},
        {u"AB:00:5;", u"AB:0:5;", "0 by another spelling"},
        {u"AB:x:5;CD:0:1;", u"CD:0:1;", "a type that is no number"},
        {u"AB:1-:5;CD:0:1;", u"CD:0:1;", "a type of number units that is no number"},
        {u"AB:99999999999:5;CD:0:1;", u"CD:0:1;", "a type beyond 32 bits"},
        {u"AB:0:5", u"", "no semicolon"},
        {u"AB:0:5;CD:0:6", u"AB:0:5;", "the last entry is not complete"},
        {u"AB:0:5;CD:0", u"AB:0:5;", "the last entry has one colon"},
        {u"AB:0:5;CD;", u"AB:0:5;", "the last entry has no colon"},
        {u"AB", u"", "no colon"},
        {u"AB:", u"", "one colon"},
        {u"AB:;", u"", "one colon and a semicolon"},
        {u"::;", u"", "marks only"},
        {u"AB:1:x:y;", u"AB:1:x:y;", "a colon in a string value"},
        {u"AB:1:x;y;CD:0:1;", u"y;CD:0:1;AB:1:x;", "the rest of a cut value starts the next key"},
        {u"AB;CD:0:1;", u"AB;CD:0:1;", "a semicolon in a key"},
        {u"AB:1;CD:0:1;", u"", "a missing mark takes the next entry along"},
        {u"\u00E4\u4E2D:1:\xD83D\xDE00;", u"\u00E4\u4E2D:1:\xD83D\xDE00;", "any other unit"},
    };
    for (const ReadingRow& row : rows)
        EXPECT_EQ(Kept(row.mText), row.mKept) << row.mWhy;
}

TEST(SettingsReader, BitPatternsComeBack)
{
    TarvoPrivateSettingsSerializer store;
    store.AddAttribute(u"AB", static_cast<int>(0xFFFFFFFFu));
    EXPECT_EQ(Text(store), u"AB:0:-1;");
    EXPECT_EQ(static_cast<unsigned int>(Read(u"AB:0:-1;").GetAttribute(u"AB", 0)), 0xFFFFFFFFu);
}

TEST(SettingsReader, ForgetsIntegersAndKeepsStringsOfAnEarlierText)
{
    TarvoPrivateSettingsSerializer store = Read(u"AB:0:1;CD:1:old;");
    store.Initialize(u"EF:0:2;CD:1:new;GH:1:more;");
    EXPECT_EQ(Text(store), u"EF:0:2;CD:1:old;GH:1:more;");
    store.Initialize(u"");
    EXPECT_EQ(Text(store), u"CD:1:old;GH:1:more;");
}

TEST(SettingsReader, AnEmptyStringValueReadsAsTheEmptyTextAllTheSame)
{
    TarvoPrivateSettingsSerializer store;
    store.AddAttribute(u"key", UTF16String());
    EXPECT_EQ(Text(store), u"key:1:;");
    EXPECT_EQ(Read(u"key:1:;").GetAttribute(u"key"), u"");
}

TEST(SettingsReader, ZeroUnitsAreOrdinaryUnits)
{
    const UTF16String text(u"A\0B:1:x\0y;", 10);
    EXPECT_EQ(Kept(text), std::u16string(u"A\0B:1:x\0y;", 10));
}

TEST(SettingsReader, ALongTextReadsInOneGo)
{
    TarvoPrivateSettingsSerializer store;
    for (char16_t first = u'a'; first <= u'z'; ++first)
        for (char16_t second = u'a'; second <= u'z'; ++second)
            store.AddAttribute(UTF16String{first, second}, first * 256 + second);
    const UTF16String text = store.GetSerializedString();
    EXPECT_EQ(Read(text).GetSerializedString(), text);
    EXPECT_EQ(Read(text).GetAttribute(u"zz", 0), 31354);
}

}  // namespace
