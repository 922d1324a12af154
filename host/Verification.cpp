#include "host/Verification.h"

#include "host/CopyComparison.h"

namespace host
{

VerificationResult VerifyCopy(const PlugIn& inPlugIn, const VerificationRequest& inRequest,
                              const ConversionProgress& inProgress)
{
    ReadSession source(inPlugIn, inRequest.mSource);
    ReadSession copy(inPlugIn, inRequest.mCopy);
    ConversionOptions options = inRequest.mConversion;
    options.mMeasuresPeak = false;
    const Conversion conversion(source.Info(), options);
    const CopyLoss loss = inRequest.mIsLossy     ? CopyLoss::kLossy
                          : inRequest.mIsRounded ? CopyLoss::kRounded
                                                 : CopyLoss::kNone;
    CopyComparison comparison(copy, options.mTarget, loss);
    conversion.Run(source, comparison, inProgress);
    return comparison.Finish();
}

}  // namespace host
