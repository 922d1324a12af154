#include "UTFCharacters.h"

#include <cstdint>

namespace kelpcore::utility
{
namespace
{

// The table of well-formed sequences: the second byte's range depends on the first byte, later
// bytes are 80 to BF.
struct Sequence
{
    std::uint8_t mFirstLow, mFirstHigh;
    std::uint8_t mSecondLow, mSecondHigh;
    std::size_t mLength;
};

constexpr Sequence kSequences[] = {
    {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3}, {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3}, {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

const Sequence* FindSequence(std::uint8_t inFirst)
{
    for (const Sequence& sequence : kSequences)
        if (inFirst >= sequence.mFirstLow && inFirst <= sequence.mFirstHigh)
            return &sequence;
    return nullptr;
}

bool IsLead(char16_t inUnit)
{
    return (inUnit & 0xFC00) == 0xD800;
}
bool IsTrail(char16_t inUnit)
{
    return (inUnit & 0xFC00) == 0xDC00;
}

char Byte(char32_t inValue)
{
    return static_cast<char>(static_cast<std::uint8_t>(inValue));
}

}  // namespace

char32_t TakeCharacter(std::string_view& ioText)
{
    const std::uint8_t first = static_cast<std::uint8_t>(ioText.front());
    ioText.remove_prefix(1);
    if (first < 0x80)
        return first;
    const Sequence* sequence = FindSequence(first);
    if (!sequence)
        return kNoCharacter;

    char32_t character = first & (0x7Fu >> sequence->mLength);
    for (std::size_t at = 1; at < sequence->mLength; ++at)
    {
        const std::uint8_t low = at == 1 ? sequence->mSecondLow : 0x80;
        const std::uint8_t high = at == 1 ? sequence->mSecondHigh : 0xBF;
        const std::uint8_t byte = ioText.empty() ? 0 : static_cast<std::uint8_t>(ioText.front());
        if (byte < low || byte > high)
            return kNoCharacter;
        character = character << 6 | (byte & 0x3Fu);
        ioText.remove_prefix(1);
    }
    return character;
}

char32_t TakeCharacter(std::u16string_view& ioText)
{
    const char16_t first = ioText.front();
    ioText.remove_prefix(1);
    if (!IsLead(first) && !IsTrail(first))
        return first;
    if (IsTrail(first) || ioText.empty() || !IsTrail(ioText.front()))
        return kNoCharacter;
    const char32_t character = 0x10000u + ((first & 0x3FFu) << 10 | (ioText.front() & 0x3FFu));
    ioText.remove_prefix(1);
    return character;
}

void AppendCharacter(char32_t inCharacter, UTF8String& ioText)
{
    if (inCharacter < 0x80)
    {
        ioText += Byte(inCharacter);
        return;
    }
    if (inCharacter < 0x800)
        ioText += Byte(0xC0 | inCharacter >> 6);
    else if (inCharacter < 0x10000)
        ioText += Byte(0xE0 | inCharacter >> 12);
    else
        (ioText += Byte(0xF0 | inCharacter >> 18)) += Byte(0x80 | (inCharacter >> 12 & 0x3F));
    if (inCharacter >= 0x800)
        ioText += Byte(0x80 | (inCharacter >> 6 & 0x3F));
    ioText += Byte(0x80 | (inCharacter & 0x3F));
}

void AppendCharacter(char32_t inCharacter, UTF16String& ioText)
{
    if (inCharacter < 0x10000)
    {
        ioText += static_cast<char16_t>(inCharacter);
        return;
    }
    ioText += static_cast<char16_t>(0xD800 + ((inCharacter - 0x10000) >> 10));
    ioText += static_cast<char16_t>(0xDC00 + (inCharacter & 0x3FF));
}

bool AppendValidUTF8(std::string_view inText, UTF16String& ioText)
{
    ioText.reserve(ioText.size() + inText.size());
    while (!inText.empty())
    {
        const char32_t character = TakeCharacter(inText);
        if (character == kNoCharacter)
            return false;
        AppendCharacter(character, ioText);
    }
    return true;
}

}  // namespace kelpcore::utility
