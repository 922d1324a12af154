#include "file/mpeg4/SampleTableReader.h"

#include <algorithm>

namespace audiotoolbox::mpeg4
{
namespace
{

constexpr SInt64 kVersionAndFlags = 4;

// A callback source may claim any size, so no more than this is reserved before entries come.
constexpr std::size_t kMostReserved = std::size_t{1} << 18;

// How many packets there are, and how their sizes are found.
struct SizeTable
{
    UInt32 mCount = 0;
    UInt32 mConstantSize = 0;  // bytes; 0: an entry for each packet
    UInt32 mEntryBits = 32;
};

bool HoldsEntries(const BoxCursor& inTable, UInt64 inCount, UInt64 inBits)
{
    return inTable.IsOK() && (inCount * inBits + 7) / 8 <= static_cast<UInt64>(inTable.Left());
}

// The entries follow behind the cursor's position.
bool ReadSizeHead(BoxCursor& ioTable, bool inIsCompact, SizeTable& outHead)
{
    ioTable.Skip(kVersionAndFlags);
    const UInt32 field = ioTable.ReadU32();
    outHead.mCount = ioTable.ReadU32();
    if (!inIsCompact)
    {
        outHead.mConstantSize = field;
        return ioTable.IsOK() && (field > 0 || HoldsEntries(ioTable, outHead.mCount, 32));
    }
    outHead.mEntryBits = field & 0xFFu;
    const bool isKnown =
        outHead.mEntryBits == 4 || outHead.mEntryBits == 8 || outHead.mEntryBits == 16;
    return isKnown && HoldsEntries(ioTable, outHead.mCount, outHead.mEntryBits);
}

void ReadSizes(BoxCursor ioTable, const SizeTable& inHead, PacketIndex& ioIndex)
{
    UInt8 pair = 0;
    for (UInt32 packet = 0; packet < inHead.mCount && ioTable.IsOK(); ++packet)
    {
        UInt32 size = 0;
        if (inHead.mEntryBits == 32)
            size = ioTable.ReadU32();
        else if (inHead.mEntryBits == 16)
            size = ioTable.ReadU16();
        else if (inHead.mEntryBits == 8)
            size = ioTable.ReadU8();
        else if (packet % 2 == 0)
            size = (pair = ioTable.ReadU8()) >> 4;
        else
            size = pair & 0x0Fu;
        if (ioTable.IsOK())
            ioIndex.AppendSize(size);
    }
}

// The table that says how many packets each chunk holds, one entry for a stretch of chunks.
class ChunkRuns
{
public:
    explicit ChunkRuns(BoxCursor inTable) : mTable(inTable)
    {
        mTable.Skip(kVersionAndFlags);
        mLeft = mTable.ReadU32();
        ReadEntry();
        mCurrent = mNext;
        ReadEntry();
    }

    /// Packets in a chunk, counted from 1; to be asked in ascending order. 0 behind the audio that
    /// the first sample description describes.
    UInt32 PacketsIn(UInt32 inChunk)
    {
        while (mHasNext && mNext.mFirstChunk <= inChunk)
        {
            mCurrent = mNext;
            ReadEntry();
        }
        return mCurrent.mDescription == 1 ? mCurrent.mPackets : 0;
    }

private:
    struct Entry
    {
        UInt32 mFirstChunk = 0;
        UInt32 mPackets = 0;
        UInt32 mDescription = 0;
    };

    void ReadEntry()
    {
        mHasNext = mLeft > 0;
        if (!mHasNext)
            return;
        --mLeft;
        mNext.mFirstChunk = mTable.ReadU32();
        mNext.mPackets = mTable.ReadU32();
        mNext.mDescription = mTable.ReadU32();
        mHasNext = mTable.IsOK();
    }

    BoxCursor mTable;
    UInt32 mLeft = 0;
    bool mHasNext = false;
    Entry mCurrent;
    Entry mNext;
};

bool PlaceChunks(ByteWindow& ioWindow, const SampleTables& inTables, UInt32 inPackets,
                 PacketIndex& ioIndex)
{
    const bool isWide = inTables.mOffsets32.IsEmpty();
    BoxCursor offsets(ioWindow, isWide ? inTables.mOffsets64 : inTables.mOffsets32);
    offsets.Skip(kVersionAndFlags);
    const UInt32 chunks = offsets.ReadU32();
    if (!HoldsEntries(offsets, chunks, isWide ? 64 : 32))
        return false;

    // Two tables are read side by side, each through a block of its own.
    ByteWindow runWindow(ioWindow.Source());
    ChunkRuns chunkRuns(BoxCursor(runWindow, inTables.mChunkRuns));
    const UInt32 splits = ioIndex.ConstantSize() > 0 ? 0 : inPackets / 64;
    const std::size_t runs = std::min<std::size_t>(chunks, inPackets) + splits;
    ioIndex.Reserve(0, std::min(runs, kMostReserved));
    UInt32 left = inPackets;
    for (UInt32 chunk = 1; chunk <= chunks && left > 0; ++chunk)
    {
        const UInt64 offset = offsets.ReadWide(isWide);
        const UInt32 packets = std::min(chunkRuns.PacketsIn(chunk), left);
        if (packets == 0 || !offsets.IsOK() || !ioIndex.Place(static_cast<SInt64>(offset), packets))
            break;
        left -= packets;
    }
    ioWindow.NoteStatus(runWindow.Status());
    return ioWindow.Status() == noErr;
}

}  // namespace

bool ReadSampleSizesAndPlaces(ByteWindow& ioWindow, const SampleTables& inTables,
                              UInt32 inFrameBytes, PacketIndex& ioIndex)
{
    const bool isCompact = inTables.mSizes.IsEmpty();
    BoxCursor sizes(ioWindow, isCompact ? inTables.mCompactSizes : inTables.mSizes);
    SizeTable head;
    if (!ReadSizeHead(sizes, isCompact, head))
        return false;
    if (inFrameBytes > 0)
    {
        // Files in QuickTime's manner state 1 here, whatever a frame's size is.
        if (head.mCount > 0 && head.mConstantSize != inFrameBytes && head.mConstantSize != 1)
            return false;
        head.mConstantSize = inFrameBytes;
    }
    if (head.mConstantSize > 0)
    {
        // Packets do not overlap, so the file bounds how many there are.
        const SInt64 most = ioWindow.FileSize() / head.mConstantSize;
        head.mCount = static_cast<UInt32>(std::min<SInt64>(head.mCount, most));
        ioIndex.SetConstantSize(head.mConstantSize);
    }
    else
    {
        ioIndex.Reserve(std::min<std::size_t>(head.mCount, kMostReserved), 0);
        ReadSizes(sizes, head, ioIndex);
        if (ioWindow.Status() != noErr)
            return false;
    }
    return PlaceChunks(ioWindow, inTables, head.mCount, ioIndex);
}

bool ReadPacketTimes(ByteWindow& ioWindow, ByteRange inTable, PacketTimes& ioTimes)
{
    BoxCursor table(ioWindow, inTable);
    table.Skip(kVersionAndFlags);
    const UInt32 count = table.ReadU32();
    if (!HoldsEntries(table, count, 64))
        return false;
    for (UInt32 entry = 0; entry < count && table.IsOK(); ++entry)
    {
        const UInt32 packets = table.ReadU32();
        ioTimes.Add(packets, table.ReadU32());
    }
    return table.IsOK();
}

}  // namespace audiotoolbox::mpeg4
