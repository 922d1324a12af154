// TarvoPrivateSettingsSerializer: named numbers and texts as one flat text, and back.
//
// An integer entry reads "key:0:value;", a string entry "key:1:value;". All integers come first, in
// key order, then all strings. Nothing is escaped and there is no header: a key with ":" in it, or
// a string with ";", does not read back as it went in. The reader takes any text at all and skips
// what it cannot read.
#ifndef TARVO_PLUGINS_COMMON_PRIVATESETTINGS_TARVOPRIVATESETTINGSSERIALIZER_H
#define TARVO_PLUGINS_COMMON_PRIVATESETTINGS_TARVOPRIVATESETTINGSSERIALIZER_H

#include <kelpcore/Strings.h>

#include <map>

namespace tarvo
{

class TarvoPrivateSettingsSerializer
{
public:
    using IntAttributes = std::map<UTF16String, int>;
    using StringAttributes = std::map<UTF16String, UTF16String>;

    /// Adds an attribute. One that is there keeps its value. Numbers and texts have keys of their
    /// own each, so a key may stand for both. Unsigned values go in as their bit pattern.
    void AddAttribute(const UTF16String& inKey, int inValue);
    void AddAttribute(const UTF16String& inKey, const UTF16String& inValue);

    UTF16String GetSerializedString() const;

    /// Reads a text. Integer attributes are dropped first; string attributes stay and, as ever,
    /// keep their values.
    void Initialize(const UTF16String& inText);

    /// The string attribute; empty if absent.
    UTF16String GetAttribute(const UTF16String& inKey) const;
    int GetAttribute(const UTF16String& inKey, int inDefaultValue) const;
    /// False, with outValue as it was, if there is no such integer attribute.
    bool QueryAttribute(const UTF16String& inKey, int& outValue) const;

    /// outText becomes all entries in key order, nothing between them.
    static void Serialize(const IntAttributes& inAttributes, UTF16String& outText);
    static void Serialize(const StringAttributes& inAttributes, UTF16String& outText);

private:
    // Where one entry of a text stands: key ":" type ":" value ";", by the positions of its marks.
    struct Entry
    {
        UTF16String::size_type mKeyStart;
        UTF16String::size_type mFirst;
        UTF16String::size_type mSecond;
        UTF16String::size_type mEnd;
    };

    // Stores the entry, or skips one that is none.
    void ReadEntry(const UTF16String& inText, const Entry& inEntry);

    IntAttributes mIntAttributes;
    StringAttributes mStringAttributes;
};

}  // namespace tarvo

#endif
