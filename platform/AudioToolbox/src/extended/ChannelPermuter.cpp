#include "extended/ChannelPermuter.h"

#include <cstring>
#include <utility>

namespace audiotoolbox
{
namespace
{

constexpr std::size_t kBlockBytes = 64 * 1024;  // stays in the caches until it is converted

template <std::size_t kWordBytes>
void PermuteWords(const UInt8* inFrames, std::span<const UInt32> inSources,
                  std::size_t inFrameCount, UInt8* outFrames)
{
    const std::size_t frameBytes = inSources.size() * kWordBytes;
    for (std::size_t frame = 0; frame < inFrameCount; ++frame, inFrames += frameBytes)
        for (const UInt32 source : inSources)
        {
            std::memcpy(outFrames, inFrames + source * kWordBytes, kWordBytes);
            outFrames += kWordBytes;
        }
}

}  // namespace

ChannelPermuter::ChannelPermuter(std::vector<UInt32> inSources, UInt32 inWordBytes)
    : mSources(std::move(inSources))
{
    constexpr Kernel kKernels[] = {nullptr,          &PermuteWords<1>, &PermuteWords<2>,
                                   &PermuteWords<3>, &PermuteWords<4>, nullptr,
                                   nullptr,          nullptr,          &PermuteWords<8>};
    if (mSources.empty())
        return;
    mKernel = kKernels[inWordBytes];
    const std::size_t frameBytes = mSources.size() * inWordBytes;
    mBlockFrames = static_cast<UInt32>(kBlockBytes / frameBytes);
    mBlock.resize(mBlockFrames * frameBytes);
}

const UInt8* ChannelPermuter::Permute(const UInt8* inFrames, UInt32 inFrameCount)
{
    mKernel(inFrames, mSources, inFrameCount, mBlock.data());
    return mBlock.data();
}

}  // namespace audiotoolbox
