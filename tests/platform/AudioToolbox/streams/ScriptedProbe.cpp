#include "ScriptedProbe.h"

#include "platform/AudioToolbox/src/convert/AACProbe.h"

namespace stream_testing
{
namespace
{
ScriptedProbe* sProbe = nullptr;
}

ScriptedProbe::ScriptedProbe(bool inHasSBR, bool inHasPS) : mHasSBR(inHasSBR), mHasPS(inHasPS)
{
    sProbe = this;
}

ScriptedProbe::~ScriptedProbe()
{
    sProbe = nullptr;
}

}  // namespace stream_testing

namespace audiotoolbox
{

bool ProbeAACLayers(std::span<const UInt8> inFrames, AACConfig& ioConfig)
{
    stream_testing::ScriptedProbe* const probe = stream_testing::sProbe;
    if (probe == nullptr)
        return false;
    ++probe->mCalls;
    probe->mFrames.assign(inFrames.begin(), inFrames.end());
    ioConfig.mHasSBR = probe->mHasSBR;
    ioConfig.mHasPS = probe->mHasPS;
    ioConfig.mExtendedRate = probe->mHasSBR ? ioConfig.mSampleRate * 2 : 0;
    return true;
}

}  // namespace audiotoolbox
