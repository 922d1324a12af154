// CAFPacketTable: the `pakt` chunk, lengths in frames and the size of every packet.
#ifndef AUDIOTOOLBOX_FILE_CAF_CAFPACKETTABLE_H
#define AUDIOTOOLBOX_FILE_CAF_CAFPACKETTABLE_H

#include "file/ByteSource.h"
#include "file/PacketSizes.h"

#include <optional>
#include <span>

namespace audiotoolbox
{

struct CAFPacketTable
{
    SInt64 mPackets = 0;
    SInt64 mValidFrames = 0;
    SInt32 mPrimingFrames = 0;
    SInt32 mRemainderFrames = 0;
    SInt64 mEntries = 0;     // where the entries start
    SInt64 mEntryBytes = 0;  // of them, within the source
};

constexpr UInt32 kCAFPacketTableHeadBytes = 24;

/// Reads the head of a table, the first bytes of its body. The place of the entries is left to the
/// caller. nullopt when it is too short or counts below 0.
std::optional<CAFPacketTable> ReadCAFPacketTable(std::span<const UInt8> inHead);

/// Reads the entries: a size for each packet where inFormat has no constant one, and a length
/// where it has no constant one. Stops without a failure at the first packet that does not lie
/// wholly within inDataBytes, and where the entries end. 'dta?' for more packets than we index.
OSStatus ReadCAFPacketIndex(ByteSource& inSource, const CAFPacketTable& inTable,
                            const AudioStreamBasicDescription& inFormat, SInt64 inDataBytes,
                            PacketSizes& outIndex);

}  // namespace audiotoolbox

#endif
