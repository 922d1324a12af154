// ExportSettings: what the plug-in says of settings for an export, before anything is written.
//
// That settings do not fit the audio is an answer here and no failure.
#ifndef HOST_EXPORTSETTINGS_H
#define HOST_EXPORTSETTINGS_H

#include "host/AudioShape.h"
#include "host/PlugIn.h"

#include <cstdint>
#include <string>
#include <vector>

namespace host
{

/// What the plug-in does with settings that cannot encode the audio.
enum class RepairMode : std::int32_t
{
    kNone = 0,
    kFit = 1,    // change the settings, and of the audio the rate or the channel count
    kStored = 2  // go back to the stored settings, and change the audio's rate and channel count
};

struct ExportRequest
{
    AudioShape mAudio;      // as it is meant to be saved; the rate above 0
    std::string mSettings;  // stored settings text, UTF-8; empty: the plug-in's defaults
    std::string mFilterId;  // as told at registration; only looked at without mSettings
    RepairMode mRepair = RepairMode::kFit;
};

/// All of it is told whether or not the settings are possible. Texts are UTF-8.
struct ExportAnswer
{
    std::int32_t mResult = 0;         // 0, or -8: these settings cannot encode this audio
    AudioShape mAudio;                // as repaired; channels that came to it have label 0
    std::string mSettings;            // as they stand now, repairs included
    std::string mDescription;         // for people
    std::string mMimeType;            // empty for a type without one
    std::uint32_t mXmpType = 0;       // four characters
    std::int64_t mEstimatedBits = 0;  // size of the whole file, in bits
    bool mHasSettings = false;
    bool mIsLossy = false;
    std::vector<std::string> mExtensions;

    bool IsPossible() const { return mResult == 0; }
    std::int64_t EstimatedBytes() const { return mEstimatedBits / 8; }
};

/// The audio that a new export starts from (selector 13). Throws Failure (kExitFailed).
AudioShape AskDefaultExportFormat(const PlugIn& inPlugIn);

/// What the settings come to for this audio (selector 14). Throws Failure (kExitSettings) for any
/// result but 0 and -8, and for a filter id that is no number.
ExportAnswer AskExportSettings(const PlugIn& inPlugIn, const ExportRequest& inRequest);

}  // namespace host

#endif
