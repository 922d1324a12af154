// TarvoFormatInterface: the host's description of one piece of audio.
#ifndef TARVOSDK_TARVOFORMATINTERFACE_H
#define TARVOSDK_TARVOFORMATINTERFACE_H

#include "TarvoSDK/TarvoExtensionList.h"
#include "TarvoSDK/TarvoSDKTypes.h"

class TarvoErrorInterface;

/// The host object of selectors 6 and 13; other host objects hand one over.
class TarvoFormatInterface
{
protected:
    virtual ~TarvoFormatInterface() = default;

public:
    /// Where failure text of this call goes; may be null.
    virtual TarvoErrorInterface* GetErrorInterface() const = 0;
    /// Whole hertz.
    virtual std::int32_t GetSampleRate() const = 0;
    virtual void SetSampleRate(std::int32_t inRate) = 0;
    /// A value of tarvo::AudioSampleType.
    virtual std::int32_t GetSampleType() const = 0;
    virtual void SetSampleType(std::int32_t inType) = 0;
    /// Mind the two widths of the channel count.
    virtual std::int64_t GetChannelCount() const = 0;
    virtual void SetChannelCount(std::int32_t inCount) = 0;
    virtual tarvo::AudioChannelLabel GetChannelLabel(std::int64_t inChannel) const = 0;
    virtual void SetChannelLabel(std::int64_t inChannel, tarvo::AudioChannelLabel inLabel) = 0;
    virtual void Reserved10() {}
    virtual void Reserved11() {}
    /// The id, as given at registration, of the filter that the user chose; empty without one.
    virtual const uint16* GetFilterId() const = 0;
    /// The stored settings text, or an empty text.
    virtual const uint16* GetPrivateSettings() const = 0;
    virtual void SetPrivateSettings(const uint16* inText) = 0;
    /// Empty for a file type without a MIME type.
    virtual void SetMimeType(const char* inType) = 0;
    virtual void Reserved16() {}
    /// A four-character code.
    virtual void SetXmpType(std::uint32_t inType) = 0;
    virtual void Reserved18() {}
    virtual void SetFormatFlags(std::int32_t inFlags) = 0;
    virtual std::int32_t GetFormatFlags() const = 0;
    virtual void Reserved21() {}
    virtual void Reserved22() {}
    virtual void Reserved23() {}
    virtual void Reserved24() {}
    /// Length of the audio in samples per channel.
    virtual void SetSampleCount(std::int64_t inCount) = 0;
    virtual std::int64_t GetSampleCount() const = 0;
    /// The list is valid until the call returns.
    virtual void SetFileExtensions(TarvoExtensionList* inExtensions) = 0;
};

#endif
