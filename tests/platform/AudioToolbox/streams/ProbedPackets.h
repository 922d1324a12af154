// ProbedPackets: where another reader finds the packets of a file.
#ifndef TESTS_PLATFORM_AUDIOTOOLBOX_STREAMS_PROBEDPACKETS_H
#define TESTS_PLATFORM_AUDIOTOOLBOX_STREAMS_PROBEDPACKETS_H

#include "StreamTesting.h"

namespace stream_testing
{

/// The packets that ffprobe tells of, as bytes of the file. Empty, which no test takes for an
/// answer, when it cannot be run.
std::vector<Bytes> ProbedPackets(const std::string& inPath);

/// The same of bytes, by way of a temporary file. inSuffix tells ffprobe the kind: ".amr".
std::vector<Bytes> ProbedPacketsOf(const Bytes& inBytes, const std::string& inSuffix);

}  // namespace stream_testing

#endif
