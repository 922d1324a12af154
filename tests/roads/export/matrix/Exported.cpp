#include "Exported.h"

#include "Tarvo_PlugIns/TarvoAT/private/TarvoATPrivateSettings.h"
#include "host/Failure.h"
#include "host/HostText.h"
#include "host/Registration.h"
#include "host/StoredSettings.h"
#include "host/WriteSession.h"
#include "host/export/EncoderChoices.h"

#include "appleaudiotoolbox/utility/ATUtils.h"
#include "appleaudiotoolbox/utility/EncodableQueries.h"
#include "appleaudiotoolbox/utility/FileTypeCatalogue.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace export_matrix
{

namespace
{

namespace fs = std::filesystem;

constexpr std::size_t kBlockFrames = 2500;
constexpr std::uint32_t kLFE = 103;
constexpr double kToneRate = 48000.0;  // at another rate, tones are as much lower

// Full scale of a whole number; 0 of floats.
double FullScale(std::int32_t inSampleType)
{
    return inSampleType == 40 ? 0.0 : std::ldexp(1.0, inSampleType / 10 * 8 - 1);
}

class Random
{
public:
    /// The highest inBits of a whole number, with its sign.
    double Next(int inBits)
    {
        mState = mState * 6364136223846793005u + 1442695040888963407u;
        return static_cast<double>(static_cast<std::int64_t>(mState) >> (64 - inBits));
    }

private:
    std::uint64_t mState = 1;
};

double NoiseSample(Random& ioRandom, std::int32_t inSampleType)
{
    if (inSampleType != 40)
        return ioRandom.Next(inSampleType / 10 * 8) / FullScale(inSampleType);
    const int finer = static_cast<int>(ioRandom.Next(3)) + 4;
    return std::ldexp(ioRandom.Next(24), -23 - finer);
}

double ToneSample(std::uint32_t inLabel, double inSeconds)
{
    const double frequency = inLabel == kLFE ? 60.0 : 900.0 + 90.0 * (inLabel % 50);
    constexpr double kTurn = 2.0 * 3.14159265358979323846;
    return std::sin(kTurn * frequency * inSeconds + 2.0 * std::sin(kTurn * 7.0 * inSeconds)) / 3.0;
}

Sound Silence(const std::vector<std::uint32_t>& inLabels, std::size_t inFrames, int inRate,
              std::int32_t inSampleType)
{
    Sound sound;
    sound.mSampleType = inSampleType;
    sound.mLabels = inLabels;
    sound.mAudio.mRate = inRate;
    sound.mAudio.mChannels.assign(inLabels.size(), std::vector<double>(inFrames, 0.0));
    return sound;
}

// The bytes of one sample: unsigned in 8 bits, signed in 16 and 24, float in 32.
void AppendSample(double inSample, std::int32_t inSampleType, std::string& outPlane)
{
    if (inSampleType == 40)
    {
        const auto sample = static_cast<float>(inSample);
        outPlane.append(reinterpret_cast<const char*>(&sample), sizeof(sample));
        return;
    }
    auto number = static_cast<std::int32_t>(inSample * FullScale(inSampleType));
    if (inSampleType == 10)
        number += 128;
    outPlane.append(reinterpret_cast<const char*>(&number),
                    static_cast<std::size_t>(inSampleType / 10));
}

std::string PlaneOf(const std::vector<double>& inSamples, std::int32_t inSampleType)
{
    std::string plane;
    plane.reserve(inSamples.size() * 4);
    for (const double sample : inSamples)
        AppendSample(sample, inSampleType, plane);
    return plane;
}

host::AudioShape ShapeOf(const Sound& inSound)
{
    return {inSound.mAudio.mRate, inSound.mSampleType,
            static_cast<std::int64_t>(inSound.mAudio.FrameCount()), inSound.mLabels};
}

CAStreamBasicDescription Description(const Variant& inVariant, const Sound& inSound)
{
    CAStreamBasicDescription format;
    format.mFormatID = inVariant.mPair.mFormat;
    format.mFormatFlags = inVariant.mFlags;
    format.mSampleRate = inSound.mAudio.mRate;
    format.mChannelsPerFrame = static_cast<UInt32>(inSound.mLabels.size());
    format.mBitsPerChannel = inVariant.mBits;
    format.mFramesPerPacket = FramesPerPacket(inVariant.mPair, format.mChannelsPerFrame);
    if (inVariant.IsPCM())
        format.mBytesPerFrame = format.mBytesPerPacket =
            inVariant.mBits / 8 * format.mChannelsPerFrame;
    return format;
}

void SetBitRate(const Variant& inVariant, const CAStreamBasicDescription& inFormat,
                const std::optional<BitRate>& inBitRate, tarvo::TarvoATPrivateSettings& ioRecord)
{
    const Pair& pair = inVariant.mPair;
    const auto modes = appleaudiotoolbox::GetEncodableBitrateModes(pair.mType, pair.mFormat);
    if (modes.empty())
        return;
    const BitRate wish =
        inBitRate.value_or(BitRate{modes.front(), 96000 * inFormat.mChannelsPerFrame, 96});
    ioRecord.SetBitrateMode(wish.mMode);
    ioRecord.SetVBRQuality(wish.mQuality);
    const CAStreamBasicDescription audio = appleaudiotoolbox::ConstructClientFormatFromArgs(
        inFormat.mSampleRate, 16, inFormat.mChannelsPerFrame);
    if (const auto nearest = host::NearestBitrate({pair.mType, pair.mFormat}, wish.mMode, audio,
                                                  wish.mBitsPerSecond))
        ioRecord.SetBitrate(*nearest);
}

const host::PlugIn& StartedPlugIn()
{
    static const bool sIsStarted = (host::Register(testing_support::BuiltPlugIn()), true);
    (void)sIsStarted;
    return testing_support::BuiltPlugIn();
}

}  // namespace

Sound Noise(const std::vector<std::uint32_t>& inLabels, std::size_t inFrames, int inRate,
            std::int32_t inSampleType)
{
    Sound sound = Silence(inLabels, inFrames, inRate, inSampleType);
    Random random;
    for (auto& channel : sound.mAudio.mChannels)
        for (double& sample : channel)
            sample = NoiseSample(random, inSampleType);
    return sound;
}

Sound Tones(const std::vector<std::uint32_t>& inLabels, std::size_t inFrames, int inRate,
            std::int32_t inSampleType)
{
    Sound sound = Silence(inLabels, inFrames, inRate, inSampleType);
    const double scale = FullScale(inSampleType);
    for (std::size_t channel = 0; channel < inLabels.size(); ++channel)
        for (std::size_t frame = 0; frame < inFrames; ++frame)
        {
            const double sample =
                ToneSample(inLabels[channel], static_cast<double>(frame) / kToneRate);
            sound.mAudio.mChannels[channel][frame] = scale == 0.0
                                                         ? double{static_cast<float>(sample)}
                                                         : std::floor(sample * scale) / scale;
        }
    return sound;
}

std::vector<std::uint32_t> UsualLabels(std::size_t inChannels)
{
    switch (inChannels)
    {
        case 1:
            return {102};
        case 2:
            return {100, 101};
        case 3:
            return {100, 101, 102};
        case 4:
            return {100, 101, 102, 106};
        case 5:
            return {100, 101, 102, 104, 105};
        case 6:
            return {100, 101, 102, 103, 104, 105};
        case 7:
            return {100, 101, 102, 103, 104, 105, 106};
        default:
            return {100, 101, 102, 103, 104, 105, 109, 110};
    }
}

std::string SettingsText(const Variant& inVariant, const Sound& inSound,
                         const std::optional<BitRate>& inBitRate, std::uint32_t* outBitRate)
{
    const CAStreamBasicDescription format = Description(inVariant, inSound);
    tarvo::TarvoATPrivateSettings record(inVariant.mPair.mType, format);
    SetBitRate(inVariant, format, inBitRate, record);
    if (outBitRate)
        *outBitRate = record.GetBitrate();
    return host::FromPlugIn(record.GetSerialized().c_str());
}

host::ExportAnswer Ask(const Sound& inSound, const std::string& inSettings,
                       host::RepairMode inRepair)
{
    return host::AskExportSettings(StartedPlugIn(), {ShapeOf(inSound), inSettings, "", inRepair});
}

void Write(const std::string& inPath, const Sound& inSound, const std::string& inSettings)
{
    std::vector<std::string> planes;
    for (const auto& channel : inSound.mAudio.mChannels)
        planes.push_back(PlaneOf(channel, inSound.mSampleType));

    host::WriteSession session(StartedPlugIn(), {inPath, inPath}, ShapeOf(inSound), inSettings);
    const std::size_t width = static_cast<std::size_t>(inSound.mSampleType / 10);
    const std::size_t frames = inSound.mAudio.FrameCount();
    std::size_t first = 0;
    do
    {
        std::vector<const char*> channels;
        for (const std::string& plane : planes)
            channels.push_back(plane.data() + first * width);
        session.Write(channels.data(),
                      static_cast<std::int64_t>(std::min(kBlockFrames, frames - first)));
        first += kBlockFrames;
    } while (first < frames);
    session.Finish();
}

void WriteNoBlock(const std::string& inPath, const Sound& inSound, const std::string& inSettings)
{
    host::WriteSession session(StartedPlugIn(), {inPath, inPath}, ShapeOf(inSound), inSettings);
    session.Finish();
}

std::string FittingSettings(const Variant& inVariant, const Sound& inSound,
                            const std::optional<BitRate>& inBitRate)
{
    std::string settings = SettingsText(inVariant, inSound, inBitRate);
    if (inVariant.IsPCM() && static_cast<int>(inVariant.mBits) != inSound.mSampleType / 10 * 8)
        return settings;
    const host::ExportAnswer answer = Ask(inSound, settings, host::RepairMode::kNone);
    if (!answer.IsPossible())
        throw host::Failure(host::kExitSettings, answer.mResult, "impossible: " + answer.mSettings);
    return answer.mSettings;
}

void Export(const std::string& inPath, const Variant& inVariant, const Sound& inSound,
            const std::optional<BitRate>& inBitRate)
{
    Write(inPath, inSound, FittingSettings(inVariant, inSound, inBitRate));
}

Scratch::Scratch()
{
    std::string name = (fs::temp_directory_path() / "export-matrix-XXXXXX").string();
    mFolder = mkdtemp(name.data());
}

Scratch::~Scratch()
{
    std::error_code ignored;  // what is left over harms no test
    fs::remove_all(mFolder, ignored);
}

std::string FileName(const Pair& inPair)
{
    appleaudiotoolbox::ATExtensionSet extensions;
    appleaudiotoolbox::QueryFileTypeExtensions(inPair.mType, extensions);
    return "file." +
           (extensions.empty() ? std::string("bin") : std::string(extensions.begin()->c_str()));
}

}  // namespace export_matrix
