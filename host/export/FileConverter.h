// FileConverter: one file into another, from opening the one to the other's appearance.
#ifndef HOST_EXPORT_FILECONVERTER_H
#define HOST_EXPORT_FILECONVERTER_H

#include "host/Conversion.h"
#include "host/PlugIn.h"
#include "host/Verification.h"
#include "host/export/ConvertProgress.h"
#include "host/export/ExportPlan.h"
#include "host/export/SettingsChooser.h"

#include <functional>
#include <optional>
#include <string>

namespace host
{

struct ConvertOptions
{
    ExportWish mWish;
    Dither mDither = Dither::kTPDF;
    ProgressForm mProgress = ProgressForm::kTerminal;
    bool mIsDryRun = false;
    bool mVerifies = false;
    bool mMayReplace = false;
    // Asked for every file; null: the wish decides alone. Not owned.
    const SettingsChooser* mChooser = nullptr;
};

struct ConvertReport
{
    ExportPlan mPlan;
    bool mIsCancelled = false;  // by the user, before anything was written
    // Of what was done; nothing after a dry run.
    std::optional<ConversionResult> mResult;
    std::optional<VerificationResult> mVerification;
    std::int64_t mBytes = 0;  // of the file
};

/// Told what was changed to fit, before the work begins.
using TellPlan = std::function<void(const ExportPlan&)>;

class FileConverter
{
public:
    /// inPlugIn  started already
    FileConverter(const PlugIn& inPlugIn, const ConvertOptions& inOptions)
        : mPlugIn(inPlugIn), mOptions(inOptions)
    {
    }

    /// Throws Failure and Interrupted; nothing is left under the target's name then, or what was
    /// there before. A copy that does not bear the verification is a Failure (kExitFailed).
    ConvertReport Convert(const std::string& inSource, const std::string& inTarget,
                          const TellPlan& inTell) const;

private:
    bool Choose(const ExportSource& inSource, const std::string& inTarget,
                ExportPlan& ioPlan) const;
    ConversionResult Write(ReadSession& ioSource, const Conversion& inConversion,
                           const ExportPlan& inPlan, const std::string& inPath,
                           const std::string& inName) const;
    VerificationResult Verify(const VerificationRequest& inRequest,
                              const std::string& inName) const;

    const PlugIn& mPlugIn;
    const ConvertOptions& mOptions;
};

}  // namespace host

#endif
