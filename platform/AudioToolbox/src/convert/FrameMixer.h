// FrameMixer: another channel count or another rate, by way of 64-bit floats.
//
// Mono becomes stereo by doubling, and anything mono by the mean. Between other counts the first
// channels are kept, and what is missing is silent.
#ifndef AUDIOTOOLBOX_CONVERT_FRAMEMIXER_H
#define AUDIOTOOLBOX_CONVERT_FRAMEMIXER_H

#include "convert/FrameQueue.h"
#include "convert/FrameWriter.h"
#include "convert/ResamplerInterface.h"

#include <memory>

namespace audiotoolbox
{

struct CloseResampler
{
    const ResamplerModule* mModule = nullptr;
    void operator()(ResamplerSession* inSession) const { mModule->mClose(inSession); }
};

/// Rates in whole Hz.
struct MixShape
{
    UInt32 mInChannels = 0;
    UInt32 mOutChannels = 0;
    UInt32 mInRate = 0;
    UInt32 mOutRate = 0;
};

class FrameMixer
{
public:
    FrameMixer(const MixShape& inShape, const SampleLayout& inTo);

    /// Takes up to kMostFrames of the block, *outTaken, and queues what comes of them.
    OSStatus Mix(const SampleBlock& inBlock, std::size_t& outTaken, FrameQueue& ioQueue);

    /// The rest, so that round(frames in * out rate / in rate) frames have come.
    OSStatus Finish(FrameQueue& ioQueue);

    void Reset();

private:
    static constexpr std::size_t kMostFrames = 1024;

    OSStatus Open();
    OSStatus Resample(const Float64* inFrames, std::size_t inFrameCount, FrameQueue& ioQueue,
                      std::size_t& outCame);
    void MapChannels(std::size_t inFrameCount);
    void Queue(const Float64* inFrames, std::size_t inFrameCount, FrameQueue& ioQueue);

    const MixShape mShape;
    FrameWriter mReader;
    SampleKernel mKernel;
    std::vector<Float64> mFrames;  // of the input, mapped in place
    std::vector<Float64> mResampled;
    std::unique_ptr<ResamplerSession, CloseResampler> mResampler;
    UInt64 mFramesIn = 0;
    UInt64 mFramesOut = 0;
};

}  // namespace audiotoolbox

#endif
