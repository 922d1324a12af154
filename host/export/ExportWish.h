// ExportWish: what the user asks of an export. What is left open is decided by ExportPlan.
//
// Units: rates in Hz, bit rates in bits per second, quality 0 to 127.
#ifndef HOST_EXPORT_EXPORTWISH_H
#define HOST_EXPORT_EXPORTWISH_H

#include "host/ExportSettings.h"

#include <cstdint>
#include <optional>
#include <string>

namespace host
{

/// Width of a sample as the user names it: 16, 24, 32f.
struct SampleDepth
{
    std::uint32_t mBits = 0;
    std::optional<bool> mIsFloat;  // none: either will do

    bool operator==(const SampleDepth&) const = default;
};

/// Control modes of encoders, the platform's numbers.
enum BitrateMode : std::uint32_t
{
    kModeConstant = 0,
    kModeAverage = 1,
    kModeConstrained = 2,
    kModeVariable = 3
};

struct ExportWish
{
    std::string mType{};    // as written; empty: by settings or extension
    std::string mFormat{};  // as written; empty: by settings or type
    std::optional<SampleDepth> mDepth{};
    std::optional<std::uint32_t> mBitrate{};
    std::optional<std::uint32_t> mMode{};
    std::optional<std::uint32_t> mQuality{};
    std::optional<std::int32_t> mRate{};
    std::optional<std::uint32_t> mChannels{};
    std::optional<std::string> mSettings{};  // settings text, never a preset's name
    RepairMode mRepair = RepairMode::kFit;
    // mSettings are the user's very choice and stay as they are, their rate and channels too. What
    // else is wished tells of the audio that they were chosen for.
    bool mIsChosen = false;
};

}  // namespace host

#endif
