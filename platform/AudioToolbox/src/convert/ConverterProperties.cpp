#include "convert/ConverterProperties.h"

#include <cstring>
#include <span>

namespace audiotoolbox
{

namespace
{

using Bytes = std::span<const UInt8>;

// The bytes of a value. What it points at lives as long as the converter is not changed.
struct Property
{
    AudioConverterPropertyID mID;
    bool (*mHas)(const Converter&);
    Bytes (*mGet)(const Converter&);
    OSStatus (*mSet)(Converter&, Bytes);  // null: read only
};

template <typename Value>
Bytes BytesOf(const Value& inValue)
{
    return {reinterpret_cast<const UInt8*>(&inValue), sizeof(inValue)};
}

bool Always(const Converter&)
{
    return true;
}

bool IsCompressed(const Converter& inConverter)
{
    return inConverter.IsCompressed();
}

bool TakesCookie(const Converter& inConverter)
{
    return inConverter.CookieTaker() != nullptr;
}

Bytes GetCookie(const Converter& inConverter)
{
    return inConverter.CookieTaker()->Cookie();
}

OSStatus SetCookie(Converter& ioConverter, Bytes inValue)
{
    return ioConverter.CookieTaker()->SetCookie(inValue);
}

Bytes GetPrime(const Converter& inConverter)
{
    return BytesOf(inConverter.Prime());
}

OSStatus SetPrime(Converter& ioConverter, Bytes inValue)
{
    AudioConverterPrimeInfo prime;
    if (inValue.size() != sizeof(prime))
        return kAudioConverterErr_BadPropertySizeError;
    std::memcpy(&prime, inValue.data(), sizeof(prime));
    ioConverter.SetPrime(prime);
    return noErr;
}

Bytes GetSource(const Converter& inConverter)
{
    return BytesOf(inConverter.Plan().mSource);
}

Bytes GetDestination(const Converter& inConverter)
{
    return BytesOf(inConverter.Plan().mDestination);
}

// A packet of linear PCM is one frame in each buffer.
Bytes GetOutputPacketSize(const Converter& inConverter)
{
    return BytesOf(inConverter.Plan().mDestination.mBytesPerPacket);
}

constexpr Property kProperties[] = {
    {kAudioConverterCurrentInputStreamDescription, &Always, &GetSource, nullptr},
    {kAudioConverterCurrentOutputStreamDescription, &Always, &GetDestination, nullptr},
    {kAudioConverterDecompressionMagicCookie, &TakesCookie, &GetCookie, &SetCookie},
    {kAudioConverterPrimeInfo, &IsCompressed, &GetPrime, &SetPrime},
    {kAudioConverterPropertyMaximumOutputPacketSize, &Always, &GetOutputPacketSize, nullptr},
};

const Property* FindProperty(const Converter& inConverter, AudioConverterPropertyID inProperty)
{
    for (const Property& row : kProperties)
        if (row.mID == inProperty)
            return row.mHas(inConverter) ? &row : nullptr;
    return nullptr;
}

}  // namespace

OSStatus GetConverterPropertyInfo(const Converter& inConverter, AudioConverterPropertyID inProperty,
                                  UInt32& outSize, bool& outIsWritable)
{
    const Property* property = FindProperty(inConverter, inProperty);
    if (property == nullptr)
        return kAudioConverterErr_PropertyNotSupported;
    outSize = static_cast<UInt32>(property->mGet(inConverter).size());
    outIsWritable = property->mSet != nullptr;
    return noErr;
}

OSStatus GetConverterProperty(const Converter& inConverter, AudioConverterPropertyID inProperty,
                              UInt32& ioSize, void* outData)
{
    const Property* property = FindProperty(inConverter, inProperty);
    if (property == nullptr)
        return kAudioConverterErr_PropertyNotSupported;
    const Bytes value = property->mGet(inConverter);
    if (ioSize < value.size())
        return kAudioConverterErr_BadPropertySizeError;
    if (!value.empty())
        std::memcpy(outData, value.data(), value.size());
    ioSize = static_cast<UInt32>(value.size());
    return noErr;
}

OSStatus SetConverterProperty(Converter& ioConverter, AudioConverterPropertyID inProperty,
                              UInt32 inSize, const void* inData)
{
    const Property* property = FindProperty(ioConverter, inProperty);
    if (property == nullptr || property->mSet == nullptr)
        return kAudioConverterErr_PropertyNotSupported;
    return property->mSet(ioConverter, {static_cast<const UInt8*>(inData), inSize});
}

}  // namespace audiotoolbox
