// Settings text comes from the host's storage, so any text at all may arrive: with any audio, any
// filter and any wish for a repair. What is read and written back once stays the same from then on.
//
// An input is the text, a unit for each byte; behind a zero byte the host's audio as it stands in
// Audio, and behind that the filter id.

#include "Tarvo_PlugIns/Common/PrivateSettings/TarvoPrivateSettingsSerializer.h"
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATInterface.h"
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATPrivateSettings.h"

#include <kelpcore/utility/NumberText.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace
{

using tarvo::TarvoATPrivateSettings;

// An input may leave the rest of it out.
struct Audio
{
    std::int32_t mRepairMode = 1;
    std::int32_t mSampleType = 20;
    std::int32_t mSampleRate = 44100;
    std::int32_t mReserved = 0;
    std::int64_t mChannelCount = 2;
    std::int64_t mSampleCount = 44100;
};

void Require(bool inHolds)
{
    if (!inHolds)
        std::abort();
}

UTF16String ToUTF16(std::string_view inBytes)
{
    UTF16String text;
    for (const char byte : inBytes)
        text += static_cast<unsigned char>(byte);
    return text;
}

// Takes the first bytes away.
Audio TakeAudio(std::string_view& ioBytes)
{
    Audio audio;
    const std::size_t count = std::min(ioBytes.size(), sizeof(audio));
    if (count > 0)
        std::memcpy(&audio, ioBytes.data(), count);
    ioBytes.remove_prefix(count);
    return audio;
}

class Format : public TarvoFormatInterface
{
public:
    Format(const Audio& inAudio, const UTF16String& inSettings, const UTF16String& inFilterId)
        : mAudio(inAudio), mSettings(inSettings), mFilterId(inFilterId)
    {
    }
    TarvoErrorInterface* GetErrorInterface() const override { return nullptr; }
    std::int32_t GetSampleRate() const override { return mAudio.mSampleRate; }
    void SetSampleRate(std::int32_t inRate) override { mAudio.mSampleRate = inRate; }
    std::int32_t GetSampleType() const override { return mAudio.mSampleType; }
    void SetSampleType(std::int32_t) override { std::abort(); }
    std::int64_t GetChannelCount() const override { return mAudio.mChannelCount; }
    void SetChannelCount(std::int32_t inCount) override { mAudio.mChannelCount = inCount; }
    tarvo::AudioChannelLabel GetChannelLabel(std::int64_t) const override { std::abort(); }
    void SetChannelLabel(std::int64_t, tarvo::AudioChannelLabel) override { std::abort(); }
    const uint16* GetFilterId() const override { return mFilterId.c_str(); }
    const uint16* GetPrivateSettings() const override { return mSettings.c_str(); }
    void SetPrivateSettings(const uint16* inText) override
    {
        mSettings = inText;
        ++mToldSettings;
    }
    void SetMimeType(const char* inType) override { Require(inType != nullptr); }
    void SetXmpType(std::uint32_t) override {}
    void SetFormatFlags(std::int32_t inFlags) override { Require(inFlags == 0); }
    std::int32_t GetFormatFlags() const override { std::abort(); }
    void SetSampleCount(std::int64_t) override { std::abort(); }
    std::int64_t GetSampleCount() const override { return mAudio.mSampleCount; }
    void SetFileExtensions(TarvoExtensionList* inExtensions) override
    {
        for (const TarvoExtensionLink* link = inExtensions->mNext; link != inExtensions;
             link = link->mNext)
            Require(*static_cast<const TarvoExtensionNode*>(link)->mText != 0);
    }

    Audio mAudio;
    UTF16String mSettings;
    UTF16String mFilterId;
    int mToldSettings = 0;
};

class Info : public TarvoGetExportSettingsInfoInterface
{
public:
    explicit Info(Format& inFormat) : mFormat(inFormat) {}
    TarvoErrorInterface* GetErrorInterface() const override { return nullptr; }
    TarvoFormatInterface* GetFormatInterface() const override { return &mFormat; }
    std::int32_t GetRepairMode() const override { return mFormat.mAudio.mRepairMode; }
    void SetEstimatedBits(std::int64_t) override { ++mToldEstimates; }
    void SetHasSettings(bool inHasSettings) override { Require(inHasSettings); }
    void SetLossy(bool) override {}
    void SetFormatDescription(const uint16* inText) override { Require(*inText != 0); }

    Format& mFormat;
    int mToldEstimates = 0;
};

UTF16String ReadAndWriteBack(const UTF16String& inText)
{
    tarvo::TarvoPrivateSettingsSerializer attributes;
    attributes.Initialize(inText);
    return attributes.GetSerializedString();
}

// An empty key is readable only at the very start, so a text may shrink once more.
void CheckSerializer(const UTF16String& inText)
{
    const UTF16String twice = ReadAndWriteBack(ReadAndWriteBack(inText));
    Require(ReadAndWriteBack(twice) == twice);
}

// A record's own text brings the whole record back.
void CheckRecord(const UTF16String& inText)
{
    TarvoATPrivateSettings settings;
    const bool isPlausible = settings.InitializeFromSerialized(inText);
    TarvoATPrivateSettings again;
    Require(again.InitializeFromSerialized(settings.GetSerialized()) == isPlausible);
    Require(again.GetSerialized() == settings.GetSerialized());
    Require(again.GetFormatDescription() == settings.GetFormatDescription());
}

// The result, 1 for a filter that is no number.
std::int32_t GetSettingsInfo(Format& ioFormat)
{
    Info info(ioFormat);
    try
    {
        const std::int32_t result = tarvo::TarvoATInterface().EntryPoint(14, nullptr, &info);
        Require(info.mToldEstimates == 1);
        return result;
    }
    catch (const kelpcore::utility::NumberFormatError&)
    {
        return 1;
    }
}

// Without a repair the settings that the host gets back come to the same again, once a depth that
// was refused has left its variant behind.
void CheckSettingsInfo(Format& ioFormat)
{
    const std::int32_t result = GetSettingsInfo(ioFormat);
    if (result == 1)
        return;
    Require(result == kTarvoResultSuccess || result == kTarvoResultUnsupportedFormat);
    Require(ioFormat.mToldSettings == 1);
    CheckRecord(ioFormat.mSettings);

    ioFormat.mAudio.mRepairMode = 0;
    (void)GetSettingsInfo(ioFormat);
    const std::int32_t verdict = GetSettingsInfo(ioFormat);
    const UTF16String settled = ioFormat.mSettings;
    Require(GetSettingsInfo(ioFormat) == verdict);
    Require(ioFormat.mSettings == settled);
}

// What no other operation of the plug-in tries.
void CheckNegotiation(const UTF16String& inText, const Audio& inAudio)
{
    TarvoATPrivateSettings settings;
    (void)settings.InitializeFromSerialized(inText);
    const UTF16String before = settings.GetSerialized();
    const auto format = static_cast<UInt32>(inAudio.mSampleCount);
    if (settings.TryFormatID(format))
        Require(settings.GetFormatID() == format);
    else
        Require(settings.GetSerialized() == before);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* inData, std::size_t inSize)
{
    std::string_view bytes(reinterpret_cast<const char*>(inData), inSize);
    const UTF16String text = ToUTF16(bytes.substr(0, bytes.find('\0')));
    bytes.remove_prefix(std::min(bytes.size(), text.size() + 1));
    const Audio audio = TakeAudio(bytes);

    CheckSerializer(text);
    CheckRecord(text);
    CheckNegotiation(text, audio);
    Format format(audio, text, ToUTF16(bytes));
    CheckSettingsInfo(format);
    return 0;
}
