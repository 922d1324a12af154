// PlainSources: samples that stand in the packets themselves, linear or by a logarithmic law.
#ifndef AUDIOTOOLBOX_CONVERT_PLAINSOURCES_H
#define AUDIOTOOLBOX_CONVERT_PLAINSOURCES_H

#include "convert/InputPull.h"
#include "convert/LogLaw.h"
#include "convert/SampleSource.h"

#include <array>

namespace audiotoolbox
{

/// Linear PCM where the client has it: nothing is copied.
class LinearSource : public SampleSource
{
public:
    LinearSource(InputPull& inInput, const SampleLayout& inLayout)
        : mInput(inInput), mLayout(inLayout)
    {
    }
    OSStatus Peek(std::size_t inWanted, SampleBlock& outBlock) override;
    void Consume(std::size_t inFrameCount) override;
    void Reset() override {}

private:
    InputPull& mInput;
    const SampleLayout mLayout;
};

/// A-law and mu-law, expanded to 32-bit floats a few frames at a time.
class LogLawSource : public SampleSource
{
public:
    LogLawSource(InputPull& inInput, LogLaw inLaw, UInt32 inChannelCount)
        : mInput(inInput), mLaw(inLaw), mChannelCount(inChannelCount)
    {
    }
    OSStatus Peek(std::size_t inWanted, SampleBlock& outBlock) override;
    void Consume(std::size_t inFrameCount) override;
    void Reset() override {}

private:
    InputPull& mInput;
    const LogLaw mLaw;
    const UInt32 mChannelCount;
    std::array<Float32, 2048> mExpanded;  // stays in the nearest cache
};

}  // namespace audiotoolbox

#endif
