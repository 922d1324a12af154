// Questions about file types: the type of an open file, MIME and XMP types.
#include "appleaudiotoolbox/utility/ATUtils.h"

#include "kelpcore/utility/AutoCFRef.h"
#include "kelpcore/utility/StringConversion.h"

namespace appleaudiotoolbox
{

namespace
{

using ArrayRef = kelpcore::utility::AutoCFRef<CFArrayRef>;
using StringRef = kelpcore::utility::AutoCFRef<CFStringRef>;

// The platform's list of MIME types, null when it fails.
ArrayRef QueryMIMETypes(unsigned int inFileType)
{
    CFArrayRef types = CFArrayCreateMutable(kCFAllocatorDefault, 0, nullptr);
    UInt32 size = 0;
    if (AudioFileGetGlobalInfoSize(kAudioFileGlobalInfo_MIMETypesForFileType, 0, nullptr, &size) !=
            noErr ||
        size > sizeof(types))
    {
        const ArrayRef unused(types);
        return {};
    }
    // An answer takes the place of the empty array, which the platform has been handed.
    size = sizeof(types);
    const OSStatus status = AudioFileGetGlobalInfo(kAudioFileGlobalInfo_MIMETypesForFileType,
                                                   sizeof(inFileType), &inFileType, &size, &types);
    ArrayRef answer(types);
    if (status != noErr)
        answer.Reset();
    return answer;
}

}  // namespace

bool GetFileTypeIDFromFile(AudioFileID inFile, unsigned int* outFileType)
{
    if (outFileType == nullptr)
        return false;

    UInt32 size = 0;
    UInt32 writable = 0;
    UInt32 fileType = 0;
    if (AudioFileGetPropertyInfo(inFile, kAudioFilePropertyFileFormat, &size, &writable) != noErr ||
        size > sizeof(fileType))
        return false;
    size = sizeof(fileType);
    if (AudioFileGetProperty(inFile, kAudioFilePropertyFileFormat, &size, &fileType) != noErr)
        return false;
    *outFileType = fileType;
    return true;
}

UTF8String GetMIMEType(unsigned int inFileType)
{
    UTF8String result;
    const ArrayRef types = QueryMIMETypes(inFileType);
    const CFIndex count = types ? CFArrayGetCount(types.Get()) : 0;
    for (CFIndex index = 0; index < count; ++index)
    {
        // The list does not own its elements; they come with a reference for us.
        const StringRef type(static_cast<CFStringRef>(CFArrayGetValueAtIndex(types.Get(), index)));
        result = kelpcore::utility::MACtoKELP(type.Get(), kCFStringEncodingUTF8);
    }
    return result;
}

unsigned int GetXMPType(unsigned int inFileType)
{
    struct XMPType
    {
        unsigned int mFileType;
        unsigned int mXMPType;
    };
    static constexpr XMPType kXMPTypes[] = {
        {kAudioFileAIFCType, CA_FOUR_CHAR_CODE('A', 'I', 'F', 'F')},
        {kAudioFileAIFFType, CA_FOUR_CHAR_CODE('A', 'I', 'F', 'F')},
        {kAudioFileMP1Type, CA_FOUR_CHAR_CODE('M', 'P', 'E', 'G')},
        {kAudioFileMP2Type, CA_FOUR_CHAR_CODE('M', 'P', '2', ' ')},
        {kAudioFileMP3Type, CA_FOUR_CHAR_CODE('M', 'P', '3', ' ')},
        {kAudioFileWAVEType, CA_FOUR_CHAR_CODE('W', 'A', 'V', ' ')},
        {kAudioFileM4AType, CA_FOUR_CHAR_CODE('M', 'P', '4', ' ')},
        {kAudioFileMPEG4Type, CA_FOUR_CHAR_CODE('M', 'P', '4', ' ')},
    };
    for (const XMPType& row : kXMPTypes)
        if (row.mFileType == inFileType)
            return row.mXMPType;
    return CA_FOUR_CHAR_CODE(' ', ' ', ' ', ' ');
}

}  // namespace appleaudiotoolbox
