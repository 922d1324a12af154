#include "host/Resampler.h"

#include "host/Failure.h"

#include <soxr.h>

#include <string>

namespace host
{

namespace
{

void Check(soxr_error_t inError, ExitCode inExitCode)
{
    if (inError)
        throw Failure(inExitCode, 0, std::string("The sample rate cannot be changed: ") + inError);
}

unsigned long Recipe(Resampler::Quality inQuality)
{
    return inQuality == Resampler::Quality::k16Bit ? SOXR_HQ : SOXR_VHQ;
}

}  // namespace

Resampler::Resampler(std::int32_t inFromRate, std::int32_t inToRate, std::size_t inChannelCount,
                     Quality inQuality)
{
    if (inFromRate <= 0 || inToRate <= 0)
        Check("no rate", kExitSettings);
    const soxr_io_spec_t io = soxr_io_spec(SOXR_FLOAT32_S, SOXR_FLOAT32_S);
    const soxr_quality_spec_t quality = soxr_quality_spec(Recipe(inQuality), 0);
    soxr_error_t error = nullptr;
    mResampler = soxr_create(inFromRate, inToRate, static_cast<unsigned>(inChannelCount), &error,
                             &io, &quality, nullptr);
    Check(error, kExitSettings);
}

Resampler::~Resampler()
{
    soxr_delete(mResampler);
}

Resampler::Counts Resampler::Process(const float* const* inChannels, std::int64_t inFrameCount,
                                     float* const* outChannels, std::int64_t inRoom)
{
    std::size_t taken = 0;
    std::size_t made = 0;
    Check(soxr_process(mResampler, inChannels, static_cast<std::size_t>(inFrameCount), &taken,
                       const_cast<float**>(outChannels), static_cast<std::size_t>(inRoom), &made),
          kExitFailed);
    return {static_cast<std::int64_t>(taken), static_cast<std::int64_t>(made)};
}

std::int64_t Resampler::Drain(float* const* outChannels, std::int64_t inRoom)
{
    std::size_t made = 0;
    Check(soxr_process(mResampler, nullptr, 0, nullptr, const_cast<float**>(outChannels),
                       static_cast<std::size_t>(inRoom), &made),
          kExitFailed);
    return static_cast<std::int64_t>(made);
}

}  // namespace host
