// BlockReader: reads a session in blocks, and keeps a compressed file's padding out of its audio.
//
// A codec works in frames of fixed length, so that the last packet holds more than the file's
// audio. The plug-in delivers this surplus when it is read in blocks. It is dropped here when it is
// shorter than two codec frames: then it is padding and not an estimate that was off.
#ifndef HOST_BLOCKREADER_H
#define HOST_BLOCKREADER_H

#include "host/ReadSession.h"

#include <cstdint>
#include <vector>

namespace host
{

class BlockReader
{
public:
    static constexpr std::int64_t kBlockFrames = 65536;

    /// inKeepAll  deliver the padding too
    BlockReader(ReadSession& inSession, bool inKeepAll);

    /// The next frames of each channel, valid until the next call; 0 at the end. Throws Failure.
    std::int64_t Next();

    /// [channel][frame] of the last Next.
    char* const* Channels() const { return mChannels.data(); }

private:
    std::int64_t FramesToAsk() const;
    std::int64_t ReadBlock();
    std::int64_t HoldBack(std::int64_t inCount);
    void PointChannels(std::int64_t inFramesBefore);

    ReadSession& mSession;
    const std::size_t mBytesPerSample;
    const std::int64_t mTold;       // frames that the file is said to have
    const std::int64_t mTolerance;  // a surplus below this is padding; 0: everything is audio
    const std::int64_t mBlock;      // frames a read
    std::int64_t mRead = 0;
    std::int64_t mHeld = 0;  // frames behind the told length that stand in front of the block

    std::vector<char> mMemory;  // [channel][mTolerance held frames, then mBlock frames]
    std::vector<char*> mChannels;
};

/// Interleaves frames: [channel][frame] to [frame][channel].
void Interleave(char* const* inChannels, std::size_t inChannelCount, std::size_t inBytesPerSample,
                std::int64_t inFrameCount, char* outFrames);

}  // namespace host

#endif
