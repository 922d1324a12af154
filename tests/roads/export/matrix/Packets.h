// Packets: what stands in a written file, packet by packet.
#ifndef TESTS_ROADS_EXPORT_MATRIX_PACKETS_H
#define TESTS_ROADS_EXPORT_MATRIX_PACKETS_H

#include <AudioToolbox/AudioToolbox.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace export_matrix
{

/// Bytes of each, as a prober that is not ours finds them; empty when it cannot.
std::vector<std::size_t> PacketSizes(const std::string& inPath);

/// As the file tells it.
std::optional<AudioFilePacketTableInfo> PacketTableOf(const std::string& inPath);

}  // namespace export_matrix

#endif
