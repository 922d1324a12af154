// TarvoWriteStartInterface: creating a file for writing, selector 17.
#ifndef TARVOSDK_TARVOWRITESTARTINTERFACE_H
#define TARVOSDK_TARVOWRITESTARTINTERFACE_H

#include "TarvoSDK/TarvoSDKTypes.h"

class TarvoErrorInterface;
class TarvoFormatInterface;

/// The host object of selector 17.
class TarvoWriteStartInterface
{
protected:
    virtual ~TarvoWriteStartInterface() = default;

public:
    /// Where failure text of this call goes; may be null.
    virtual TarvoErrorInterface* GetErrorInterface() const = 0;
    /// UTF-16, never null.
    virtual const uint16* GetFilePath() const = 0;
    virtual void Reserved3() {}
    /// Format of the audio to be written.
    virtual TarvoFormatInterface* GetFormatInterface() const = 0;
    virtual void Reserved5() {}
    virtual void Reserved6() {}
    /// The text that the host shows for what was written; never empty.
    virtual void SetFormatDescription(const uint16* inText) = 0;
    virtual void Reserved8() {}
    /// The new writer, which the host passes back in the calls of the session.
    virtual void SetWriterHandle(void* inWriter) = 0;
};

#endif
