// PlatformQuestions: one fixed-size value from the platform, its size first, then the value.
#ifndef APPLEAUDIOTOOLBOX_SRC_PLATFORMQUESTIONS_H
#define APPLEAUDIOTOOLBOX_SRC_PLATFORMQUESTIONS_H

#include "appleaudiotoolbox/ExtendedErrorInfo.h"

#include <AudioToolbox/AudioToolbox.h>

namespace appleaudiotoolbox
{

/// What came of a question.
struct Asked
{
    enum Outcome
    {
        kAnswered,
        kNoObject,  // no file or converter to ask
        kFailed,    // one of the two calls, with mStatus
        kTooLarge   // the platform's value has more bytes than ours
    };

    Outcome mOutcome;
    OSStatus mStatus = noErr;

    explicit operator bool() const { return mOutcome == kAnswered; }
};

/// Reads one value. A shorter value of the platform leaves the rest of outValue as it was, and so
/// does everything but an answer.
/// inGetSize(UInt32* outBytes) and inGetValue(UInt32* ioBytes, void* outData) answer an OSStatus.
template <typename Value, typename GetSize, typename GetValue>
Asked AskForValue(GetSize inGetSize, GetValue inGetValue, Value& outValue)
{
    UInt32 bytes = 0;
    if (const OSStatus status = inGetSize(&bytes); status != noErr)
        return {Asked::kFailed, status};
    if (bytes > sizeof(Value))
        return {Asked::kTooLarge};
    if (const OSStatus status = inGetValue(&bytes, &outValue); status != noErr)
        return {Asked::kFailed, status};
    return {Asked::kAnswered};
}

template <typename Value>
Asked AskFile(AudioFileID inFile, AudioFilePropertyID inProperty, Value& outValue)
{
    if (!inFile)
        return {Asked::kNoObject};
    const auto getSize = [=](UInt32* outBytes)
    { return AudioFileGetPropertyInfo(inFile, inProperty, outBytes, nullptr); };
    const auto getValue = [=](UInt32* ioBytes, void* outData)
    { return AudioFileGetProperty(inFile, inProperty, ioBytes, outData); };
    return AskForValue(getSize, getValue, outValue);
}

template <typename Value>
Asked AskConverter(AudioConverterRef inConverter, AudioConverterPropertyID inProperty,
                   Value& outValue)
{
    if (!inConverter)
        return {Asked::kNoObject};
    const auto getSize = [=](UInt32* outBytes)
    { return AudioConverterGetPropertyInfo(inConverter, inProperty, outBytes, nullptr); };
    const auto getValue = [=](UInt32* ioBytes, void* outData)
    { return AudioConverterGetProperty(inConverter, inProperty, ioBytes, outData); };
    return AskForValue(getSize, getValue, outValue);
}

/// Notes the general site alone and answers false, for a step that has no status.
inline bool NoteGeneralFailure(ExtendedErrorInfo& ioInfo)
{
    return NoteFailure(ioInfo, kATError_General, ioInfo.mStatus);
}

/// True for an answer. Otherwise false with the general site noted, and the status if there is one;
/// a value that is too large is not noted at all.
inline bool NoteUnlessAnswered(const Asked& inAsked, ExtendedErrorInfo& ioInfo)
{
    if (inAsked.mOutcome == Asked::kFailed)
        return NoteFailure(ioInfo, kATError_General, inAsked.mStatus);
    if (inAsked.mOutcome == Asked::kNoObject)
        return NoteGeneralFailure(ioInfo);
    return inAsked.mOutcome == Asked::kAnswered;
}

}  // namespace appleaudiotoolbox

#endif
