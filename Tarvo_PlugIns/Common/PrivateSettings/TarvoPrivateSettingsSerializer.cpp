#include "Tarvo_PlugIns/Common/PrivateSettings/TarvoPrivateSettingsSerializer.h"

#include <kelpcore/utility/NumberText.h>
#include <kelpcore/utility/StringConversion.h>

#include <cstdint>
#include <cstdio>

namespace tarvo
{
namespace
{

constexpr auto kNowhere = UTF16String::npos;

UTF16String DecimalText(int inValue)
{
    char text[16];
    const int length = std::snprintf(text, sizeof text, "%i", inValue);
    return kelpcore::utility::AsciiToUTF16({text, static_cast<std::size_t>(length)});
}

// A text of other units than these is not given to the number reader. An empty one is: whether
// that is a number is the reader's business.
bool HasNumberUnitsOnly(const UTF16String& inText)
{
    return inText.find_first_not_of(u"-0123456789") == kNowhere;
}

// False, with outNumber as it was, for a text that is no number.
bool ReadNumber(const UTF16String& inText, int& outNumber)
{
    if (!HasNumberUnitsOnly(inText))
        return false;
    try
    {
        std::int32_t number = 0;
        kelpcore::utility::StringToNumber(inText, number, 1);
        outNumber = number;
        return true;
    }
    catch (...)
    {
        // Whatever the number reader objects to, the entry is skipped and the rest is still read.
        return false;
    }
}

// Keys have two units at the least. The difference wraps for a mark at the very start of the text,
// which lets an empty key through there and nowhere else.
bool IsKeyLongEnough(std::uint64_t inKeyStart, std::uint64_t inFirst)
{
    return inFirst - 1 > inKeyStart;
}

}  // namespace

void TarvoPrivateSettingsSerializer::AddAttribute(const UTF16String& inKey, int inValue)
{
    mIntAttributes.emplace(inKey, inValue);
}

void TarvoPrivateSettingsSerializer::AddAttribute(const UTF16String& inKey,
                                                  const UTF16String& inValue)
{
    mStringAttributes.emplace(inKey, inValue);
}

UTF16String TarvoPrivateSettingsSerializer::GetSerializedString() const
{
    UTF16String integers;
    Serialize(mIntAttributes, integers);
    UTF16String strings;
    Serialize(mStringAttributes, strings);
    return integers + strings;
}

void TarvoPrivateSettingsSerializer::Serialize(const IntAttributes& inAttributes,
                                               UTF16String& outText)
{
    outText.clear();
    for (const auto& [key, value] : inAttributes)
        outText.append(key).append(u":0:").append(DecimalText(value)).append(u";");
}

void TarvoPrivateSettingsSerializer::Serialize(const StringAttributes& inAttributes,
                                               UTF16String& outText)
{
    outText.clear();
    for (const auto& [key, value] : inAttributes)
        outText.append(key).append(u":1:").append(value).append(u";");
}

void TarvoPrivateSettingsSerializer::Initialize(const UTF16String& inText)
{
    mIntAttributes.clear();
    Entry entry{};
    for (entry.mFirst = inText.find(u':'); entry.mFirst != kNowhere;
         entry.mFirst = inText.find(u':', entry.mKeyStart))
    {
        entry.mSecond = inText.find(u':', entry.mFirst + 1);
        if (entry.mSecond == kNowhere)
            return;
        entry.mEnd = inText.find(u';', entry.mSecond);
        if (entry.mEnd == kNowhere)
            return;
        ReadEntry(inText, entry);
        entry.mKeyStart = entry.mEnd + 1;
    }
}

void TarvoPrivateSettingsSerializer::ReadEntry(const UTF16String& inText, const Entry& inEntry)
{
    const auto between = [&inText](auto inFrom, auto inTo)
    { return inText.substr(inFrom, inTo - inFrom); };

    const UTF16String value = between(inEntry.mSecond + 1, inEntry.mEnd);
    if (value.empty())
        return;
    int type = 0;
    if (!ReadNumber(between(inEntry.mFirst + 1, inEntry.mSecond), type))
        return;
    if (!IsKeyLongEnough(inEntry.mKeyStart, inEntry.mFirst))
        return;

    const UTF16String key = between(inEntry.mKeyStart, inEntry.mFirst);
    int number = 0;
    if (type != 0)
        AddAttribute(key, value);
    else if (ReadNumber(value, number))
        AddAttribute(key, number);
}

UTF16String TarvoPrivateSettingsSerializer::GetAttribute(const UTF16String& inKey) const
{
    const auto found = mStringAttributes.find(inKey);
    return found == mStringAttributes.end() ? UTF16String() : found->second;
}

int TarvoPrivateSettingsSerializer::GetAttribute(const UTF16String& inKey, int inDefaultValue) const
{
    int value = inDefaultValue;
    (void)QueryAttribute(inKey, value);  // absent: the default stays
    return value;
}

bool TarvoPrivateSettingsSerializer::QueryAttribute(const UTF16String& inKey, int& outValue) const
{
    const auto found = mIntAttributes.find(inKey);
    if (found == mIntAttributes.end())
        return false;
    outValue = found->second;
    return true;
}

}  // namespace tarvo
