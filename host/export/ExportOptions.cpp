#include "host/export/ExportOptions.h"

#include "host/Failure.h"
#include "host/export/Presets.h"

#include <charconv>
#include <cmath>

namespace host
{

namespace
{

constexpr double kLargestBitrate = 100e6;
constexpr double kLargestRate = 1e6;
constexpr std::uint32_t kMostChannels = 64;

struct NamedNumber
{
    std::string_view mName;
    std::uint32_t mNumber;
};

constexpr NamedNumber kModes[] = {
    {"cbr", kModeConstant},
    {"abr", kModeAverage},
    {"cvbr", kModeConstrained},
    {"vbr", kModeVariable},
};

constexpr NamedNumber kQualities[] = {
    {"min", 0}, {"low", 32}, {"medium", 64}, {"high", 96}, {"max", 127},
};

constexpr NamedNumber kRepairs[] = {
    {"none", static_cast<std::uint32_t>(RepairMode::kNone)},
    {"fit", static_cast<std::uint32_t>(RepairMode::kFit)},
    {"stored", static_cast<std::uint32_t>(RepairMode::kStored)},
};

constexpr std::uint32_t kDepths[] = {8, 16, 20, 24, 32};

template <std::size_t kCount>
std::optional<std::uint32_t> Find(const NamedNumber (&inRows)[kCount], std::string_view inName)
{
    for (const NamedNumber& row : inRows)
        if (row.mName == inName)
            return row.mNumber;
    return std::nullopt;
}

template <typename Number>
std::optional<Number> ReadWhole(std::string_view inText)
{
    Number number{};
    const auto [last, error] =
        std::from_chars(inText.data(), inText.data() + inText.size(), number);
    if (error != std::errc() || last != inText.data() + inText.size())
        return std::nullopt;
    return number;
}

// A number with a suffix for thousands or millions, rounded to a whole one from 1 to inLargest.
std::optional<std::uint32_t> ReadScaled(std::string_view inText, double inLargest)
{
    double scale = 1.0;
    if (inText.ends_with('k') || inText.ends_with('K'))
        scale = 1e3;
    else if (inText.ends_with('M'))
        scale = 1e6;
    if (scale > 1.0)
        inText.remove_suffix(1);
    const auto number = ReadWhole<double>(inText);
    // Written so that a NaN does not pass.
    if (!number || !(*number * scale >= 1.0 && *number * scale <= inLargest))
        return std::nullopt;
    return static_cast<std::uint32_t>(std::llround(*number * scale));
}

template <typename Read>
auto Required(const std::string& inText, Read inRead, const char* inOption, const char* inForm)
{
    decltype(inRead(inText)) value;
    if (inText.empty())
        return value;
    value = inRead(inText);
    if (!value)
        throw Failure(kExitUsage, 0, std::string(inOption) + " " + inText + ": give " + inForm);
    return value;
}

void CheckTogether(const ExportWish& inWish)
{
    if (inWish.mBitrate && inWish.mQuality)
        throw Failure(kExitUsage, 0, "--bitrate and --quality exclude each other");
    if (inWish.mBitrate && inWish.mMode == kModeVariable)
        throw Failure(kExitUsage, 0, "--bitrate has no meaning with --mode vbr; give --quality");
    if (inWish.mQuality && inWish.mMode && inWish.mMode != kModeVariable)
        throw Failure(kExitUsage, 0, "--quality has a meaning with --mode vbr only");
}

}  // namespace

std::optional<SampleDepth> ReadDepth(std::string_view inText)
{
    if (inText == "float")
        return SampleDepth{32, true};
    SampleDepth depth;
    if (inText.ends_with('f') || inText.ends_with('i'))
    {
        depth.mIsFloat = inText.back() == 'f';
        inText.remove_suffix(1);
    }
    const auto bits = ReadWhole<std::uint32_t>(inText);
    for (const std::uint32_t known : kDepths)
        if (bits == known)
            depth.mBits = known;
    const bool isFloatOfNoWidth = depth.mIsFloat == true && depth.mBits < 32;
    if (depth.mBits == 0 || isFloatOfNoWidth)
        return std::nullopt;
    return depth;
}

std::optional<std::uint32_t> ReadBitrate(std::string_view inText)
{
    return ReadScaled(inText, kLargestBitrate);
}

std::optional<std::uint32_t> ReadQuality(std::string_view inText)
{
    if (const auto named = Find(kQualities, inText))
        return named;
    const auto number = ReadWhole<std::uint32_t>(inText);
    return number && *number <= 127 ? number : std::nullopt;
}

std::optional<std::uint32_t> ReadMode(std::string_view inText)
{
    return Find(kModes, inText);
}

std::optional<std::int32_t> ReadRate(std::string_view inText)
{
    const auto rate = ReadScaled(inText, kLargestRate);
    return rate ? std::optional(static_cast<std::int32_t>(*rate)) : std::nullopt;
}

std::optional<std::uint32_t> ReadChannelCount(std::string_view inText)
{
    const auto count = ReadWhole<std::uint32_t>(inText);
    return count && *count >= 1 && *count <= kMostChannels ? count : std::nullopt;
}

CLI::Validator NotEmpty()
{
    return CLI::Validator([](const std::string& inText)
                          { return inText.empty() ? std::string("is empty") : std::string(); },
                          "");
}

void AddExportOptions(CLI::App& ioCommand, ExportOptions& outOptions)
{
    const char* group = "Settings";
    const auto add = [&](const char* inName, auto& outText, const char* inHelp)
    { ioCommand.add_option(inName, outText, inHelp)->group(group)->check(NotEmpty()); };
    add("--type", outOptions.mType, "File type: an extension, a code or a name");
    add("--format", outOptions.mFormat, "Data format: a code or a name (pcm, alac, aac, ...)");
    add("--depth", outOptions.mDepth, "Bits a sample: 8, 16, 20, 24, 32, 32f, 32i");
    add("--bitrate", outOptions.mBitrate, "Bits per second, as 192k");
    add("--mode", outOptions.mMode, "Bit rate mode: cbr, abr, cvbr or vbr");
    add("--quality", outOptions.mQuality,
        "Of the mode vbr: 0 to 127, or min, low, medium, high, max");
    add("--rate", outOptions.mRate, "Sample rate in Hz, as 48000 or 44.1k");
    add("--channels", outOptions.mChannels, "Number of channels");
    // An empty text is one: the plug-in's default settings.
    ioCommand
        .add_option("--settings", outOptions.mSettings, "A settings text, or the name of a preset")
        ->group(group);
    add("--repair", outOptions.mRepair,
        "What to do with settings that do not suit the audio: none, fit (default), stored");
}

CLI::Option* AddDialogOption(CLI::App& ioCommand, bool& outHasDialog)
{
    return ioCommand
        .add_flag("--dialog", outHasDialog, "Choose in a dialog, which starts from the options")
        ->group("Settings");
}

ExportWish ReadWish(const ExportOptions& inOptions)
{
    ExportWish wish;
    wish.mType = inOptions.mType;
    wish.mFormat = inOptions.mFormat;
    wish.mDepth = Required(inOptions.mDepth, ReadDepth, "--depth", "8, 16, 20, 24, 32, 32f or 32i");
    wish.mBitrate = Required(inOptions.mBitrate, ReadBitrate, "--bitrate",
                             "bits per second, as 192k or 192000");
    wish.mMode = Required(inOptions.mMode, ReadMode, "--mode", "cbr, abr, cvbr or vbr");
    wish.mQuality = Required(inOptions.mQuality, ReadQuality, "--quality",
                             "0 to 127, or min, low, medium, high, max");
    wish.mRate = Required(inOptions.mRate, ReadRate, "--rate", "hertz, as 48000 or 44.1k");
    wish.mChannels = Required(inOptions.mChannels, ReadChannelCount, "--channels", "1 to 64");
    const auto readRepair = [](std::string_view inText) { return Find(kRepairs, inText); };
    if (const auto repair =
            Required(inOptions.mRepair, readRepair, "--repair", "none, fit or stored"))
        wish.mRepair = static_cast<RepairMode>(*repair);
    CheckTogether(wish);
    if (inOptions.mSettings)
        wish.mSettings = IsSettingsText(*inOptions.mSettings) ? *inOptions.mSettings
                                                              : LoadPreset(*inOptions.mSettings);
    return wish;
}

}  // namespace host
