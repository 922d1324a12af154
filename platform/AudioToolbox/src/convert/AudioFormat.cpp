// The C functions of AudioFormat, answered from the tables alone.
#include "convert/FormatNames.h"
#include "tables/DataFormats.h"
#include "tables/Encoders.h"

#include <AudioToolbox/AudioFile.h>
#include <AudioToolbox/AudioFormat.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>
#include <vector>

using audiotoolbox::AllDataFormats;
using audiotoolbox::DataFormat;
using audiotoolbox::DecoderRoad;
using audiotoolbox::EncoderRow;

namespace
{

constexpr OSStatus kParameterError = -50;

constexpr UInt32 kAnyChannelCount = 0xFFFFFFFF;

struct Specifier
{
    UInt32 mSize;
    const void* mBytes;
};

// A question and its two halves.
struct FormatProperty
{
    AudioFormatPropertyID mID;
    OSStatus (*mSize)(const Specifier& inSpecifier, UInt32& outSize);
    OSStatus (*mGet)(const Specifier& inSpecifier, UInt32& ioSize, void* outData);
};

// A list property is its one function that makes the list.
template <typename Element>
using MakeList = OSStatus (*)(const Specifier& inSpecifier, std::vector<Element>& outList);

template <typename Element, MakeList<Element> kMake>
OSStatus ListSize(const Specifier& inSpecifier, UInt32& outSize)
{
    std::vector<Element> list;
    if (const OSStatus status = kMake(inSpecifier, list); status != noErr)
        return status;
    outSize = static_cast<UInt32>(list.size() * sizeof(Element));
    return noErr;
}

template <typename Element, MakeList<Element> kMake>
OSStatus GetList(const Specifier& inSpecifier, UInt32& ioSize, void* outData)
{
    std::vector<Element> list;
    if (const OSStatus status = kMake(inSpecifier, list); status != noErr)
        return status;
    const std::size_t count = std::min(list.size(), ioSize / sizeof(Element));
    if (count > 0)
        std::memcpy(outData, list.data(), count * sizeof(Element));
    ioSize = static_cast<UInt32>(count * sizeof(Element));
    return noErr;
}

OSStatus DecodableFormats(const Specifier&, std::vector<AudioFormatID>& outFormats)
{
    for (const DataFormat& row : AllDataFormats())
        if (row.mDecoder != DecoderRoad::None)
            outFormats.push_back(row.mFormatID);
    return noErr;
}

OSStatus EncodableFormats(const Specifier&, std::vector<AudioFormatID>& outFormats)
{
    for (const EncoderRow& row : audiotoolbox::AllEncoders())
        outFormats.push_back(row.mFormatID);
    return noErr;
}

// A format's code alone, or a whole description of which only the code counts.
OSStatus FindSpecified(const Specifier& inSpecifier, const EncoderRow*& outRow)
{
    AudioFormatID format = 0;
    std::size_t at = 0;
    if (inSpecifier.mSize == sizeof(AudioStreamBasicDescription))
        at = offsetof(AudioStreamBasicDescription, mFormatID);
    else if (inSpecifier.mSize != sizeof(format))
        return kAudioFormatBadSpecifierSizeError;
    if (inSpecifier.mBytes == nullptr)
        return kAudioFormatBadSpecifierSizeError;
    std::memcpy(&format, static_cast<const UInt8*>(inSpecifier.mBytes) + at, sizeof(format));
    outRow = audiotoolbox::FindEncoder(format);
    return outRow != nullptr ? OSStatus{noErr} : kAudioFormatUnsupportedDataFormatError;
}

OSStatus EncodeRates(const Specifier& inSpecifier, std::vector<AudioValueRange>& outRates)
{
    const EncoderRow* row = nullptr;
    if (const OSStatus status = FindSpecified(inSpecifier, row); status != noErr)
        return status;
    for (const audiotoolbox::RateRange& range : row->mRates)
        outRates.push_back({Float64(range.mLowest), Float64(range.mHighest)});
    if (outRates.empty())
        outRates.push_back({0.0, 0.0});
    return noErr;
}

OSStatus EncodeChannelCounts(const Specifier& inSpecifier, std::vector<UInt32>& outCounts)
{
    const EncoderRow* row = nullptr;
    if (const OSStatus status = FindSpecified(inSpecifier, row); status != noErr)
        return status;
    for (const audiotoolbox::EncoderLayout& layout : row->mLayouts)
        outCounts.push_back(layout.mChannelCount);
    if (outCounts.empty())
        outCounts.push_back(kAnyChannelCount);
    return noErr;
}

// Callers hand over something else than a description here: it is not read.
OSStatus NameSize(const Specifier&, UInt32& outSize)
{
    outSize = sizeof(CFStringRef);
    return noErr;
}

OSStatus GetName(const Specifier& inSpecifier, UInt32& ioSize, void* outData)
{
    AudioStreamBasicDescription format;
    if (inSpecifier.mSize < sizeof(format) || inSpecifier.mBytes == nullptr)
        return kAudioFormatBadSpecifierSizeError;
    if (ioSize < sizeof(CFStringRef))
        return kAudioFormatBadPropertySizeError;
    std::memcpy(&format, inSpecifier.mBytes, sizeof(format));
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

OSStatus InfoSize(const Specifier&, UInt32& outSize)
{
    outSize = sizeof(AudioStreamBasicDescription);
    return noErr;
}

void FillIn(UInt32 inFixed, UInt32& ioField)
{
    if (ioField == 0)
        ioField = inFixed;
}

// As a new stream of the format would be.
void FillInEncoded(const EncoderRow& inRow, AudioStreamBasicDescription& ioFormat)
{
    audiotoolbox::StreamShape shape;
    const Float64 rate = ioFormat.mSampleRate;
    if (rate > 0.0 && rate <= Float64{audiotoolbox::kHighestEncodedRate})
        shape.mRate = static_cast<UInt32>(rate + 0.5);
    if (audiotoolbox::TakesChannels(inRow, ioFormat.mChannelsPerFrame))
        shape.mChannelCount = ioFormat.mChannelsPerFrame;
    if (ioFormat.mFormatFlags != kAppleLosslessFormatFlag_16BitSourceData)
        shape.mDepth = 24;
    FillIn(audiotoolbox::FramesPerPacket(inRow, shape), ioFormat.mFramesPerPacket);
    FillIn(audiotoolbox::BytesPerPacket(inRow, shape), ioFormat.mBytesPerPacket);
}

// Fills in what the format fixes and leaves what the caller has said. Bytes of linear PCM follow
// from channels, which no format fixes.
OSStatus GetInfo(const Specifier&, UInt32& ioSize, void* outData)
{
    AudioStreamBasicDescription format;
    if (ioSize < sizeof(format))
        return kAudioFormatBadPropertySizeError;
    std::memcpy(&format, outData, sizeof(format));
    const DataFormat* row = audiotoolbox::FindDataFormat(format.mFormatID);
    if (row == nullptr)
        return kAudioFormatUnknownFormatError;
    const EncoderRow* encoder = audiotoolbox::FindEncoder(format.mFormatID);
    if (encoder != nullptr && format.mFormatID != kAudioFormatLinearPCM)
        FillInEncoded(*encoder, format);
    FillIn(row->mFramesPerPacket, format.mFramesPerPacket);
    if (format.mFormatID != kAudioFormatLinearPCM)
        format.mBitsPerChannel = 0;
    std::memcpy(outData, &format, sizeof(format));
    ioSize = sizeof(format);
    return noErr;
}

constexpr FormatProperty kProperties[] = {
    {kAudioFormatProperty_DecodeFormatIDs, &ListSize<AudioFormatID, &DecodableFormats>,
     &GetList<AudioFormatID, &DecodableFormats>},
    {kAudioFormatProperty_EncodeFormatIDs, &ListSize<AudioFormatID, &EncodableFormats>,
     &GetList<AudioFormatID, &EncodableFormats>},
    {kAudioFormatProperty_AvailableEncodeSampleRates, &ListSize<AudioValueRange, &EncodeRates>,
     &GetList<AudioValueRange, &EncodeRates>},
    {kAudioFormatProperty_AvailableEncodeNumberChannels, &ListSize<UInt32, &EncodeChannelCounts>,
     &GetList<UInt32, &EncodeChannelCounts>},
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

OSStatus AudioFormatGetPropertyInfo(AudioFormatPropertyID property, UInt32 specifierSize,
                                    const void* specifier, UInt32* outSize)
{
    if (outSize == nullptr)
        return kParameterError;
    try
    {
        const FormatProperty* row = FindProperty(property);
        if (row == nullptr)
            return kAudioFormatUnsupportedPropertyError;
        return row->mSize({specifierSize, specifier}, *outSize);
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
        return row->mGet({specifierSize, specifier}, *ioSize, outData);
    }
    catch (const std::bad_alloc&)
    {
        return kAudio_MemFullError;
    }
}
