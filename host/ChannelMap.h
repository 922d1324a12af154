// ChannelMap: how the channels of a file come to be those of another.
//
// By labels where both sides have them: a channel goes to the one of its name. One that has no
// counterpart is mixed into the nearest that there are, by the coefficients of a table (a half of
// the power, 0.7071, for centre and surrounds; low frequency channels are dropped, as ITU-R BS.775
// does). After mixing, all is scaled by one factor, so that full scale in every channel cannot
// clip. A channel without a source is silent. Channels without names count as the usual ones of
// their number (up to 8), or keep their order. One unnamed channel is the centre, and two are left
// and right; mono goes to both of stereo unchanged.
#ifndef HOST_CHANNELMAP_H
#define HOST_CHANNELMAP_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace host
{

using ChannelLabels = std::vector<std::uint32_t>;

struct ChannelPart
{
    int mSource;
    float mGain;  // above 0
};

class ChannelMap
{
public:
    static constexpr int kSilent = -1;

    /// Throws Failure (kExitSettings) when names are missing and the counts cannot be matched
    /// without them.
    ChannelMap(const ChannelLabels& inSource, const ChannelLabels& inTarget);

    std::size_t SourceCount() const { return mSourceCount; }
    std::size_t TargetCount() const { return mParts.size(); }
    /// The source channels that are in a target channel.
    const std::vector<ChannelPart>& Parts(std::size_t inTarget) const { return mParts[inTarget]; }

    /// Each target channel is a source channel as it is, or silent.
    bool IsSelection() const;
    /// The source channel of a target channel, or kSilent; for a selection.
    int Source(std::size_t inTarget) const;
    /// Every channel stays in its place.
    bool IsIdentity() const;

private:
    void Fill(const ChannelLabels& inSource, const ChannelLabels& inTarget);
    void FillInOrder();
    void FillWithAll();
    void FillByName(const ChannelLabels& inSource, const ChannelLabels& inTarget);
    void Normalise();

    std::size_t mSourceCount;
    std::vector<std::vector<ChannelPart>> mParts;  // [target], of few sources each
};

/// The labels that audio of inSource gets when it is brought to inCount channels: its own for the
/// same count, else the usual ones for 2 to 8 channels (2: left and right, 6: 5.1, 8: 7.1), and
/// none beyond and for one, as mono files have none.
ChannelLabels LabelsForCount(const ChannelLabels& inSource, std::size_t inCount);

}  // namespace host

#endif
