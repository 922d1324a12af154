// Exported: test audio, and its way through the built plug-in into a file.
#ifndef TESTS_ROADS_EXPORT_MATRIX_EXPORTED_H
#define TESTS_ROADS_EXPORT_MATRIX_EXPORTED_H

#include "Pairs.h"

#include "host/ExportSettings.h"
#include "tests/roads/import/Imported.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace export_matrix
{

using testing_support::Audio;

/// Audio that a session hands over. Every sample is one that mSampleType can hold.
struct Sound
{
    std::int32_t mSampleType = 20;
    std::vector<std::uint32_t> mLabels;  // the host's numbers, one a channel
    Audio mAudio;
};

/// Every value in every place, for what is to come back bit for bit. 32 bits are floats of 24
/// significant bits within +-1, none of them finer than 31 bits behind the point.
Sound Noise(const std::vector<std::uint32_t>& inLabels, std::size_t inFrames, int inRate,
            std::int32_t inSampleType);

/// A tone a channel that never repeats itself, so that a delay shows, at a third of full scale. The
/// label chooses the tone; that of low frequencies is below 100 Hz. At most 170 ms.
Sound Tones(const std::vector<std::uint32_t>& inLabels, std::size_t inFrames, int inRate,
            std::int32_t inSampleType);

/// The usual labels for mono, stereo, 3.0, 4.0, 5.0, 5.1, 6.1 and 7.1, ascending.
std::vector<std::uint32_t> UsualLabels(std::size_t inChannels);

struct BitRate
{
    std::uint32_t mMode = 0;
    std::uint32_t mBitsPerSecond = 0;  // wished for; the nearest that is listed is taken
    std::uint32_t mQuality = 96;
};

/// The settings text for a variant; without a bit rate, the first mode and about 96000 a channel.
/// outBitRate  what was taken for bits per second; may be null
std::string SettingsText(const Variant& inVariant, const Sound& inSound,
                         const std::optional<BitRate>& inBitRate = {},
                         std::uint32_t* outBitRate = nullptr);

/// What the plug-in says of a settings text for this audio.
host::ExportAnswer Ask(const Sound& inSound, const std::string& inSettings,
                       host::RepairMode inRepair = host::RepairMode::kNone);

/// Writes the whole session, in blocks; without frames, in one that is empty. Throws host::Failure.
void Write(const std::string& inPath, const Sound& inSound, const std::string& inSettings);

/// A session that ends as soon as it has begun. Throws host::Failure.
void WriteNoBlock(const std::string& inPath, const Sound& inSound, const std::string& inSettings);

/// SettingsText as the plug-in accepts it, unrepaired. Throws host::Failure for settings that do
/// not fit. Linear PCM of another depth than the audio's is not asked about: the depth would
/// change.
std::string FittingSettings(const Variant& inVariant, const Sound& inSound,
                            const std::optional<BitRate>& inBitRate = {});

/// Settings and the whole session. Throws host::Failure.
void Export(const std::string& inPath, const Variant& inVariant, const Sound& inSound,
            const std::optional<BitRate>& inBitRate = {});

/// A folder that is gone with the object.
class Scratch
{
public:
    Scratch();
    ~Scratch();
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    std::string File(const std::string& inName) const { return (mFolder / inName).string(); }

private:
    std::filesystem::path mFolder;
};

/// A file name with the extension that other readers look for.
std::string FileName(const Pair& inPair);

}  // namespace export_matrix

#endif
