#include "Tarvo_PlugIns/TarvoAT/private/TarvoATPrivateSettings.h"

#include "Tarvo_PlugIns/Common/PrivateSettings/TarvoPrivateSettingsSerializer.h"
#include "appleaudiotoolbox/utility/ATFormatUtils.h"

#include <AudioToolbox/AudioToolbox.h>
#include <kelpcore/utility/StringConversion.h>

#include <bit>
#include <cstdint>

namespace tarvo
{
namespace
{

using kelpcore::utility::AsciiToUTF16;

const UTF16String kAttributeKey_AudioFileTypeID = AsciiToUTF16("AudioFileTypeID");
const UTF16String kAttributeKey_SampleRateLow = AsciiToUTF16("SampleRateLow");
const UTF16String kAttributeKey_SampleRateHigh = AsciiToUTF16("SampleRateHigh");
const UTF16String kAttributeKey_FormatID = AsciiToUTF16("FormatID");
const UTF16String kAttributeKey_BytesPerPacket = AsciiToUTF16("BytesPerPacket");
const UTF16String kAttributeKey_FramesPerPacket = AsciiToUTF16("FramesPerPacket");
const UTF16String kAttributeKey_BytesPerFrame = AsciiToUTF16("BytesPerFrame");
const UTF16String kAttributeKey_ChannelsPerFrame = AsciiToUTF16("ChannelsPerFrame");
const UTF16String kAttributeKey_BitsPerChannel = AsciiToUTF16("BitsPerChannel");
const UTF16String kAttributeKey_FormatFlags = AsciiToUTF16("FormatFlags");
const UTF16String kAttributeKey_BitrateMode = AsciiToUTF16("BitrateMode");
const UTF16String kAttributeKey_Bitrate = AsciiToUTF16("Bitrate");
const UTF16String kAttributeKey_VBRQuality = AsciiToUTF16("VBRQuality");

// An attribute that is one field of the record. The rate, which is two attributes, is none.
struct Field
{
    const UTF16String* mKey;
    UInt32 (TarvoATPrivateSettings::*mGet)() const;
    void (TarvoATPrivateSettings::*mSet)(UInt32);
};

using Settings = TarvoATPrivateSettings;
constexpr Field kFields[] = {
    {&kAttributeKey_AudioFileTypeID, &Settings::GetAudioFileTypeID, &Settings::SetAudioFileTypeID},
    {&kAttributeKey_FormatID, &Settings::GetFormatID, &Settings::SetFormatID},
    {&kAttributeKey_BytesPerPacket, &Settings::GetBytesPerPacket, &Settings::SetBytesPerPacket},
    {&kAttributeKey_FramesPerPacket, &Settings::GetFramesPerPacket, &Settings::SetFramesPerPacket},
    {&kAttributeKey_BytesPerFrame, &Settings::GetBytesPerFrame, &Settings::SetBytesPerFrame},
    {&kAttributeKey_ChannelsPerFrame, &Settings::GetChannelsPerFrame,
     &Settings::SetChannelsPerFrame},
    {&kAttributeKey_BitsPerChannel, &Settings::GetBitsPerChannel, &Settings::SetBitsPerChannel},
    {&kAttributeKey_FormatFlags, &Settings::GetFormatFlags, &Settings::SetFormatFlags},
    {&kAttributeKey_BitrateMode, &Settings::GetBitrateMode, &Settings::SetBitrateMode},
    {&kAttributeKey_Bitrate, &Settings::GetBitrate, &Settings::SetBitrate},
    {&kAttributeKey_VBRQuality, &Settings::GetVBRQuality, &Settings::SetVBRQuality},
};

// The text has signed numbers; a value stands there as its bit pattern.
int AsAttribute(std::uint64_t inBits)
{
    return std::bit_cast<int>(static_cast<std::uint32_t>(inBits));
}

// The rate travels as the bits of its double, so that no precision is lost in the text.
void ReadSampleRate(const TarvoPrivateSettingsSerializer& inText,
                    TarvoATPrivateSettings& ioSettings)
{
    int low = 0;
    int high = 0;
    if (!inText.QueryAttribute(kAttributeKey_SampleRateLow, low) ||
        !inText.QueryAttribute(kAttributeKey_SampleRateHigh, high))
        return;
    const std::uint64_t bits = (std::uint64_t{std::bit_cast<std::uint32_t>(high)} << 32) |
                               std::bit_cast<std::uint32_t>(low);
    ioSettings.SetSampleRate(std::bit_cast<double>(bits));
}

}  // namespace

TarvoATPrivateSettings::TarvoATPrivateSettings()
{
    SetDefaults();
}

TarvoATPrivateSettings::TarvoATPrivateSettings(UInt32 inFileTypeID,
                                               CAStreamBasicDescription inDescription)
{
    SetDefaults();
    mAudioFileTypeID = inFileTypeID;
    mStreamBasicDescription = inDescription;
}

void TarvoATPrivateSettings::SetDefaults()
{
    mAudioFileTypeID = kAudioFileCAFType;
    mStreamBasicDescription.mSampleRate = 44100.0;
    mStreamBasicDescription.mFormatID = kAudioFormatLinearPCM;
    mStreamBasicDescription.mFormatFlags =
        kAudioFormatFlagIsBigEndian | kAudioFormatFlagIsSignedInteger | kAudioFormatFlagIsPacked;
    mStreamBasicDescription.mBytesPerPacket = 4;
    mStreamBasicDescription.mFramesPerPacket = 1;
    mStreamBasicDescription.mBytesPerFrame = 4;
    mStreamBasicDescription.mChannelsPerFrame = 2;
    mStreamBasicDescription.mBitsPerChannel = 16;
    mBitrateMode = 0;
    mBitrate = 64000;
    mVBRQuality = 96;
}

UTF16String TarvoATPrivateSettings::GetSerialized() const
{
    TarvoPrivateSettingsSerializer text;
    for (const Field& field : kFields)
        text.AddAttribute(*field.mKey, AsAttribute((this->*field.mGet)()));
    const auto rateBits = std::bit_cast<std::uint64_t>(GetSampleRate());
    text.AddAttribute(kAttributeKey_SampleRateLow, AsAttribute(rateBits));
    text.AddAttribute(kAttributeKey_SampleRateHigh, AsAttribute(rateBits >> 32));
    return text.GetSerializedString();
}

bool TarvoATPrivateSettings::InitializeFromSerialized(const UTF16String& inText)
{
    SetDefaults();
    TarvoPrivateSettingsSerializer text;
    text.Initialize(inText);
    for (const Field& field : kFields)
    {
        int value = 0;
        if (text.QueryAttribute(*field.mKey, value))
            (this->*field.mSet)(std::bit_cast<UInt32>(value));
    }
    ReadSampleRate(text, *this);
    return SanityCheck(mStreamBasicDescription);
}

bool TarvoATPrivateSettings::IsFormatLossy() const
{
    const UInt32 format = GetFormatID();
    return format != kAudioFormatLinearPCM && format != kAudioFormatAppleLossless;
}

UTF16String TarvoATPrivateSettings::GetFormatDescription() const
{
    return appleaudiotoolbox::GetDescriptionString(mStreamBasicDescription, mAudioFileTypeID, -1,
                                                   -1, -1);
}

UTF16String TarvoATPrivateSettings::GetExtendedFormatDescription() const
{
    return appleaudiotoolbox::GetDescriptionString(mStreamBasicDescription, mAudioFileTypeID,
                                                   mBitrateMode, mBitrate, mVBRQuality);
}

}  // namespace tarvo
