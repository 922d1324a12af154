// CopyComparison: compares blocks that come in with a file that is read beside them.
//
// Both sides are held as floats, which all integers of 24 bits fit in, until the other side has
// come as far. A lossy copy may come late: the delay at which both are most alike is looked for
// where the sound begins.
#ifndef HOST_COPYCOMPARISON_H
#define HOST_COPYCOMPARISON_H

#include "host/AudioShape.h"
#include "host/BlockReader.h"
#include "host/BlockSink.h"
#include "host/Verification.h"

#include <cstdint>
#include <vector>

namespace host
{

/// Floats that come in blocks and are taken from the front, [channel][frame].
class FloatQueue
{
public:
    explicit FloatQueue(std::size_t inChannelCount) : mChannels(inChannelCount) {}

    std::int64_t FrameCount() const
    {
        return mChannels.empty() ? 0 : static_cast<std::int64_t>(mChannels[0].size());
    }
    const float* Channel(std::size_t inChannel) const { return mChannels[inChannel].data(); }
    /// The last inCount frames, which may be changed; at most FrameCount.
    float* Last(std::size_t inChannel, std::int64_t inCount)
    {
        return mChannels[inChannel].data() + (FrameCount() - inCount);
    }
    void Append(const char* const* inChannels, std::size_t inBytesPerSample, std::int64_t inCount);
    /// At most FrameCount.
    void Drop(std::int64_t inCount);
    /// The sum of all channels, the first inCount frames.
    std::vector<float> Sum(std::int64_t inCount) const;

private:
    std::vector<std::vector<float>> mChannels;
};

/// What becomes of samples in the copy.
enum class CopyLoss
{
    kNone,
    kRounded,  // floats are kept as 32-bit integers
    kLossy,    // there may be a delay, too
};

class CopyComparison : public BlockSink
{
public:
    /// inReference  form of the blocks
    /// Throws Failure (kExitFailed) when the copy has another rate or channel count.
    CopyComparison(ReadSession& ioCopy, const AudioShape& inReference, CopyLoss inLoss);

    void Write(const char* const* inChannels, std::int64_t inFrameCount) override;

    /// After the last block: reads the copy to its end.
    VerificationResult Finish();

private:
    void LoseWhatCannotBeHeld(std::int64_t inFrameCount);
    bool AreAlike(float inReference, float inCopy) const;
    void ReadCopy(std::int64_t inFramesWanted);
    bool ReadCopyBlock();
    void FindDelay(bool inIsAtEnd);
    void SetDelay(std::int64_t inDelay);
    void DropDelay();
    void Compare(std::int64_t inLimit);
    void CompareChannel(std::size_t inChannel, std::int64_t inCount);

    const AudioShape mShape;
    const CopyLoss mLoss;
    BlockReader mReader;
    const std::size_t mCopyBytes;           // of a sample
    std::vector<std::size_t> mCopySources;  // [reference channel]: channel of the copy

    FloatQueue mReference;
    FloatQueue mCopy;
    bool mIsCopyAtEnd = false;
    bool mIsAligned;
    std::int64_t mReferenceToDrop = 0;
    std::int64_t mCopyToDrop = 0;
    std::int64_t mPosition = 0;  // of the reference's front
    double mSignal = 0.0;        // sums of squares
    double mNoise = 0.0;
    VerificationResult mResult;
};

}  // namespace host

#endif
