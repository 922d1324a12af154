// AIFFFile: AIFF and AIFF-C.

#include "file/ChunkWalker.h"
#include "file/ConstantPackets.h"
#include "file/Endian.h"
#include "file/FactArithmetic.h"
#include "file/ID3Tag.h"
#include "file/StoredLayout.h"
#include "file/aiff/AIFFFormat.h"

#include <algorithm>
#include <utility>

namespace audiotoolbox
{
namespace
{

constexpr FourCharCode kCommonID = CA_FOUR_CHAR_CODE('C', 'O', 'M', 'M');
constexpr FourCharCode kSoundID = CA_FOUR_CHAR_CODE('S', 'S', 'N', 'D');
constexpr FourCharCode kLayoutID = CA_FOUR_CHAR_CODE('C', 'H', 'A', 'N');
constexpr FourCharCode kKnownIDs[] = {
    kCommonID,
    kSoundID,
    kLayoutID,
    CA_FOUR_CHAR_CODE('F', 'V', 'E', 'R'),
    CA_FOUR_CHAR_CODE('M', 'A', 'R', 'K'),
    CA_FOUR_CHAR_CODE('C', 'O', 'M', 'T'),
    CA_FOUR_CHAR_CODE('I', 'N', 'S', 'T'),
    CA_FOUR_CHAR_CODE('M', 'I', 'D', 'I'),
    CA_FOUR_CHAR_CODE('A', 'E', 'S', 'D'),
    CA_FOUR_CHAR_CODE('A', 'P', 'P', 'L'),
    CA_FOUR_CHAR_CODE('N', 'A', 'M', 'E'),
    CA_FOUR_CHAR_CODE('A', 'U', 'T', 'H'),
    CA_FOUR_CHAR_CODE('(', 'c', ')', ' '),
    CA_FOUR_CHAR_CODE('A', 'N', 'N', 'O'),
    CA_FOUR_CHAR_CODE('P', 'E', 'A', 'K'),
    CA_FOUR_CHAR_CODE('F', 'L', 'L', 'R'),
    CA_FOUR_CHAR_CODE('I', 'D', '3', ' '),
    CA_FOUR_CHAR_CODE('i', 'd', '3', ' '),
};

constexpr ChunkForm kForm = {4, 4, true, false, 2, kKnownIDs};

constexpr UInt32 kFormHeaderBytes = 12;
constexpr UInt32 kMaxCommonBytes = 512;
constexpr UInt32 kSoundHeaderBytes = 8;  // offset and block size

struct Parts
{
    bool mHasCommon = false;
    bool mHasSound = false;
    UInt32 mFrames = 0;
    SInt64 mClaimedByteCount = 0;
};

OSStatus TakeSound(ChunkWalker& ioWalker, const ByteSource& inSource, Parts& ioParts,
                   FileFacts& ioFacts)
{
    const std::vector<UInt8> header = ioWalker.ReadBody(kSoundHeaderBytes);
    const Chunk& chunk = ioWalker.Current();
    const bool isStreamed = chunk.mSize == 0 && ioWalker.SizeOfStreamedBody() < 0;
    if (isStreamed)
        ioWalker.SetSize(chunk.mRoom);
    if (chunk.mSize < kSoundHeaderBytes || chunk.mRoom < kSoundHeaderBytes)
        return chunk.mSize == 0 ? noErr : kAudioFileInvalidFileError;
    const SInt64 size = chunk.mSize - kSoundHeaderBytes;
    // An offset that leads out of the chunk cannot be meant.
    const SInt64 told = header.size() == kSoundHeaderBytes ? ReadBE32(header.data()) : 0;
    const SInt64 offset = told <= size ? told : 0;
    SetDataRange(inSource, chunk.mBody + kSoundHeaderBytes + offset, size - offset, ioFacts);
    ioParts.mClaimedByteCount = size - offset;
    return noErr;
}

OSStatus TakeChunk(ChunkWalker& ioWalker, const ByteSource& inSource, Parts& ioParts,
                   FileFacts& ioFacts)
{
    const FourCharCode id = ioWalker.Current().mID;
    if (id == kCommonID && !ioParts.mHasCommon)
    {
        ioParts.mHasCommon = true;
        return DescribeAIFF(ioWalker.ReadBody(kMaxCommonBytes),
                            ioFacts.mFileType == kAudioFileAIFCType, ioParts.mFrames, ioFacts);
    }
    if (id == kSoundID && !ioParts.mHasSound)
    {
        ioParts.mHasSound = true;
        return TakeSound(ioWalker, inSource, ioParts, ioFacts);
    }
    if (id == kLayoutID)
        ioFacts.mChannelLayout = LayoutOfChunk(ioWalker.ReadBody(kMaxStoredLayoutBytes));
    return noErr;
}

// The order of chunks is free, so all of them are looked at. A file without frames may leave the
// sound chunk out.
OSStatus ReadParts(ByteSource& inSource, SInt64 inStart, FileFacts& ioFacts)
{
    ChunkWalker walker(inSource, kForm, inStart);
    Parts parts;
    while (walker.Next())
        if (const OSStatus status = TakeChunk(walker, inSource, parts, ioFacts); status != noErr)
            return walker.Status() != noErr ? walker.Status() : status;
    if (walker.Status() != noErr)
        return walker.Status();
    if (!parts.mHasCommon || (!parts.mHasSound && parts.mFrames > 0))
        return kAudioFileInvalidFileError;
    FinishAIFF(parts.mFrames, parts.mClaimedByteCount, ioFacts);
    return noErr;
}

AudioFileTypeID TypeOfForm(const UInt8* inHeader)
{
    if (ReadBE32(inHeader) != CA_FOUR_CHAR_CODE('F', 'O', 'R', 'M'))
        return 0;
    const FourCharCode kind = ReadBE32(inHeader + 8);
    return kind == kAudioFileAIFFType || kind == kAudioFileAIFCType ? kind : 0;
}

}  // namespace

OSStatus OpenAIFF(AudioFileTypeID, ByteSourcePtr& ioSource, PacketReaderPtr& outReader)
{
    SInt64 start = 0;
    if (const OSStatus status = MeasureID3v2Tags(*ioSource, start); status != noErr)
        return status;
    UInt8 header[kFormHeaderBytes] = {};
    UInt32 got = 0;
    if (const OSStatus status = ioSource->ReadAt(start, sizeof(header), header, &got);
        status != noErr)
        return status;
    FileFacts facts;
    facts.mFileType = TypeOfForm(header);
    if (facts.mFileType == 0)
        return kAudioFileUnsupportedFileTypeError;
    if (const OSStatus status = ReadParts(*ioSource, start + kFormHeaderBytes, facts);
        status != noErr)
        return status;
    outReader = std::make_unique<ConstantPackets>(std::move(ioSource), std::move(facts));
    return noErr;
}

}  // namespace audiotoolbox
