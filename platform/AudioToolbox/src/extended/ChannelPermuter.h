// ChannelPermuter: frames with their channels in another order.
#ifndef AUDIOTOOLBOX_EXTENDED_CHANNELPERMUTER_H
#define AUDIOTOOLBOX_EXTENDED_CHANNELPERMUTER_H

#include <CoreAudio/CoreAudioTypes.h>

#include <cstddef>
#include <span>
#include <vector>

namespace audiotoolbox
{

class ChannelPermuter
{
public:
    /// inSources: for each channel of the result, the channel of the input; empty: nothing moves.
    /// inWordBytes: of one sample, 1, 2, 3, 4 or 8.
    ChannelPermuter(std::vector<UInt32> inSources, UInt32 inWordBytes);

    bool MovesChannels() const { return !mSources.empty(); }

    /// Most frames at once.
    UInt32 BlockFrames() const { return mBlockFrames; }

    /// inFrames: [frame][channel], inFrameCount of them, at most BlockFrames. The result is good
    /// until the next call.
    const UInt8* Permute(const UInt8* inFrames, UInt32 inFrameCount);

private:
    using Kernel = void (*)(const UInt8* inFrames, std::span<const UInt32> inSources,
                            std::size_t inFrameCount, UInt8* outFrames);

    const std::vector<UInt32> mSources;
    Kernel mKernel = nullptr;
    UInt32 mBlockFrames = 0;
    std::vector<UInt8> mBlock;
};

}  // namespace audiotoolbox

#endif
