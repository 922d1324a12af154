#include "file/write/mpeg4/SampleTables.h"

#include "file/write/mpeg4/BoxBuilder.h"

#include <algorithm>
#include <limits>

namespace audiotoolbox::mpeg4writer
{
namespace
{

constexpr std::size_t kSizesHead = 20;
constexpr std::size_t kOffsetsHead = 16;

bool NeedsWideOffsets(const SampleTables& inTables)
{
    return static_cast<UInt64>(inTables.mDataStart) + inTables.mIndex.TotalBytes() >
           std::numeric_limits<UInt32>::max();
}

std::size_t SizesByteCount(const SampleTables& inTables)
{
    const bool hasEntries = inTables.mIndex.ConstantSize() == 0;
    return kSizesHead + (hasEntries ? std::size_t{4} * inTables.mIndex.Count() : 0);
}

std::size_t OffsetsByteCount(const SampleTables& inTables)
{
    return kOffsetsHead + std::size_t{inTables.ChunkCount()} * (NeedsWideOffsets(inTables) ? 8 : 4);
}

// Gathers fields and hands them on in blocks, up to the first failure.
class BlockAppender
{
public:
    explicit BlockAppender(ByteSink& inSink) : mSink(inSink) {}

    void PutU32(UInt32 inValue)
    {
        for (int shift = 24; shift >= 0; shift -= 8)
            mBlock[mCount++] = static_cast<UInt8>(inValue >> shift);
        if (mCount == sizeof(mBlock))
            Flush();
    }

    OSStatus Flush()
    {
        if (mStatus == noErr && mCount > 0)
            mStatus = mSink.Append({mBlock, mCount});
        mCount = 0;
        return mStatus;
    }

    bool HasFailed() const { return mStatus != noErr; }

private:
    ByteSink& mSink;
    OSStatus mStatus = noErr;
    std::size_t mCount = 0;
    UInt8 mBlock[8192];
};

void PutSizes(const SampleTables& inTables, BlockAppender& ioBytes)
{
    const SampleIndex& index = inTables.mIndex;
    ioBytes.PutU32(static_cast<UInt32>(SizesByteCount(inTables)));
    ioBytes.PutU32(CA_FOUR_CHAR_CODE('s', 't', 's', 'z'));
    ioBytes.PutU32(0);  // version and flags
    ioBytes.PutU32(index.ConstantSize());
    ioBytes.PutU32(index.Count());
    if (index.ConstantSize() > 0)
        return;
    for (UInt32 packet = 0; packet < index.Count() && !ioBytes.HasFailed(); ++packet)
        ioBytes.PutU32(index.SizeOf(packet));
}

void PutOffsets(const SampleTables& inTables, BlockAppender& ioBytes)
{
    const bool isWide = NeedsWideOffsets(inTables);
    ioBytes.PutU32(static_cast<UInt32>(OffsetsByteCount(inTables)));
    ioBytes.PutU32(isWide ? CA_FOUR_CHAR_CODE('c', 'o', '6', '4')
                          : CA_FOUR_CHAR_CODE('s', 't', 'c', 'o'));
    ioBytes.PutU32(0);
    ioBytes.PutU32(inTables.ChunkCount());
    UInt64 offset = static_cast<UInt64>(inTables.mDataStart);
    for (UInt32 packet = 0; packet < inTables.mIndex.Count() && !ioBytes.HasFailed(); ++packet)
    {
        if (packet % inTables.mPacketsPerChunk == 0)
        {
            if (isWide)
                ioBytes.PutU32(static_cast<UInt32>(offset >> 32));
            ioBytes.PutU32(static_cast<UInt32>(offset));
        }
        offset += inTables.mIndex.SizeOf(packet);
    }
}

}  // namespace

std::size_t SampleTables::ByteCount() const
{
    return SizesByteCount(*this) + OffsetsByteCount(*this);
}

OSStatus SampleTables::Append(ByteSink& ioSink) const
{
    BlockAppender bytes(ioSink);
    PutSizes(*this, bytes);
    PutOffsets(*this, bytes);
    return bytes.Flush();
}

UInt32 PacketsPerChunk(UInt32 inRate, UInt32 inFramesPerPacket)
{
    return std::max(inRate / 2 / std::max(inFramesPerPacket, 1u), 1u);
}

}  // namespace audiotoolbox::mpeg4writer
