// Verification: decodes a written file and compares it with what was handed over for it.
//
// The source is converted a second time, side by side with the file that came out, so that nothing
// is kept but a few blocks.
#ifndef HOST_VERIFICATION_H
#define HOST_VERIFICATION_H

#include "host/Conversion.h"
#include "host/PlugIn.h"

#include <cstdint>
#include <string>

namespace host
{

struct VerificationResult
{
    std::int64_t mFramesExpected = 0;
    std::int64_t mFramesFound = 0;
    std::int64_t mFirstDifference = -1;  // frame; -1: all are alike as far as both reach
    double mSignalToNoise = 0.0;         // dB; infinite where all are alike
    std::int64_t mDelay = 0;             // frames by which the copy comes late; for lossy copies

    bool IsLengthRight() const { return mFramesExpected == mFramesFound; }
    bool IsExact() const { return IsLengthRight() && mFirstDifference < 0; }
};

struct VerificationRequest
{
    std::string mSource;            // path
    std::string mCopy;              // path
    ConversionOptions mConversion;  // that made the copy
    bool mIsLossy = false;          // look for a delay, and compare behind it
    bool mIsRounded = false;        // floats, which the copy keeps as 32-bit integers
};

/// Reads both files through the plug-in. A difference is an answer; only what cannot be read is a
/// Failure. A copy of another rate or channel count counts as a Failure (kExitFailed).
VerificationResult VerifyCopy(const PlugIn& inPlugIn, const VerificationRequest& inRequest,
                              const ConversionProgress& inProgress = {});

}  // namespace host

#endif
