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
    CopyComparison comparison(copy, options.mTarget, inRequest.mIsLossy);
    conversion.Run(source, comparison, inProgress);
    return comparison.Finish();
}

}  // namespace host
