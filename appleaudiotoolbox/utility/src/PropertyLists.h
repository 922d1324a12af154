// PropertyLists: lists of unknown length from the platform, their size first, then the values.
//
// The size that the platform told is handed back to it as it is. A second answer may be the shorter
// one, and an element that is cut off is dropped.
#ifndef APPLEAUDIOTOOLBOX_UTILITY_SRC_PROPERTYLISTS_H
#define APPLEAUDIOTOOLBOX_UTILITY_SRC_PROPERTYLISTS_H

#include <AudioToolbox/AudioToolbox.h>

#include <algorithm>
#include <vector>

namespace appleaudiotoolbox
{

/// What a global question is about. Nothing for a question that has no specifier.
struct Specifier
{
    Specifier() = default;
    template <typename Record>
    explicit Specifier(const Record& inRecord) : mSize(sizeof(inRecord)), mData(&inRecord)
    {
    }

    UInt32 mSize = 0;
    const void* mData = nullptr;
};

inline OSStatus GetGlobalSize(AudioFilePropertyID inProperty, Specifier inSpecifier,
                              UInt32* outBytes)
{
    return AudioFileGetGlobalInfoSize(inProperty, inSpecifier.mSize,
                                      const_cast<void*>(inSpecifier.mData), outBytes);
}

inline OSStatus GetGlobalValue(AudioFilePropertyID inProperty, Specifier inSpecifier,
                               UInt32* ioBytes, void* outData)
{
    return AudioFileGetGlobalInfo(inProperty, inSpecifier.mSize,
                                  const_cast<void*>(inSpecifier.mData), ioBytes, outData);
}

/// Reads the values of a list of inBytes bytes. outValues is empty unless the answer is noErr.
/// inGetValue(UInt32* ioBytes, void* outData) answers an OSStatus.
template <typename Value, typename GetValue>
OSStatus ReadValues(UInt32 inBytes, GetValue inGetValue, std::vector<Value>& outValues)
{
    outValues.clear();
    std::vector<Value> values(inBytes / sizeof(Value) + 1);  // one for an element that is cut off
    UInt32 delivered = inBytes;
    if (const OSStatus status = inGetValue(&delivered, values.data()); status != noErr)
        return status;
    values.resize(std::min(delivered, inBytes) / sizeof(Value));
    outValues.swap(values);
    return noErr;
}

/// Reads a whole list. outValues is empty unless the answer is noErr.
/// inGetSize(UInt32* outBytes) answers an OSStatus, too.
template <typename Value, typename GetSize, typename GetValue>
OSStatus ReadPropertyList(GetSize inGetSize, GetValue inGetValue, std::vector<Value>& outValues)
{
    outValues.clear();
    UInt32 bytes = 0;
    if (const OSStatus status = inGetSize(&bytes); status != noErr)
        return status;
    return ReadValues(bytes, inGetValue, outValues);
}

template <typename Value>
OSStatus ReadGlobalList(AudioFilePropertyID inProperty, Specifier inSpecifier,
                        std::vector<Value>& outValues)
{
    const auto getSize = [=](UInt32* outBytes)
    { return GetGlobalSize(inProperty, inSpecifier, outBytes); };
    const auto getValue = [=](UInt32* ioBytes, void* outData)
    { return GetGlobalValue(inProperty, inSpecifier, ioBytes, outData); };
    return ReadPropertyList(getSize, getValue, outValues);
}

template <typename Value>
OSStatus ReadFormatList(AudioFormatPropertyID inProperty, Specifier inSpecifier,
                        std::vector<Value>& outValues)
{
    const auto getSize = [=](UInt32* outBytes) {
        return AudioFormatGetPropertyInfo(inProperty, inSpecifier.mSize, inSpecifier.mData,
                                          outBytes);
    };
    const auto getValue = [=](UInt32* ioBytes, void* outData)
    {
        return AudioFormatGetProperty(inProperty, inSpecifier.mSize, inSpecifier.mData, ioBytes,
                                      outData);
    };
    return ReadPropertyList(getSize, getValue, outValues);
}

}  // namespace appleaudiotoolbox

#endif
