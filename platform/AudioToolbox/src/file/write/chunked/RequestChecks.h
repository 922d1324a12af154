// RequestChecks: what the chunked containers ask of every request, and what they take from it.
#ifndef AUDIOTOOLBOX_FILE_WRITE_CHUNKED_REQUESTCHECKS_H
#define AUDIOTOOLBOX_FILE_WRITE_CHUNKED_REQUESTCHECKS_H

#include "file/write/PacketWriter.h"

namespace audiotoolbox
{

/// True where the type is written with the format, linear PCM in one of the type's own variants
/// and in frames without gaps, and where a header can state rate and channels.
bool IsRequestInOrder(const WriteRequest& inRequest);

/// One label a channel, or none where any of them is not known.
std::vector<AudioChannelLabel> KnownLabels(const WriteRequest& inRequest);

/// True for one channel that is all there is, and for left and right.
bool IsPlainOrder(const std::vector<AudioChannelLabel>& inLabels);

/// The nearest whole number of Hz, for containers that state no other.
UInt32 WholeRate(double inRate);

}  // namespace audiotoolbox

#endif
