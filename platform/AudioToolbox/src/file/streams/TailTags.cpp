#include "file/streams/TailTags.h"

#include "file/Endian.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace audiotoolbox::streams
{
namespace
{

constexpr int kMaxTags = 8;         // more in a row is no accident of tagging software
constexpr SInt64 kTailBytes = 160;  // the largest stretch that a tag is told by

// The last bytes before some end, right aligned.
struct Tail
{
    UInt8 mBytes[kTailBytes];
    SInt64 mCount = 0;

    bool HasTextAt(SInt64 inBytesBeforeEnd, const char* inText) const
    {
        return inBytesBeforeEnd <= mCount &&
               std::memcmp(BeforeEnd(inBytesBeforeEnd), inText, std::strlen(inText)) == 0;
    }
    const UInt8* BeforeEnd(SInt64 inBytes) const { return mBytes + kTailBytes - inBytes; }
};

SInt64 SizeOfID3v1(const Tail& inTail)
{
    return inTail.HasTextAt(128, "TAG") ? 128 : 0;
}

// The footer tells the size without the header, which is optional.
SInt64 SizeOfAPE(const Tail& inTail)
{
    if (!inTail.HasTextAt(32, "APETAGEX"))
        return 0;
    const UInt8* footer = inTail.BeforeEnd(32);
    const SInt64 size = ReadLE32(footer + 12);
    const bool hasHeader = (ReadLE32(footer + 20) & 0x80000000u) != 0;
    return std::max<SInt64>(size, 32) + (hasHeader ? 32 : 0);
}

// Six digits tell the size of what lies before them.
SInt64 SizeOfLyrics3(const Tail& inTail)
{
    if (!inTail.HasTextAt(9, "LYRICS200"))
        return 0;
    SInt64 size = 0;
    for (SInt64 before = 15; before > 9; --before)
    {
        const UInt8 digit = *inTail.BeforeEnd(before);
        if (before > inTail.mCount || digit < '0' || digit > '9')
            return 0;
        size = size * 10 + (digit - '0');
    }
    return size + 15;
}

SInt64 SizeOfAppendedID3v2(const Tail& inTail)
{
    if (!inTail.HasTextAt(10, "3DI"))
        return 0;
    SInt64 size = 0;
    for (SInt64 before = 4; before > 0; --before)
    {
        const UInt8 bits = *inTail.BeforeEnd(before);
        if (bits >= 0x80)  // seven bits a byte
            return 0;
        size = (size << 7) | bits;
    }
    return size + 20;
}

constexpr SInt64 (*kTagSizes[])(const Tail&) = {SizeOfID3v1, SizeOfAPE, SizeOfLyrics3,
                                                SizeOfAppendedID3v2};

SInt64 SizeOfTagBefore(ByteSource& inSource, SInt64 inStart, SInt64 inEnd)
{
    Tail tail;
    std::memset(tail.mBytes, 0, sizeof(tail.mBytes));
    tail.mCount = std::min(kTailBytes, inEnd - inStart);
    const auto count = static_cast<UInt32>(tail.mCount);
    if (!inSource.ReadFully(inEnd - count, tail.mBytes + kTailBytes - count, count))
        return 0;
    for (const auto sizeOf : kTagSizes)
        if (const SInt64 size = sizeOf(tail); size > 0 && size <= inEnd - inStart)
            return size;
    return 0;
}

}  // namespace

SInt64 EndOfAudio(ByteSource& inSource, SInt64 inStart)
{
    SInt64 end = std::max(inSource.Size(), inStart);
    for (int i = 0; i < kMaxTags && end > inStart; ++i)
    {
        const SInt64 size = SizeOfTagBefore(inSource, inStart, end);
        if (size == 0)
            break;
        end -= size;
    }
    return end;
}

}  // namespace audiotoolbox::streams
