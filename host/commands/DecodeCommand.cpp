// tarvo decode: the whole of a file through the plug-in, into raw samples or nowhere.

#include "host/BlockReader.h"
#include "host/Interrupt.h"
#include "host/OutputFile.h"
#include "host/Progress.h"
#include "host/Report.h"
#include "host/commands/Commands.h"

#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>

namespace host
{

namespace
{

struct DecodeOptions
{
    std::string mFile;
    std::optional<std::string> mRaw;  // none: samples are discarded
    bool mFull = false;
    bool mForce = false;
};

struct DecodeResult
{
    std::int64_t mFrames = 0;
    std::int64_t mBytes = 0;  // of samples
    double mSeconds = 0.0;    // taken
};

double SecondsSince(std::chrono::steady_clock::time_point inStart)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - inStart).count();
}

DecodeResult DecodeAll(ReadSession& ioSession, const DecodeOptions& inOptions, OutputFile* ioOutput)
{
    const auto start = std::chrono::steady_clock::now();
    const AudioInfo& info = ioSession.Info();
    const std::size_t frameBytes = info.ChannelCount() * info.BytesPerSample();
    BlockReader reader(ioSession, inOptions.mFull);
    Progress progress(inOptions.mFile, info.mFrameCount);
    std::vector<char> interleaved;

    DecodeResult result;
    while (const std::int64_t count = reader.Next())
    {
        CheckInterrupt();
        result.mFrames += count;
        if (ioOutput)
        {
            interleaved.resize(static_cast<std::size_t>(count) * frameBytes);
            Interleave(reader.Channels(), info.ChannelCount(), info.BytesPerSample(), count,
                       interleaved.data());
            ioOutput->Write(interleaved.data(), interleaved.size());
        }
        progress.Show(result.mFrames);
    }
    result.mBytes = result.mFrames * static_cast<std::int64_t>(frameBytes);
    result.mSeconds = SecondsSince(start);
    return result;
}

void Tell(const CommonOptions& inCommon, const DecodeOptions& inOptions, const AudioInfo& inInfo,
          const DecodeResult& inResult)
{
    const double audioSeconds =
        inInfo.mSampleRate > 0 ? static_cast<double>(inResult.mFrames) / inInfo.mSampleRate : 0.0;
    const double speed = inResult.mSeconds > 0 ? audioSeconds / inResult.mSeconds : 0.0;
    const double megabytes = static_cast<double>(inResult.mBytes) / 1e6;
    const double rate = inResult.mSeconds > 0 ? megabytes / inResult.mSeconds : 0.0;

    // Samples on standard output leave no room for a report there.
    FILE* stream = inOptions.mRaw == "-" ? stderr : stdout;
    if (!inCommon.mJSON)
    {
        std::fprintf(stream, "%s: %lld frames in %.3f s, %.1f times real time, %.1f MB/s\n",
                     inOptions.mFile.c_str(), static_cast<long long>(inResult.mFrames),
                     inResult.mSeconds, speed, rate);
        return;
    }
    nlohmann::ordered_json object = NewObject();
    object["path"] = inOptions.mFile;
    object["frames"] = inResult.mFrames;
    object["channels"] = inInfo.ChannelCount();
    object["sampleRate"] = inInfo.mSampleRate;
    object["sampleType"] = inInfo.mSampleType;
    object["bytes"] = inResult.mBytes;
    object["seconds"] = inResult.mSeconds;
    object["timesRealTime"] = speed;
    object["megabytesPerSecond"] = rate;
    PrintObject(object, stream);
}

int Decode(const PlugIn& inPlugIn, const CommonOptions& inCommon, const DecodeOptions& inOptions)
{
    try
    {
        ReadSession session(inPlugIn, inOptions.mFile);
        std::optional<OutputFile> output;
        if (inOptions.mRaw)
            output.emplace(*inOptions.mRaw, inOptions.mForce, inOptions.mFile);
        const DecodeResult result = DecodeAll(session, inOptions, output ? &*output : nullptr);
        if (output)
            output->Commit();
        Tell(inCommon, inOptions, session.Info(), result);
        return kExitDone;
    }
    catch (const Failure& failure)
    {
        PrintFailure(failure, failure.mExitCode == kExitInput ? inOptions.mFile : "",
                     inCommon.mJSON && inOptions.mRaw != "-");
        return failure.mExitCode;
    }
}

}  // namespace

void AddDecodeCommand(CLI::App& ioProgram, const CommonOptions& inCommon, Work& outWork)
{
    CLI::App* command = ioProgram.add_subcommand("decode", "Decode the whole of a file");
    auto options = std::make_shared<DecodeOptions>();
    command->add_option("FILE", options->mFile, "File to decode")->required();
    command->add_option("--raw", options->mRaw,
                        "Write interleaved raw samples to this file, - for standard output");
    command->add_flag("--full", options->mFull, "Keep a compressed file's padding at the end");
    command->add_flag("--force", options->mForce, "Replace a file that is there already");
    command->callback(
        [&inCommon, &outWork, options]
        {
        outWork = [&inCommon, options](const PlugIn& inPlugIn)
        { return Decode(inPlugIn, inCommon, *options); };
    });
}

}  // namespace host
