#include "host/export/FileConverter.h"

#include "host/Failure.h"
#include "host/Interrupt.h"
#include "host/StoredSettings.h"
#include "host/TargetFile.h"
#include "host/WriteSession.h"

#include <AudioToolbox/AudioToolbox.h>

#include <cstdio>
#include <optional>
#include <sys/stat.h>
#include <utility>

namespace host
{

namespace
{

// Below this, a lossy copy differs from its source by more than the source itself.
constexpr double kWorstSignalToNoise = 0.0;

std::int64_t FileSize(const std::string& inPath)
{
    struct stat status = {};
    return stat(inPath.c_str(), &status) == 0 ? status.st_size : 0;
}

// FLAC keeps every bit, though it counts as lossy where settings are described.
bool LosesBits(const ExportPlan& inPlan)
{
    return inPlan.mIsLossy && inPlan.mFormat != kAudioFormatFLAC;
}

// Samples are handed over as floats where a file has 32-bit integers.
bool RoundsFloats(const ExportPlan& inPlan)
{
    const auto flags = static_cast<std::uint32_t>(SettingsNumber(inPlan.mSettings, "FormatFlags"));
    return inPlan.mFormat == kAudioFormatLinearPCM && (flags & kAudioFormatFlagIsFloat) == 0 &&
           inPlan.mAudio.BytesPerSample() == 4;
}

void Require(const VerificationResult& inResult, bool inIsLossy, const std::string& inName)
{
    char text[160];
    if (inIsLossy && inResult.mFramesFound >= inResult.mFramesExpected &&
        inResult.mSignalToNoise >= kWorstSignalToNoise)
        return;
    if (!inIsLossy && inResult.IsExact())
        return;
    std::snprintf(text, sizeof(text),
                  "%lld frames for %lld, first difference at %lld, signal to noise %.1f dB",
                  static_cast<long long>(inResult.mFramesFound),
                  static_cast<long long>(inResult.mFramesExpected),
                  static_cast<long long>(inResult.mFirstDifference), inResult.mSignalToNoise);
    throw Failure(kExitFailed, 0, inName + ": does not hold what was handed over: " + text);
}

}  // namespace

// The plan that the user settles on; false: none.
bool FileConverter::Choose(const ExportSource& inSource, const std::string& inTarget,
                           ExportPlan& ioPlan) const
{
    if (!mOptions.mChooser)
        return true;
    auto chosen = mOptions.mChooser->Choose(mOptions.mWish, inSource, ioPlan, inTarget);
    if (chosen)
        ioPlan = *std::move(chosen);
    return chosen.has_value();
}

ConvertReport FileConverter::Convert(const std::string& inSource, const std::string& inTarget,
                                     const TellPlan& inTell) const
{
    ConvertReport report;
    ReadSession source(mPlugIn, inSource);
    const ExportSource shape{ShapeOf(source.Info()), source.Info().mSettings};
    const auto ask = [&](const ExportRequest& inRequest)
    { return AskExportSettings(mPlugIn, inRequest); };
    report.mPlan = PlanExport(ask, mOptions.mWish, shape, inTarget);
    // Before the dialog: nobody is to make choices for a file that cannot be written.
    std::optional<TargetFile> target;
    if (!mOptions.mIsDryRun)
        target.emplace(inTarget, mOptions.mMayReplace, inSource);
    report.mIsCancelled = !Choose(shape, inTarget, report.mPlan);
    if (report.mIsCancelled)
        return report;

    ConversionOptions options;
    options.mTarget = report.mPlan.mAudio;
    options.mDither = mOptions.mDither;
    const Conversion conversion(source.Info(), options);
    inTell(report.mPlan);  // what can be done, and not before
    if (!target)
        return report;

    report.mResult = Write(source, conversion, report.mPlan, target->TemporaryPath(), inTarget);
    if (mOptions.mVerifies)
    {
        VerificationRequest request;
        request.mSource = inSource;
        request.mCopy = target->TemporaryPath();
        request.mConversion = options;
        request.mIsLossy = LosesBits(report.mPlan);
        request.mIsRounded = RoundsFloats(report.mPlan);
        report.mVerification = Verify(request, inTarget);
        Require(*report.mVerification, request.mIsLossy, inTarget);
    }
    CheckInterrupt();
    report.mBytes = FileSize(target->TemporaryPath());
    target->Commit();
    return report;
}

ConversionResult FileConverter::Write(ReadSession& ioSource, const Conversion& inConversion,
                                      const ExportPlan& inPlan, const std::string& inPath,
                                      const std::string& inName) const
{
    WriteSession writer(mPlugIn, {inPath, inName}, inPlan.mAudio, inPlan.mSettings);
    ConvertProgress progress(mOptions.mProgress, inName, ioSource.Info().mFrameCount,
                             ioSource.Info().mSampleRate);
    const ConversionResult result =
        inConversion.Run(ioSource, writer, [&](std::int64_t inFrames) { progress.Show(inFrames); });
    writer.Finish();
    progress.Finish(result.mFramesRead);
    return result;
}

VerificationResult FileConverter::Verify(const VerificationRequest& inRequest,
                                         const std::string& inName) const
{
    try
    {
        return VerifyCopy(mPlugIn, inRequest);
    }
    catch (const Failure& failure)
    {
        // The source could be read a moment ago.
        throw Failure(kExitFailed, failure.mResult,
                      inName + ": cannot be verified: " + failure.what());
    }
}

}  // namespace host
