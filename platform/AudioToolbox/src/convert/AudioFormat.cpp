// The C functions of AudioFormat, answered from the tables alone.
#include "convert/FormatNames.h"
#include "tables/DataFormats.h"

#include <AudioToolbox/AudioFile.h>
#include <AudioToolbox/AudioFormat.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

using audiotoolbox::AllDataFormats;
using audiotoolbox::DataFormat;
using audiotoolbox::DecoderRoad;

namespace
{

constexpr OSStatus kParameterError = -50;

// A question and its two halves. The size is answered without the specifier.
struct FormatProperty
{
    AudioFormatPropertyID mID;
    UInt32 (*mSize)();
    OSStatus (*mGet)(UInt32 inSpecifierSize, const void* inSpecifier, UInt32& ioSize,
                     void* outData);
};

std::vector<AudioFormatID> DecodableFormats()
{
    std::vector<AudioFormatID> formats;
    for (const DataFormat& row : AllDataFormats())
        if (row.mDecoder != DecoderRoad::None)
            formats.push_back(row.mFormatID);
    return formats;
}

UInt32 DecodeListSize()
{
    return static_cast<UInt32>(DecodableFormats().size() * sizeof(AudioFormatID));
}

OSStatus GetDecodeList(UInt32, const void*, UInt32& ioSize, void* outData)
{
    const std::vector<AudioFormatID> formats = DecodableFormats();
    const std::size_t count = std::min(formats.size(), ioSize / sizeof(AudioFormatID));
    if (count > 0)
        std::memcpy(outData, formats.data(), count * sizeof(AudioFormatID));
    ioSize = static_cast<UInt32>(count * sizeof(AudioFormatID));
    return noErr;
}

UInt32 NameSize()
{
    return sizeof(CFStringRef);
}

OSStatus GetName(UInt32 inSpecifierSize, const void* inSpecifier, UInt32& ioSize, void* outData)
{
    AudioStreamBasicDescription format;
    if (inSpecifierSize < sizeof(format) || inSpecifier == nullptr)
        return kAudioFormatBadSpecifierSizeError;
    if (ioSize < sizeof(CFStringRef))
        return kAudioFormatBadPropertySizeError;
    std::memcpy(&format, inSpecifier, sizeof(format));
    const std::string name = audiotoolbox::FormatName(format);
    if (name.empty())
        return kAudioFormatUnknownFormatError;
    const CFStringRef text =
        CFStringCreateWithCString(kCFAllocatorDefault, name.c_str(), kCFStringEncodingUTF8);
    if (text == nullptr)
        return kAudio_MemFullError;
    std::memcpy(outData, &text, sizeof(text));
    ioSize = sizeof(text);
    return noErr;
}

UInt32 InfoSize()
{
    return sizeof(AudioStreamBasicDescription);
}

// Fills in what the format fixes and leaves what the caller has said.
OSStatus GetInfo(UInt32, const void*, UInt32& ioSize, void* outData)
{
    AudioStreamBasicDescription format;
    if (ioSize < sizeof(format))
        return kAudioFormatBadPropertySizeError;
    std::memcpy(&format, outData, sizeof(format));
    const DataFormat* row = audiotoolbox::FindDataFormat(format.mFormatID);
    if (row == nullptr)
        return kAudioFormatUnknownFormatError;
    if (format.mFramesPerPacket == 0)
        format.mFramesPerPacket = row->mFramesPerPacket;
    if (format.mFormatID != kAudioFormatLinearPCM)
        format.mBitsPerChannel = 0;
    std::memcpy(outData, &format, sizeof(format));
    ioSize = sizeof(format);
    return noErr;
}

constexpr FormatProperty kProperties[] = {
    {kAudioFormatProperty_DecodeFormatIDs, &DecodeListSize, &GetDecodeList},
    {kAudioFormatProperty_FormatName, &NameSize, &GetName},
    {kAudioFormatProperty_FormatInfo, &InfoSize, &GetInfo},
};

const FormatProperty* FindProperty(AudioFormatPropertyID inProperty)
{
    for (const FormatProperty& row : kProperties)
        if (row.mID == inProperty)
            return &row;
    return nullptr;
}

}  // namespace

OSStatus AudioFormatGetPropertyInfo(AudioFormatPropertyID property, UInt32, const void*,
                                    UInt32* outSize)
{
    if (outSize == nullptr)
        return kParameterError;
    try
    {
        const FormatProperty* row = FindProperty(property);
        if (row == nullptr)
            return kAudioFormatUnsupportedPropertyError;
        *outSize = row->mSize();
        return noErr;
    }
    catch (const std::bad_alloc&)
    {
        return kAudio_MemFullError;
    }
}

OSStatus AudioFormatGetProperty(AudioFormatPropertyID property, UInt32 specifierSize,
                                const void* specifier, UInt32* ioSize, void* outData)
{
    if (ioSize == nullptr || outData == nullptr)
        return kParameterError;
    try
    {
        const FormatProperty* row = FindProperty(property);
        if (row == nullptr)
            return kAudioFormatUnsupportedPropertyError;
        return row->mGet(specifierSize, specifier, *ioSize, outData);
    }
    catch (const std::bad_alloc&)
    {
        return kAudio_MemFullError;
    }
}
