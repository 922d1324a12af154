#include "host/Conversion.h"

#include "host/BlockReader.h"
#include "host/ConversionPipeline.h"
#include "host/Failure.h"
#include "host/Interrupt.h"
#include "host/StoredSettings.h"

#include <chrono>
#include <iterator>
#include <string>
#include <utility>

namespace host
{

namespace
{

constexpr int kMostDitheredBits = 16;

constexpr std::uint32_t kLinearPCM = 0x6C70636D;  // lpcm

// Formats that are delivered as floats, but decode to integers.
constexpr std::uint32_t kLosslessFormats[] = {
    0x616C6163,  // alac
    0x666C6163,  // flac
};
constexpr int kBitsOfFlags[] = {0, 16, 20, 24, 32};

constexpr std::uint32_t k16BitFormats[] = {
    0x616C6177,  // alaw
    0x756C6177,  // ulaw
    0x696D6134,  // ima4
    0x6D730002,  // Microsoft ADPCM
    0x6D730011,  // DVI ADPCM
    0x6D730031,  // GSM 6.10
};

template <std::size_t kCount>
bool Contains(const std::uint32_t (&inList)[kCount], std::uint32_t inFormat)
{
    for (const std::uint32_t format : inList)
        if (format == inFormat)
            return true;
    return false;
}

void RequireSampleType(const AudioShape& inShape)
{
    const std::int32_t type = inShape.mSampleType;
    if (type != 10 && type != 20 && type != 30 && type != 40)
        throw Failure(kExitSettings, 0, "There is no sample type " + std::to_string(type) + ".");
}

[[noreturn]] void FailForLength(std::int64_t inExpected, std::int64_t inWritten)
{
    throw Failure(kExitFailed, 0,
                  std::to_string(inWritten) + " frames were written where there should be " +
                      std::to_string(inExpected) + ".");
}

double SecondsSince(std::chrono::steady_clock::time_point inStart)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - inStart).count();
}

}  // namespace

Conversion::Conversion(const AudioInfo& inSource, ConversionOptions inOptions)
    : mSource(ShapeOf(inSource)),
      mOptions(std::move(inOptions)),
      mMap(mSource.mLabels, mOptions.mTarget.mLabels),
      mDithers(mOptions.mDither == Dither::kTPDF &&
               mOptions.mTarget.mSampleType * 8 / 10 <= kMostDitheredBits &&
               (Resamples() || MixesChannels() ||
                SourceBits(inSource) > mOptions.mTarget.mSampleType * 8 / 10))
{
    RequireSampleType(mSource);
    RequireSampleType(mOptions.mTarget);
}

ConversionResult Conversion::Run(ReadSession& ioSource, BlockSink& outTarget,
                                 const ConversionProgress& inProgress) const
{
    const auto start = std::chrono::steady_clock::now();
    const PipelineOptions options = {mSource, mOptions.mTarget, mDithers, mOptions.mMeasuresPeak};
    ConversionPipeline pipeline(options, mMap, outTarget);
    BlockReader reader(ioSource, mOptions.mKeepPadding);

    ConversionResult result;
    while (const std::int64_t count = reader.Next())
    {
        CheckInterrupt();
        result.mFramesRead += count;
        pipeline.Push(reader.Channels(), count);
        if (inProgress)
            inProgress(result.mFramesRead);
    }
    pipeline.Finish();

    result.mFramesWritten = pipeline.FramesWritten();
    const std::int64_t expected =
        ResampledLength(result.mFramesRead, mSource.mSampleRate, mOptions.mTarget.mSampleRate);
    if (result.mFramesWritten != expected)
        FailForLength(expected, result.mFramesWritten);
    if (mOptions.mMeasuresPeak)
        result.mPeak = pipeline.Peak();
    result.mSeconds = SecondsSince(start);
    return result;
}

std::int64_t ResampledLength(std::int64_t inFrameCount, std::int32_t inFromRate,
                             std::int32_t inToRate)
{
    if (inFromRate == inToRate || inFromRate <= 0 || inToRate <= 0)
        return inFrameCount;
    // By whole and broken part, so that nothing overflows for any length in time.
    const std::int64_t whole = inFrameCount / inFromRate;
    const std::int64_t rest = inFrameCount % inFromRate;
    return whole * inToRate + (2 * rest * inToRate + inFromRate) / (2 * std::int64_t{inFromRate});
}

int SourceBits(const AudioInfo& inSource)
{
    const auto format = static_cast<std::uint32_t>(SettingsNumber(inSource.mSettings, "FormatID"));
    if (Contains(k16BitFormats, format))
        return 16;
    if (Contains(kLosslessFormats, format))
    {
        const std::int32_t flags = SettingsNumber(inSource.mSettings, "FormatFlags");
        const bool isKnown = flags > 0 && flags < static_cast<int>(std::size(kBitsOfFlags));
        return isKnown ? kBitsOfFlags[flags] : 32;
    }
    const std::int32_t width = inSource.mSampleType * 8 / 10;
    if (format != kLinearPCM)
        return width;
    const std::int32_t bits = SettingsNumber(inSource.mSettings, "BitsPerChannel", width);
    return bits > 0 && bits <= width ? bits : width;
}

}  // namespace host
