#include "extended/ExtendedProperties.h"

#include <cstring>

namespace audiotoolbox
{
namespace
{

// A value of mBytes bytes.
struct Property
{
    ExtAudioFilePropertyID mID;
    UInt32 mBytes;
    OSStatus (*mGet)(ExtendedFile& inFile, void* outValue);       // null: write only
    OSStatus (*mSet)(ExtendedFile& ioFile, const void* inValue);  // null: read only
};

template <typename Value>
OSStatus Put(const Value& inValue, void* outValue)
{
    std::memcpy(outValue, &inValue, sizeof(inValue));
    return noErr;
}

OSStatus GetFileFormat(ExtendedFile& inFile, void* outValue)
{
    return Put(inFile.Format(), outValue);
}

OSStatus GetClientFormat(ExtendedFile& inFile, void* outValue)
{
    const AudioStreamBasicDescription* format = inFile.ClientFormat();
    return format != nullptr ? Put(*format, outValue) : kExtAudioFileError_InvalidOperationOrder;
}

OSStatus SetClientFormat(ExtendedFile& ioFile, const void* inValue)
{
    AudioStreamBasicDescription format;
    std::memcpy(&format, inValue, sizeof(format));
    return ioFile.SetClientFormat(format);
}

OSStatus GetConverter(ExtendedFile& inFile, void* outValue)
{
    const AudioConverterRef converter = inFile.Converter();
    return converter != nullptr ? Put(converter, outValue)
                                : kExtAudioFileError_InvalidOperationOrder;
}

// Only the null reference, "as the converter is now", is known here.
OSStatus SetConfig(ExtendedFile& ioFile, const void* inValue)
{
    CFTypeRef config = nullptr;
    std::memcpy(&config, inValue, sizeof(config));
    return config == nullptr ? ioFile.TakeSettings() : OSStatus{kAudio_ParamError};
}

OSStatus GetLength(ExtendedFile& inFile, void* outValue)
{
    return Put(inFile.FrameCount(), outValue);
}

constexpr UInt32 kFormat = sizeof(AudioStreamBasicDescription);
constexpr UInt32 kReference = sizeof(void*);

// clang-format off
constexpr Property kProperties[] = {
    {kExtAudioFileProperty_FileDataFormat,   kFormat,        &GetFileFormat,   nullptr},
    {kExtAudioFileProperty_ClientDataFormat, kFormat,        &GetClientFormat, &SetClientFormat},
    {kExtAudioFileProperty_AudioConverter,   kReference,     &GetConverter,    nullptr},
    {kExtAudioFileProperty_ConverterConfig,  kReference,     nullptr,          &SetConfig},
    {kExtAudioFileProperty_FileLengthFrames, sizeof(SInt64), &GetLength,       nullptr},
};
// clang-format on

const Property* FindProperty(ExtAudioFilePropertyID inProperty)
{
    for (const Property& row : kProperties)
        if (row.mID == inProperty)
            return &row;
    return nullptr;
}

}  // namespace

OSStatus GetExtendedProperty(ExtendedFile& inFile, ExtAudioFilePropertyID inProperty,
                             UInt32& ioSize, void* outData)
{
    const Property* property = FindProperty(inProperty);
    if (property == nullptr || property->mGet == nullptr)
        return kExtAudioFileError_InvalidProperty;
    if (ioSize < property->mBytes)
        return kExtAudioFileError_InvalidPropertySize;
    const OSStatus status = property->mGet(inFile, outData);
    if (status == noErr)
        ioSize = property->mBytes;
    return status;
}

OSStatus SetExtendedProperty(ExtendedFile& ioFile, ExtAudioFilePropertyID inProperty, UInt32 inSize,
                             const void* inData)
{
    const Property* property = FindProperty(inProperty);
    if (property == nullptr || property->mSet == nullptr)
        return kExtAudioFileError_InvalidProperty;
    if (inSize != property->mBytes)
        return kExtAudioFileError_InvalidPropertySize;
    return property->mSet(ioFile, inData);
}

}  // namespace audiotoolbox
