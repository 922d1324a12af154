// TarvoWriteSamplesInterface: a block of samples to write, selector 18.
#ifndef TARVOSDK_TARVOWRITESAMPLESINTERFACE_H
#define TARVOSDK_TARVOWRITESAMPLESINTERFACE_H

#include "TarvoSDK/TarvoSDKTypes.h"

class TarvoErrorInterface;

/// The host object of selector 18.
class TarvoWriteSamplesInterface
{
protected:
    virtual ~TarvoWriteSamplesInterface() = default;

public:
    /// Where failure text of this call goes; may be null.
    virtual TarvoErrorInterface* GetErrorInterface() const = 0;
    /// Position of the block in frames.
    virtual std::int64_t GetStartSample() const = 0;
    /// Frames in the block.
    virtual std::int64_t GetSampleCount() const = 0;
    /// The host's buffer of one channel, packed at the session's width.
    virtual const char* GetChannelBuffer(std::int64_t inChannel) const = 0;
};

#endif
