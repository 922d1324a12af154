#include "file/mpeg4/Fragments.h"

#include <algorithm>

namespace audiotoolbox::mpeg4
{
namespace
{

constexpr UInt32 kMoof = CA_FOUR_CHAR_CODE('m', 'o', 'o', 'f');
constexpr UInt32 kTraf = CA_FOUR_CHAR_CODE('t', 'r', 'a', 'f');
constexpr UInt32 kTfhd = CA_FOUR_CHAR_CODE('t', 'f', 'h', 'd');
constexpr UInt32 kTrun = CA_FOUR_CHAR_CODE('t', 'r', 'u', 'n');

// Flags of a track fragment's header: fields that it has, and how offsets count.
constexpr UInt32 kHasBaseOffset = 0x1;
constexpr UInt32 kHasDescription = 0x2;
constexpr UInt32 kHasDuration = 0x8;
constexpr UInt32 kHasSize = 0x10;
constexpr UInt32 kBaseIsMoof = 0x20000;

// Flags of a run: fields of the run, and of each packet in it.
constexpr UInt32 kRunHasOffset = 0x1;
constexpr UInt32 kRunHasFirstFlags = 0x4;
constexpr UInt32 kEachHasDuration = 0x100;
constexpr UInt32 kEachHasSize = 0x200;
constexpr UInt32 kEachHasFlags = 0x400;
constexpr UInt32 kEachHasShift = 0x800;

struct RunHead
{
    UInt32 mFlags = 0;
    UInt32 mPackets = 0;
    SInt64 mOffset = 0;
};

class FragmentWalk
{
public:
    FragmentWalk(ByteWindow& ioWindow, FragmentDefaults inDefaults, PacketIndex& ioIndex,
                 PacketTimes& ioTimes)
        : mWindow(ioWindow), mDefaults(inDefaults), mIndex(ioIndex), mTimes(ioTimes)
    {
    }

    // False when the walk has to end.
    bool ReadMoof(const Box& inMoof, SInt64 inStart)
    {
        mMoofStart = inStart;
        mDataEnd = inStart;
        BoxCursor boxes(mWindow, inMoof.mBody);
        Box box;
        while (boxes.NextBox(box))
            if (box.mType == kTraf && !ReadTraf(BoxCursor(mWindow, box.mBody)))
                return false;
        return true;
    }

private:
    bool ReadTraf(BoxCursor inBoxes)
    {
        ByteRange header;
        if (!FindBox(inBoxes, kTfhd, header))
            return true;
        FragmentDefaults defaults = mDefaults;
        SInt64 base = 0;
        const bool isOurs = ReadHeader(BoxCursor(mWindow, header), defaults, base);
        SInt64 next = base;
        Box box;
        while (inBoxes.NextBox(box))
        {
            if (box.mType != kTrun)
                continue;
            if (!ReadRun(BoxCursor(mWindow, box.mBody), isOurs, defaults, base, next))
                return false;
        }
        mDataEnd = next;
        return true;
    }

    // True for a fragment of the track that is wanted.
    bool ReadHeader(BoxCursor inHeader, FragmentDefaults& ioDefaults, SInt64& outBase)
    {
        const UInt32 flags = inHeader.ReadU32() & 0xFFFFFFu;
        const UInt32 track = inHeader.ReadU32();
        outBase = (flags & kBaseIsMoof) != 0 ? mMoofStart : mDataEnd;
        if ((flags & kHasBaseOffset) != 0)
            outBase = static_cast<SInt64>(inHeader.ReadU64());
        if ((flags & kHasDescription) != 0)
            ioDefaults.mDescription = inHeader.ReadU32();
        if ((flags & kHasDuration) != 0)
            ioDefaults.mDuration = inHeader.ReadU32();
        if ((flags & kHasSize) != 0)
            ioDefaults.mSize = inHeader.ReadU32();
        return inHeader.IsOK() && track == mDefaults.mTrackID && ioDefaults.mDescription == 1;
    }

    bool ReadRun(BoxCursor inRun, bool inIsOurs, const FragmentDefaults& inDefaults, SInt64 inBase,
                 SInt64& ioNext)
    {
        RunHead head;
        head.mFlags = inRun.ReadU32() & 0xFFFFFFu;
        head.mPackets = inRun.ReadU32();
        head.mOffset = ioNext;
        if ((head.mFlags & kRunHasOffset) != 0 &&
            __builtin_add_overflow(inBase, SInt64{static_cast<SInt32>(inRun.ReadU32())},
                                   &head.mOffset))
            return false;
        if ((head.mFlags & kRunHasFirstFlags) != 0)
            inRun.Skip(4);
        if (!IsCountSane(inRun, head, inDefaults))
            return false;
        return inIsOurs ? AddPackets(inRun, head, inDefaults, ioNext)
                        : PassPackets(inRun, head, inDefaults, ioNext);
    }

    // Without a field for each packet only the file bounds their number.
    bool IsCountSane(const BoxCursor& inRun, const RunHead& inHead,
                     const FragmentDefaults& inDefaults) const
    {
        if (!inRun.IsOK())
            return false;
        const UInt64 entryBytes = BytesOfEntry(inHead.mFlags);
        if (entryBytes > 0)
            return inHead.mPackets <= static_cast<UInt64>(inRun.Left()) / entryBytes;
        return UInt64{inHead.mPackets} * std::max(inDefaults.mSize, 1u) <=
               static_cast<UInt64>(mWindow.FileSize());
    }

    static UInt64 BytesOfEntry(UInt32 inFlags)
    {
        UInt64 bytes = 0;
        for (const UInt32 field : {kEachHasDuration, kEachHasSize, kEachHasFlags, kEachHasShift})
            bytes += (inFlags & field) != 0 ? 4 : 0;
        return bytes;
    }

    struct Entry
    {
        UInt32 mDuration;
        UInt32 mSize;
    };

    static Entry ReadEntry(BoxCursor& ioRun, UInt32 inFlags, const FragmentDefaults& inDefaults)
    {
        Entry entry = {inDefaults.mDuration, inDefaults.mSize};
        if ((inFlags & kEachHasDuration) != 0)
            entry.mDuration = ioRun.ReadU32();
        if ((inFlags & kEachHasSize) != 0)
            entry.mSize = ioRun.ReadU32();
        if ((inFlags & kEachHasFlags) != 0)
            ioRun.Skip(4);
        if ((inFlags & kEachHasShift) != 0)
            ioRun.Skip(4);
        return entry;
    }

    bool AddPackets(BoxCursor inRun, const RunHead& inHead, const FragmentDefaults& inDefaults,
                    SInt64& outNext)
    {
        SInt64 offset = inHead.mOffset;
        for (UInt32 packet = 0; packet < inHead.mPackets; ++packet)
        {
            const Entry entry = ReadEntry(inRun, inHead.mFlags, inDefaults);
            if (!inRun.IsOK() || !IsRoomFor(entry.mSize))
                return false;
            if (mIndex.ConstantSize() == 0)
                mIndex.AppendSize(entry.mSize);
            if (!mIndex.Place(offset, 1))
                return false;
            mBytes += entry.mSize;
            mTimes.Add(1, entry.mDuration);
            offset += entry.mSize;
        }
        outNext = offset;
        return true;
    }

    // Fragments that name the same bytes again and again would make an index without bound.
    bool IsRoomFor(UInt32 inBytes) const
    {
        if (mIndex.ConstantSize() > 0 && inBytes != mIndex.ConstantSize())
            return false;
        return inBytes > 0 && mBytes + inBytes <= mWindow.FileSize();
    }

    static bool PassPackets(BoxCursor inRun, const RunHead& inHead,
                            const FragmentDefaults& inDefaults, SInt64& outNext)
    {
        outNext = inHead.mOffset;
        if ((inHead.mFlags & kEachHasSize) == 0)
            return !__builtin_add_overflow(
                outNext, SInt64{inHead.mPackets} * SInt64{inDefaults.mSize}, &outNext);
        for (UInt32 packet = 0; packet < inHead.mPackets && inRun.IsOK(); ++packet)
            if (__builtin_add_overflow(
                    outNext, SInt64{ReadEntry(inRun, inHead.mFlags, inDefaults).mSize}, &outNext))
                return false;
        return inRun.IsOK();
    }

    ByteWindow& mWindow;
    FragmentDefaults mDefaults;
    PacketIndex& mIndex;
    PacketTimes& mTimes;
    SInt64 mMoofStart = 0;
    SInt64 mDataEnd = 0;  // behind the data of the last track fragment
    SInt64 mBytes = 0;    // of all packets added
};

FragmentDefaults DefaultsOf(const Movie& inMovie, UInt32 inTrackID)
{
    for (const FragmentDefaults& defaults : inMovie.mFragmentDefaults)
        if (defaults.mTrackID == inTrackID)
            return defaults;
    FragmentDefaults none;
    none.mTrackID = inTrackID;
    return none;
}

}  // namespace

void ReadFragments(ByteWindow& ioWindow, const Movie& inMovie, UInt32 inTrackID,
                   PacketIndex& ioIndex, PacketTimes& ioTimes)
{
    FragmentWalk walk(ioWindow, DefaultsOf(inMovie, inTrackID), ioIndex, ioTimes);
    BoxCursor boxes(ioWindow, {inMovie.mEnd, ioWindow.FileSize()});
    Box box;
    for (SInt64 start = boxes.Position(); boxes.NextBox(box); start = boxes.Position())
        if (box.mType == kMoof && !walk.ReadMoof(box, start))
            return;
}

}  // namespace audiotoolbox::mpeg4
