// ExportPlan: decides how audio is saved, with the plug-in as the judge.
#ifndef HOST_EXPORT_EXPORTPLAN_H
#define HOST_EXPORT_EXPORTPLAN_H

#include "host/ExportSettings.h"
#include "host/export/ExportWish.h"
#include "host/export/SettingsComposer.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace host
{

/// The plug-in's judgement, as AskExportSettings gives it.
using AskSettings = std::function<ExportAnswer(const ExportRequest&)>;

struct ExportPlan
{
    std::string mSettings;  // for the write session
    AudioShape mAudio;      // in which the samples are handed over; the length in frames there
    std::uint32_t mFileType = 0;
    std::uint32_t mFormat = 0;
    std::string mDescription;  // for people, in lines
    std::string mMimeType;
    std::vector<std::string> mExtensions;
    std::int64_t mEstimatedBytes = 0;
    bool mIsLossy = false;
    std::vector<std::string> mChanges;  // a line each on what was changed to fit
};

/// Where the settings of an export are decided, for every command.
///
/// inPath  of the file to write, whose extension tells the type where nothing else does; empty: no
///         extension, so the plug-in's default type
/// Asks the plug-in as often as needed, which must have been started. Throws Failure: kExitUsage
/// for names that are unknown, kExitSettings for what is impossible, telling what is possible.
ExportPlan PlanExport(const AskSettings& inAsk, const ExportWish& inWish,
                      const ExportSource& inSource, const std::string& inPath);

}  // namespace host

#endif
