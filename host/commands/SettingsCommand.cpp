// tarvo settings: settings texts for exports, made, fitted to audio and kept as presets.

#include "host/Registration.h"
#include "host/Report.h"
#include "host/StoredSettings.h"
#include "host/commands/Commands.h"
#include "host/export/ExportOptions.h"
#include "host/export/ExportPlan.h"
#include "host/export/Presets.h"
#include "host/export/SettingsChooser.h"

#include <cstdio>
#include <memory>

namespace host
{

namespace
{

struct SettingsCommandOptions
{
    std::string mFile;  // empty: the plug-in's default audio
    ExportOptions mExport;
    bool mHasDialog = false;
    std::string mPreset;  // empty: not to be kept
    bool mForce = false;
};

// Without a file, the rate and the channels are those of the settings text where it tells them.
ExportSource DefaultSource(const PlugIn& inPlugIn, const ExportWish& inWish)
{
    ExportSource source;
    source.mShape = AskDefaultExportFormat(inPlugIn);
    if (!inWish.mSettings)
        return source;
    tarvo::TarvoATPrivateSettings record;
    const std::u16string text = ToPlugIn(*inWish.mSettings);
    if (!record.InitializeFromSerialized(UTF16String(text.data(), text.size())))
        return source;
    constexpr double kMostHertz = 1e6;
    constexpr UInt32 kMostChannels = 64;
    if (record.GetSampleRate() >= 1.0 && record.GetSampleRate() <= kMostHertz)
        source.mShape.mSampleRate = static_cast<std::int32_t>(record.GetSampleRate());
    if (record.GetChannelsPerFrame() <= kMostChannels)
        source.mShape.mLabels.assign(record.GetChannelsPerFrame(), 0);
    return source;
}

ExportSource Source(const PlugIn& inPlugIn, const std::string& inFile, const ExportWish& inWish)
{
    if (inFile.empty())
        return DefaultSource(inPlugIn, inWish);
    const ReadSession session(inPlugIn, inFile);
    return {ShapeOf(session.Info()), session.Info().mSettings};
}

void PrintForPrograms(const SettingsCommandOptions& inOptions, const ExportPlan& inPlan)
{
    nlohmann::ordered_json object = NewObject();
    if (!inOptions.mFile.empty())
        object["path"] = inOptions.mFile;
    object["settings"] = inPlan.mSettings;
    object["description"] = inPlan.mDescription;
    object["fileType"] = CodeText(inPlan.mFileType);
    object["format"] = CodeText(inPlan.mFormat);
    object["sampleRate"] = inPlan.mAudio.mSampleRate;
    object["channels"] = inPlan.mAudio.ChannelCount();
    object["sampleType"] = inPlan.mAudio.mSampleType;
    object["lossy"] = inPlan.mIsLossy;
    if (!inOptions.mFile.empty())
        object["estimatedBytes"] = inPlan.mEstimatedBytes;
    object["mimeType"] = inPlan.mMimeType;
    object["extensions"] = inPlan.mExtensions;
    object["changes"] = inPlan.mChanges;
    if (!inOptions.mPreset.empty())
        object["preset"] = inOptions.mPreset;
    PrintObject(object);
}

void PrintForPeople(const ExportPlan& inPlan)
{
    std::printf("%s\n\n%s\n%d Hz, %zu %s\n", inPlan.mSettings.c_str(), inPlan.mDescription.c_str(),
                inPlan.mAudio.mSampleRate, inPlan.mAudio.ChannelCount(),
                inPlan.mAudio.ChannelCount() == 1 ? "channel" : "channels");
}

int Settings(const PlugIn& inPlugIn, const CommonOptions& inCommon,
             const SettingsCommandOptions& inOptions)
{
    const ExportWish wish = ReadWish(inOptions.mExport);
    if (!inOptions.mPreset.empty() && !IsPresetName(inOptions.mPreset))
        SavePreset(inOptions.mPreset, "", false);  // says why not
    const Registration registration = Register(inPlugIn);
    if (inOptions.mHasDialog)
        ProvideDialogs();
    try
    {
        const ExportSource source = Source(inPlugIn, inOptions.mFile, wish);
        const auto ask = [&](const ExportRequest& inRequest)
        { return AskExportSettings(inPlugIn, inRequest); };
        ExportPlan plan = PlanExport(ask, wish, source, "");
        if (inOptions.mHasDialog)
        {
            const auto chosen =
                SettingsChooser(inPlugIn, registration).Choose(wish, source, plan, "");
            if (!chosen)
                return PrintCancelled(inCommon.mJSON, inOptions.mFile);
            plan = *chosen;
        }
        for (const std::string& change : plan.mChanges)
            std::fprintf(stderr, "tarvo: %s\n", change.c_str());
        if (!inOptions.mPreset.empty())
            SavePreset(inOptions.mPreset, plan.mSettings, inOptions.mForce);
        inCommon.mJSON ? PrintForPrograms(inOptions, plan) : PrintForPeople(plan);
        return kExitDone;
    }
    catch (const Failure& failure)
    {
        PrintFailure(failure, failure.mExitCode == kExitOutput ? "" : inOptions.mFile,
                     inCommon.mJSON);
        return failure.mExitCode;
    }
}

}  // namespace

void AddSettingsCommand(CLI::App& ioProgram, const CommonOptions& inCommon, Work& outWork)
{
    CLI::App* command = ioProgram.add_subcommand(
        "settings", "Make a settings text for exports, and keep it as a preset");
    auto options = std::make_shared<SettingsCommandOptions>();
    command->add_option("FILE", options->mFile, "Audio that the settings shall fit")
        ->check(NotEmpty());
    AddExportOptions(*command, options->mExport);
    AddDialogOption(*command, options->mHasDialog);
    command->add_option("--save", options->mPreset, "Keep the settings under this name")
        ->check(NotEmpty());
    command->add_flag("--force", options->mForce, "Replace a preset that is there already");
    command->callback(
        [&inCommon, &outWork, options]
        {
        outWork = [&inCommon, options](const PlugIn& inPlugIn)
        { return Settings(inPlugIn, inCommon, *options); };
    });
}

}  // namespace host
