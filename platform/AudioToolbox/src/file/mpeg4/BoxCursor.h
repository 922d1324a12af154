// BoxCursor: walks boxes and reads their fields, with few reads of the file and never outside it.
//
// A ByteWindow keeps one block of the file; cursors are light positions in it that may be copied.
// A cursor that is asked for more than its range holds gives zeros and stays failed.
#ifndef AUDIOTOOLBOX_FILE_MPEG4_BOXCURSOR_H
#define AUDIOTOOLBOX_FILE_MPEG4_BOXCURSOR_H

#include "file/ByteSource.h"

#include <memory>
#include <vector>

namespace audiotoolbox::mpeg4
{

/// Bytes of the file, the end being behind the last one.
struct ByteRange
{
    SInt64 mBegin = 0;
    SInt64 mEnd = 0;

    bool IsEmpty() const { return mEnd <= mBegin; }
};

class ByteWindow
{
public:
    /// inSource  not owned, outlives the window
    explicit ByteWindow(ByteSource& inSource);

    /// inCount bytes at a place of the file, at most 16; null where the file ends before or a read
    /// fails. Valid until the next call.
    const UInt8* At(SInt64 inPosition, UInt32 inCount);

    /// Reads past the kept block. False, noted, when not all bytes came.
    bool ReadFully(SInt64 inPosition, void* outBytes, UInt32 inCount);

    ByteSource& Source() const { return mSource; }
    SInt64 FileSize() const { return mFileSize; }

    /// The first failing read's status, noErr while all went well.
    OSStatus Status() const { return mStatus; }
    void NoteStatus(OSStatus inStatus);

private:
    bool Load(SInt64 inPosition);

    ByteSource& mSource;
    SInt64 mFileSize;
    SInt64 mStart = 0;  // where in the file the kept bytes stand
    UInt32 mCount = 0;
    OSStatus mStatus = noErr;
    std::unique_ptr<UInt8[]> mBytes;
};

struct Box
{
    UInt32 mType = 0;
    ByteRange mBody;
};

class BoxCursor
{
public:
    BoxCursor(ByteWindow& inWindow, ByteRange inRange)
        : mWindow(&inWindow), mPosition(inRange.mBegin), mEnd(inRange.mEnd)
    {
    }

    UInt8 ReadU8() { return static_cast<UInt8>(Read(1)); }
    UInt16 ReadU16() { return static_cast<UInt16>(Read(2)); }
    UInt32 ReadU24() { return static_cast<UInt32>(Read(3)); }
    UInt32 ReadU32() { return static_cast<UInt32>(Read(4)); }
    UInt64 ReadU64() { return Read(8); }

    /// A field of 32 bits, or of 64 where the box says so.
    UInt64 ReadWide(bool inIsWide) { return Read(inIsWide ? 8 : 4); }

    void Skip(SInt64 inCount);

    /// The next box; the cursor then stands behind it. False at the end and for a damaged head. A
    /// box that claims more than its parent holds is cut to it.
    bool NextBox(Box& outBox);

    bool IsOK() const { return mIsOK; }
    SInt64 Position() const { return mPosition; }
    SInt64 Left() const { return mEnd - mPosition; }
    ByteRange Rest() const { return {mPosition, mEnd}; }

private:
    UInt64 Read(UInt32 inBytes);

    ByteWindow* mWindow;
    SInt64 mPosition;
    SInt64 mEnd;
    bool mIsOK = true;
};

/// The bytes of a small box's body, cut to inMost; empty when a read fails.
std::vector<UInt8> ReadBody(ByteWindow& ioWindow, ByteRange inBody, UInt32 inMost = 4096);

/// The body of the first child box of this type. False when there is none.
bool FindBox(BoxCursor inChildren, UInt32 inType, ByteRange& outBody);

}  // namespace audiotoolbox::mpeg4

#endif
