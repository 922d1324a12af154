// DelaySearch: by how much one piece of sound comes later than another.
#ifndef HOST_DELAYSEARCH_H
#define HOST_DELAYSEARCH_H

#include <cstdint>
#include <span>

namespace host
{

constexpr std::int64_t kLargestDelay = 4608;  // two frames of the codecs with the longest ones
constexpr std::int64_t kLargestLead = 2304;   // a reader may also have dropped too much
constexpr std::int64_t kDelayWindow = 8192;   // frames that are compared

/// First frame that can be heard; -1 for silence.
std::int64_t FindOnset(std::span<const float> inSound);

/// The delay, in frames, at which inCopy is most like inReference over the window that begins at
/// inOnset, 0 where nothing is. Below 0 where the copy comes early.
std::int64_t FindDelay(std::span<const float> inReference, std::span<const float> inCopy,
                       std::int64_t inOnset);

}  // namespace host

#endif
