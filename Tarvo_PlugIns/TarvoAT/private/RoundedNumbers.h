// RoundedNumbers: from the doubles of a file's description to the whole numbers of the host.
#ifndef TARVO_PLUGINS_TARVOAT_PRIVATE_ROUNDEDNUMBERS_H
#define TARVO_PLUGINS_TARVOAT_PRIVATE_ROUNDEDNUMBERS_H

#include <limits>
#include <type_traits>

namespace tarvo
{

/// Cuts off what stands behind the point. A number that does not fit, or is none, gives the lowest
/// integer, as files may state any rate and length.
template <typename Integer>
Integer TruncatedTo(double inNumber)
{
    static_assert(std::is_signed_v<Integer>);
    constexpr Integer lowest = std::numeric_limits<Integer>::lowest();
    constexpr double limit = -static_cast<double>(lowest);  // a power of two, so it is exact
    return inNumber > -limit - 1.0 && inNumber < limit ? static_cast<Integer>(inNumber) : lowest;
}

}  // namespace tarvo

#endif
