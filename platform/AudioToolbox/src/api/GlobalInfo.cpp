#include "api/GlobalInfo.h"

#include "tables/FileTypes.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

namespace audiotoolbox
{
namespace
{

// Either a list of numbers, or a new object that belongs to whoever asked.
struct Answer
{
    std::vector<UInt32> mNumbers;
    CFTypeRef mObject = nullptr;
};

using Texts = std::vector<const char*>;

CFStringRef NewString(const char* inText)
{
    return CFStringCreateWithCString(kCFAllocatorDefault, inText, kCFStringEncodingUTF8);
}

// The array must not own its elements: its users release each of them themselves.
CFArrayRef NewArray(const Texts& inTexts)
{
    const CFMutableArrayRef array =
        CFArrayCreateMutable(kCFAllocatorDefault, static_cast<CFIndex>(inTexts.size()), nullptr);
    if (array != nullptr)
        for (const char* text : inTexts)
            CFArrayAppendValue(array, NewString(text));
    return array;
}

Texts AllTexts(std::span<const char* const> FileTypeRow::*inMember)
{
    Texts all;
    for (const FileTypeRow& row : FileTypes())
        for (const char* text : row.*inMember)
            if (std::none_of(all.begin(), all.end(),
                             [=](std::string_view inOther) { return inOther == text; }))
                all.push_back(text);
    return all;
}

Texts TextsOf(std::span<const char* const> inTexts)
{
    return {inTexts.begin(), inTexts.end()};
}

Answer Types(const FileTypeRow*)
{
    Answer answer;
    for (const FileTypeRow& row : FileTypes())
        answer.mNumbers.push_back(row.mType);
    return answer;
}

Answer FormatsOfType(const FileTypeRow* inRow)
{
    return {{inRow->mFormats.begin(), inRow->mFormats.end()}, nullptr};
}

Answer NameOfType(const FileTypeRow* inRow)
{
    return {{}, NewString(inRow->mName)};
}

Answer ExtensionsOfType(const FileTypeRow* inRow)
{
    return {{}, NewArray(TextsOf(inRow->mExtensions))};
}

Answer MIMETypesOfType(const FileTypeRow* inRow)
{
    return {{}, NewArray(TextsOf(inRow->mMIMETypes))};
}

Answer AllExtensions(const FileTypeRow*)
{
    return {{}, NewArray(AllTexts(&FileTypeRow::mExtensions))};
}

Answer AllMIMETypes(const FileTypeRow*)
{
    return {{}, NewArray(AllTexts(&FileTypeRow::mMIMETypes))};
}

struct QuestionRow
{
    AudioFilePropertyID mProperty;
    bool mIsAboutType;  // the specifier is a file type
    bool mIsObject;     // the answer is a pointer, else a list of numbers
    Answer (*mAnswer)(const FileTypeRow* inRow);
};

constexpr QuestionRow kQuestions[] = {
    {kAudioFileGlobalInfo_ReadableTypes, false, false, &Types},
    {kAudioFileGlobalInfo_AvailableFormatIDs, true, false, &FormatsOfType},
    {kAudioFileGlobalInfo_FileTypeName, true, true, &NameOfType},
    {kAudioFileGlobalInfo_ExtensionsForType, true, true, &ExtensionsOfType},
    {kAudioFileGlobalInfo_MIMETypesForType, true, true, &MIMETypesOfType},
    {kAudioFileGlobalInfo_AllExtensions, false, true, &AllExtensions},
    {kAudioFileGlobalInfo_AllMIMETypes, false, true, &AllMIMETypes},
};

const QuestionRow* FindQuestion(AudioFilePropertyID inProperty)
{
    const auto* row =
        std::find_if(std::begin(kQuestions), std::end(kQuestions),
                     [=](const QuestionRow& inRow) { return inRow.mProperty == inProperty; });
    return row == std::end(kQuestions) ? nullptr : row;
}

OSStatus FindRow(const QuestionRow& inQuestion, UInt32 inSpecifierSize, const void* inSpecifier,
                 const FileTypeRow*& outRow)
{
    outRow = nullptr;
    if (!inQuestion.mIsAboutType)
        return noErr;
    AudioFileTypeID type = 0;
    if (inSpecifierSize != sizeof(type) || inSpecifier == nullptr)
        return kAudioFileBadPropertySizeError;
    std::memcpy(&type, inSpecifier, sizeof(type));
    outRow = FindFileType(type);
    return outRow != nullptr ? noErr : kAudioFileUnsupportedFileTypeError;
}

OSStatus CopyNumbers(const std::vector<UInt32>& inNumbers, UInt32* ioSize, void* outData)
{
    const std::size_t room = *ioSize / sizeof(UInt32);
    const std::size_t bytes = std::min(room, inNumbers.size()) * sizeof(UInt32);
    if (bytes > 0)
        std::memcpy(outData, inNumbers.data(), bytes);
    *ioSize = static_cast<UInt32>(bytes);
    return noErr;
}

}  // namespace

OSStatus GetFileGlobalInfoSize(AudioFilePropertyID inProperty, UInt32 inSpecifierSize,
                               const void* inSpecifier, UInt32* outSize)
{
    const QuestionRow* question = FindQuestion(inProperty);
    if (question == nullptr)
        return kAudioFileUnsupportedPropertyError;
    if (question->mIsObject)
    {
        *outSize = sizeof(CFTypeRef);
        return noErr;
    }
    const FileTypeRow* row = nullptr;
    if (const OSStatus status = FindRow(*question, inSpecifierSize, inSpecifier, row);
        status != noErr)
        return status;
    *outSize = static_cast<UInt32>(question->mAnswer(row).mNumbers.size() * sizeof(UInt32));
    return noErr;
}

OSStatus GetFileGlobalInfo(AudioFilePropertyID inProperty, UInt32 inSpecifierSize,
                           const void* inSpecifier, UInt32* ioSize, void* outData)
{
    const QuestionRow* question = FindQuestion(inProperty);
    if (question == nullptr)
        return kAudioFileUnsupportedPropertyError;
    const FileTypeRow* row = nullptr;
    if (const OSStatus status = FindRow(*question, inSpecifierSize, inSpecifier, row);
        status != noErr)
        return status;
    if (!question->mIsObject)
        return CopyNumbers(question->mAnswer(row).mNumbers, ioSize, outData);
    if (*ioSize < sizeof(CFTypeRef))
        return kAudioFileBadPropertySizeError;
    const CFTypeRef object = question->mAnswer(row).mObject;
    if (object == nullptr)
        return kAudio_MemFullError;
    std::memcpy(outData, &object, sizeof(object));
    *ioSize = sizeof(object);
    return noErr;
}

}  // namespace audiotoolbox
