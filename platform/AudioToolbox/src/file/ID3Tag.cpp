#include "file/ID3Tag.h"

namespace audiotoolbox
{
namespace
{

constexpr int kMaxTags = 8;  // more in a row is no accident of tagging software
constexpr SInt64 kTagHeaderBytes = 10;

// 0 when no tag starts here.
SInt64 SizeOfTagAt(ByteSource& inSource, SInt64 inPosition)
{
    UInt8 header[kTagHeaderBytes];
    if (!inSource.ReadFully(inPosition, header, sizeof(header)))
        return 0;
    if (header[0] != 'I' || header[1] != 'D' || header[2] != '3' || header[3] == 0xFF)
        return 0;
    SInt64 size = 0;
    for (int i = 6; i < 10; ++i)
    {
        if (header[i] >= 0x80)  // seven bits a byte
            return 0;
        size = (size << 7) | header[i];
    }
    const bool hasFooter = (header[5] & 0x10) != 0;
    size += kTagHeaderBytes + (hasFooter ? kTagHeaderBytes : 0);
    return inPosition + size <= inSource.Size() ? size : 0;
}

}  // namespace

SInt64 SizeOfID3v2Tags(ByteSource& inSource)
{
    SInt64 position = 0;
    for (int i = 0; i < kMaxTags; ++i)
    {
        const SInt64 size = SizeOfTagAt(inSource, position);
        if (size == 0)
            break;
        position += size;
    }
    return position;
}

}  // namespace audiotoolbox
