#include "file/FileProperties.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace audiotoolbox
{
namespace
{

// Bytes that live in the facts. Missing: the file does not have the property.
struct Value
{
    const void* mBytes = nullptr;
    std::size_t mSize = 0;
    bool mIsMissing = true;
};

template <auto kMember>
Value ValueOf(const FileFacts& inFacts)
{
    return {&(inFacts.*kMember), sizeof(inFacts.*kMember), false};
}

template <auto kMember>
Value BytesOf(const FileFacts& inFacts)
{
    const auto& bytes = inFacts.*kMember;
    return {bytes.data(), bytes.size() * sizeof(bytes[0]), bytes.empty()};
}

template <auto kMember>
Value OptionalOf(const FileFacts& inFacts)
{
    const auto& value = inFacts.*kMember;
    return value ? Value{&*value, sizeof(*value), false} : Value{};
}

Value Optimized(const FileFacts&)
{
    static constexpr UInt32 kYes = 1;  // packets lie in order, with nothing between them
    return {&kYes, sizeof(kYes), false};
}

struct PropertyRow
{
    AudioFilePropertyID mProperty;
    Value (*mValue)(const FileFacts& inFacts);
    std::size_t mElementSize;  // of a list that may be cut; 0 for a value that may not
};

constexpr PropertyRow kProperties[] = {
    {kAudioFilePropertyFileFormat, &ValueOf<&FileFacts::mFileType>, 0},
    {kAudioFilePropertyDataFormat, &ValueOf<&FileFacts::mDataFormat>, 0},
    {kAudioFilePropertyFormatList, &BytesOf<&FileFacts::mFormats>, sizeof(AudioFormatListItem)},
    {kAudioFilePropertyMagicCookieData, &BytesOf<&FileFacts::mCookie>, 0},
    {kAudioFilePropertyPacketTableInfo, &OptionalOf<&FileFacts::mPacketTable>, 0},
    {kAudioFilePropertyPacketSizeUpperBound, &ValueOf<&FileFacts::mPacketSizeUpperBound>, 0},
    {kAudioFilePropertyMaximumPacketSize, &ValueOf<&FileFacts::mPacketSizeUpperBound>, 0},
    {kAudioFilePropertyEstimatedDuration, &ValueOf<&FileFacts::mEstimatedDuration>, 0},
    {kAudioFilePropertyBitRate, &ValueOf<&FileFacts::mBitRate>, 0},
    {kAudioFilePropertyChannelLayout, &BytesOf<&FileFacts::mChannelLayout>, 0},
    {kAudioFilePropertyAudioDataByteCount, &ValueOf<&FileFacts::mDataByteCount>, 0},
    {kAudioFilePropertyAudioDataPacketCount, &OptionalOf<&FileFacts::mPacketCount>, 0},
    {kAudioFilePropertyDataOffset, &ValueOf<&FileFacts::mDataOffset>, 0},
    {kAudioFilePropertyIsOptimized, &Optimized, 0},
};

const PropertyRow* FindProperty(AudioFilePropertyID inProperty)
{
    const auto* row =
        std::find_if(std::begin(kProperties), std::end(kProperties),
                     [=](const PropertyRow& inRow) { return inRow.mProperty == inProperty; });
    return row == std::end(kProperties) ? nullptr : row;
}

bool NeedsCounting(const PacketReader& inFile, AudioFilePropertyID inProperty)
{
    return inProperty == kAudioFilePropertyAudioDataPacketCount && !inFile.Facts().mPacketCount;
}

OSStatus CountPackets(PacketReader& inFile, UInt64& outCount)
{
    constexpr UInt32 kBatch = 256;
    const UInt32 room = std::max<UInt32>(inFile.Facts().mPacketSizeUpperBound, 64 * 1024);
    std::vector<UInt8> bytes(room);
    std::vector<AudioStreamPacketDescription> descriptions(kBatch);
    outCount = 0;
    for (;;)
    {
        UInt32 byteCount = room;
        UInt32 packets = kBatch;
        const OSStatus status = inFile.ReadPackets(static_cast<SInt64>(outCount), &byteCount,
                                                   &packets, descriptions.data(), bytes.data());
        if (status != noErr || packets == 0)
            return status;
        outCount += packets;
    }
}

OSStatus CopyValue(const Value& inValue, std::size_t inElementSize, UInt32* ioSize, void* outData)
{
    std::size_t size = inValue.mSize;
    if (inElementSize > 0)
        size = std::min<std::size_t>(size, *ioSize - *ioSize % inElementSize);
    if (size > *ioSize)
        return kAudioFileBadPropertySizeError;
    if (size > 0)
        std::memcpy(outData, inValue.mBytes, size);
    *ioSize = static_cast<UInt32>(size);
    return noErr;
}

}  // namespace

OSStatus GetFilePropertySize(const PacketReader& inFile, AudioFilePropertyID inProperty,
                             UInt32* outSize)
{
    const PropertyRow* row = FindProperty(inProperty);
    if (row == nullptr)
        return kAudioFileUnsupportedPropertyError;
    if (NeedsCounting(inFile, inProperty))
    {
        *outSize = sizeof(UInt64);
        return noErr;
    }
    const Value value = row->mValue(inFile.Facts());
    if (value.mIsMissing || value.mSize > std::numeric_limits<UInt32>::max())
        return kAudioFileUnsupportedPropertyError;
    *outSize = static_cast<UInt32>(value.mSize);
    return noErr;
}

OSStatus GetFileProperty(PacketReader& inFile, AudioFilePropertyID inProperty, UInt32* ioSize,
                         void* outData)
{
    const PropertyRow* row = FindProperty(inProperty);
    if (row == nullptr)
        return kAudioFileUnsupportedPropertyError;
    if (NeedsCounting(inFile, inProperty))
    {
        UInt64 count = 0;
        if (*ioSize < sizeof(count))
            return kAudioFileBadPropertySizeError;
        const OSStatus status = CountPackets(inFile, count);
        return status != noErr ? status
                               : CopyValue({&count, sizeof(count), false}, 0, ioSize, outData);
    }
    const Value value = row->mValue(inFile.Facts());
    if (value.mIsMissing)
        return kAudioFileUnsupportedPropertyError;
    return CopyValue(value, row->mElementSize, ioSize, outData);
}

}  // namespace audiotoolbox
