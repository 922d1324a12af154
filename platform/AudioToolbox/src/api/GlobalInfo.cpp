#include "api/GlobalInfo.h"

#include "tables/WritableTypes.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

namespace audiotoolbox
{
namespace
{

// What a question is about, as far as its specifier tells.
struct Subject
{
    const FileTypeRow* mType = nullptr;
    AudioFormatID mFormat = 0;
};

// Either the bytes of a list, or a new object that belongs to whoever asked.
struct Answer
{
    std::vector<UInt8> mList;
    CFTypeRef mObject = nullptr;
};

template <typename Element>
Answer ListOf(const std::vector<Element>& inElements)
{
    const auto* bytes = reinterpret_cast<const UInt8*>(inElements.data());
    return {{bytes, bytes + inElements.size() * sizeof(Element)}, nullptr};
}

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

Answer ReadableTypes(const Subject&)
{
    std::vector<UInt32> types;
    for (const FileTypeRow& row : FileTypes())
        if (row.mOpen != nullptr)
            types.push_back(row.mType);
    return ListOf(types);
}

Answer TypesToWrite(const Subject&)
{
    return ListOf(WritableTypes());
}

Answer FormatsOfType(const Subject& inSubject)
{
    return ListOf(audiotoolbox::FormatsOfType(*inSubject.mType));
}

Answer VariantsOfFormat(const Subject& inSubject)
{
    return ListOf(WritableVariants(inSubject.mType->mType, inSubject.mFormat));
}

Answer NameOfType(const Subject& inSubject)
{
    return {{}, NewString(inSubject.mType->mName)};
}

Answer ExtensionsOfType(const Subject& inSubject)
{
    return {{}, NewArray(TextsOf(inSubject.mType->mExtensions))};
}

Answer MIMETypesOfType(const Subject& inSubject)
{
    return {{}, NewArray(TextsOf(inSubject.mType->mMIMETypes))};
}

Answer AllExtensions(const Subject&)
{
    return {{}, NewArray(AllTexts(&FileTypeRow::mExtensions))};
}

Answer AllMIMETypes(const Subject&)
{
    return {{}, NewArray(AllTexts(&FileTypeRow::mMIMETypes))};
}

struct QuestionRow
{
    AudioFilePropertyID mProperty;
    UInt32 mSpecifierBytes;  // 4: a file type; 8: a file type and a format
    UInt32 mElementBytes;    // of a list; 0: the answer is a pointer
    Answer (*mAnswer)(const Subject& inSubject);
};

constexpr UInt32 kType = sizeof(AudioFileTypeID);
constexpr UInt32 kTypeAndFormat = sizeof(AudioFileTypeAndFormatID);

// clang-format off
constexpr QuestionRow kQuestions[] = {
    {kAudioFileGlobalInfo_ReadableTypes,      0,     sizeof(UInt32), &ReadableTypes},
    {kAudioFileGlobalInfo_WritableTypes,      0,     sizeof(UInt32), &TypesToWrite},
    {kAudioFileGlobalInfo_AvailableFormatIDs, kType, sizeof(UInt32), &FormatsOfType},
    {kAudioFileGlobalInfo_AvailableStreamDescriptionsForFormat, kTypeAndFormat,
     sizeof(AudioStreamBasicDescription), &VariantsOfFormat},
    {kAudioFileGlobalInfo_FileTypeName,       kType, 0,              &NameOfType},
    {kAudioFileGlobalInfo_ExtensionsForType,  kType, 0,              &ExtensionsOfType},
    {kAudioFileGlobalInfo_MIMETypesForType,   kType, 0,              &MIMETypesOfType},
    {kAudioFileGlobalInfo_AllExtensions,      0,     0,              &AllExtensions},
    {kAudioFileGlobalInfo_AllMIMETypes,       0,     0,              &AllMIMETypes},
};
// clang-format on

const QuestionRow* FindQuestion(AudioFilePropertyID inProperty)
{
    const auto* row =
        std::find_if(std::begin(kQuestions), std::end(kQuestions),
                     [=](const QuestionRow& inRow) { return inRow.mProperty == inProperty; });
    return row == std::end(kQuestions) ? nullptr : row;
}

OSStatus FindSubject(const QuestionRow& inQuestion, UInt32 inSpecifierSize, const void* inSpecifier,
                     Subject& outSubject)
{
    outSubject = Subject();
    if (inQuestion.mSpecifierBytes == 0)
        return noErr;
    if (inSpecifierSize != inQuestion.mSpecifierBytes || inSpecifier == nullptr)
        return kAudioFileBadPropertySizeError;
    AudioFileTypeAndFormatID specifier = {};
    std::memcpy(&specifier, inSpecifier, inSpecifierSize);
    outSubject = {FindFileType(specifier.mFileType), specifier.mFormatID};
    return outSubject.mType != nullptr ? noErr : kAudioFileUnsupportedFileTypeError;
}

OSStatus CopyList(const std::vector<UInt8>& inList, UInt32 inElementBytes, UInt32* ioSize,
                  void* outData)
{
    const std::size_t room = *ioSize - *ioSize % inElementBytes;
    const std::size_t bytes = std::min(room, inList.size());
    if (bytes > 0)
        std::memcpy(outData, inList.data(), bytes);
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
    if (question->mElementBytes == 0)
    {
        *outSize = sizeof(CFTypeRef);
        return noErr;
    }
    Subject subject;
    if (const OSStatus status = FindSubject(*question, inSpecifierSize, inSpecifier, subject);
        status != noErr)
        return status;
    *outSize = static_cast<UInt32>(question->mAnswer(subject).mList.size());
    return noErr;
}

OSStatus GetFileGlobalInfo(AudioFilePropertyID inProperty, UInt32 inSpecifierSize,
                           const void* inSpecifier, UInt32* ioSize, void* outData)
{
    const QuestionRow* question = FindQuestion(inProperty);
    if (question == nullptr)
        return kAudioFileUnsupportedPropertyError;
    Subject subject;
    if (const OSStatus status = FindSubject(*question, inSpecifierSize, inSpecifier, subject);
        status != noErr)
        return status;
    if (question->mElementBytes != 0)
        return CopyList(question->mAnswer(subject).mList, question->mElementBytes, ioSize, outData);
    if (*ioSize < sizeof(CFTypeRef))
        return kAudioFileBadPropertySizeError;
    const CFTypeRef object = question->mAnswer(subject).mObject;
    if (object == nullptr)
        return kAudio_MemFullError;
    std::memcpy(outData, &object, sizeof(object));
    *ioSize = sizeof(object);
    return noErr;
}

}  // namespace audiotoolbox
