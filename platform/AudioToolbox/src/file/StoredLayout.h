// StoredLayout: the channel layout record as AIFF (`CHAN`) and CAF (`chan`) files keep it.
#ifndef AUDIOTOOLBOX_FILE_STOREDLAYOUT_H
#define AUDIOTOOLBOX_FILE_STOREDLAYOUT_H

#include "file/PacketReader.h"

#include <span>

namespace audiotoolbox
{

constexpr UInt32 kMaxStoredLayoutBytes = 12 + 1024 * 20;

/// The layout of a chunk's body, big endian in the file, in native byte order. Empty for a body
/// that is too short for what it claims.
std::vector<UInt8> LayoutOfChunk(std::span<const UInt8> inBody);

}  // namespace audiotoolbox

#endif
