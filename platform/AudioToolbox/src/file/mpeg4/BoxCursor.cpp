#include "file/mpeg4/BoxCursor.h"

#include "file/Endian.h"

#include <algorithm>

namespace audiotoolbox::mpeg4
{
namespace
{

constexpr UInt32 kWindowBytes = 16384;
constexpr UInt32 kShortHead = 8;
constexpr UInt32 kLongHead = 16;

}  // namespace

ByteWindow::ByteWindow(ByteSource& inSource)
    : mSource(inSource),
      mFileSize(inSource.Size()),
      mBytes(std::make_unique_for_overwrite<UInt8[]>(kWindowBytes))
{
}

const UInt8* ByteWindow::At(SInt64 inPosition, UInt32 inCount)
{
    if (inPosition < 0 || inPosition > mFileSize || mFileSize - inPosition < SInt64{inCount})
        return nullptr;
    const bool isKept = inPosition >= mStart && inPosition + inCount <= mStart + SInt64{mCount};
    if (!isKept && (!Load(inPosition) || mCount < inCount))
        return nullptr;
    return mBytes.get() + (inPosition - mStart);
}

bool ByteWindow::Load(SInt64 inPosition)
{
    mStart = inPosition;
    const OSStatus status = mSource.ReadAt(inPosition, kWindowBytes, mBytes.get(), &mCount);
    if (status == noErr)
        return true;
    mCount = 0;
    NoteStatus(status);
    return false;
}

bool ByteWindow::ReadFully(SInt64 inPosition, void* outBytes, UInt32 inCount)
{
    UInt32 count = 0;
    NoteStatus(mSource.ReadAt(inPosition, inCount, outBytes, &count));
    return count == inCount;
}

void ByteWindow::NoteStatus(OSStatus inStatus)
{
    if (mStatus == noErr)
        mStatus = inStatus;
}

UInt64 BoxCursor::Read(UInt32 inBytes)
{
    const UInt8* bytes = nullptr;
    if (mIsOK && Left() >= SInt64{inBytes})
        bytes = mWindow->At(mPosition, inBytes);
    if (bytes == nullptr)
    {
        mIsOK = false;
        return 0;
    }
    mPosition += inBytes;
    UInt64 value = 0;
    for (UInt32 index = 0; index < inBytes; ++index)
        value = (value << 8) | bytes[index];
    return value;
}

void BoxCursor::Skip(SInt64 inCount)
{
    if (inCount < 0 || inCount > Left())
        mIsOK = false;
    else
        mPosition += inCount;
}

bool BoxCursor::NextBox(Box& outBox)
{
    if (!mIsOK || Left() < SInt64{kShortHead})
        return false;
    const SInt64 start = mPosition;
    UInt64 size = ReadU32();
    outBox.mType = ReadU32();
    UInt32 head = kShortHead;
    if (size == 1)
    {
        size = ReadU64();
        head = kLongHead;
    }
    const UInt64 room = static_cast<UInt64>(mEnd - start);
    if (size == 0 || size > room)  // 0: up to the end
        size = room;
    if (!mIsOK || size < head)
        return false;
    outBox.mBody = {start + head, start + static_cast<SInt64>(size)};
    mPosition = outBox.mBody.mEnd;
    return true;
}

std::vector<UInt8> ReadBody(ByteWindow& ioWindow, ByteRange inBody, UInt32 inMost)
{
    const SInt64 end = std::min(inBody.mEnd, ioWindow.FileSize());
    if (inBody.mBegin < 0 || end <= inBody.mBegin)
        return {};
    std::vector<UInt8> bytes(
        static_cast<std::size_t>(std::min<SInt64>(end - inBody.mBegin, inMost)));
    if (!ioWindow.ReadFully(inBody.mBegin, bytes.data(), static_cast<UInt32>(bytes.size())))
        return {};
    return bytes;
}

bool FindBox(BoxCursor inChildren, UInt32 inType, ByteRange& outBody)
{
    Box box;
    while (inChildren.NextBox(box))
    {
        if (box.mType != inType)
            continue;
        outBody = box.mBody;
        return true;
    }
    return false;
}

}  // namespace audiotoolbox::mpeg4
