// CFString: making strings from bytes and reading them back.
#include "CFStringObject.h"
#include "TextEncoding.h"

#include <cstring>
#include <limits>
#include <string_view>

namespace
{

CFStringRef CreateFromBytes(std::string_view inBytes, CFStringEncoding inEncoding, bool inExternal)
try
{
    std::u16string units;
    if (!cf::DecodeText(inBytes, inEncoding, inExternal, units))
        return nullptr;
    return cf::Create<__CFString>(std::move(units));
}
catch (const std::bad_alloc&)
{
    return nullptr;
}

struct EncodingPair
{
    unsigned long mOther;
    CFStringEncoding mOurs;
};

constexpr EncodingPair kEncodingPairs[] = {
    {1, kCFStringEncodingASCII},
    {4, kCFStringEncodingUTF8},
    {5, kCFStringEncodingISOLatin1},
    {10, kCFStringEncodingUTF16},
    {30, kCFStringEncodingMacRoman},
    {0x90000100, kCFStringEncodingUTF16BE},
    {0x94000100, kCFStringEncodingUTF16LE},
};

}  // namespace

CFTypeID CFStringGetTypeID(void)
{
    return cf::kStringType;
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char* text, CFStringEncoding encoding)
{
    if (!text || !cf::IsByteEncoding(encoding))
        return nullptr;
    return CreateFromBytes(text, encoding, false);
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex byteCount,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation)
{
    if (byteCount < 0 || (!bytes && byteCount > 0))
        return nullptr;
    const std::string_view view = byteCount > 0
                                      ? std::string_view(reinterpret_cast<const char*>(bytes),
                                                         static_cast<std::size_t>(byteCount))
                                      : std::string_view();
    return CreateFromBytes(view, encoding, isExternalRepresentation != 0);
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const UniChar* characters, CFIndex count)
try
{
    if (count < 0 || (!characters && count > 0))
        return nullptr;
    return cf::Create<__CFString>(std::u16string(characters, characters + count));
}
catch (const std::bad_alloc&)
{
    return nullptr;
}

CFIndex CFStringGetLength(CFStringRef string)
{
    return static_cast<CFIndex>(string->mUnits.size());
}

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* outCharacters)
{
    if (range.length > 0)
        std::memcpy(outCharacters, string->mUnits.data() + range.location,
                    static_cast<std::size_t>(range.length) * sizeof(UniChar));
}

Boolean CFStringGetCString(CFStringRef string, char* outBuffer, CFIndex bufferSize,
                           CFStringEncoding encoding)
try
{
    std::string bytes;
    if (!outBuffer || !cf::IsByteEncoding(encoding) ||
        !cf::EncodeText(string->mUnits, encoding, bytes))
        return false;
    if (bufferSize <= 0 || bytes.size() >= static_cast<std::size_t>(bufferSize))
        return false;
    std::memcpy(outBuffer, bytes.c_str(), bytes.size() + 1);
    return true;
}
catch (const std::bad_alloc&)
{
    return false;
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding)
{
    constexpr CFIndex kNone = -1;  // what the interface answers for "no such number"
    const CFIndex bytesPerUnit = cf::MostBytesPerUnit(encoding);
    if (bytesPerUnit == 0 || length < 0 ||
        length > std::numeric_limits<CFIndex>::max() / bytesPerUnit)
        return kNone;
    return length * bytesPerUnit;
}

CFStringEncoding CFStringConvertNSStringEncodingToEncoding(unsigned long encoding)
{
    for (const EncodingPair& pair : kEncodingPairs)
        if (pair.mOther == encoding)
            return pair.mOurs;
    return kCFStringEncodingInvalidId;
}
