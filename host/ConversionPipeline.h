// ConversionPipeline: the stages between the blocks that are read and the blocks that are written.
//
// Two roads. Where rates agree and each channel is one of the source's, samples change their width
// at most. Everything else goes over floats: mixing, resampling, rounding. Either ends with the
// choice of channels, which moves pointers alone.
#ifndef HOST_CONVERSIONPIPELINE_H
#define HOST_CONVERSIONPIPELINE_H

#include "host/AudioShape.h"
#include "host/BlockSink.h"
#include "host/ChannelMap.h"
#include "host/Dither.h"
#include "host/Planes.h"
#include "host/Resampler.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace host
{

struct PipelineOptions
{
    AudioShape mSource;
    AudioShape mTarget;
    bool mDithers = false;
    bool mMeasuresPeak = false;
};

class ConversionPipeline
{
public:
    /// All three outlive the pipeline. Throws Failure for rates that do not work.
    ConversionPipeline(const PipelineOptions& inOptions, const ChannelMap& inMap,
                       BlockSink& outSink);

    /// The next frames of the source, at most BlockReader::kBlockFrames; only read.
    void Push(const char* const* inChannels, std::int64_t inFrameCount);

    /// After the last of them: what is left in the resampler.
    void Finish();

    std::int64_t FramesWritten() const { return mFramesWritten; }
    double Peak() const { return mPeak; }

private:
    void PushFloats(const char* const* inChannels, std::int64_t inFrameCount);
    const float* const* Mix(std::int64_t inFrameCount);
    void Resample(const float* const* inChannels, std::int64_t inFrameCount);
    void WriteFloats(const float* const* inChannels, std::int64_t inFrameCount);
    void ChangeWidths(const char* const* inChannels, std::size_t inFromBytes,
                      std::int64_t inFrameCount);
    void WriteSelection(const char* const* inChannels, std::int64_t inFrameCount);
    void WriteBlock(const char* const* inChannels, std::int64_t inFrameCount);

    const PipelineOptions& mOptions;
    const ChannelMap& mMap;
    BlockSink& mSink;
    const bool mSelects;         // channels are chosen at the end; else they were mixed
    const std::size_t mWorking;  // channels behind the mixing
    std::int64_t mBlock = 0;     // frames that the planes have room for

    std::unique_ptr<Resampler> mResampler;  // none where rates agree
    Planes<float> mFloats;                  // [source channel]
    Planes<float> mMixed;                   // [target channel]
    Planes<float> mResampled;               // [working channel]
    Planes<char> mRounded;                  // [working channel], in the target's width
    std::vector<char> mSilence;             // one channel
    std::vector<DitherNoise> mNoise;        // [working channel]; none without dither
    std::vector<const float*> mFloatChannels;
    std::vector<const char*> mSelected;  // [target channel]

    std::int64_t mFramesWritten = 0;
    double mPeak = 0.0;
};

}  // namespace host

#endif
