// Conversion: brings audio that is read into the form in which it is to be written.
//
// Blocks go from a ReadSession to a BlockSink through as few stages as there are differences:
// mixing of channels, resampling, change of sample width, choice of channels. Audio that agrees in
// all is handed over where it was read, bit for bit. Integers that are only widened or narrowed
// never become floats.
#ifndef HOST_CONVERSION_H
#define HOST_CONVERSION_H

#include "host/AudioShape.h"
#include "host/BlockSink.h"
#include "host/ChannelMap.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace host
{

enum class Dither
{
    kNone,
    kTPDF  // triangular, two steps wide; only where 16 or 8 bits are less than there were
};

struct ConversionOptions
{
    AudioShape mTarget;  // mFrameCount is not looked at
    Dither mDither = Dither::kTPDF;
    bool mKeepPadding = false;   // see BlockReader
    bool mMeasuresPeak = false;  // costs a pass over the samples
};

struct ConversionResult
{
    std::int64_t mFramesRead = 0;
    std::int64_t mFramesWritten = 0;
    double mSeconds = 0.0;        // taken
    std::optional<double> mPeak;  // of what was written, 1 for full scale; when measured
};

/// Told the frames read so far, after every block.
using ConversionProgress = std::function<void(std::int64_t inFramesRead)>;

class Conversion
{
public:
    /// Throws Failure (kExitSettings) when there is no way from one form to the other.
    Conversion(const AudioInfo& inSource, ConversionOptions inOptions);

    bool Resamples() const { return mSource.mSampleRate != mOptions.mTarget.mSampleRate; }
    bool MixesChannels() const { return !mMap.IsSelection(); }
    bool ChangesWidth() const { return mSource.mSampleType != mOptions.mTarget.mSampleType; }
    bool Dithers() const { return mDithers; }
    /// Blocks are handed over as they were read.
    bool IsUntouched() const
    {
        return !Resamples() && !MixesChannels() && !ChangesWidth() && mMap.IsIdentity();
    }

    /// Reads inSource to its end, which must be of the form that the constructor was told. The same
    /// source gives the same blocks each time. Throws Failure and Interrupted; and Failure
    /// (kExitFailed) when the sink has got another number of frames than it should have.
    ConversionResult Run(ReadSession& ioSource, BlockSink& outTarget,
                         const ConversionProgress& inProgress = {}) const;

private:
    const AudioShape mSource;
    const ConversionOptions mOptions;
    const ChannelMap mMap;
    const bool mDithers;
};

/// Length after resampling, to the nearest frame.
std::int64_t ResampledLength(std::int64_t inFrameCount, std::int32_t inFromRate,
                             std::int32_t inToRate);

/// Bits that a source's samples are worth: of PCM its width, of FLAC and ALAC what their settings
/// text says, of the codecs that decode to 16 bits (A-law, mu-law, ADPCM, GSM) those; 32 else.
int SourceBits(const AudioInfo& inSource);

}  // namespace host

#endif
