// Opening by content: the first bytes choose the row of the file type table.

#include "file/ID3Tag.h"
#include "file/PacketReader.h"
#include "tables/FileTypes.h"

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
    Head head;
    SInt64 tags = 0;
    if (const OSStatus status = MeasureID3v2Tags(*ioSource, tags); status != noErr)
        return status;
    if (const OSStatus status = ReadHead(*ioSource, tags, head); status != noErr)
        return status;
    const FileTypeRow* row = Sniff(head.Span(), tags > 0, inHint);
    if (row == nullptr)
        return kAudioFileUnsupportedFileTypeError;
    return row->mOpen(row->mType, ioSource, outReader);
}

}  // namespace audiotoolbox
