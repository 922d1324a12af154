#include "Coding.h"

#include <AudioToolbox/AudioToolbox.h>

#include <stdexcept>

namespace export_matrix
{

namespace
{

struct FormatRow
{
    std::uint32_t mFormat;
    std::int32_t mPriming;
    double mLeastDecibels;
};

constexpr FormatRow kFormats[] = {
    {kAudioFormatMPEG4AAC, 1024, 20.0},    {kAudioFormatAC3, 256, 20.0},
    {kAudioFormatEnhancedAC3, 256, 20.0},  {kAudioFormatMPEGLayer2, 481, 20.0},
    {kAudioFormatMPEGLayer3, 1105, 20.0},  {kAudioFormatOpus, 312, 15.0},
    {kAudioFormatAppleIMA4, 0, 25.0},      {kAudioFormatDVIIntelIMA, 0, 25.0},
    {kAudioFormatMicrosoftADPCM, 0, 25.0}, {kAudioFormatMicrosoftGSM, 0, 5.0},
    {kAudioFormatALaw, 0, 34.0},           {kAudioFormatULaw, 0, 34.0},
};

// Streams that tell neither priming nor length.
struct BareRow
{
    std::uint32_t mType;
    std::uint32_t mFormat;
    std::size_t mPacketFrames;
};

constexpr BareRow kBare[] = {
    {kAudioFileAAC_ADTSType, kAudioFormatMPEG4AAC, 1024},
    {kAudioFileLATMInLOASType, kAudioFormatMPEG4AAC, 1024},
    {kAudioFileAC3Type, kAudioFormatAC3, 1536},
    {kAudioFileEAC3Type, kAudioFormatEnhancedAC3, 1536},
    {kAudioFileMP2Type, kAudioFormatMPEGLayer2, 1152},
    {kAudioFileAIFCType, kAudioFormatAppleIMA4, 64},
};

constexpr std::uint32_t kTypesWithTable[] = {
    kAudioFileM4AType,  kAudioFileM4BType, kAudioFileMPEG4Type, kAudioFile3GPType,
    kAudioFile3GP2Type, kAudioFileMP3Type, kAudioFileCAFType,
};

const FormatRow& RowOf(const Pair& inPair)
{
    for (const FormatRow& row : kFormats)
        if (row.mFormat == inPair.mFormat)
            return row;
    throw std::logic_error("a lossy format that no row tells of");
}

bool HasTable(const Pair& inPair)
{
    if (inPair.mFormat == kAudioFormatALaw || inPair.mFormat == kAudioFormatULaw)
        return false;
    for (const std::uint32_t type : kTypesWithTable)
        if (type == inPair.mType)
            return true;
    return false;
}

}  // namespace

Coding CodingOf(const Pair& inPair)
{
    const FormatRow& format = RowOf(inPair);
    Coding coding;
    coding.mPriming = format.mPriming;
    coding.mLeastDecibels = format.mLeastDecibels;
    coding.mHasPacketTable = HasTable(inPair);
    for (const BareRow& bare : kBare)
        if (bare.mType == inPair.mType && bare.mFormat == inPair.mFormat)
        {
            coding.mDelay = static_cast<std::size_t>(format.mPriming);
            coding.mRoundedTo = bare.mPacketFrames;
        }
    return coding;
}

std::size_t ImportedFrames(const Coding& inCoding, std::size_t inExported)
{
    if (inExported == 0)
        return 0;
    const std::size_t packets =
        (inExported + inCoding.mDelay + inCoding.mRoundedTo - 1) / inCoding.mRoundedTo;
    return packets * inCoding.mRoundedTo;
}

}  // namespace export_matrix
