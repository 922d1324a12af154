// CAFFile: Core Audio Format.

#include "file/ChunkWalker.h"
#include "file/ConstantPackets.h"
#include "file/Endian.h"
#include "file/FactArithmetic.h"
#include "file/IndexedPackets.h"
#include "file/StoredLayout.h"
#include "file/caf/CAFFormat.h"
#include "file/caf/CAFPacketTable.h"
#include "file/caf/OpusPacket.h"

#include <algorithm>
#include <utility>

namespace audiotoolbox
{
namespace
{

constexpr FourCharCode kDescriptionID = CA_FOUR_CHAR_CODE('d', 'e', 's', 'c');
constexpr FourCharCode kDataID = CA_FOUR_CHAR_CODE('d', 'a', 't', 'a');
constexpr FourCharCode kCookieID = CA_FOUR_CHAR_CODE('k', 'u', 'k', 'i');
constexpr FourCharCode kTableID = CA_FOUR_CHAR_CODE('p', 'a', 'k', 't');
constexpr FourCharCode kLayoutID = CA_FOUR_CHAR_CODE('c', 'h', 'a', 'n');
constexpr FourCharCode kMagic = CA_FOUR_CHAR_CODE('c', 'a', 'f', 'f');

constexpr ChunkForm kForm = {4, 8, true, false, 1, {}};

constexpr UInt32 kFileHeaderBytes = 8;
constexpr UInt16 kVersion = 1;
constexpr UInt32 kEditCountBytes = 4;
constexpr UInt32 kMaxCookieBytes = 1 << 20;

struct Parts
{
    bool mHasDescription = false;
    bool mHasData = false;
    std::vector<UInt8> mCookie;
    std::optional<CAFPacketTable> mTable;
};

OSStatus TakeData(const Chunk& inChunk, const ByteSource& inSource, FileFacts& ioFacts)
{
    const bool isOpen = inChunk.mSize < 0;  // never finished: all that is there
    if (inChunk.mRoom < kEditCountBytes || (!isOpen && inChunk.mSize < kEditCountBytes))
        return kAudioFileInvalidFileError;
    SetDataRange(inSource, inChunk.mBody + kEditCountBytes,
                 isOpen ? -1 : inChunk.mSize - kEditCountBytes, ioFacts);
    return noErr;
}

void TakeTable(ChunkWalker& ioWalker, Parts& ioParts)
{
    const Chunk& chunk = ioWalker.Current();
    ioParts.mTable = ReadCAFPacketTable(ioWalker.ReadBody(kCAFPacketTableHeadBytes));
    if (!ioParts.mTable)
        return;
    const SInt64 size = chunk.mSize < 0 ? chunk.mRoom : std::min(chunk.mSize, chunk.mRoom);
    ioParts.mTable->mEntries = chunk.mBody + kCAFPacketTableHeadBytes;
    ioParts.mTable->mEntryBytes = size - kCAFPacketTableHeadBytes;
}

OSStatus TakeChunk(ChunkWalker& ioWalker, const ByteSource& inSource, Parts& ioParts,
                   FileFacts& ioFacts)
{
    const Chunk& chunk = ioWalker.Current();
    if (chunk.mID == kDescriptionID && !ioParts.mHasDescription)
    {
        ioParts.mHasDescription = true;
        return DescribeCAF(ioWalker.ReadBody(kCAFDescriptionBytes), ioFacts);
    }
    if (chunk.mID == kDataID && !ioParts.mHasData)
    {
        ioParts.mHasData = true;
        return TakeData(chunk, inSource, ioFacts);
    }
    if (chunk.mID == kCookieID)
        ioParts.mCookie = ioWalker.ReadBody(kMaxCookieBytes);
    else if (chunk.mID == kLayoutID)
        ioFacts.mChannelLayout = LayoutOfChunk(ioWalker.ReadBody(kMaxStoredLayoutBytes));
    else if (chunk.mID == kTableID)
        TakeTable(ioWalker, ioParts);
    return noErr;
}

OSStatus ReadParts(ByteSource& inSource, Parts& outParts, FileFacts& ioFacts)
{
    ChunkWalker walker(inSource, kForm, kFileHeaderBytes);
    while (walker.Next())
        if (const OSStatus status = TakeChunk(walker, inSource, outParts, ioFacts); status != noErr)
            return walker.Status() != noErr ? walker.Status() : status;
    if (walker.Status() != noErr)
        return walker.Status();
    return outParts.mHasDescription && outParts.mHasData ? noErr : kAudioFileInvalidFileError;
}

// What the table tells of frames, in frames of the data format. inStoredFrames: frames per packet
// of the description; where it described an upper layer, the core's packets are shorter.
AudioFilePacketTableInfo FramesOfTable(const CAFPacketTable& inTable, UInt64 inFramesInPackets,
                                       UInt32 inStoredFrames, UInt32 inFramesPerPacket)
{
    const SInt64 ratio = inFramesPerPacket > 0 && inStoredFrames > inFramesPerPacket
                             ? inStoredFrames / inFramesPerPacket
                             : 1;
    const SInt64 priming = inTable.mPrimingFrames / ratio;
    const SInt64 unpadded =
        static_cast<SInt64>(inFramesInPackets) - priming - inTable.mRemainderFrames / ratio;
    // A valid count of 0 was never filled in.
    const SInt64 valid = inTable.mValidFrames > 0 ? inTable.mValidFrames / ratio : unpadded;
    return MakePacketTable(inFramesInPackets, priming, std::max<SInt64>(valid, 0));
}

OSStatus MakeConstant(const Parts& inParts, UInt32 inStoredFrames, ByteSourcePtr& ioSource,
                      FileFacts& ioFacts, PacketReaderPtr& outReader)
{
    CountConstantPackets(ioFacts);
    const UInt32 frames = ioFacts.mDataFormat.mFramesPerPacket;
    if (inParts.mTable && frames > 1)
        ioFacts.mPacketTable =
            FramesOfTable(*inParts.mTable, FramesOfPackets(*ioFacts.mPacketCount, frames),
                          inStoredFrames, frames);
    CompleteFacts(ioFacts);
    outReader = std::make_unique<ConstantPackets>(std::move(ioSource), std::move(ioFacts));
    return noErr;
}

// Some software states a length of Opus packets that they do not have, and counts the valid frames
// with it. The first packet knows better; the stated count is dropped with the length.
OSStatus CorrectOpusLength(ByteSource& inSource, const PacketSizes& inIndex,
                           CAFPacketTable& ioTable, FileFacts& ioFacts)
{
    constexpr double kOpusRate = 48000.0;
    AudioStreamBasicDescription& format = ioFacts.mDataFormat;
    if (format.mFormatID != kAudioFormatOpus || format.mFramesPerPacket == 0 ||
        inIndex.Count() == 0)
        return noErr;
    UInt8 head[2];
    UInt32 got = 0;
    const UInt32 wanted = std::min<UInt32>(inIndex.SizeOf(0), sizeof(head));
    if (const OSStatus status = inSource.ReadAt(ioFacts.mDataOffset, wanted, head, &got);
        status != noErr)
        return status;
    const double frames = FramesOfOpusPacket({head, got}) * format.mSampleRate / kOpusRate;
    const auto whole = static_cast<UInt32>(std::min(frames, kOpusRate));
    if (whole == 0 || whole == format.mFramesPerPacket || frames != whole)
        return noErr;
    format.mFramesPerPacket = whole;
    ioTable.mValidFrames = 0;
    return noErr;
}

OSStatus MakeIndexed(Parts& ioParts, UInt32 inStoredFrames, ByteSourcePtr& ioSource,
                     FileFacts& ioFacts, PacketReaderPtr& outReader)
{
    if (!ioParts.mTable)
        return kAudioFileInvalidFileError;
    PacketSizes index;
    if (const OSStatus status = ReadCAFPacketIndex(*ioSource, *ioParts.mTable, ioFacts.mDataFormat,
                                                   ioFacts.mDataByteCount, index);
        status != noErr)
        return status;
    if (const OSStatus status = CorrectOpusLength(*ioSource, index, *ioParts.mTable, ioFacts);
        status != noErr)
        return status;
    const UInt32 frames = ioFacts.mDataFormat.mFramesPerPacket;
    const auto count = static_cast<UInt64>(index.Count());
    const UInt64 held = frames > 0 ? FramesOfPackets(count, frames) : index.TotalFrames();
    const bool isLayered = ioFacts.mFormats.size() > 1;
    ioFacts.mPacketTable =
        FramesOfTable(*ioParts.mTable, held, isLayered ? inStoredFrames : frames, frames);
    ioFacts.mPacketCount = count;
    ioFacts.mPacketSizeUpperBound = std::max<UInt32>(index.LargestSize(), 1);
    ioFacts.mDataByteCount = index.TotalBytes();
    CompleteFacts(ioFacts);
    outReader =
        std::make_unique<IndexedPackets>(std::move(ioSource), std::move(ioFacts), std::move(index));
    return noErr;
}

}  // namespace

OSStatus OpenCAF(AudioFileTypeID, ByteSourcePtr& ioSource, PacketReaderPtr& outReader)
{
    UInt8 header[kFileHeaderBytes] = {};
    UInt32 got = 0;
    if (const OSStatus status = ioSource->ReadAt(0, sizeof(header), header, &got); status != noErr)
        return status;
    if (ReadBE32(header) != kMagic)
        return kAudioFileUnsupportedFileTypeError;
    if (ReadBE16(header + 4) != kVersion)
        return kAudioFileInvalidFileError;

    FileFacts facts;
    facts.mFileType = kAudioFileCAFType;
    Parts parts;
    if (const OSStatus status = ReadParts(*ioSource, parts, facts); status != noErr)
        return status;
    const UInt32 storedFrames = facts.mDataFormat.mFramesPerPacket;
    if (facts.mDataFormat.mFormatID != kAudioFormatLinearPCM)
        if (const OSStatus status = ApplyCAFCookie(parts.mCookie, facts); status != noErr)
            return status;
    if (facts.mDataFormat.mBytesPerPacket > 0 && storedFrames > 0)
        return MakeConstant(parts, storedFrames, ioSource, facts, outReader);
    return MakeIndexed(parts, storedFrames, ioSource, facts, outReader);
}

}  // namespace audiotoolbox
