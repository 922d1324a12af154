#include "file/ID3Tag.h"

namespace audiotoolbox
{
namespace
{

constexpr int kMaxTags = 8;  // more in a row is no accident of tagging software
constexpr SInt64 kTagHeaderBytes = 10;

// 0 when no tag starts with this header. inRoom: bytes from its start to the end of the source.
SInt64 SizeOfTag(const UInt8* inHeader, SInt64 inRoom)
{
    if (inHeader[0] != 'I' || inHeader[1] != 'D' || inHeader[2] != '3' || inHeader[3] == 0xFF)
        return 0;
    SInt64 size = 0;
    for (int i = 6; i < 10; ++i)
    {
        if (inHeader[i] >= 0x80)  // seven bits a byte
            return 0;
        size = (size << 7) | inHeader[i];
    }
    const bool hasFooter = (inHeader[5] & 0x10) != 0;
    size += kTagHeaderBytes + (hasFooter ? kTagHeaderBytes : 0);
    return size <= inRoom ? size : 0;
}

}  // namespace

OSStatus MeasureID3v2Tags(ByteSource& inSource, SInt64& outSize)
{
    outSize = 0;
    SInt64 position = 0;
    for (int i = 0; i < kMaxTags; ++i)
    {
        UInt8 header[kTagHeaderBytes];
        UInt32 got = 0;
        if (const OSStatus status = inSource.ReadAt(position, sizeof(header), header, &got);
            status != noErr)
            return status;
        const SInt64 size =
            got == sizeof(header) ? SizeOfTag(header, inSource.Size() - position) : 0;
        if (size == 0)
            break;
        position += size;
    }
    outSize = position;
    return noErr;
}

}  // namespace audiotoolbox
