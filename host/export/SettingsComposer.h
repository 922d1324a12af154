// SettingsComposer: makes the settings text that the plug-in is asked about.
//
// The user's options come first, then the settings text that the user gave, then what suits the
// source. The catalogue tells what there is; whether it all fits is the plug-in's to say.
#ifndef HOST_EXPORT_SETTINGSCOMPOSER_H
#define HOST_EXPORT_SETTINGSCOMPOSER_H

#include "Tarvo_PlugIns/TarvoAT/private/TarvoATPrivateSettings.h"
#include "host/AudioShape.h"
#include "host/export/EncoderChoices.h"
#include "host/export/ExportWish.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace host
{

/// The audio that is to be saved, and how it was stored.
struct ExportSource
{
    AudioShape mShape;
    std::string mSettings;  // of the file that it comes from; empty: plain PCM of mShape's width
};

/// Rate and channel count in which the audio is saved.
struct ExportTarget
{
    std::int32_t mRate = 0;
    std::uint32_t mChannels = 0;

    bool operator==(const ExportTarget&) const = default;
};

struct ComposedSettings
{
    tarvo::TarvoATPrivateSettings mRecord;
    std::int32_t mSampleType = 0;       // of the samples that are handed over
    std::vector<std::string> mChanges;  // a line each on what could not be kept

    std::string Text() const;
};

/// The bits that a source's samples are worth: of PCM its own, of FLAC and Apple Lossless what the
/// flags of its settings tell, 24 of everything lossy.
SampleDepth DepthOfSource(const ExportSource& inSource);

/// The host's sample type that holds so many bits.
std::int32_t SampleTypeFor(std::uint32_t inBits);

class SettingsComposer
{
public:
    /// inFileType  the type to write; 0 for one that the catalogue does not know
    /// Throws Failure for a format that is unknown (kExitUsage) or impossible (kExitSettings).
    SettingsComposer(const ExportWish& inWish, const ExportSource& inSource,
                     std::uint32_t inFileType);

    /// Throws Failure (kExitSettings) for an option that the format cannot have, telling which it
    /// can.
    ComposedSettings Compose(const ExportTarget& inTarget) const;

    EncoderKey Encoder() const { return mEncoder; }

private:
    void StartFormat();
    void SetVariant(const ExportTarget& inTarget, ComposedSettings& ioSettings) const;
    void SetPCM(ComposedSettings& ioSettings) const;
    void SetCompressed(ComposedSettings& ioSettings) const;
    void FitToAudio(const ExportTarget& inTarget, tarvo::TarvoATPrivateSettings& ioRecord) const;
    std::int32_t SampleType(const tarvo::TarvoATPrivateSettings& inRecord) const;
    void SetBitrate(const ExportTarget& inTarget, ComposedSettings& ioSettings) const;
    void SetEstimatedBitrate(const ExportTarget& inTarget, ComposedSettings& ioSettings) const;
    std::uint32_t ChooseMode(const std::vector<std::uint32_t>& inModes) const;

    const ExportWish mWish;
    const SampleDepth mSourceDepth;
    std::optional<tarvo::TarvoATPrivateSettings> mStored;  // of mWish.mSettings
    EncoderKey mEncoder;
    bool mKeepsStoredFormat = false;  // the stored stream format stays as it is
};

}  // namespace host

#endif
