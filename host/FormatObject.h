// FormatObject: the host's description of one piece of audio.
#ifndef HOST_FORMATOBJECT_H
#define HOST_FORMATOBJECT_H

#include "TarvoSDK/TarvoFormatInterface.h"
#include "host/ErrorObject.h"

#include <string>
#include <vector>

namespace host
{

/// Holds what it is told and answers it back. Channels beyond the count have label 0 and cannot be
/// told one. inError is where failure text goes; null where nobody asks for it.
class FormatObject : public TarvoFormatInterface
{
public:
    explicit FormatObject(ErrorObject* inError) : mError(inError) {}

    TarvoErrorInterface* GetErrorInterface() const override { return mError; }
    std::int32_t GetSampleRate() const override { return mSampleRate; }
    void SetSampleRate(std::int32_t inRate) override { mSampleRate = inRate; }
    std::int32_t GetSampleType() const override { return mSampleType; }
    void SetSampleType(std::int32_t inType) override { mSampleType = inType; }
    std::int64_t GetChannelCount() const override
    {
        return static_cast<std::int64_t>(mLabels.size());
    }
    void SetChannelCount(std::int32_t inCount) override;
    tarvo::AudioChannelLabel GetChannelLabel(std::int64_t inChannel) const override;
    void SetChannelLabel(std::int64_t inChannel, tarvo::AudioChannelLabel inLabel) override;
    const uint16* GetFilterId() const override { return mFilterId.c_str(); }
    const uint16* GetPrivateSettings() const override { return mSettings.c_str(); }
    void SetPrivateSettings(const uint16* inText) override { mSettings = inText; }
    void SetMimeType(const char* inType) override { mMimeType = inType; }
    void SetXmpType(std::uint32_t inType) override { mXmpType = inType; }
    void SetFormatFlags(std::int32_t inFlags) override { mFormatFlags = inFlags; }
    std::int32_t GetFormatFlags() const override { return mFormatFlags; }
    void SetSampleCount(std::int64_t inCount) override { mSampleCount = inCount; }
    std::int64_t GetSampleCount() const override { return mSampleCount; }
    void SetFileExtensions(TarvoExtensionList* inExtensions) override;

    std::int32_t mSampleRate = 0;
    std::int32_t mSampleType = 0;
    std::vector<std::uint32_t> mLabels;  // one a channel
    std::u16string mFilterId;            // told at registration; empty: none
    std::u16string mSettings;
    std::string mMimeType;
    std::uint32_t mXmpType = 0;
    std::int32_t mFormatFlags = 0;
    std::int64_t mSampleCount = 0;
    std::vector<std::string> mExtensions;

private:
    bool HasChannel(std::int64_t inChannel) const
    {
        return inChannel >= 0 && inChannel < GetChannelCount();
    }

    ErrorObject* mError;
};

}  // namespace host

#endif
