// RIFFFile: WAVE, and RF64 and BW64, which keep their sizes beyond 4 GiB in a `ds64` chunk.
//
// Source: the RIFF form WAVE as documented in public, EBU Tech 3306 (RF64), ITU-R BS.2088 (BW64).

#include "file/ChunkWalker.h"
#include "file/ConstantPackets.h"
#include "file/Endian.h"
#include "file/FactArithmetic.h"
#include "file/ID3Tag.h"
#include "file/wave/WaveFormat.h"

#include <utility>

namespace audiotoolbox
{
namespace
{

constexpr FourCharCode kFormatID = CA_FOUR_CHAR_CODE('f', 'm', 't', ' ');
constexpr FourCharCode kDataID = CA_FOUR_CHAR_CODE('d', 'a', 't', 'a');
constexpr FourCharCode kFactID = CA_FOUR_CHAR_CODE('f', 'a', 'c', 't');
constexpr FourCharCode kSizesID = CA_FOUR_CHAR_CODE('d', 's', '6', '4');

constexpr FourCharCode kKnownIDs[] = {
    kFormatID,
    kDataID,
    kFactID,
    kSizesID,
    CA_FOUR_CHAR_CODE('L', 'I', 'S', 'T'),
    CA_FOUR_CHAR_CODE('b', 'e', 'x', 't'),
    CA_FOUR_CHAR_CODE('c', 'u', 'e', ' '),
    CA_FOUR_CHAR_CODE('s', 'm', 'p', 'l'),
    CA_FOUR_CHAR_CODE('i', 'n', 's', 't'),
    CA_FOUR_CHAR_CODE('J', 'U', 'N', 'K'),
    CA_FOUR_CHAR_CODE('j', 'u', 'n', 'k'),
    CA_FOUR_CHAR_CODE('P', 'A', 'D', ' '),
    CA_FOUR_CHAR_CODE('F', 'L', 'L', 'R'),
    CA_FOUR_CHAR_CODE('P', 'E', 'A', 'K'),
    CA_FOUR_CHAR_CODE('i', 'X', 'M', 'L'),
    CA_FOUR_CHAR_CODE('a', 'x', 'm', 'l'),
    CA_FOUR_CHAR_CODE('c', 'h', 'n', 'a'),
    CA_FOUR_CHAR_CODE('c', 'a', 'r', 't'),
    CA_FOUR_CHAR_CODE('a', 'c', 'i', 'd'),
    CA_FOUR_CHAR_CODE('l', 'e', 'v', 'l'),
    CA_FOUR_CHAR_CODE('p', 'l', 's', 't'),
    CA_FOUR_CHAR_CODE('D', 'I', 'S', 'P'),
    CA_FOUR_CHAR_CODE('i', 'd', '3', ' '),
    CA_FOUR_CHAR_CODE('I', 'D', '3', ' '),
};

constexpr ChunkForm kForm = {4, 4, false, false, 2, kKnownIDs};

constexpr UInt32 kElsewhere = 0xFFFFFFFF;  // a size that `ds64` tells, or that nobody knew
constexpr UInt32 kFormHeaderBytes = 12;
constexpr UInt32 kSizesBytes = 28;
constexpr UInt32 kSizesRowBytes = 12;
constexpr UInt32 kMaxSizesBytes = kSizesBytes + 64 * kSizesRowBytes;

struct Parts
{
    std::vector<UInt8> mSizes;  // the body of `ds64`, empty in a plain file
    bool mHasFormat = false;
    bool mHasData = false;
    std::optional<UInt64> mFrames;
};

AudioFileTypeID TypeOfMagic(FourCharCode inMagic)
{
    constexpr std::pair<FourCharCode, AudioFileTypeID> kMagics[] = {
        {CA_FOUR_CHAR_CODE('R', 'I', 'F', 'F'), kAudioFileWAVEType},
        {CA_FOUR_CHAR_CODE('R', 'F', '6', '4'), kAudioFileRF64Type},
        {CA_FOUR_CHAR_CODE('B', 'W', '6', '4'), kAudioFileBW64Type},
    };
    for (const auto& [magic, type] : kMagics)
        if (magic == inMagic)
            return type;
    return 0;
}

// The 64-bit size of a chunk, -1 when the file does not tell it.
SInt64 LargeSize(const std::vector<UInt8>& inSizes, FourCharCode inID)
{
    if (inSizes.size() < kSizesBytes)
        return -1;
    const auto readable = [](UInt64 inSize)
    { return inSize == 0 || inSize >> 63 != 0 ? SInt64{-1} : static_cast<SInt64>(inSize); };
    if (inID == kDataID)
        return readable(ReadLE64(inSizes.data() + 8));
    for (std::size_t at = kSizesBytes; at + kSizesRowBytes <= inSizes.size(); at += kSizesRowBytes)
        if (ReadBE32(inSizes.data() + at) == inID)
            return readable(ReadLE64(inSizes.data() + at + 4));
    return -1;
}

void ReadFact(ChunkWalker& ioWalker, Parts& ioParts)
{
    const std::vector<UInt8> body = ioWalker.ReadBody(4);
    if (body.size() < 4)
        return;
    const UInt32 frames = ReadLE32(body.data());
    if (frames != kElsewhere)
        ioParts.mFrames = frames;
    else if (ioParts.mSizes.size() >= kSizesBytes)
        ioParts.mFrames = ReadLE64(ioParts.mSizes.data() + 16);
}

OSStatus TakeChunk(ChunkWalker& ioWalker, const ByteSource& inSource, Parts& ioParts,
                   FileFacts& ioFacts)
{
    const Chunk& chunk = ioWalker.Current();
    if (chunk.mSize == kElsewhere)
        ioWalker.SetSize(LargeSize(ioParts.mSizes, chunk.mID));
    if (chunk.mID == kSizesID && ioParts.mSizes.empty())
        ioParts.mSizes = ioWalker.ReadBody(kMaxSizesBytes);
    else if (chunk.mID == kFactID)
        ReadFact(ioWalker, ioParts);
    else if (chunk.mID == kFormatID && !ioParts.mHasFormat)
    {
        ioParts.mHasFormat = true;
        if (chunk.mSize > chunk.mRoom)
            return kAudioFileInvalidFileError;
        return DescribeWave(ioWalker.ReadBody(kMaxWaveFormatBytes), ioFacts);
    }
    else if (chunk.mID == kDataID && !ioParts.mHasData)
    {
        ioParts.mHasData = true;
        ioWalker.SetSize(ioWalker.SizeOfStreamedBody());
        SetDataRange(inSource, chunk.mBody, chunk.mSize, ioFacts);
    }
    return noErr;
}

// PCM needs nothing that may stand behind its samples.
bool IsEnough(const Parts& inParts, const FileFacts& inFacts)
{
    return inParts.mHasFormat && inParts.mHasData &&
           (inParts.mFrames || !HasBlocks(inFacts.mDataFormat));
}

OSStatus ReadParts(ByteSource& inSource, SInt64 inStart, FileFacts& ioFacts)
{
    ChunkWalker walker(inSource, kForm, inStart);
    Parts parts;
    while (!IsEnough(parts, ioFacts) && walker.Next())
        if (const OSStatus status = TakeChunk(walker, inSource, parts, ioFacts); status != noErr)
            return walker.Status() != noErr ? walker.Status() : status;
    if (walker.Status() != noErr)
        return walker.Status();
    if (!parts.mHasFormat || !parts.mHasData)
        return kAudioFileInvalidFileError;
    FinishWave(parts.mFrames, ioFacts);
    return noErr;
}

}  // namespace

OSStatus OpenRIFF(AudioFileTypeID, ByteSourcePtr& ioSource, PacketReaderPtr& outReader)
{
    SInt64 start = 0;
    if (const OSStatus status = MeasureID3v2Tags(*ioSource, start); status != noErr)
        return status;
    UInt8 header[kFormHeaderBytes];
    UInt32 got = 0;
    if (const OSStatus status = ioSource->ReadAt(start, sizeof(header), header, &got);
        status != noErr)
        return status;
    FileFacts facts;
    facts.mFileType = got == sizeof(header) ? TypeOfMagic(ReadBE32(header)) : 0;
    if (facts.mFileType == 0 || ReadBE32(header + 8) != CA_FOUR_CHAR_CODE('W', 'A', 'V', 'E'))
        return kAudioFileUnsupportedFileTypeError;
    if (const OSStatus status = ReadParts(*ioSource, start + kFormHeaderBytes, facts);
        status != noErr)
        return status;
    outReader = std::make_unique<ConstantPackets>(std::move(ioSource), std::move(facts));
    return noErr;
}

}  // namespace audiotoolbox
