// Opening by content: the first bytes choose the row of the file type table.

#include "file/ID3Tag.h"
#include "file/PacketReader.h"
#include "file/streams/CutStream.h"
#include "tables/FileTypes.h"

#include <algorithm>

namespace audiotoolbox
{
namespace
{

struct Head
{
    UInt8 mBytes[kSniffBytes];
    UInt32 mCount = 0;

    std::span<const UInt8> Span() const { return {mBytes, mCount}; }
};

OSStatus ReadHead(ByteSource& inSource, SInt64 inPosition, Head& outHead)
{
    return inSource.ReadAt(inPosition, sizeof(outHead.mBytes), outHead.mBytes, &outHead.mCount);
}

// Where the first byte other than 0 lies within the next bytes; the start when there is none.
OSStatus SkipZeros(ByteSource& inSource, SInt64 inStart, SInt64& outPosition)
{
    UInt8 bytes[4096];
    UInt32 count = 0;
    outPosition = inStart;
    if (const OSStatus status = inSource.ReadAt(inStart, sizeof(bytes), bytes, &count);
        status != noErr)
        return status;
    const UInt8* found =
        std::find_if(bytes, bytes + count, [](UInt8 inByte) { return inByte != 0; });
    if (found != bytes + count)
        outPosition += found - bytes;
    return noErr;
}

// The row of the hint where it fits, else the first one that fits; null where none does.
const FileTypeRow* Sniff(std::span<const UInt8> inHead, bool inIsBehindTag, AudioFileTypeID inHint)
{
    const FileTypeRow* found = nullptr;
    for (const FileTypeRow& row : FileTypes())
    {
        if ((inIsBehindTag && !row.mAllowsTag) || !row.mSniff(inHead))
            continue;
        if (row.mType == inHint)
            return &row;
        if (found == nullptr)
            found = &row;
    }
    return found;
}

}  // namespace

OSStatus OpenAudio(AudioFileTypeID inHint, ByteSourcePtr& ioSource, PacketReaderPtr& outReader)
{
    SInt64 start = 0;
    if (const OSStatus status = MeasureID3v2Tags(*ioSource, start); status != noErr)
        return status;
    Head head;
    if (const OSStatus status = ReadHead(*ioSource, start, head); status != noErr)
        return status;
    const FileTypeRow* row = Sniff(head.Span(), start > 0, inHint);
    if (row == nullptr)
    {
        // Tags are often followed by padding that they do not count.
        if (const OSStatus status = SkipZeros(*ioSource, start, start); status != noErr)
            return status;
        if (const OSStatus status = ReadHead(*ioSource, start, head); status != noErr)
            return status;
        row = Sniff(head.Span(), true, inHint);
    }
    if (row == nullptr)
        row = FindFileType(TypeOfCutStream(*ioSource, start));
    if (row == nullptr || row->mOpen == nullptr)
        return kAudioFileUnsupportedFileTypeError;
    return row->mOpen(row->mType, ioSource, outReader);
}

}  // namespace audiotoolbox
