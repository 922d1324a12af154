#include "tables/Sniffing.h"

#include "file/Endian.h"
#include "file/mpeg4/Brands.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace audiotoolbox
{
namespace
{

bool HasTextAt(FileHead inHead, std::size_t inPosition, std::string_view inText)
{
    return inHead.size() >= inPosition + inText.size() &&
           std::memcmp(inHead.data() + inPosition, inText.data(), inText.size()) == 0;
}

bool IsForm(FileHead inHead, std::string_view inMagic, std::string_view inKind)
{
    return HasTextAt(inHead, 0, inMagic) && HasTextAt(inHead, 8, inKind);
}

// 0 for no box container.
AudioFileTypeID TypeOfBrands(FileHead inHead)
{
    constexpr std::size_t kBoxHeaderBytes = 8;
    if (!HasTextAt(inHead, 4, "ftyp"))
        return 0;
    const std::size_t box = std::min<std::size_t>(inHead.size(), ReadBE32(inHead.data()));
    return MPEG4TypeOfBrands(inHead.first(std::max(box, kBoxHeaderBytes)).subspan(kBoxHeaderBytes));
}

// Layer bits 11, 10 and 01 are layers 1, 2 and 3; 00 belongs to ADTS.
bool IsMPEGFrame(FileHead inHead, UInt32 inLayerBits)
{
    if (inHead.size() < 4 || inHead[0] != 0xFF || (inHead[1] & 0xE0) != 0xE0)
        return false;
    const bool isReservedVersion = (inHead[1] & 0x18) == 0x08;
    const bool isBadRate = (inHead[2] & 0xF0) == 0xF0 || (inHead[2] & 0x0C) == 0x0C;
    return (inHead[1] >> 1 & 3u) == inLayerBits && !isReservedVersion && !isBadRate;
}

// -1 for no frame of AC-3 and its relatives.
int StreamIDOfAC3(FileHead inHead)
{
    if (inHead.size() < 6 || inHead[0] != 0x0B || inHead[1] != 0x77)
        return -1;
    return inHead[5] >> 3;
}

}  // namespace

bool LooksLikeWAVE(FileHead inHead)
{
    return IsForm(inHead, "RIFF", "WAVE");
}
bool LooksLikeRF64(FileHead inHead)
{
    return IsForm(inHead, "RF64", "WAVE");
}
bool LooksLikeBW64(FileHead inHead)
{
    return IsForm(inHead, "BW64", "WAVE");
}
bool LooksLikeAIFF(FileHead inHead)
{
    return IsForm(inHead, "FORM", "AIFF");
}
bool LooksLikeAIFC(FileHead inHead)
{
    return IsForm(inHead, "FORM", "AIFC");
}
bool LooksLikeCAF(FileHead inHead)
{
    return HasTextAt(inHead, 0, "caff");
}
bool LooksLikeAU(FileHead inHead)
{
    return HasTextAt(inHead, 0, ".snd");
}

bool LooksLikeWave64(FileHead inHead)
{
    constexpr std::string_view kGUID("riff\x2E\x91\xCF\x11\xA5\xD6\x28\xDB\x04\xC1\x00\x00", 16);
    return HasTextAt(inHead, 0, kGUID);
}

bool LooksLikeM4A(FileHead inHead)
{
    return TypeOfBrands(inHead) == kAudioFileM4AType;
}
bool LooksLikeM4B(FileHead inHead)
{
    return TypeOfBrands(inHead) == kAudioFileM4BType;
}
bool LooksLike3GP(FileHead inHead)
{
    return TypeOfBrands(inHead) == kAudioFile3GPType;
}
bool LooksLike3GP2(FileHead inHead)
{
    return TypeOfBrands(inHead) == kAudioFile3GP2Type;
}
bool LooksLikeMPEG4(FileHead inHead)
{
    return TypeOfBrands(inHead) == kAudioFileMPEG4Type;
}

bool LooksLikeFLAC(FileHead inHead)
{
    return HasTextAt(inHead, 0, "fLaC");
}

bool LooksLikeAMR(FileHead inHead)
{
    return HasTextAt(inHead, 0, "#!AMR\n") || HasTextAt(inHead, 0, "#!AMR-WB\n");
}

bool LooksLikeAC3(FileHead inHead)
{
    const int id = StreamIDOfAC3(inHead);
    return id >= 0 && id <= 10;
}

bool LooksLikeEAC3(FileHead inHead)
{
    const int id = StreamIDOfAC3(inHead);
    return id > 10 && id <= 16;
}

bool LooksLikeADTS(FileHead inHead)
{
    constexpr UInt32 kRates = 13;
    if (inHead.size() < 4 || inHead[0] != 0xFF || (inHead[1] & 0xF6) != 0xF0)
        return false;
    return (inHead[2] >> 2 & 0xFu) < kRates;
}

bool LooksLikeLOAS(FileHead inHead)
{
    return inHead.size() >= 3 && inHead[0] == 0x56 && (inHead[1] & 0xE0) == 0xE0;
}

bool LooksLikeMPEGLayer1(FileHead inHead)
{
    return IsMPEGFrame(inHead, 3);
}
bool LooksLikeMPEGLayer2(FileHead inHead)
{
    return IsMPEGFrame(inHead, 2);
}
bool LooksLikeMPEGLayer3(FileHead inHead)
{
    return IsMPEGFrame(inHead, 1);
}

}  // namespace audiotoolbox
