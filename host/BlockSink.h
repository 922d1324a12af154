// BlockSink: where a conversion's blocks go.
#ifndef HOST_BLOCKSINK_H
#define HOST_BLOCKSINK_H

#include <cstdint>

namespace host
{

class BlockSink
{
public:
    virtual ~BlockSink() = default;

    /// The next frames, [channel][frame], packed; the channels may share memory. Only read, and
    /// only during the call. inFrameCount is at least 1. Throws Failure.
    virtual void Write(const char* const* inChannels, std::int64_t inFrameCount) = 0;
};

}  // namespace host

#endif
