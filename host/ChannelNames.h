// ChannelNames: short names of the host's channel labels, as people write them.
#ifndef HOST_CHANNELNAMES_H
#define HOST_CHANNELNAMES_H

#include <cstdint>
#include <string>
#include <vector>

namespace host
{

/// "L", "R", "C", "LFE", ...; the number itself for a label without a name, "-" for 0.
std::string ChannelName(std::uint32_t inLabel);

/// The names of all channels with blanks between them.
std::string ChannelNames(const std::vector<std::uint32_t>& inLabels);

}  // namespace host

#endif
