#include "file/mpeg4/Brands.h"

#include "file/Endian.h"

#include <optional>

namespace audiotoolbox
{
namespace
{

struct BrandRow
{
    UInt32 mBrand;
    UInt32 mMask;  // the bytes that count
    AudioFileTypeID mType;
};

constexpr UInt32 kWhole = 0xFFFFFFFF;
constexpr UInt32 kFront = 0xFFFFFF00;

constexpr BrandRow kBrands[] = {
    {CA_FOUR_CHAR_CODE('M', '4', 'A', ' '), kWhole, kAudioFileM4AType},
    {CA_FOUR_CHAR_CODE('M', '4', 'P', ' '), kWhole, kAudioFileM4AType},
    {CA_FOUR_CHAR_CODE('M', '4', 'B', ' '), kWhole, kAudioFileM4BType},
    {CA_FOUR_CHAR_CODE('3', 'g', 'p', 0), kFront, kAudioFile3GPType},
    {CA_FOUR_CHAR_CODE('3', 'g', 'r', 0), kFront, kAudioFile3GPType},
    {CA_FOUR_CHAR_CODE('3', 'g', 's', 0), kFront, kAudioFile3GPType},
    {CA_FOUR_CHAR_CODE('3', 'g', 'e', 0), kFront, kAudioFile3GPType},
    {CA_FOUR_CHAR_CODE('3', 'g', '2', 0), kFront, kAudioFile3GP2Type},
};

// Brands of the base format, which say nothing of the content.
constexpr BrandRow kGeneralBrands[] = {
    {CA_FOUR_CHAR_CODE('i', 's', 'o', 0), kFront, 0},
    {CA_FOUR_CHAR_CODE('m', 'p', '4', 0), kFront, 0},
    {CA_FOUR_CHAR_CODE('d', 'a', 's', 'h'), kWhole, 0},
};

template <std::size_t kCount>
std::optional<AudioFileTypeID> FindBrand(const BrandRow (&inRows)[kCount], UInt32 inBrand)
{
    for (const BrandRow& row : inRows)
        if ((inBrand & row.mMask) == row.mBrand)
            return row.mType;
    return std::nullopt;
}

}  // namespace

AudioFileTypeID MPEG4TypeOfBrands(std::span<const UInt8> inFtypBody)
{
    constexpr std::size_t kCompatibleBrands = 8;  // behind the major brand and its version
    if (inFtypBody.size() < 4)
        return kAudioFileMPEG4Type;
    const UInt32 major = ReadBE32(inFtypBody.data());
    if (const auto type = FindBrand(kBrands, major))
        return *type;
    if (!FindBrand(kGeneralBrands, major))
        return kAudioFileMPEG4Type;
    for (std::size_t place = kCompatibleBrands; place + 4 <= inFtypBody.size(); place += 4)
        if (const auto type = FindBrand(kBrands, ReadBE32(inFtypBody.data() + place)))
            return *type;
    return kAudioFileMPEG4Type;
}

}  // namespace audiotoolbox
