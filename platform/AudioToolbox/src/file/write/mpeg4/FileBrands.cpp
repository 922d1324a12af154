// By which brands the members of the family are told apart.
#include "file/write/mpeg4/MovieHead.h"

namespace audiotoolbox::mpeg4writer
{
namespace
{

constexpr UInt32 Code(char inA, char inB, char inC, char inD)
{
    return CA_FOUR_CHAR_CODE(inA, inB, inC, inD);
}

struct BrandRow
{
    AudioFileTypeID mType;
    UInt32 mMajor;
    UInt32 mMinor;
    UInt32 mCompatible[3];  // beside the major brand
};

constexpr UInt32 kISO = Code('i', 's', 'o', 'm');
constexpr UInt32 kISO2 = Code('i', 's', 'o', '2');  // has groups of packets ('sgpd', 'sbgp')
constexpr UInt32 kMP42 = Code('m', 'p', '4', '2');
constexpr UInt32 k3GP6 = Code('3', 'g', 'p', '6');

constexpr BrandRow kBrands[] = {
    {kAudioFile3GP2Type, Code('3', 'g', '2', 'a'), 0x10000, {k3GP6, kISO, kISO2}},
    {kAudioFile3GPType, k3GP6, 0x100, {kMP42, kISO, kISO2}},
    {kAudioFileM4AType, Code('M', '4', 'A', ' '), 0, {kMP42, kISO, kISO2}},
    {kAudioFileM4BType, Code('M', '4', 'B', ' '), 0, {kMP42, kISO, kISO2}},
    {kAudioFileMPEG4Type, kMP42, 0, {Code('m', 'p', '4', '1'), kISO, kISO2}},
};

const BrandRow* FindRow(AudioFileTypeID inType)
{
    for (const BrandRow& row : kBrands)
        if (row.mType == inType)
            return &row;
    return nullptr;
}

}  // namespace

bool HasBrands(AudioFileTypeID inType)
{
    return FindRow(inType) != nullptr;
}

void PutFileType(AudioFileTypeID inType, BoxBuilder& ioBoxes)
{
    const BrandRow* row = FindRow(inType);
    if (row == nullptr)
        return;
    ioBoxes.Begin(Code('f', 't', 'y', 'p'));
    ioBoxes.PutU32(row->mMajor);
    ioBoxes.PutU32(row->mMinor);
    ioBoxes.PutU32(row->mMajor);
    for (const UInt32 brand : row->mCompatible)
        ioBoxes.PutU32(brand);
    ioBoxes.End();
}

}  // namespace audiotoolbox::mpeg4writer
