#include "TextEncoding.h"

#include "UTF8.h"

#include <bit>
#include <cstddef>
#include <cstdint>

namespace cf
{
namespace
{

// Characters of the upper half of Mac Roman, from byte 0x80 on.
constexpr char16_t kMacRoman[128] = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3,
    0x00E5, 0x00E7, 0x00E9, 0x00E8, 0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3,
    0x00F2, 0x00F4, 0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, 0x2020, 0x00B0, 0x00A2, 0x00A3,
    0x00A7, 0x2022, 0x00B6, 0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8,
    0x221E, 0x00B1, 0x2264, 0x2265, 0x00A5, 0x00B5, 0x2202, 0x2211, 0x220F, 0x03C0, 0x222B, 0x00AA,
    0x00BA, 0x03A9, 0x00E6, 0x00F8, 0x00BF, 0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB,
    0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5, 0x0152, 0x0153, 0x2013, 0x2014, 0x201C, 0x201D,
    0x2018, 0x2019, 0x00F7, 0x25CA, 0x00FF, 0x0178, 0x2044, 0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02,
    0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1, 0x00CB, 0x00C8, 0x00CD, 0x00CE,
    0x00CF, 0x00CC, 0x00D3, 0x00D4, 0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9, 0x0131, 0x02C6, 0x02DC,
    0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,
};

// What bytes 0x80 to 0xFF mean.
enum class UpperHalf
{
    Nothing,
    SameNumber,
    MacRoman
};

enum class Shape
{
    Bytes,
    UTF8,
    UTF16
};

struct Encoding
{
    CFStringEncoding mNumber;
    Shape mShape;
    CFIndex mMostBytesPerUnit;
    UpperHalf mUpperHalf;
    std::endian mOrder;
};

constexpr Encoding kEncodings[] = {
    {kCFStringEncodingMacRoman, Shape::Bytes, 1, UpperHalf::MacRoman, std::endian::native},
    {kCFStringEncodingISOLatin1, Shape::Bytes, 1, UpperHalf::SameNumber, std::endian::native},
    {kCFStringEncodingASCII, Shape::Bytes, 1, UpperHalf::Nothing, std::endian::native},
    {kCFStringEncodingUTF16, Shape::UTF16, 2, UpperHalf::Nothing, std::endian::native},
    {kCFStringEncodingUTF8, Shape::UTF8, 3, UpperHalf::Nothing, std::endian::native},
    {kCFStringEncodingUTF16BE, Shape::UTF16, 2, UpperHalf::Nothing, std::endian::big},
    {kCFStringEncodingUTF16LE, Shape::UTF16, 2, UpperHalf::Nothing, std::endian::little},
};

const Encoding* FindEncoding(CFStringEncoding inNumber)
{
    for (const Encoding& encoding : kEncodings)
        if (encoding.mNumber == inNumber)
            return &encoding;
    return nullptr;
}

bool DecodeBytes(std::string_view inBytes, UpperHalf inUpperHalf, std::u16string& outUnits)
{
    outUnits.reserve(inBytes.size());
    for (const char character : inBytes)
    {
        const std::uint8_t byte = static_cast<std::uint8_t>(character);
        if (byte >= 0x80 && inUpperHalf == UpperHalf::Nothing)
            return false;
        const bool mapped = byte >= 0x80 && inUpperHalf == UpperHalf::MacRoman;
        outUnits.push_back(mapped ? kMacRoman[byte - 0x80] : byte);
    }
    return true;
}

// The byte of a unit beyond ASCII, -1 for none.
int UpperByte(char16_t inUnit, UpperHalf inUpperHalf)
{
    if (inUpperHalf == UpperHalf::SameNumber && inUnit <= 0xFF)
        return inUnit;
    if (inUpperHalf == UpperHalf::MacRoman)
        for (int index = 0; index < 128; ++index)
            if (kMacRoman[index] == inUnit)
                return 0x80 + index;
    return -1;
}

bool EncodeBytes(std::u16string_view inUnits, UpperHalf inUpperHalf, std::string& outBytes)
{
    outBytes.reserve(inUnits.size());
    for (const char16_t unit : inUnits)
    {
        const int byte = unit < 0x80 ? unit : UpperByte(unit, inUpperHalf);
        if (byte < 0)
            return false;
        outBytes.push_back(static_cast<char>(byte));
    }
    return true;
}

bool DecodeUTF16(std::string_view inBytes, std::endian inOrder, std::u16string& outUnits)
{
    if (inBytes.size() % 2 != 0)
        return false;
    const std::size_t high = inOrder == std::endian::big ? 0 : 1;
    outUnits.reserve(inBytes.size() / 2);
    for (std::size_t at = 0; at < inBytes.size(); at += 2)
    {
        const unsigned upper = static_cast<std::uint8_t>(inBytes[at + high]);
        const unsigned lower = static_cast<std::uint8_t>(inBytes[at + 1 - high]);
        outUnits.push_back(static_cast<char16_t>(upper << 8 | lower));
    }
    return IsWellFormed(outUnits);
}

void EncodeUTF16(std::u16string_view inUnits, std::endian inOrder, std::string& outBytes)
{
    outBytes.reserve(inUnits.size() * 2);
    for (const char16_t unit : inUnits)
    {
        const char upper = static_cast<char>(unit >> 8);
        const char lower = static_cast<char>(unit & 0xFF);
        outBytes.push_back(inOrder == std::endian::big ? upper : lower);
        outBytes.push_back(inOrder == std::endian::big ? lower : upper);
    }
}

// Takes a byte order mark off and says which order the rest has.
std::endian TakeByteOrderMark(std::string_view& ioBytes)
{
    const bool little = ioBytes.starts_with("\xFF\xFE");
    if (little || ioBytes.starts_with("\xFE\xFF"))
        ioBytes.remove_prefix(2);
    return little ? std::endian::little : std::endian::big;
}

}  // namespace

bool IsByteEncoding(CFStringEncoding inEncoding)
{
    const Encoding* encoding = FindEncoding(inEncoding);
    return encoding && encoding->mShape != Shape::UTF16;
}

CFIndex MostBytesPerUnit(CFStringEncoding inEncoding)
{
    const Encoding* encoding = FindEncoding(inEncoding);
    return encoding ? encoding->mMostBytesPerUnit : 0;
}

bool DecodeText(std::string_view inBytes, CFStringEncoding inEncoding, bool inExternal,
                std::u16string& outUnits)
{
    outUnits.clear();
    const Encoding* encoding = FindEncoding(inEncoding);
    if (!encoding)
        return false;
    switch (encoding->mShape)
    {
        case Shape::Bytes:
            return DecodeBytes(inBytes, encoding->mUpperHalf, outUnits);
        case Shape::UTF8:
            if (inExternal && inBytes.starts_with("\xEF\xBB\xBF"))
                inBytes.remove_prefix(3);
            return AppendUTF16(inBytes, outUnits);
        case Shape::UTF16:
        {
            const bool marked = inExternal && inEncoding == kCFStringEncodingUTF16;
            const std::endian order = marked ? TakeByteOrderMark(inBytes) : encoding->mOrder;
            return DecodeUTF16(inBytes, order, outUnits);
        }
    }
    return false;
}

bool EncodeText(std::u16string_view inUnits, CFStringEncoding inEncoding, std::string& outBytes)
{
    outBytes.clear();
    const Encoding* encoding = FindEncoding(inEncoding);
    if (!encoding)
        return false;
    switch (encoding->mShape)
    {
        case Shape::Bytes:
            return EncodeBytes(inUnits, encoding->mUpperHalf, outBytes);
        case Shape::UTF8:
            return AppendUTF8(inUnits, outBytes);
        case Shape::UTF16:
            EncodeUTF16(inUnits, encoding->mOrder, outBytes);
            return true;
    }
    return false;
}

}  // namespace cf
