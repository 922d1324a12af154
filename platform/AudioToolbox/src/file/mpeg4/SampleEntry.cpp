#include "file/mpeg4/SampleEntry.h"

#include <bit>

namespace audiotoolbox::mpeg4
{
namespace
{

constexpr std::size_t kMaxBoxes = 64;
constexpr UInt32 kWave = CA_FOUR_CHAR_CODE('w', 'a', 'v', 'e');
constexpr UInt32 kEnda = CA_FOUR_CHAR_CODE('e', 'n', 'd', 'a');

// 16.16 fixed point.
double FixedRate(UInt32 inField)
{
    return inField / 65536.0;
}

// The fields that QuickTime added behind those of version 0.
void ReadVersion2(BoxCursor& ioCursor, SampleEntry& ioEntry)
{
    ioCursor.Skip(4);  // size of the fields
    ioEntry.mRate = std::bit_cast<double>(ioCursor.ReadU64());
    ioEntry.mChannels = ioCursor.ReadU32();
    ioCursor.Skip(4);
    ioEntry.mBits = ioCursor.ReadU32();
    ioEntry.mPCMFlags = ioCursor.ReadU32();
    ioEntry.mFrameBytes = ioCursor.ReadU32();
    ioCursor.Skip(4);  // frames of a packet
}

void CollectBoxes(BoxCursor inBoxes, std::vector<Box>& ioBoxes)
{
    Box box;
    while (inBoxes.NextBox(box) && ioBoxes.size() < kMaxBoxes)
        ioBoxes.push_back(box);
}

// A QuickTime entry keeps its codec's records one level deeper. 'wave' holds no further one.
void CollectBoxesOfEntry(ByteWindow& ioWindow, BoxCursor inBoxes, SampleEntry& ioEntry)
{
    CollectBoxes(inBoxes, ioEntry.mBoxes);
    const std::vector<Box> outer = ioEntry.mBoxes;
    for (const Box& box : outer)
        if (box.mType == kWave)
            CollectBoxes(BoxCursor(ioWindow, box.mBody), ioEntry.mBoxes);
    for (const Box& box : ioEntry.mBoxes)
        if (box.mType == kEnda)
            ioEntry.mIsLittleEndian = BoxCursor(ioWindow, box.mBody).ReadU16() == 1;
}

void ReadFields(BoxCursor& ioCursor, bool inIsQuickTime, SampleEntry& outEntry)
{
    ioCursor.Skip(6);
    outEntry.mDataReference = ioCursor.ReadU16();
    const UInt16 version = ioCursor.ReadU16();
    ioCursor.Skip(2 + 4);
    outEntry.mChannels = ioCursor.ReadU16();
    outEntry.mBits = ioCursor.ReadU16();
    ioCursor.Skip(2 + 2);
    outEntry.mRate = FixedRate(ioCursor.ReadU32());
    if (inIsQuickTime && version == 1)
        ioCursor.Skip(16);  // packet sizes, which the tables know better
    else if (inIsQuickTime && version == 2)
        ReadVersion2(ioCursor, outEntry);
}

}  // namespace

std::vector<UInt8> SampleEntry::BytesOf(ByteWindow& ioWindow, UInt32 inType) const
{
    for (const Box& box : mBoxes)
        if (box.mType == inType)
            return ReadBody(ioWindow, box.mBody);
    return {};
}

bool ReadSampleEntry(ByteWindow& ioWindow, ByteRange inDescriptions, SampleEntry& outEntry)
{
    BoxCursor descriptions(ioWindow, inDescriptions);
    // In a table of version 1 an entry's own version is the base format's, without more fields.
    const bool isQuickTime = descriptions.ReadU8() == 0;
    descriptions.Skip(3);
    const UInt32 count = descriptions.ReadU32();
    Box box;
    if (count == 0 || !descriptions.NextBox(box))
        return false;
    outEntry.mType = box.mType;
    BoxCursor fields(ioWindow, box.mBody);
    ReadFields(fields, isQuickTime, outEntry);
    if (!fields.IsOK())
        return false;
    CollectBoxesOfEntry(ioWindow, fields, outEntry);
    return true;
}

bool IsSelfContained(ByteWindow& ioWindow, ByteRange inDataReferences, UInt32 inReference)
{
    if (inDataReferences.IsEmpty())
        return true;  // nothing to refer to but this file
    BoxCursor references(ioWindow, inDataReferences);
    references.Skip(4 + 4);  // version and flags, count
    Box box;
    for (UInt32 index = 1; references.NextBox(box); ++index)
    {
        if (index != inReference)
            continue;
        BoxCursor body(ioWindow, box.mBody);
        const UInt32 flags = body.ReadU32();
        return body.IsOK() && (flags & 1u) != 0;
    }
    return false;
}

}  // namespace audiotoolbox::mpeg4
