#include "convert/FrameMixer.h"

#include <AudioToolbox/AudioConverter.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace audiotoolbox
{

namespace
{

constexpr SampleLayout kDoubles = {SampleWord::Float64, false, false, false, 64};

Float64 Mean(const Float64* inSamples, std::size_t inCount)
{
    Float64 sum = 0.0;
    for (std::size_t i = 0; i < inCount; ++i)
        sum += inSamples[i];
    return sum / static_cast<Float64>(inCount);
}

}  // namespace

FrameMixer::FrameMixer(const MixShape& inShape, const SampleLayout& inTo)
    : mShape(inShape),
      mReader(inShape.mInChannels, kDoubles),
      mKernel(kDoubles, inTo),
      mFrames(kMostFrames * std::max(inShape.mInChannels, inShape.mOutChannels))
{
}

OSStatus FrameMixer::Open()
{
    const ResamplerModule* module = LoadResamplerModule();
    if (module == nullptr)
        return kAudioConverterErr_FormatNotSupported;
    ResamplerSession* session = nullptr;
    const OSStatus status =
        module->mOpen(mShape.mOutChannels, mShape.mInRate, mShape.mOutRate, &session);
    if (status == noErr)
        mResampler = {session, CloseResampler{module}};
    return status;
}

OSStatus FrameMixer::Mix(const SampleBlock& inBlock, std::size_t& outTaken, FrameQueue& ioQueue)
{
    outTaken = std::min(inBlock.mFrameCount, kMostFrames);
    mReader.Write(inBlock, outTaken, reinterpret_cast<UInt8*>(mFrames.data()));
    MapChannels(outTaken);
    if (mShape.mInRate == mShape.mOutRate)
    {
        Queue(mFrames.data(), outTaken, ioQueue);
        return noErr;
    }
    if (!mResampler)
        if (const OSStatus status = Open(); status != noErr)
            return status;
    mFramesIn += outTaken;
    std::size_t came = 0;
    return Resample(mFrames.data(), outTaken, ioQueue, came);
}

OSStatus FrameMixer::Resample(const Float64* inFrames, std::size_t inFrameCount,
                              FrameQueue& ioQueue, std::size_t& outCame)
{
    const ResamplerModule& module = *mResampler.get_deleter().mModule;
    const UInt32 count = static_cast<UInt32>(inFrameCount);
    const SInt32 most = std::max(module.mMostFrames(mResampler.get(), count), 1);
    if (mResampled.size() < std::size_t{mShape.mOutChannels} * static_cast<UInt32>(most))
        mResampled.resize(std::size_t{mShape.mOutChannels} * static_cast<UInt32>(most));
    const SInt32 came = module.mConvert(mResampler.get(), inFrames, count, mResampled.data(),
                                        static_cast<UInt32>(most));
    if (came < 0)
        return kAudioConverterErr_UnspecifiedError;
    outCame = static_cast<std::size_t>(came);
    mFramesOut += outCame;
    Queue(mResampled.data(), outCame, ioQueue);
    return noErr;
}

OSStatus FrameMixer::Finish(FrameQueue& ioQueue)
{
    if (!mResampler)
        return noErr;
    for (std::size_t came = 1; came > 0;)
        if (const OSStatus status = Resample(nullptr, 0, ioQueue, came); status != noErr)
            return status;
    const double exact = static_cast<double>(mFramesIn) * mShape.mOutRate / mShape.mInRate;
    const UInt64 wanted = static_cast<UInt64>(std::floor(exact + 0.5));
    if (mFramesOut > wanted)
        ioQueue.DropBack(std::min<std::size_t>(mFramesOut - wanted, ioQueue.FrameCount()));
    return noErr;
}

void FrameMixer::MapChannels(std::size_t inFrameCount)
{
    Float64* frames = mFrames.data();
    const std::size_t in = mShape.mInChannels;
    const std::size_t out = mShape.mOutChannels;
    if (in == 1 && out == 2)
        for (std::size_t i = inFrameCount; i-- > 0;)
            frames[2 * i] = frames[2 * i + 1] = frames[i];
    else if (out == 1 && in > 1)
        for (std::size_t i = 0; i < inFrameCount; ++i)
            frames[i] = Mean(frames + in * i, in);
    else if (in > out)
        for (std::size_t i = 0; i < inFrameCount; ++i)
            std::memmove(frames + out * i, frames + in * i, out * sizeof(Float64));
    else if (in < out)
        for (std::size_t i = inFrameCount; i-- > 0;)
        {
            std::memmove(frames + out * i, frames + in * i, in * sizeof(Float64));
            std::fill_n(frames + out * i + in, out - in, 0.0);
        }
}

void FrameMixer::Queue(const Float64* inFrames, std::size_t inFrameCount, FrameQueue& ioQueue)
{
    mKernel(inFrames, ioQueue.Back(inFrameCount), inFrameCount * mShape.mOutChannels);
    ioQueue.Added(inFrameCount);
}

void FrameMixer::Reset()
{
    mResampler.reset();
    mFramesIn = mFramesOut = 0;
}

}  // namespace audiotoolbox
