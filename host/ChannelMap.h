// ChannelMap: how the channels of a file come to be those of another.
//
// By labels where both sides have them: a channel goes to the one of its name. One that has no
// counterpart is mixed into the nearest that there are, by the coefficients of a table (a half of
// the power, 0.7071, for centre and surrounds; low frequency channels are dropped, as ITU-R BS.775
// does). After mixing, all is scaled by one factor, so that full scale in every channel cannot
// clip. A channel without a source is silent. One unnamed channel is the centre, and two are left
// and right; mono goes to both of stereo unchanged.
#ifndef HOST_CHANNELMAP_H
#define HOST_CHANNELMAP_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace host
{

using ChannelLabels = std::vector<std::uint32_t>;

class ChannelMap
{
public:
    static constexpr int kSilent = -1;

    /// Throws Failure (kExitSettings) when names are missing and the counts cannot be matched
    /// without them.
    ChannelMap(const ChannelLabels& inSource, const ChannelLabels& inTarget);

    std::size_t SourceCount() const { return mSourceCount; }
    std::size_t TargetCount() const { return mTargetCount; }
    /// The part of a source channel in a target channel.
    float Gain(std::size_t inTarget, std::size_t inSource) const
    {
        return mGains[inTarget * mSourceCount + inSource];
    }

    /// Each target channel is a source channel as it is, or silent.
    bool IsSelection() const { return mIsSelection; }
    /// The source channel of a target channel, or kSilent; for a selection.
    int Source(std::size_t inTarget) const { return mSources[inTarget]; }
    /// Every channel stays in its place.
    bool IsIdentity() const;

private:
    float& GainAt(std::size_t inTarget, std::size_t inSource)
    {
        return mGains[inTarget * mSourceCount + inSource];
    }
    void Fill(const ChannelLabels& inSource, const ChannelLabels& inTarget);
    void Normalise();
    void FindSources();

    std::size_t mSourceCount;
    std::size_t mTargetCount;
    std::vector<float> mGains;  // [target][source]
    std::vector<int> mSources;  // [target]
    bool mIsSelection = false;
};

/// The labels that audio of inSource gets when it is brought to inCount channels: its own for the
/// same count, else the usual ones for 1 to 8 channels (1: centre, 2: left and right, 6: 5.1, 8:
/// 7.1), and none beyond.
ChannelLabels LabelsForCount(const ChannelLabels& inSource, std::size_t inCount);

}  // namespace host

#endif
