#include "file/ChunkWalker.h"

#include "file/Endian.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace audiotoolbox
{
namespace
{

// More chunks than any file has; a file of nothing but empty chunks must not keep us for long.
constexpr UInt32 kMaxChunks = 16384;

constexpr UInt32 kMaxHeaderBytes = 24;

// The family of GUIDs whose first four bytes are the identifier of the chunk.
constexpr UInt8 kGUIDTail[12] = {0xF3, 0xAC, 0xD3, 0x11, 0x8C, 0xD1,
                                 0x00, 0xC0, 0x4F, 0x8E, 0xDB, 0x8A};

FourCharCode IDOfHeader(const ChunkForm& inForm, const UInt8* inHeader)
{
    if (inForm.mIDBytes > 4 && std::memcmp(inHeader + 4, kGUIDTail, sizeof(kGUIDTail)) != 0)
        return 0;
    return ReadBE32(inHeader);
}

SInt64 SizeOfHeader(const ChunkForm& inForm, const UInt8* inHeader)
{
    const UInt8* place = inHeader + inForm.mIDBytes;
    UInt64 size = 0;
    if (inForm.mSizeBytes == 4)
        size = inForm.mBigEndian ? ReadBE32(place) : ReadLE32(place);
    else
        size = inForm.mBigEndian ? ReadBE64(place) : ReadLE64(place);
    const UInt64 counted = inForm.mSizeCountsHeader ? inForm.mIDBytes + inForm.mSizeBytes : 0;
    if (size > std::numeric_limits<SInt64>::max() || size < counted)
        return -1;
    return static_cast<SInt64>(size - counted);
}

}  // namespace

ChunkWalker::ChunkWalker(ByteSource& inSource, const ChunkForm& inForm, SInt64 inStart)
    : mSource(inSource), mForm(inForm), mNext(inStart)
{
}

bool ChunkWalker::Next()
{
    if (mCount > 0)
        mNext = PositionBehind(mChunk);
    if (mNext < 0 || ++mCount > kMaxChunks)
        return false;
    return ReadHeaderAt(mNext, mChunk);
}

bool ChunkWalker::ReadHeaderAt(SInt64 inPosition, Chunk& outChunk)
{
    UInt8 header[kMaxHeaderBytes];
    const UInt32 bytes = mForm.mIDBytes + mForm.mSizeBytes;
    UInt32 got = 0;
    if (const OSStatus status = mSource.ReadAt(inPosition, bytes, header, &got); status != noErr)
        mStatus = status;
    if (got != bytes)
        return false;
    outChunk.mID = IDOfHeader(mForm, header);
    outChunk.mBody = inPosition + bytes;
    outChunk.mSize = SizeOfHeader(mForm, header);
    outChunk.mRoom = mSource.Size() - outChunk.mBody;
    return true;
}

bool ChunkWalker::IsKnownChunkAt(SInt64 inPosition)
{
    Chunk chunk;
    if (!ReadHeaderAt(inPosition, chunk))
        return false;
    const auto& ids = mForm.mKnownIDs;
    return std::find(ids.begin(), ids.end(), chunk.mID) != ids.end() && chunk.mSize >= 0 &&
           chunk.mSize <= chunk.mRoom;
}

SInt64 ChunkWalker::PositionBehind(const Chunk& inChunk)
{
    if (inChunk.mSize < 0 || inChunk.mSize >= inChunk.mRoom)
        return -1;
    const SInt64 end = inChunk.mBody + inChunk.mSize;
    const SInt64 past = inChunk.mSize % mForm.mAlignment;
    // Some software forgets the padding.
    if (past == 0 || IsKnownChunkAt(end))
        return end;
    const SInt64 padding = mForm.mAlignment - past;
    return padding < inChunk.mRoom - inChunk.mSize ? end + padding : -1;
}

std::vector<UInt8> ChunkWalker::ReadBody(UInt32 inMaxBytes)
{
    const SInt64 claimed = mChunk.mSize < 0 ? mChunk.mRoom : std::min(mChunk.mSize, mChunk.mRoom);
    const UInt32 wanted = static_cast<UInt32>(std::clamp<SInt64>(claimed, 0, inMaxBytes));
    std::vector<UInt8> bytes(wanted);
    UInt32 got = 0;
    if (const OSStatus status = mSource.ReadAt(mChunk.mBody, wanted, bytes.data(), &got);
        status != noErr)
        mStatus = status;
    bytes.resize(got);
    return bytes;
}

SInt64 ChunkWalker::SizeOfStreamedBody()
{
    if (mChunk.mSize == 0 && mChunk.mRoom > 0 && !IsKnownChunkAt(mChunk.mBody))
        return -1;
    return mChunk.mSize;
}

}  // namespace audiotoolbox
