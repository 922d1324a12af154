// ChunkWalker: goes through the chunks of a file, each an identifier, a size and a body.
//
// Sizes in files lie: a walker never goes backwards, never beyond the source and stops after a
// bounded number of chunks. Units: bytes, positions from the start of the source.
#ifndef AUDIOTOOLBOX_FILE_CHUNKWALKER_H
#define AUDIOTOOLBOX_FILE_CHUNKWALKER_H

#include "file/ByteSource.h"

#include <span>
#include <vector>

namespace audiotoolbox
{

/// How one family of containers writes its chunks.
struct ChunkForm
{
    UInt32 mIDBytes;                          // 4, or 16 for an identifier that is a GUID
    UInt32 mSizeBytes;                        // 4 or 8
    bool mBigEndian;                          // of the size
    bool mSizeCountsHeader;                   // the size includes identifier and size
    UInt32 mAlignment;                        // bodies are padded to a multiple of this
    std::span<const FourCharCode> mKnownIDs;  // what tells a chunk from audio or padding
};

struct Chunk
{
    FourCharCode mID = 0;  // of a GUID its first four bytes; 0 for a GUID of another family
    SInt64 mBody = 0;      // where the body starts
    SInt64 mSize = 0;      // of the body, as claimed; -1 unknown
    SInt64 mRoom = 0;      // from the body to the end of the source; mSize may be larger
};

class ChunkWalker
{
public:
    /// The source and the form outlive the walker.
    ChunkWalker(ByteSource& inSource, const ChunkForm& inForm, SInt64 inStart);

    /// False behind the last chunk and after a failing read, see Status.
    bool Next();
    const Chunk& Current() const { return mChunk; }
    /// The size of the current chunk, where another place of the file tells it.
    void SetSize(SInt64 inSize) { mChunk.mSize = inSize; }
    OSStatus Status() const { return mStatus; }

    /// True when a chunk that the form knows starts there and lies within the source.
    bool IsKnownChunkAt(SInt64 inPosition);

    /// The current body or its first inMaxBytes, fewer where the source ends before. Empty after a
    /// failing read too.
    std::vector<UInt8> ReadBody(UInt32 inMaxBytes);

    /// The claimed size, or -1 (up to the end of the source) for the size 0 that software leaves
    /// in a stream that it could not go back in. A chunk of size 0 that another one follows is
    /// empty indeed.
    SInt64 SizeOfStreamedBody();

private:
    SInt64 PositionBehind(const Chunk& inChunk);
    bool ReadHeaderAt(SInt64 inPosition, Chunk& outChunk);

    ByteSource& mSource;
    const ChunkForm& mForm;
    SInt64 mNext;
    Chunk mChunk;
    OSStatus mStatus = noErr;
    UInt32 mCount = 0;
};

}  // namespace audiotoolbox

#endif
