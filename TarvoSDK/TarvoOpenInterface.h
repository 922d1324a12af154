// TarvoOpenInterface: opening a file for reading, selector 5.
#ifndef TARVOSDK_TARVOOPENINTERFACE_H
#define TARVOSDK_TARVOOPENINTERFACE_H

#include "TarvoSDK/TarvoSDKTypes.h"

class TarvoErrorInterface;

/// The host object of selector 5.
class TarvoOpenInterface
{
protected:
    virtual ~TarvoOpenInterface() = default;

public:
    /// Where failure text of this call goes; may be null.
    virtual TarvoErrorInterface* GetErrorInterface() const = 0;
    virtual void Reserved2() {}
    /// UTF-8, never null.
    virtual const char* GetFilePath() const = 0;
    virtual void Reserved4() {}
    /// The new reader, which the host passes back in the calls of the session.
    virtual void SetFileHandle(void* inReader) = 0;
    virtual void Reserved6() {}
    /// Told 0 after a successful open.
    virtual void SetOpenStatus(std::int32_t inStatus) = 0;
    virtual void Reserved8() {}
    /// The text that the host shows for the file's format; never empty.
    virtual void SetFormatDescription(const uint16* inText) = 0;
    virtual void Reserved10() {}
    /// Bits per second of the stored audio.
    virtual void SetBitrate(std::uint32_t inBitsPerSecond) = 0;
};

#endif
