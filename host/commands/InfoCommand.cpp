// tarvo info: what the plug-in says about files.

#include "host/ChannelNames.h"
#include "host/Interrupt.h"
#include "host/ReadSession.h"
#include "host/Report.h"
#include "host/StoredSettings.h"
#include "host/commands/Commands.h"

#include <cstdio>
#include <memory>

namespace host
{

namespace
{

struct InfoOptions
{
    std::vector<std::string> mFiles;
};

std::uint32_t SettingsCode(const AudioInfo& inInfo, const char* inKey)
{
    return static_cast<std::uint32_t>(SettingsNumber(inInfo.mSettings, inKey));
}

const char* SampleTypeText(std::int32_t inSampleType)
{
    switch (inSampleType)
    {
        case 10:
            return "8-bit integer";
        case 20:
            return "16-bit integer";
        case 30:
            return "24-bit integer";
        case 40:
            return "32-bit float";
        default:
            return "unknown";
    }
}

std::string LengthText(const AudioInfo& inInfo)
{
    const auto milliseconds = static_cast<long long>(inInfo.Seconds() * 1000.0 + 0.5);
    char text[96];
    std::snprintf(text, sizeof(text), "%lld:%02lld:%02lld.%03lld (%lld frames)",
                  milliseconds / 3600000, milliseconds / 60000 % 60, milliseconds / 1000 % 60,
                  milliseconds % 1000, static_cast<long long>(inInfo.mFrameCount));
    return text;
}

void PrintForPeople(const std::string& inPath, const AudioInfo& inInfo)
{
    std::printf("%s\n", inPath.c_str());
    const auto row = [](const char* inName, const std::string& inText)
    { std::printf("  %-12s %s\n", inName, inText.c_str()); };
    row("Description", inInfo.mDescription);
    row("Type", CodeForPeople(SettingsCode(inInfo, "AudioFileTypeID")));
    row("Format", CodeForPeople(SettingsCode(inInfo, "FormatID")));
    row("Rate", std::to_string(inInfo.mSampleRate) + " Hz");
    row("Channels",
        std::to_string(inInfo.ChannelCount()) + " (" + ChannelNames(inInfo.mLabels) + ")");
    row("Samples", SampleTypeText(inInfo.mSampleType));
    row("Length", LengthText(inInfo));
    row("Bit rate", std::to_string(inInfo.mBitrate) + " bit/s");
    row("Settings", inInfo.mSettings);
}

void PrintForPrograms(const std::string& inPath, const AudioInfo& inInfo)
{
    nlohmann::ordered_json object = NewObject();
    object["path"] = inPath;
    object["fileType"] = CodeText(SettingsCode(inInfo, "AudioFileTypeID"));
    object["format"] = CodeText(SettingsCode(inInfo, "FormatID"));
    object["description"] = inInfo.mDescription;
    object["sampleRate"] = inInfo.mSampleRate;
    object["channels"] = inInfo.ChannelCount();
    object["channelLabels"] = inInfo.mLabels;
    object["bitsPerChannel"] = SettingsNumber(inInfo.mSettings, "BitsPerChannel");
    object["sampleType"] = inInfo.mSampleType;
    object["frames"] = inInfo.mFrameCount;
    object["duration"] = inInfo.Seconds();
    object["bitrate"] = inInfo.mBitrate;
    object["settings"] = inInfo.mSettings;
    PrintObject(object);
}

// Every file gets its turn; the first failure decides the exit code.
int Info(const PlugIn& inPlugIn, const CommonOptions& inCommon, const InfoOptions& inOptions)
{
    int code = kExitDone;
    for (const std::string& path : inOptions.mFiles)
    {
        CheckInterrupt();
        try
        {
            const ReadSession session(inPlugIn, path);
            inCommon.mJSON ? PrintForPrograms(path, session.Info())
                           : PrintForPeople(path, session.Info());
        }
        catch (const Failure& failure)
        {
            PrintFailure(failure, path, inCommon.mJSON);
            code = code == kExitDone ? failure.mExitCode : code;
        }
    }
    return code;
}

}  // namespace

void AddInfoCommand(CLI::App& ioProgram, const CommonOptions& inCommon, Work& outWork)
{
    CLI::App* command = ioProgram.add_subcommand("info", "Tell what files hold");
    auto options = std::make_shared<InfoOptions>();
    command->add_option("FILE", options->mFiles, "Files to look at")->required();
    command->callback(
        [&inCommon, &outWork, options]
        {
        outWork = [&inCommon, options](const PlugIn& inPlugIn)
        { return Info(inPlugIn, inCommon, *options); };
    });
}

}  // namespace host
