#include "host/DelaySearch.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace host
{

namespace
{

constexpr float kAudible = 1e-4F;

// Normalised correlation of a window, before which there is silence, with places of a copy. What
// sounds before such a place tells against it, or a tone would be found as well some periods late.
class Correlation
{
public:
    Correlation(std::span<const float> inWindow, std::span<const float> inCopy)
        : mWindow(inWindow), mCopy(inCopy), mEnergy(inCopy.size() + 1)
    {
        for (std::size_t index = 0; index < inCopy.size(); ++index)
            mEnergy[index + 1] =
                mEnergy[index] + static_cast<double>(inCopy[index]) * inCopy[index];
    }

    // What lies outside of the copy is silence.
    double At(std::int64_t inStart) const
    {
        const std::int64_t first = Clamped(inStart);
        const std::int64_t last = Clamped(inStart + static_cast<std::int64_t>(mWindow.size()));
        float product = 0.0F;
        for (std::int64_t index = first; index < last; ++index)
            product += mWindow[static_cast<std::size_t>(index - inStart)] *
                       mCopy[static_cast<std::size_t>(index)];
        const double energy = mEnergy[static_cast<std::size_t>(last)] -
                              mEnergy[static_cast<std::size_t>(Clamped(inStart - kLargestDelay))];
        return energy > 0.0 ? product / std::sqrt(energy) : 0.0;
    }

private:
    std::int64_t Clamped(std::int64_t inPlace) const
    {
        return std::clamp<std::int64_t>(inPlace, 0, static_cast<std::int64_t>(mCopy.size()));
    }

    const std::span<const float> mWindow;
    const std::span<const float> mCopy;
    std::vector<double> mEnergy;  // [frames before]
};

}  // namespace

std::int64_t FindOnset(std::span<const float> inSound)
{
    const auto onset = std::find_if(inSound.begin(), inSound.end(),
                                    [](float inSample) { return std::fabs(inSample) > kAudible; });
    return onset == inSound.end() ? -1 : onset - inSound.begin();
}

std::int64_t FindDelay(std::span<const float> inReference, std::span<const float> inCopy,
                       std::int64_t inOnset)
{
    const auto onset = static_cast<std::size_t>(inOnset);
    const std::span<const float> window =
        inReference.subspan(onset, std::min<std::size_t>(kDelayWindow, inReference.size() - onset));
    const Correlation correlation(window, inCopy);
    std::int64_t best = 0;
    double likeness = correlation.At(inOnset);
    for (std::int64_t delay = -kLargestLead; delay <= kLargestDelay; ++delay)
    {
        const double candidate = correlation.At(inOnset + delay);
        if (candidate <= likeness)
            continue;
        best = delay;
        likeness = candidate;
    }
    return best;
}

}  // namespace host
