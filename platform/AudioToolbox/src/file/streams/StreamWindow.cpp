#include "file/streams/StreamWindow.h"

#include <cstring>

namespace audiotoolbox::streams
{
namespace
{

constexpr SInt64 kCapacity = 65536;

std::unique_ptr<UInt8[]> MakeBuffer(SInt64 inBytes)
{
    return std::make_unique_for_overwrite<UInt8[]>(static_cast<std::size_t>(inBytes));
}

}  // namespace

StreamWindow::StreamWindow(ByteSource& inSource, SInt64 inEnd)
    : mSource(inSource), mEnd(inEnd), mCapacity(kCapacity), mBuffer(MakeBuffer(kCapacity))
{
}

// What is already here of the new stretch stays; the rest of the buffer is free.
void StreamWindow::MoveTo(SInt64 inPosition, SInt64 inWanted)
{
    const bool overlaps = inPosition >= mStart && inPosition < mStart + mFilled;
    const SInt64 kept = overlaps ? mStart + mFilled - inPosition : 0;
    const UInt8* const from = overlaps ? mBuffer.get() + (inPosition - mStart) : mBuffer.get();
    if (inWanted > mCapacity)
    {
        const SInt64 capacity = std::max(inWanted, mCapacity * 2);
        auto larger = MakeBuffer(capacity);
        std::memcpy(larger.get(), from, static_cast<std::size_t>(kept));
        mBuffer = std::move(larger);
        mCapacity = capacity;
    }
    else
    {
        std::memmove(mBuffer.get(), from, static_cast<std::size_t>(kept));
    }
    mStart = inPosition;
    mFilled = kept;
}

std::span<const UInt8> StreamWindow::Fetch(SInt64 inPosition, SInt64 inWanted)
{
    MoveTo(inPosition, inWanted);
    const SInt64 room = std::min(mCapacity, mEnd - mStart) - mFilled;
    if (room <= 0)  // at or behind the end
        return {};
    UInt32 count = 0;
    mStatus = mSource.ReadAt(mStart + mFilled, static_cast<UInt32>(room), mBuffer.get() + mFilled,
                             &count);
    if (mStatus != noErr)
        return {};
    mFilled += count;
    if (count < room)  // shorter than the source had said
        mEnd = mStart + mFilled;
    return Held(inPosition);
}

}  // namespace audiotoolbox::streams
