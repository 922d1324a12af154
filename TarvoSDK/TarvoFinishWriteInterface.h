// TarvoFinishWriteInterface: closing a written file, selector 19.
#ifndef TARVOSDK_TARVOFINISHWRITEINTERFACE_H
#define TARVOSDK_TARVOFINISHWRITEINTERFACE_H

#include "TarvoSDK/TarvoSDKTypes.h"

class TarvoErrorInterface;
class TarvoFormatInterface;

/// The host object of selector 19.
class TarvoFinishWriteInterface
{
protected:
    virtual ~TarvoFinishWriteInterface() = default;

public:
    /// Where failure text of this call goes; may be null.
    virtual TarvoErrorInterface* GetErrorInterface() const = 0;
    /// Only the low 8 bits count.
    virtual std::int32_t GetFinishFlag() const = 0;
    virtual const TarvoFormatInterface* GetFormatInterface() const = 0;
};

#endif
