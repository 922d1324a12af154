#include "convert/ConverterProperties.h"

#include <cstring>
#include <span>
#include <vector>

namespace audiotoolbox
{

namespace
{

using Bytes = std::span<const UInt8>;

using Value = std::vector<UInt8>;

// One property of some of the converters; another row may serve the others.
struct Property
{
    AudioConverterPropertyID mID;
    bool (*mHas)(const Converter&);
    UInt32 mElementBytes;  // of a list, which may be cut; 0: a value, which may not
    OSStatus (*mGet)(const Converter&, Value& outValue);
    OSStatus (*mSet)(Converter&, Bytes);  // null: read only
};

template <typename Object>
OSStatus Answer(const Object& inObject, Value& outValue)
{
    const auto* bytes = reinterpret_cast<const UInt8*>(&inObject);
    outValue.assign(bytes, bytes + sizeof(inObject));
    return noErr;
}

template <typename Element>
OSStatus AnswerList(const std::vector<Element>& inElements, Value& outValue)
{
    const auto* bytes = reinterpret_cast<const UInt8*>(inElements.data());
    outValue.assign(bytes, bytes + inElements.size() * sizeof(Element));
    return noErr;
}

template <typename Object>
OSStatus ReadValue(Bytes inValue, Object& outObject)
{
    if (inValue.size() != sizeof(outObject))
        return kAudioConverterErr_BadPropertySizeError;
    std::memcpy(&outObject, inValue.data(), sizeof(outObject));
    return noErr;
}

bool Always(const Converter&)
{
    return true;
}

bool IsDecoding(const Converter& inConverter)
{
    return inConverter.IsCompressed();
}

bool IsEncoding(const Converter& inConverter)
{
    return inConverter.Encoder() != nullptr;
}

bool MakesCookie(const Converter& inConverter)
{
    return IsEncoding(inConverter) && inConverter.Plan().mEncoder->mHasCookie;
}

bool TakesCookie(const Converter& inConverter)
{
    return inConverter.CookieTaker() != nullptr;
}

bool HasBitRates(const Converter& inConverter)
{
    return inConverter.Settings() != nullptr;
}

bool HasQuality(const Converter& inConverter)
{
    return HasBitRates(inConverter) && inConverter.Settings()->HasQuality();
}

OSStatus GetCookie(const Converter& inConverter, Value& outValue)
{
    return AnswerList(inConverter.CookieTaker()->Cookie(), outValue);
}

OSStatus SetCookie(Converter& ioConverter, Bytes inValue)
{
    return ioConverter.CookieTaker()->SetCookie(inValue);
}

OSStatus GetEncoderCookie(const Converter& inConverter, Value& outValue)
{
    return inConverter.Encoder()->GetCookie(outValue);
}

OSStatus GetPrime(const Converter& inConverter, Value& outValue)
{
    return Answer(inConverter.Prime(), outValue);
}

OSStatus SetPrime(Converter& ioConverter, Bytes inValue)
{
    AudioConverterPrimeInfo prime;
    if (const OSStatus status = ReadValue(inValue, prime); status != noErr)
        return status;
    ioConverter.SetPrime(prime);
    return noErr;
}

OSStatus GetSource(const Converter& inConverter, Value& outValue)
{
    return Answer(inConverter.Plan().mSource, outValue);
}

OSStatus GetDestination(const Converter& inConverter, Value& outValue)
{
    return Answer(inConverter.Plan().mDestination, outValue);
}

// A packet of linear PCM is one frame in each buffer.
OSStatus GetOutputPacketSize(const Converter& inConverter, Value& outValue)
{
    const ConversionPlan& plan = inConverter.Plan();
    return Answer(plan.mEncoder != nullptr ? MaximumPacketBytes(*plan.mEncoder, plan.mStream)
                                           : plan.mDestination.mBytesPerPacket,
                  outValue);
}

OSStatus GetMode(const Converter& inConverter, Value& outValue)
{
    return Answer(inConverter.Settings()->Mode(), outValue);
}

OSStatus GetBitRate(const Converter& inConverter, Value& outValue)
{
    return Answer(inConverter.Settings()->BitRate(), outValue);
}

OSStatus GetQuality(const Converter& inConverter, Value& outValue)
{
    return Answer(inConverter.Settings()->Quality(), outValue);
}

OSStatus GetApplicableBitRates(const Converter& inConverter, Value& outValue)
{
    return AnswerList(inConverter.Settings()->ApplicableBitRates(), outValue);
}

OSStatus GetAvailableBitRates(const Converter& inConverter, Value& outValue)
{
    return AnswerList(inConverter.Settings()->AvailableBitRates(), outValue);
}

// A running encoder keeps to what it was opened with.
template <typename Object, OSStatus (EncoderSettings::*kSet)(Object)>
OSStatus SetSetting(Converter& ioConverter, Bytes inValue)
{
    Object object;
    if (const OSStatus status = ReadValue(inValue, object); status != noErr)
        return status;
    if (ioConverter.Encoder()->HasStarted())
        return kAudioConverterErr_OperationNotSupported;
    return (ioConverter.Settings()->*kSet)(object);
}

constexpr UInt32 kRange = sizeof(AudioValueRange);

// clang-format off
constexpr Property kProperties[] = {
    {kAudioConverterCurrentInputStreamDescription,  &Always, 0, &GetSource, nullptr},
    {kAudioConverterCurrentOutputStreamDescription, &Always, 0, &GetDestination, nullptr},
    {kAudioConverterDecompressionMagicCookie, &TakesCookie,  0, &GetCookie, &SetCookie},
    {kAudioConverterCompressionMagicCookie,   &MakesCookie,  0, &GetEncoderCookie, nullptr},
    {kAudioConverterPrimeInfo,                &IsDecoding,   0, &GetPrime, &SetPrime},
    {kAudioConverterPrimeInfo,                &IsEncoding,   0, &GetPrime, nullptr},
    {kAudioConverterPropertyMaximumOutputPacketSize, &Always, 0, &GetOutputPacketSize, nullptr},
    {kAudioCodecPropertyBitRateControlMode,   &HasBitRates,  0, &GetMode,
     &SetSetting<UInt32, &EncoderSettings::SetMode>},
    {kAudioConverterEncodeBitRate,            &HasBitRates,  0, &GetBitRate,
     &SetSetting<UInt32, &EncoderSettings::SetBitRate>},
    {kAudioCodecPropertySoundQualityForVBR,   &HasQuality,   0, &GetQuality,
     &SetSetting<Float32, &EncoderSettings::SetQuality>},
    {kAudioConverterApplicableEncodeBitRates, &HasBitRates,  kRange, &GetApplicableBitRates, nullptr},
    {kAudioConverterAvailableEncodeBitRates,  &HasBitRates,  kRange, &GetAvailableBitRates, nullptr},
};
// clang-format on

const Property* FindProperty(const Converter& inConverter, AudioConverterPropertyID inProperty)
{
    for (const Property& row : kProperties)
        if (row.mID == inProperty && row.mHas(inConverter))
            return &row;
    return nullptr;
}

}  // namespace

OSStatus GetConverterPropertyInfo(const Converter& inConverter, AudioConverterPropertyID inProperty,
                                  UInt32& outSize, bool& outIsWritable)
{
    const Property* property = FindProperty(inConverter, inProperty);
    if (property == nullptr)
        return kAudioConverterErr_PropertyNotSupported;
    Value value;
    if (const OSStatus status = property->mGet(inConverter, value); status != noErr)
        return status;
    outSize = static_cast<UInt32>(value.size());
    outIsWritable = property->mSet != nullptr;
    return noErr;
}

OSStatus GetConverterProperty(const Converter& inConverter, AudioConverterPropertyID inProperty,
                              UInt32& ioSize, void* outData)
{
    const Property* property = FindProperty(inConverter, inProperty);
    if (property == nullptr)
        return kAudioConverterErr_PropertyNotSupported;
    Value value;
    if (const OSStatus status = property->mGet(inConverter, value); status != noErr)
        return status;
    if (property->mElementBytes != 0 && ioSize < value.size())
        value.resize(ioSize - ioSize % property->mElementBytes);
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
