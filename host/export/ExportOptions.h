// ExportOptions: the options with which the user tells an ExportWish, shared by the commands.
#ifndef HOST_EXPORT_EXPORTOPTIONS_H
#define HOST_EXPORT_EXPORTOPTIONS_H

#include "host/export/ExportWish.h"

#include <CLI/CLI.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace host
{

/// As they were written; an empty text was not given, apart from the settings.
struct ExportOptions
{
    std::string mType{};
    std::string mFormat{};
    std::string mDepth{};
    std::string mBitrate{};
    std::string mMode{};
    std::string mQuality{};
    std::string mRate{};
    std::string mChannels{};
    std::optional<std::string> mSettings{};
    std::string mRepair{};
};

/// Refuses an empty value, which a shell makes of a variable that is not set.
CLI::Validator NotEmpty();

void AddExportOptions(CLI::App& ioCommand, ExportOptions& outOptions);

/// The flag that has the rest chosen in the plug-in's dialog.
CLI::Option* AddDialogOption(CLI::App& ioCommand, bool& outHasDialog);

/// Reads the options; a preset's name becomes its text. Throws Failure (kExitUsage) for what
/// cannot be read and for options that exclude each other.
ExportWish ReadWish(const ExportOptions& inOptions);

/// Values as users write them, nothing for anything else.
std::optional<SampleDepth> ReadDepth(std::string_view inText);           // 24, 32f, 32i, float
std::optional<std::uint32_t> ReadBitrate(std::string_view inText);       // 192k, 192000, 1.5M
std::optional<std::uint32_t> ReadQuality(std::string_view inText);       // 0 to 127, high
std::optional<std::uint32_t> ReadMode(std::string_view inText);          // cbr, abr, cvbr, vbr
std::optional<std::int32_t> ReadRate(std::string_view inText);           // 48000, 44.1k
std::optional<std::uint32_t> ReadChannelCount(std::string_view inText);  // 1 to 64

}  // namespace host

#endif
