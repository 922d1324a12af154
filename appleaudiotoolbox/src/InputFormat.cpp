#include "appleaudiotoolbox/src/InputFormat.h"

#include "appleaudiotoolbox/src/PlatformQuestions.h"
#include "appleaudiotoolbox/src/TracePlace.h"

#include <kelpcore/utility/ReplaceInString.h>
#include <kelpcore/utility/StringConversion.h>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace appleaudiotoolbox
{

namespace
{

using FormatList = std::vector<AudioFormatListItem>;

constexpr UInt32 kItemBytes = sizeof(AudioFormatListItem);
static_assert(kItemBytes == 48);

// outDelivered is what the platform has told, which need not be whole items.
bool ReadFormatList(AudioFileID inFile, FormatList& outItems, UInt32& outDelivered,
                    ExtendedErrorInfo& ioInfo)
{
    UInt32 promised = 0;
    OSStatus status =
        AudioFileGetPropertyInfo(inFile, kAudioFilePropertyFormatList, &promised, nullptr);
    if (status != noErr)
        return NoteFailure(ioInfo, kATError_AudioFileGetFormatList, status);
    if (promised < kItemBytes)
        return NoteGeneralFailure(ioInfo);

    outItems.resize(promised / kItemBytes);
    outDelivered = static_cast<UInt32>(outItems.size()) * kItemBytes;
    status =
        AudioFileGetProperty(inFile, kAudioFilePropertyFormatList, &outDelivered, outItems.data());
    if (status != noErr)
        return NoteFailure(ioInfo, kATError_AudioFileGetFormatList, status);
    return true;
}

// For a file that has an empty list.
bool ReadDataFormat(AudioFileID inFile, CAStreamBasicDescription& outFormat,
                    ExtendedErrorInfo& ioInfo)
{
    AudioStreamBasicDescription format = {};
    if (!NoteUnlessAnswered(AskFile(inFile, kAudioFilePropertyDataFormat, format), ioInfo))
        return false;
    outFormat = format;
    return true;
}

void TraceLayers(const FormatList& inItems)
{
    static constinit TracePlace sPlace(6);
    if (!sPlace.IsWanted())
        return;
    char count[16];
    std::snprintf(count, sizeof(count), "%u", static_cast<unsigned int>(inItems.size()));
    UTF8String text = kelpcore::utility::UTF16to8(kelpcore::utility::ReplaceInString(
        u"File has a @0 layered data format:", kelpcore::utility::AsciiToUTF16(count)));
    for (const AudioFormatListItem& item : inItems)
        text += "\n" + FormatText(item.mASBD);
    sPlace.Write(text);
}

bool ReadDecoderList(std::vector<AudioFormatID>& outDecoders, ExtendedErrorInfo& ioInfo)
{
    constexpr AudioFormatPropertyID kProperty = kAudioFormatProperty_DecodeFormatIDs;
    UInt32 promised = 0;
    OSStatus status = AudioFormatGetPropertyInfo(kProperty, 0, nullptr, &promised);
    if (status != noErr)
        return NoteFailure(ioInfo, kATError_AudioFormatGetDecodeFormatIDs, status);

    outDecoders.resize(promised / sizeof(AudioFormatID));
    if (outDecoders.empty())
        return NoteGeneralFailure(ioInfo);
    UInt32 bytes = static_cast<UInt32>(outDecoders.size() * sizeof(AudioFormatID));
    status = AudioFormatGetProperty(kProperty, 0, nullptr, &bytes, outDecoders.data());
    if (status != noErr)
        return NoteFailure(ioInfo, kATError_AudioFormatGetDecodeFormatIDs, status);
    return true;
}

// The platform lists the best layer first, so the first one with a decoder is the one to take.
bool ChooseLayer(const FormatList& inItems, CAStreamBasicDescription& outFormat,
                 ExtendedErrorInfo& ioInfo)
{
    std::vector<AudioFormatID> decoders;
    if (!ReadDecoderList(decoders, ioInfo))
        return false;
    const auto hasDecoder = [&](const AudioFormatListItem& item)
    {
        const AudioFormatID formatID = item.mASBD.mFormatID;
        return std::find(decoders.begin(), decoders.end(), formatID) != decoders.end();
    };
    const auto chosen = std::find_if(inItems.begin(), inItems.end(), hasDecoder);
    if (chosen == inItems.end())
        return NoteFailure(ioInfo, kATError_UnsupportedDataFormatError, ioInfo.mStatus);
    outFormat = chosen->mASBD;
    return true;
}

}  // namespace

bool GetFormatFromInputFile(AudioFileID inFile, CAStreamBasicDescription& outFormat,
                            ExtendedErrorInfo& ioInfo)
{
    FormatList items;
    UInt32 delivered = 0;
    if (!ReadFormatList(inFile, items, delivered, ioInfo))
        return false;
    if (delivered == 0)
        return ReadDataFormat(inFile, outFormat, ioInfo);

    const std::size_t count = std::min<std::size_t>(delivered / kItemBytes, items.size());
    items.resize(count);
    if (delivered / kItemBytes == 1)
    {
        outFormat = items[0].mASBD;
        return true;
    }
    TraceLayers(items);
    return ChooseLayer(items, outFormat, ioInfo);
}

UTF8String FormatText(const CAStreamBasicDescription& inFormat)
{
    char text[1024];
    return inFormat.AsString(text, sizeof(text), false);
}

}  // namespace appleaudiotoolbox
