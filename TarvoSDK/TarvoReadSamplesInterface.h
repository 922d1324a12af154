// TarvoReadSamplesInterface: a request for decoded samples, selector 7.
#ifndef TARVOSDK_TARVOREADSAMPLESINTERFACE_H
#define TARVOSDK_TARVOREADSAMPLESINTERFACE_H

#include "TarvoSDK/TarvoSDKTypes.h"

/// The host object of selector 7. It has no GetErrorInterface.
class TarvoReadSamplesInterface
{
protected:
    virtual ~TarvoReadSamplesInterface() = default;

public:
    /// First frame wanted.
    virtual std::int64_t GetStartSample() const = 0;
    /// Frames wanted; above 0.
    virtual std::int64_t GetSampleCount() const = 0;
    /// The host's buffer of one channel.
    virtual char* GetChannelBuffer(std::int32_t inChannel) const = 0;
    /// Bytes in one channel's buffer; divided by the count, the bytes of one sample.
    virtual std::int64_t GetBufferSize() const = 0;
    /// Frames delivered. Told 0 first, so that a failure leaves 0.
    virtual void SetSamplesRead(std::int64_t inCount) = 0;
    /// Told only when the end of the file has been reached.
    virtual void SetTotalSampleCount(std::int64_t inCount) = 0;
};

#endif
