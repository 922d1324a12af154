#include "UTF8.h"

#include <cstddef>
#include <cstdint>

namespace cf
{
namespace
{

struct LeadByte
{
    std::uint8_t mMask;      // bits that tell the length
    std::uint8_t mValue;     // what they are
    std::size_t mLength;     // bytes of the whole sequence
    std::uint32_t mMinimum;  // the first character that needs so many
};

constexpr LeadByte kLeadBytes[] = {
    {0x80, 0x00, 1, 0x0},
    {0xE0, 0xC0, 2, 0x80},
    {0xF0, 0xE0, 3, 0x800},
    {0xF8, 0xF0, 4, 0x10000},
};

const LeadByte* FindLeadByte(std::uint8_t inByte)
{
    for (const LeadByte& lead : kLeadBytes)
        if ((inByte & lead.mMask) == lead.mValue)
            return &lead;
    return nullptr;
}

bool IsCharacter(std::uint32_t inCharacter, std::uint32_t inMinimum)
{
    const bool surrogate = inCharacter >= 0xD800 && inCharacter <= 0xDFFF;
    return inCharacter >= inMinimum && inCharacter <= 0x10FFFF && !surrogate;
}

void AppendCharacter(std::uint32_t inCharacter, std::u16string& ioUnits)
{
    if (inCharacter < 0x10000)
    {
        ioUnits.push_back(static_cast<char16_t>(inCharacter));
        return;
    }
    const std::uint32_t offset = inCharacter - 0x10000;
    ioUnits.push_back(static_cast<char16_t>(0xD800 + (offset >> 10)));
    ioUnits.push_back(static_cast<char16_t>(0xDC00 + (offset & 0x3FF)));
}

void AppendCharacter(std::uint32_t inCharacter, std::string& ioBytes)
{
    std::size_t length = 1;
    while (length < 4 && inCharacter >= kLeadBytes[length].mMinimum)
        ++length;
    std::size_t shift = 6 * (length - 1);
    ioBytes.push_back(static_cast<char>(kLeadBytes[length - 1].mValue | (inCharacter >> shift)));
    while (shift > 0)
    {
        shift -= 6;
        ioBytes.push_back(static_cast<char>(0x80 | ((inCharacter >> shift) & 0x3F)));
    }
}

}  // namespace

bool AppendUTF16(std::string_view inBytes, std::u16string& ioUnits)
{
    ioUnits.reserve(ioUnits.size() + inBytes.size());
    for (std::size_t at = 0; at < inBytes.size();)
    {
        const std::uint8_t first = static_cast<std::uint8_t>(inBytes[at]);
        const LeadByte* lead = FindLeadByte(first);
        if (!lead || lead->mLength > inBytes.size() - at)
            return false;

        std::uint32_t character = first & static_cast<std::uint8_t>(~lead->mMask);
        for (std::size_t next = 1; next < lead->mLength; ++next)
        {
            const std::uint8_t byte = static_cast<std::uint8_t>(inBytes[at + next]);
            if ((byte & 0xC0) != 0x80)
                return false;
            character = character << 6 | (byte & 0x3F);
        }
        if (!IsCharacter(character, lead->mMinimum))
            return false;
        AppendCharacter(character, ioUnits);
        at += lead->mLength;
    }
    return true;
}

bool AppendUTF8(std::u16string_view inUnits, std::string& ioBytes)
{
    if (!IsWellFormed(inUnits))
        return false;
    ioBytes.reserve(ioBytes.size() + inUnits.size());
    for (std::size_t at = 0; at < inUnits.size(); ++at)
    {
        std::uint32_t character = inUnits[at];
        if (IsLeadSurrogate(inUnits[at]))
            character = 0x10000 + ((character - 0xD800) << 10) + (inUnits[++at] - 0xDC00u);
        AppendCharacter(character, ioBytes);
    }
    return true;
}

bool IsWellFormed(std::u16string_view inUnits)
{
    for (std::size_t at = 0; at < inUnits.size(); ++at)
    {
        if (IsTrailSurrogate(inUnits[at]))
            return false;
        if (!IsLeadSurrogate(inUnits[at]))
            continue;
        if (++at == inUnits.size() || !IsTrailSurrogate(inUnits[at]))
            return false;
    }
    return true;
}

}  // namespace cf
