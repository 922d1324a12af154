#include "tables/FileTypes.h"

#include "tables/Sniffing.h"

#include <algorithm>

namespace audiotoolbox
{
namespace
{

using Texts = const char* const;
using Formats = const AudioFormatID;

// The first extension is the one to give a new file.
constexpr Texts kWAVEExtensions[] = {"wav", "wave"};
constexpr Texts kRF64Extensions[] = {"rf64", "wav"};
constexpr Texts kBW64Extensions[] = {"bw64", "wav"};
constexpr Texts kWave64Extensions[] = {"w64"};
constexpr Texts kAIFFExtensions[] = {"aiff", "aif"};
constexpr Texts kAIFCExtensions[] = {"aifc", "aiff", "aif"};
constexpr Texts kCAFExtensions[] = {"caf"};
constexpr Texts kAUExtensions[] = {"au", "snd"};

constexpr Texts kWAVEMIMETypes[] = {"audio/wav", "audio/vnd.wave", "audio/wave", "audio/x-wav"};
constexpr Texts kWave64MIMETypes[] = {"audio/x-w64"};
constexpr Texts kAIFFMIMETypes[] = {"audio/aiff", "audio/x-aiff"};
constexpr Texts kCAFMIMETypes[] = {"audio/x-caf"};
constexpr Texts kAUMIMETypes[] = {"audio/basic", "audio/x-au"};

constexpr Formats kWAVEFormats[] = {
    kAudioFormatLinearPCM,      kAudioFormatALaw,        kAudioFormatULaw,
    kAudioFormatMicrosoftADPCM, kAudioFormatDVIIntelIMA, kAudioFormatMicrosoftGSM,
};
constexpr Formats kAIFFFormats[] = {kAudioFormatLinearPCM};
constexpr Formats kAIFCFormats[] = {
    kAudioFormatLinearPCM,
    kAudioFormatALaw,
    kAudioFormatULaw,
    kAudioFormatAppleIMA4,
};
constexpr Formats kAUFormats[] = {kAudioFormatLinearPCM, kAudioFormatALaw, kAudioFormatULaw};
constexpr Formats kCAFFormats[] = {
    kAudioFormatLinearPCM,      kAudioFormatALaw,
    kAudioFormatULaw,           kAudioFormatAppleIMA4,
    kAudioFormatMPEG4AAC,       kAudioFormatMPEG4AAC_HE,
    kAudioFormatMPEG4AAC_HE_V2, kAudioFormatAppleLossless,
    kAudioFormatFLAC,           kAudioFormatOpus,
    kAudioFormatMPEGLayer1,     kAudioFormatMPEGLayer2,
    kAudioFormatMPEGLayer3,     kAudioFormatAC3,
    kAudioFormatEnhancedAC3,    kAudioFormatAMR,
    kAudioFormatAMR_WB,         kAudioFormatMicrosoftADPCM,
    kAudioFormatDVIIntelIMA,    kAudioFormatMicrosoftGSM,
};

constexpr Texts kM4AExtensions[] = {"m4a", "m4r"};
constexpr Texts kM4BExtensions[] = {"m4b"};
constexpr Texts kMPEG4Extensions[] = {"mp4", "m4v", "mpg4"};
constexpr Texts k3GPExtensions[] = {"3gp", "3gpp"};
constexpr Texts k3GP2Extensions[] = {"3g2", "3gp2"};

constexpr Texts kM4AMIMETypes[] = {"audio/x-m4a", "audio/m4a", "audio/mp4"};
constexpr Texts kM4BMIMETypes[] = {"audio/x-m4b", "audio/m4b"};
constexpr Texts kMPEG4MIMETypes[] = {"audio/mp4", "video/mp4"};
constexpr Texts k3GPMIMETypes[] = {"audio/3gpp", "video/3gpp"};
constexpr Texts k3GP2MIMETypes[] = {"audio/3gpp2", "video/3gpp2"};

constexpr Formats kM4AFormats[] = {
    kAudioFormatMPEG4AAC,      kAudioFormatMPEG4AAC_HE, kAudioFormatMPEG4AAC_HE_V2,
    kAudioFormatAppleLossless, kAudioFormatAC3,
};
constexpr Formats kMPEG4Formats[] = {
    kAudioFormatMPEG4AAC,      kAudioFormatMPEG4AAC_HE, kAudioFormatMPEG4AAC_HE_V2,
    kAudioFormatAppleLossless, kAudioFormatAC3,         kAudioFormatEnhancedAC3,
    kAudioFormatMPEGLayer3,    kAudioFormatOpus,        kAudioFormatFLAC,
};
constexpr Formats k3GPFormats[] = {
    kAudioFormatMPEG4AAC, kAudioFormatMPEG4AAC_HE, kAudioFormatMPEG4AAC_HE_V2,
    kAudioFormatAMR,      kAudioFormatAMR_WB,
};

constexpr Texts kFLACExtensions[] = {"flac"};
constexpr Texts kAMRExtensions[] = {"amr", "awb"};
constexpr Texts kAC3Extensions[] = {"ac3"};
constexpr Texts kEAC3Extensions[] = {"ec3", "eac3"};
constexpr Texts kADTSExtensions[] = {"aac", "adts"};
constexpr Texts kLOASExtensions[] = {"loas", "latm"};
constexpr Texts kMP3Extensions[] = {"mp3", "mpga"};
constexpr Texts kMP2Extensions[] = {"mp2", "m2a"};
constexpr Texts kMP1Extensions[] = {"mp1", "m1a"};

constexpr Texts kFLACMIMETypes[] = {"audio/flac", "audio/x-flac"};
constexpr Texts kAMRMIMETypes[] = {"audio/amr", "audio/amr-wb"};
constexpr Texts kAC3MIMETypes[] = {"audio/ac3"};
constexpr Texts kEAC3MIMETypes[] = {"audio/eac3"};
constexpr Texts kADTSMIMETypes[] = {"audio/aac", "audio/aacp", "audio/x-aac"};
constexpr Texts kLOASMIMETypes[] = {"audio/mp4a-latm"};
constexpr Texts kMP3MIMETypes[] = {"audio/mpeg", "audio/mp3", "audio/x-mp3", "audio/x-mpeg"};
constexpr Texts kMPEGMIMETypes[] = {"audio/mpeg", "audio/x-mpeg"};

constexpr Formats kFLACFormats[] = {kAudioFormatFLAC};
constexpr Formats kAMRFormats[] = {kAudioFormatAMR, kAudioFormatAMR_WB};
constexpr Formats kAC3Formats[] = {kAudioFormatAC3};
constexpr Formats kEAC3Formats[] = {kAudioFormatEnhancedAC3};
constexpr Formats kAACFormats[] = {
    kAudioFormatMPEG4AAC,
    kAudioFormatMPEG4AAC_HE,
    kAudioFormatMPEG4AAC_HE_V2,
};
constexpr Formats kMP3Formats[] = {kAudioFormatMPEGLayer3};
constexpr Formats kMP2Formats[] = {kAudioFormatMPEGLayer2};
constexpr Formats kMP1Formats[] = {kAudioFormatMPEGLayer1};

// Long signatures come before short ones.
// clang-format off
constexpr FileTypeRow kFileTypes[] = {
    {kAudioFileWAVEType, "WAVE", kWAVEExtensions, kWAVEMIMETypes, kWAVEFormats,
     true, &LooksLikeWAVE, &OpenRIFF},
    {kAudioFileRF64Type, "RF64", kRF64Extensions, kWAVEMIMETypes, kWAVEFormats,
     true, &LooksLikeRF64, &OpenRIFF},
    {kAudioFileBW64Type, "BW64", kBW64Extensions, kWAVEMIMETypes, kWAVEFormats,
     true, &LooksLikeBW64, &OpenRIFF},
    {kAudioFileWave64Type, "Wave64", kWave64Extensions, kWave64MIMETypes, kWAVEFormats,
     false, &LooksLikeWave64, &OpenWave64},
    {kAudioFileAIFFType, "AIFF", kAIFFExtensions, kAIFFMIMETypes, kAIFFFormats,
     true, &LooksLikeAIFF, &OpenAIFF},
    {kAudioFileAIFCType, "AIFC", kAIFCExtensions, kAIFFMIMETypes, kAIFCFormats,
     true, &LooksLikeAIFC, &OpenAIFF},
    {kAudioFileCAFType, "Core Audio Format", kCAFExtensions, kCAFMIMETypes, kCAFFormats,
     false, &LooksLikeCAF, &OpenCAF},
    {kAudioFileNextType, "AU", kAUExtensions, kAUMIMETypes, kAUFormats,
     false, &LooksLikeAU, &OpenAU},
    {kAudioFileM4AType, "MPEG-4 Audio", kM4AExtensions, kM4AMIMETypes, kM4AFormats,
     false, &LooksLikeM4A, &OpenMPEG4},
    {kAudioFileM4BType, "MPEG-4 Audiobook", kM4BExtensions, kM4BMIMETypes, kM4AFormats,
     false, &LooksLikeM4B, &OpenMPEG4},
    {kAudioFile3GPType, "3GPP", k3GPExtensions, k3GPMIMETypes, k3GPFormats,
     false, &LooksLike3GP, &OpenMPEG4},
    {kAudioFile3GP2Type, "3GPP2", k3GP2Extensions, k3GP2MIMETypes, k3GPFormats,
     false, &LooksLike3GP2, &OpenMPEG4},
    {kAudioFileMPEG4Type, "MPEG-4", kMPEG4Extensions, kMPEG4MIMETypes, kMPEG4Formats,
     false, &LooksLikeMPEG4, &OpenMPEG4},
    {kAudioFileFLACType, "FLAC", kFLACExtensions, kFLACMIMETypes, kFLACFormats,
     true, &LooksLikeFLAC, &OpenFLAC},
    {kAudioFileAMRType, "AMR", kAMRExtensions, kAMRMIMETypes, kAMRFormats,
     false, &LooksLikeAMR, &OpenAMR},
    {kAudioFileAC3Type, "AC-3", kAC3Extensions, kAC3MIMETypes, kAC3Formats,
     true, &LooksLikeAC3, &OpenAC3},
    {kAudioFileEAC3Type, "Enhanced AC-3", kEAC3Extensions, kEAC3MIMETypes, kEAC3Formats,
     true, &LooksLikeEAC3, &OpenAC3},
    {kAudioFileAAC_ADTSType, "AAC ADTS", kADTSExtensions, kADTSMIMETypes, kAACFormats,
     true, &LooksLikeADTS, &OpenADTS},
    {kAudioFileLATMInLOASType, "AAC LATM/LOAS", kLOASExtensions, kLOASMIMETypes, kAACFormats,
     true, &LooksLikeLOAS, &OpenLOAS},
    {kAudioFileMP3Type, "MPEG Layer 3", kMP3Extensions, kMP3MIMETypes, kMP3Formats,
     true, &LooksLikeMPEGLayer3, &OpenMPEGAudio},
    {kAudioFileMP2Type, "MPEG Layer 2", kMP2Extensions, kMPEGMIMETypes, kMP2Formats,
     true, &LooksLikeMPEGLayer2, &OpenMPEGAudio},
    {kAudioFileMP1Type, "MPEG Layer 1", kMP1Extensions, kMPEGMIMETypes, kMP1Formats,
     true, &LooksLikeMPEGLayer1, &OpenMPEGAudio},
};
// clang-format on

}  // namespace

std::span<const FileTypeRow> FileTypes()
{
    return kFileTypes;
}

const FileTypeRow* FindFileType(AudioFileTypeID inType)
{
    const auto* row = std::find_if(std::begin(kFileTypes), std::end(kFileTypes),
                                   [=](const FileTypeRow& inRow) { return inRow.mType == inType; });
    return row == std::end(kFileTypes) ? nullptr : row;
}

}  // namespace audiotoolbox
