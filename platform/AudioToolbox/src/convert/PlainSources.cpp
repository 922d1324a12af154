#include "convert/PlainSources.h"

#include <algorithm>

namespace audiotoolbox
{

namespace
{

// More at once would only make the client's buffer larger than its caches.
constexpr std::size_t kMostFramesPerPull = 1 << 20;

OSStatus PullFrames(InputPull& ioInput, std::size_t inWanted)
{
    return ioInput.Pull(static_cast<UInt32>(std::min(inWanted, kMostFramesPerPull)));
}

}  // namespace

OSStatus LinearSource::Peek(std::size_t inWanted, SampleBlock& outBlock)
{
    outBlock.mFrameCount = 0;
    if (const OSStatus status = PullFrames(mInput, inWanted); status != noErr)
        return status;
    if (mInput.PacketsLeft() == 0)
        return noErr;
    outBlock.mPlanes[0] = mInput.Front().mBytes;
    outBlock.mPlaneCount = 1;
    outBlock.mLayout = mLayout;
    outBlock.mFrameCount = mInput.PacketsLeft();
    return noErr;
}

void LinearSource::Consume(std::size_t inFrameCount)
{
    mInput.Drop(static_cast<UInt32>(inFrameCount));
}

OSStatus LogLawSource::Peek(std::size_t inWanted, SampleBlock& outBlock)
{
    outBlock.mFrameCount = 0;
    if (const OSStatus status = PullFrames(mInput, inWanted); status != noErr)
        return status;
    if (mInput.PacketsLeft() == 0)
        return noErr;
    const std::size_t frames =
        std::min<std::size_t>({mInput.PacketsLeft(), mExpanded.size() / mChannelCount,
                               std::max<std::size_t>(inWanted, 1)});
    ExpandLogLaw(mLaw, mInput.Front().mBytes, frames * mChannelCount, mExpanded.data());
    outBlock.mPlanes[0] = reinterpret_cast<const UInt8*>(mExpanded.data());
    outBlock.mPlaneCount = 1;
    outBlock.mLayout = SampleLayout();
    outBlock.mFrameCount = frames;
    return noErr;
}

void LogLawSource::Consume(std::size_t inFrameCount)
{
    mInput.Drop(static_cast<UInt32>(inFrameCount));
}

}  // namespace audiotoolbox
