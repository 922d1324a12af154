#include "Readers.h"

#include <AudioToolbox/AudioToolbox.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace export_matrix
{

namespace
{

using Fails = bool (*)(const Variant& inVariant, std::uint32_t inChannels);

struct Ability
{
    std::uint32_t mType;
    std::vector<std::uint32_t> mFormats;
    Reading mReading;
    Fails mFails = nullptr;  // exceptions, each with its reason; null: none
};

constexpr const char* kSox = "sox -V1 $1 -e floating-point -b 64 $2";
constexpr const char* kFFmpeg = "ffmpeg -v error -nostdin -i $1 -c:a pcm_f64le -f wav $2";
constexpr const char* kFaad = "faad -q -b 4 -o $2 $1";
constexpr const char* kMpg123 = "mpg123 -q -e f32 -w $2 $1";
constexpr const char* kFlac = "flac -s -d -o $2 $1";

constexpr Reading kBySndfile = {"libsndfile", nullptr, 0, Length::kExact};
constexpr Reading kBySox = {"sox", kSox, 0, Length::kExact};
constexpr Reading kByFFmpeg = {"ffmpeg", kFFmpeg, 0, Length::kExact};

constexpr std::uint32_t kPCM = kAudioFormatLinearPCM;
constexpr std::uint32_t kALaw = kAudioFormatALaw;
constexpr std::uint32_t kULaw = kAudioFormatULaw;
constexpr std::uint32_t kMS = kAudioFormatMicrosoftADPCM;
constexpr std::uint32_t kIMA = kAudioFormatDVIIntelIMA;
constexpr std::uint32_t kGSM = kAudioFormatMicrosoftGSM;
constexpr std::uint32_t kIMA4 = kAudioFormatAppleIMA4;
constexpr std::uint32_t kAAC = kAudioFormatMPEG4AAC;
constexpr std::uint32_t kALAC = kAudioFormatAppleLossless;

constexpr Reading Padded(Reading inReading, std::size_t inDelay = 0)
{
    inReading.mDelay = inDelay;
    inReading.mLength = Length::kPadded;
    return inReading;
}

// libsndfile takes an extensible Wave64 file for whole numbers.
bool IsExtensible(const Variant& inVariant, std::uint32_t inChannels)
{
    return inVariant.IsFloat() || (!inVariant.IsPCM() && inChannels > 2);
}

// libsndfile decodes the second channel of packets that did not compress wrongly at 24 bits, and
// leaves more than two channels in their coded order.
bool IsBeyondItsALAC(const Variant& inVariant, std::uint32_t inChannels)
{
    return (inVariant.mFlags != 1 && inChannels == 2) || inChannels > 2;
}

const std::vector<Ability>& Abilities()
{
    static const std::vector<Ability> sAbilities = {
        {kAudioFileWAVEType, {kPCM, kALaw, kULaw}, kBySndfile},
        {kAudioFileWAVEType, {kPCM, kALaw, kULaw}, kBySox},
        {kAudioFileWAVEType, {kMS, kIMA, kGSM}, Padded(kBySndfile)},
        {kAudioFileWAVEType, {kMS, kIMA, kGSM}, Padded(kBySox)},
        // libsndfile opens no ADPCM and no GSM in RF64.
        {kAudioFileRF64Type, {kPCM, kALaw, kULaw}, kBySndfile},
        {kAudioFileRF64Type, {kPCM, kALaw, kULaw}, kBySox},
        {kAudioFileRF64Type, {kMS, kIMA, kGSM}, Padded(kBySox)},
        // Nobody else opens BW64.
        {kAudioFileBW64Type, {kPCM, kALaw, kULaw}, kByFFmpeg},
        {kAudioFileBW64Type, {kMS, kIMA, kGSM}, Padded(kByFFmpeg)},
        {kAudioFileWave64Type, {kPCM, kALaw, kULaw}, kBySndfile, &IsExtensible},
        {kAudioFileWave64Type, {kMS, kIMA, kGSM}, Padded(kBySndfile)},
        {kAudioFileWave64Type, {kPCM, kALaw, kULaw}, kByFFmpeg},
        {kAudioFileAIFFType, {kPCM}, kBySndfile},
        {kAudioFileAIFFType, {kPCM}, kBySox},
        {kAudioFileAIFCType, {kPCM, kALaw, kULaw}, kBySndfile},
        {kAudioFileAIFCType, {kPCM}, kBySox},
        {kAudioFileAIFCType, {kIMA4}, Padded(kBySndfile)},
        {kAudioFileNextType, {kPCM, kALaw, kULaw}, kBySndfile},
        {kAudioFileNextType, {kPCM, kALaw, kULaw}, kBySox},
        {kAudioFileCAFType, {kPCM, kALaw, kULaw}, kBySndfile},
        {kAudioFileCAFType, {kALAC}, kBySndfile, &IsBeyondItsALAC},
        {kAudioFileCAFType, {kALAC}, kByFFmpeg},
        // libsndfile opens no IMA4 and no AAC in CAF, and the other one does not cut priming there.
        {kAudioFileCAFType, {kIMA4}, Padded(kByFFmpeg)},
        {kAudioFileCAFType, {kAAC}, Padded(kByFFmpeg, 1024)},
        {kAudioFileFLACType, {kAudioFormatFLAC}, kBySndfile},
        {kAudioFileFLACType, {kAudioFormatFLAC}, {"flac", kFlac, 0, Length::kExact}},
        {kAudioFileMP3Type, {kAudioFormatMPEGLayer3}, kBySndfile},
        {kAudioFileMP3Type, {kAudioFormatMPEGLayer3}, {"mpg123", kMpg123, 0, Length::kExact}},
        {kAudioFileMP2Type, {kAudioFormatMPEGLayer2}, Padded(kBySndfile, 481)},
        {kAudioFileMP2Type, {kAudioFormatMPEGLayer2}, {"mpg123", kMpg123, 481, Length::kPadded}},
        // The first 1024 frames are dropped, which is all of the encoder's delay.
        {kAudioFileAAC_ADTSType, {kAAC}, {"faad", kFaad, 0, Length::kPadded}},
        {kAudioFileM4AType, {kAAC}, {"faad", kFaad, 0, Length::kPadded}},
        {kAudioFileM4BType, {kAAC}, {"faad", kFaad, 0, Length::kPadded}},
        {kAudioFileMPEG4Type, {kAAC}, {"faad", kFaad, 0, Length::kPadded}},
        {kAudioFile3GPType, {kAAC}, {"faad", kFaad, 0, Length::kPadded}},
        {kAudioFile3GP2Type, {kAAC}, {"faad", kFaad, 0, Length::kPadded}},
        {kAudioFileLATMInLOASType, {kAAC}, Padded(kByFFmpeg, 1024)},
        {kAudioFileAC3Type, {kAudioFormatAC3}, Padded(kByFFmpeg, 256)},
        {kAudioFileEAC3Type, {kAudioFormatEnhancedAC3}, Padded(kByFFmpeg, 256)},
        // It does not cut inside the last packet.
        {kAudioFileM4AType, {kAudioFormatAC3}, Padded(kByFFmpeg)},
        {kAudioFileM4BType, {kAudioFormatAC3}, Padded(kByFFmpeg)},
        {kAudioFileMPEG4Type,
         {kAudioFormatAC3, kAudioFormatEnhancedAC3, kAudioFormatMPEGLayer3, kAudioFormatOpus},
         Padded(kByFFmpeg)},
        {kAudioFileM4AType, {kALAC}, kByFFmpeg},
        {kAudioFileM4BType, {kALAC}, kByFFmpeg},
        {kAudioFileMPEG4Type, {kALAC, kAudioFormatFLAC}, kByFFmpeg},
    };
    return sAbilities;
}

bool Covers(const Ability& inAbility, const Variant& inVariant, std::uint32_t inChannels)
{
    const auto& formats = inAbility.mFormats;
    return inAbility.mType == inVariant.mPair.mType &&
           std::find(formats.begin(), formats.end(), inVariant.mPair.mFormat) != formats.end() &&
           (inAbility.mFails == nullptr || !inAbility.mFails(inVariant, inChannels));
}

}  // namespace

std::vector<Reading> ReadingsOf(const Variant& inVariant, std::uint32_t inChannels)
{
    std::vector<Reading> readings;
    for (const Ability& ability : Abilities())
        if (Covers(ability, inVariant, inChannels))
            readings.push_back(ability.mReading);
    return readings;
}

Audio ReadBy(const Reading& inReading, const std::string& inPath, const std::string& inScratchPath,
             std::uint32_t inChannels)
{
    if (inReading.mCommand == nullptr)
        return testing_support::ReadBySndfile(inPath);
    std::filesystem::remove(inScratchPath);
    const std::string command =
        "set -- " + inPath + " " + inScratchPath + "; " + inReading.mCommand + " >/dev/null 2>&1";
    if (std::system(command.c_str()) != 0)
        return {};
    Audio audio = testing_support::ReadBySndfile(inScratchPath);
    if (inChannels == 1 && audio.mChannels.size() == 2 && audio.mChannels[0] == audio.mChannels[1])
        audio.mChannels.pop_back();
    return audio;
}

}  // namespace export_matrix
