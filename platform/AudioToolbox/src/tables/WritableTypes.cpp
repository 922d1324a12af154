#include "tables/WritableTypes.h"

#include "tables/Encoders.h"

#include <algorithm>

namespace audiotoolbox
{
namespace
{

struct SampleVariant
{
    AudioFormatFlags mFlags;
    UInt32 mBits;
};

constexpr AudioFormatFlags kUnsigned = kAudioFormatFlagIsPacked;
constexpr AudioFormatFlags kSigned = kAudioFormatFlagIsSignedInteger | kAudioFormatFlagIsPacked;
constexpr AudioFormatFlags kFloat = kAudioFormatFlagIsFloat | kAudioFormatFlagIsPacked;
constexpr AudioFormatFlags kBig = kAudioFormatFlagIsBigEndian;

using Variants = const SampleVariant;
constexpr Variants kWAVEVariants[] = {
    {kUnsigned, 8}, {kSigned, 16}, {kSigned, 24}, {kFloat, 32}, {kSigned, 32}, {kFloat, 64},
};
constexpr Variants kAIFFVariants[] = {
    {kSigned, 8},
    {kSigned | kBig, 16},
    {kSigned | kBig, 24},
    {kSigned | kBig, 32},
};
constexpr Variants kAIFCVariants[] = {
    {kSigned, 8},        {kSigned | kBig, 16}, {kSigned, 16}, {kSigned | kBig, 24}, {kSigned, 24},
    {kFloat | kBig, 32}, {kSigned | kBig, 32}, {kSigned, 32}, {kFloat | kBig, 64},
};
constexpr Variants kAUVariants[] = {
    {kSigned, 8},        {kSigned | kBig, 16}, {kSigned | kBig, 24},
    {kFloat | kBig, 32}, {kSigned | kBig, 32}, {kFloat | kBig, 64},
};
constexpr Variants kCAFVariants[] = {
    {kSigned, 8},  {kSigned | kBig, 16}, {kSigned, 16}, {kSigned | kBig, 24},
    {kSigned, 24}, {kFloat | kBig, 32},  {kFloat, 32},  {kSigned | kBig, 32},
    {kSigned, 32}, {kFloat | kBig, 64},  {kFloat, 64},
};

using Formats = const AudioFormatID;
constexpr Formats kWAVEFormats[] = {
    kAudioFormatLinearPCM,      kAudioFormatALaw,        kAudioFormatULaw,
    kAudioFormatMicrosoftADPCM, kAudioFormatDVIIntelIMA, kAudioFormatMicrosoftGSM,
};
constexpr Formats kAIFFFormats[] = {kAudioFormatLinearPCM};
constexpr Formats kAIFCFormats[] = {
    kAudioFormatLinearPCM,
    kAudioFormatALaw,
    kAudioFormatAppleIMA4,
    kAudioFormatULaw,
};
constexpr Formats kAUFormats[] = {kAudioFormatLinearPCM, kAudioFormatALaw, kAudioFormatULaw};
constexpr Formats kCAFFormats[] = {
    kAudioFormatLinearPCM, kAudioFormatMPEG4AAC,  kAudioFormatAppleLossless,
    kAudioFormatALaw,      kAudioFormatAppleIMA4, kAudioFormatULaw,
};
constexpr Formats kM4AFormats[] = {
    kAudioFormatMPEG4AAC,
    kAudioFormatAC3,
    kAudioFormatAppleLossless,
};
constexpr Formats kMPEG4Formats[] = {
    kAudioFormatMPEGLayer3,  kAudioFormatMPEG4AAC, kAudioFormatAC3,  kAudioFormatAppleLossless,
    kAudioFormatEnhancedAC3, kAudioFormatFLAC,     kAudioFormatOpus,
};
constexpr Formats kAACFormats[] = {kAudioFormatMPEG4AAC};
constexpr Formats kMP3Formats[] = {kAudioFormatMPEGLayer3};
constexpr Formats kMP2Formats[] = {kAudioFormatMPEGLayer2};
constexpr Formats kAC3Formats[] = {kAudioFormatAC3};
constexpr Formats kEAC3Formats[] = {kAudioFormatEnhancedAC3};
constexpr Formats kFLACFormats[] = {kAudioFormatFLAC};

struct WritableRow
{
    AudioFileTypeID mType;
    std::span<const AudioFormatID> mFormats;
    std::span<const SampleVariant> mVariants;  // of linear PCM
};

// clang-format off
constexpr WritableRow kWritable[] = {
    {kAudioFile3GP2Type,         kAACFormats,   {}},
    {kAudioFile3GPType,          kAACFormats,   {}},
    {kAudioFileAIFCType,         kAIFCFormats,  kAIFCVariants},
    {kAudioFileAIFFType,         kAIFFFormats,  kAIFFVariants},
    {kAudioFileBW64Type,         kWAVEFormats,  kWAVEVariants},
    {kAudioFileMP2Type,          kMP2Formats,   {}},
    {kAudioFileMP3Type,          kMP3Formats,   {}},
    {kAudioFileNextType,         kAUFormats,    kAUVariants},
    {kAudioFileRF64Type,         kWAVEFormats,  kWAVEVariants},
    {kAudioFileWave64Type,       kWAVEFormats,  kWAVEVariants},
    {kAudioFileWAVEType,         kWAVEFormats,  kWAVEVariants},
    {kAudioFileAC3Type,          kAC3Formats,   {}},
    {kAudioFileAAC_ADTSType,     kAACFormats,   {}},
    {kAudioFileCAFType,          kCAFFormats,   kCAFVariants},
    {kAudioFileEAC3Type,         kEAC3Formats,  {}},
    {kAudioFileFLACType,         kFLACFormats,  {}},
    {kAudioFileLATMInLOASType,   kAACFormats,   {}},
    {kAudioFileM4AType,          kM4AFormats,   {}},
    {kAudioFileM4BType,          kM4AFormats,   {}},
    {kAudioFileMPEG4Type,        kMPEG4Formats, {}},
};
// clang-format on

const WritableRow* FindRow(AudioFileTypeID inType)
{
    for (const WritableRow& row : kWritable)
        if (row.mType == inType)
            return &row;
    return nullptr;
}

AudioStreamBasicDescription OnlyVariant(AudioFormatID inFormat)
{
    AudioStreamBasicDescription variant = {};
    variant.mFormatID = inFormat;
    return variant;
}

}  // namespace

std::vector<AudioFileTypeID> WritableTypes()
{
    std::vector<AudioFileTypeID> types;
    for (const WritableRow& row : kWritable)
        types.push_back(row.mType);
    std::sort(types.begin(), types.end());
    return types;
}

bool CanWrite(AudioFileTypeID inType, AudioFormatID inFormat)
{
    const WritableRow* row = FindRow(inType);
    return row != nullptr &&
           std::find(row->mFormats.begin(), row->mFormats.end(), inFormat) != row->mFormats.end();
}

std::vector<AudioFormatID> FormatsOfType(const FileTypeRow& inType)
{
    std::vector<AudioFormatID> formats;
    const bool isWritable = FindRow(inType.mType) != nullptr;
    for (const AudioFormatID format : inType.mFormats)
        if (!isWritable || FindEncoder(format) == nullptr || CanWrite(inType.mType, format))
            formats.push_back(format);
    return formats;
}

std::vector<AudioStreamBasicDescription> WritableVariants(AudioFileTypeID inType,
                                                          AudioFormatID inFormat)
{
    if (!CanWrite(inType, inFormat))
        return {};
    if (inFormat != kAudioFormatLinearPCM)
        return {OnlyVariant(inFormat)};
    std::vector<AudioStreamBasicDescription> variants;
    for (const SampleVariant& sample : FindRow(inType)->mVariants)
        variants.push_back({0, inFormat, sample.mFlags, 0, 1, 0, 0, sample.mBits, 0});
    return variants;
}

}  // namespace audiotoolbox
