// tarvo convert: files into files of other types, formats, rates and channels.

#include "host/Interrupt.h"
#include "host/Registration.h"
#include "host/Report.h"
#include "host/StoredSettings.h"
#include "host/commands/Commands.h"
#include "host/export/ExportNames.h"
#include "host/export/ExportOptions.h"
#include "host/export/FileConverter.h"
#include "host/export/Jobs.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>

namespace host
{

namespace
{

struct ConvertCommandOptions
{
    std::vector<std::string> mFiles;  // without mFolder the last one is the target
    std::string mFolder;
    std::size_t mJobs = 1;
    ExportOptions mExport;
    std::string mDither = "tpdf";
    std::string mProgress;
    bool mHasDialog = false;
    bool mIsDryRun = false;
    bool mVerifies = false;
    bool mForce = false;
    bool mIsQuiet = false;
};

struct ConvertTask
{
    std::string mSource;
    std::string mTarget;
};

[[noreturn]] void FailUsage(const std::string& inText)
{
    throw Failure(kExitUsage, 0, inText);
}

// The name of a target in the folder, whose type the options have to tell.
std::string TargetName(const ConvertCommandOptions& inOptions, const ExportWish& inWish,
                       const std::string& inSource)
{
    std::uint32_t type = 0;
    if (!inWish.mType.empty())
        type = FileTypeByName(inWish.mType);
    else if (inWish.mSettings)
        type = static_cast<std::uint32_t>(SettingsNumber(*inWish.mSettings, "AudioFileTypeID"));
    else
        FailUsage("--out-dir needs --type or --settings");
    const std::string extension = ExtensionFor(type, inWish.mType);
    const std::string stem = std::filesystem::path(inSource).stem().string();
    const std::string name = extension.empty() ? stem : stem + "." + extension;
    return (std::filesystem::path(inOptions.mFolder) / name).string();
}

std::vector<ConvertTask> Tasks(const ConvertCommandOptions& inOptions, const ExportWish& inWish)
{
    if (inOptions.mFolder.empty())
    {
        if (inOptions.mFiles.size() != 2)
            FailUsage("give one file to read and one to write, or --out-dir");
        if (inOptions.mFiles[1] == "-")
            FailUsage("a file cannot be written to standard output: its header is completed last");
        return {{inOptions.mFiles[0], inOptions.mFiles[1]}};
    }
    std::vector<ConvertTask> tasks;
    std::set<std::string> targets;
    for (const std::string& source : inOptions.mFiles)
    {
        tasks.push_back({source, TargetName(inOptions, inWish, source)});
        if (!targets.insert(tasks.back().mTarget).second)
            FailUsage(tasks.back().mTarget + ": several files would be written there");
    }
    return tasks;
}

ConvertOptions ReadOptions(const ConvertCommandOptions& inOptions)
{
    ConvertOptions options;
    options.mWish = ReadWish(inOptions.mExport);
    options.mDither = inOptions.mDither == "none" ? Dither::kNone : Dither::kTPDF;
    if (inOptions.mProgress == "json")
        options.mProgress = ProgressForm::kJSON;
    else if (inOptions.mIsQuiet)
        options.mProgress = ProgressForm::kNone;
    options.mIsDryRun = inOptions.mIsDryRun;
    options.mVerifies = inOptions.mVerifies;
    options.mMayReplace = inOptions.mForce;
    return options;
}

// JSON ------------------------------------------------------------------------------------------

nlohmann::ordered_json VerificationObject(const VerificationResult& inResult)
{
    nlohmann::ordered_json object;
    object["exact"] = inResult.IsExact();
    object["frames"] = inResult.mFramesFound;
    object["delay"] = inResult.mDelay;
    // JSON knows no infinity: no noise at all is null.
    if (std::isfinite(inResult.mSignalToNoise))
        object["signalToNoise"] = inResult.mSignalToNoise;
    else
        object["signalToNoise"] = nullptr;
    return object;
}

void PrintForPrograms(const ConvertTask& inTask, const ConvertReport& inReport)
{
    const ExportPlan& plan = inReport.mPlan;
    nlohmann::ordered_json object = NewObject();
    object["path"] = inTask.mSource;
    object["output"] = inTask.mTarget;
    object["dryRun"] = !inReport.mResult.has_value();
    object["fileType"] = CodeText(plan.mFileType);
    object["format"] = CodeText(plan.mFormat);
    object["description"] = plan.mDescription;
    object["sampleRate"] = plan.mAudio.mSampleRate;
    object["channels"] = plan.mAudio.ChannelCount();
    object["sampleType"] = plan.mAudio.mSampleType;
    object["lossy"] = plan.mIsLossy;
    object["estimatedBytes"] = plan.mEstimatedBytes;
    object["mimeType"] = plan.mMimeType;
    object["extensions"] = plan.mExtensions;
    object["settings"] = plan.mSettings;
    object["changes"] = plan.mChanges;
    if (inReport.mResult)
    {
        const double audio =
            static_cast<double>(inReport.mResult->mFramesWritten) / plan.mAudio.mSampleRate;
        object["frames"] = inReport.mResult->mFramesWritten;
        object["bytes"] = inReport.mBytes;
        object["seconds"] = inReport.mResult->mSeconds;
        object["timesRealTime"] =
            inReport.mResult->mSeconds > 0 ? audio / inReport.mResult->mSeconds : 0.0;
    }
    if (inReport.mVerification)
        object["verification"] = VerificationObject(*inReport.mVerification);
    PrintObject(object);
}

// Text ------------------------------------------------------------------------------------------

std::string Indented(std::string inText)
{
    for (std::size_t at = 0; (at = inText.find('\n', at)) != std::string::npos; at += 16)
        inText.replace(at, 1, "\n               ");
    return inText;
}

void PrintPlan(const ConvertTask& inTask, const ExportPlan& inPlan)
{
    std::printf("%s\n", inTask.mTarget.c_str());
    const auto row = [](const char* inName, const std::string& inText)
    { std::printf("  %-12s %s\n", inName, inText.c_str()); };
    std::string extensions;
    for (const std::string& extension : inPlan.mExtensions)
        extensions += (extensions.empty() ? "" : " ") + extension;
    row("Summary", Indented(inPlan.mDescription));
    row("Rate", std::to_string(inPlan.mAudio.mSampleRate) + " Hz");
    row("Channels", std::to_string(inPlan.mAudio.ChannelCount()));
    row("Size", "about " + std::to_string(inPlan.mEstimatedBytes) + " bytes");
    row("MIME type", inPlan.mMimeType);
    row("Extensions", extensions);
    row("Settings", inPlan.mSettings);
}

void PrintForPeople(const ConvertTask& inTask, const ConvertReport& inReport)
{
    if (!inReport.mResult)
        return PrintPlan(inTask, inReport.mPlan);
    const ConversionResult& result = *inReport.mResult;
    const double audio =
        static_cast<double>(result.mFramesWritten) / inReport.mPlan.mAudio.mSampleRate;
    std::printf("%s: %lld frames, %lld bytes, in %.3f s, %.1f times real time%s\n",
                inTask.mTarget.c_str(), static_cast<long long>(result.mFramesWritten),
                static_cast<long long>(inReport.mBytes), result.mSeconds,
                result.mSeconds > 0 ? audio / result.mSeconds : 0.0,
                inReport.mVerification ? ", verified" : "");
}

// -----------------------------------------------------------------------------------------------

class ConvertRun
{
public:
    ConvertRun(const PlugIn& inPlugIn, const CommonOptions& inCommon,
               const ConvertCommandOptions& inOptions)
        : mPlugIn(inPlugIn),
          mCommon(inCommon),
          mIsQuiet(inOptions.mIsQuiet),
          mIsBatch(!inOptions.mFolder.empty()),
          mHasDialog(inOptions.mHasDialog),
          mJobs(inOptions.mJobs),
          mOptions(ReadOptions(inOptions)),
          mTasks(Tasks(inOptions, mOptions.mWish))
    {
    }

    int Run()
    {
        if (mJobs > 1 && mTasks.size() > 1)
            return RunJobs(
                mTasks.size(), mJobs,
                [this](std::size_t inTask)
                {
                Register(mPlugIn);
                return ConvertOne(mTasks[inTask]);
                },
                [this](std::size_t inTask) { return mTasks[inTask].mSource; });
        const Registration registration = Register(mPlugIn);
        if (mHasDialog)
        {
            ProvideDialogs();
            mChooser.emplace(mPlugIn, registration);
            mOptions.mChooser = &*mChooser;
        }
        int code = kExitDone;
        for (const ConvertTask& task : mTasks)
        {
            CheckInterrupt();
            code = std::max(code, ConvertOne(task));
        }
        return code;
    }

private:
    int ConvertOne(const ConvertTask& inTask) const
    {
        try
        {
            const FileConverter converter(mPlugIn, mOptions);
            const ConvertReport report =
                converter.Convert(inTask.mSource, inTask.mTarget,
                                  [&](const ExportPlan& inPlan) { TellChanges(inTask, inPlan); });
            if (report.mIsCancelled)
                return PrintCancelled(mCommon.mJSON, inTask.mSource, inTask.mTarget);
            if (mCommon.mJSON)
                PrintForPrograms(inTask, report);
            else if (!mIsQuiet || mOptions.mIsDryRun)
                PrintForPeople(inTask, report);
            return kExitDone;
        }
        catch (const Failure& failure)
        {
            // The other texts name the target, or the option.
            const bool isAboutSource =
                failure.mExitCode == kExitInput || failure.mExitCode == kExitSettings;
            PrintFailure(failure, mIsBatch || isAboutSource ? inTask.mSource : "", mCommon.mJSON);
            return failure.mExitCode;
        }
    }

    void TellChanges(const ConvertTask& inTask, const ExportPlan& inPlan) const
    {
        if (mIsQuiet)
            return;
        for (const std::string& change : inPlan.mChanges)
            std::fprintf(stderr, "tarvo: %s: %s\n", inTask.mSource.c_str(), change.c_str());
    }

    const PlugIn& mPlugIn;
    const CommonOptions& mCommon;
    const bool mIsQuiet;
    const bool mIsBatch;
    const bool mHasDialog;
    const std::size_t mJobs;
    ConvertOptions mOptions;
    const std::vector<ConvertTask> mTasks;
    std::optional<SettingsChooser> mChooser;
};

void AddOptions(CLI::App& ioCommand, ConvertCommandOptions& outOptions)
{
    ioCommand
        .add_option("FILE", outOptions.mFiles,
                    "The file to read and the file to write; with --out-dir files to read")
        ->required()
        ->check(NotEmpty());
    auto* folder =
        ioCommand
            .add_option("--out-dir", outOptions.mFolder, "Write into this folder, a file each")
            ->check(CLI::ExistingDirectory);
    ioCommand.add_option("--jobs", outOptions.mJobs, "Files that are converted at once")
        ->check(CLI::Range(1, 256))
        ->needs(folder);
    AddExportOptions(ioCommand, outOptions.mExport);
    AddDialogOption(ioCommand, outOptions.mHasDialog)->excludes(folder);
    ioCommand
        .add_option("--dither", outOptions.mDither,
                    "Noise when narrowing to 16 or 8 bits: tpdf (default) or none")
        ->check(CLI::IsMember({"tpdf", "none"}));
    ioCommand.add_flag("--dry-run", outOptions.mIsDryRun, "Tell what would be written");
    ioCommand.add_flag("--verify", outOptions.mVerifies, "Decode the file again and compare");
    ioCommand
        .add_option("--progress", outOptions.mProgress, "json: one object a line on standard error")
        ->check(CLI::IsMember({"json"}));
    ioCommand.add_flag("--force", outOptions.mForce, "Replace a file that is there already");
    ioCommand.add_flag("--quiet", outOptions.mIsQuiet, "Tell nothing but failures");
}

}  // namespace

void AddConvertCommand(CLI::App& ioProgram, const CommonOptions& inCommon, Work& outWork)
{
    CLI::App* command = ioProgram.add_subcommand(
        "convert", "Write a file's audio as another type, format, rate or channel count");
    auto options = std::make_shared<ConvertCommandOptions>();
    AddOptions(*command, *options);
    command->callback(
        [&inCommon, &outWork, options]
        {
        outWork = [&inCommon, options](const PlugIn& inPlugIn)
        { return ConvertRun(inPlugIn, inCommon, *options).Run(); };
    });
}

}  // namespace host
