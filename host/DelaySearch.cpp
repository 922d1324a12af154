#include "host/DelaySearch.h"

#include <algorithm>
#include <cmath>

namespace host
{

namespace
{

constexpr float kAudible = 1e-4F;
constexpr double kClearlyBetter = 1.0005;

// Normalised correlation of the window with what lies inDelay later in the copy; what lies outside
// of it is silence.
double Likeness(std::span<const float> inWindow, std::span<const float> inCopy,
                std::int64_t inStart)
{
    const auto copyCount = static_cast<std::int64_t>(inCopy.size());
    const std::int64_t first = std::max<std::int64_t>(0, -inStart);
    const std::int64_t last =
        std::min(static_cast<std::int64_t>(inWindow.size()), copyCount - inStart);
    float product = 0.0F;
    float energy = 0.0F;
    for (std::int64_t index = first; index < last; ++index)
    {
        const float copy = inCopy[static_cast<std::size_t>(inStart + index)];
        product += inWindow[static_cast<std::size_t>(index)] * copy;
        energy += copy * copy;
    }
    return energy > 0.0F ? product / std::sqrt(energy) : 0.0;
}

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
    double best = Likeness(window, inCopy, inOnset);
    std::int64_t delay = 0;
    for (std::int64_t distance = 1; distance <= kLargestDelay; ++distance)
    {
        for (const std::int64_t candidate : {distance, -distance})
        {
            if (candidate < -kLargestLead)
                continue;
            const double likeness = Likeness(window, inCopy, inOnset + candidate);
            if (likeness <= best * kClearlyBetter)
                continue;
            best = likeness;
            delay = candidate;
        }
    }
    return delay;
}

}  // namespace host
