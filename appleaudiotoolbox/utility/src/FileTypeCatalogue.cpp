// FileTypeCatalogue: the build of both catalogues, and copies of them.
#include "appleaudiotoolbox/utility/FileTypeCatalogue.h"

#include "appleaudiotoolbox/src/TracePlace.h"
#include "appleaudiotoolbox/utility/FormatEnumeration.h"
#include "appleaudiotoolbox/utility/FourCharText.h"
#include "appleaudiotoolbox/utility/src/CatalogueState.h"
#include "appleaudiotoolbox/utility/src/PropertyLists.h"
#include "kelpcore/utility/AutoCFRef.h"
#include "kelpcore/utility/StringConversion.h"

namespace appleaudiotoolbox
{

ATFileTypeMap sInputFileTypes;
ATFileTypeMap sOutputFileTypes;

namespace
{

using ArrayRef = kelpcore::utility::AutoCFRef<CFArrayRef>;
using StringRef = kelpcore::utility::AutoCFRef<CFStringRef>;

constexpr unsigned long kNSUTF8StringEncoding = 4;

struct OwnExtension
{
    UInt32 mFileTypeID;
    const char* mExtension;
};

// They take the place of the platform's, which mixes the two types up.
constexpr OwnExtension kOwnExtensions[] = {
    {kAudioFileAIFCType, "aifc"},
    {kAudioFileAIFFType, "aif"},
    {kAudioFileAIFFType, "aiff"},
};

// In what the two catalogues differ.
struct Side
{
    AudioFilePropertyID mFileTypes;
    void (*mQueryFormats)(UInt32 inFileTypeID, ATFormatTypeMap& outFormats);
    bool mKeepsTypesWithoutFormats;
    void (*mTrace)(UInt32 inFileTypeID, const UTF16String& inName);
};

void TraceInput(UInt32, const UTF16String& inName)
{
    static constinit TracePlace sPlace(6);
    if (sPlace.IsWanted())
        sPlace.Write(kelpcore::utility::UTF16to8(u"Input:\t" + inName + u"\n"));
}

void TraceOutput(UInt32 inFileTypeID, const UTF16String& inName)
{
    static constinit TracePlace sPlace(6);
    if (sPlace.IsWanted())
        sPlace.Write(kelpcore::utility::UTF16to8(u"Output:\t'" + FourCharText(inFileTypeID) +
                                                 u"' " + inName + u"\n"));
}

constexpr Side kInputSide = {kAudioFileGlobalInfo_ReadableTypes, &QueryReadableFormats, true,
                             &TraceInput};
constexpr Side kOutputSide = {kAudioFileGlobalInfo_WritableTypes, &QueryWritableFormats, false,
                              &TraceOutput};

// Without a type the platform is only asked whether it knows names at all.
bool HasFileTypeNames()
{
    UInt32 bytes = 0;
    return GetGlobalSize(kAudioFileGlobalInfo_FileTypeName, Specifier(), &bytes) == noErr &&
           bytes <= sizeof(CFStringRef);
}

// Null where the platform has none.
StringRef QueryFileTypeName(UInt32 inFileTypeID)
{
    CFStringRef name = nullptr;
    UInt32 bytes = sizeof(name);
    (void)GetGlobalValue(kAudioFileGlobalInfo_FileTypeName, Specifier(inFileTypeID), &bytes, &name);
    return StringRef(name);
}

// Stays empty if the platform knows no names.
ATFileFormat LearnFileType(const Side& inSide, UInt32 inFileTypeID)
{
    ATFileFormat fileType;
    if (!HasFileTypeNames())
        return fileType;
    const StringRef name = QueryFileTypeName(inFileTypeID);
    fileType.mName = kelpcore::utility::MACtoKELP(name.Get());
    inSide.mTrace(inFileTypeID, fileType.mName);
    QueryFileTypeExtensions(inFileTypeID, fileType.mExtensionSet);
    inSide.mQueryFormats(inFileTypeID, fileType.mFormatTypeMap);
    return fileType;
}

void Initialize(const Side& inSide, ATFileTypeMap& ioFileTypes)
{
    if (!ioFileTypes.empty())
        return;
    std::vector<UInt32> fileTypeIDs;
    if (ReadGlobalList(inSide.mFileTypes, Specifier(), fileTypeIDs) != noErr)
        return;
    for (const UInt32 fileTypeID : fileTypeIDs)
    {
        ATFileFormat fileType = LearnFileType(inSide, fileTypeID);
        if (inSide.mKeepsTypesWithoutFormats || !fileType.mFormatTypeMap.empty())
            ioFileTypes[fileTypeID] = std::move(fileType);
    }
}

void InitializeInputFileTypes()
{
    Initialize(kInputSide, sInputFileTypes);
}

void UniteExtensions(const ATFileTypeMap& inFileTypes, ATExtensionSet& ioExtensions)
{
    for (const auto& [fileTypeID, fileType] : inFileTypes)
        ioExtensions.insert(fileType.mExtensionSet.begin(), fileType.mExtensionSet.end());
}

ArrayRef QueryPlatformExtensions(UInt32 inFileTypeID)
{
    CFArrayRef extensions = nullptr;
    UInt32 bytes = sizeof(extensions);
    if (GetGlobalValue(kAudioFileGlobalInfo_ExtensionsForType, Specifier(inFileTypeID), &bytes,
                       &extensions) != noErr)
        return {};
    return ArrayRef(extensions);
}

}  // namespace

void InitializeOutputFileTypes()
{
    Initialize(kOutputSide, sOutputFileTypes);
}

void QueryInputFileTypes(ATFileTypeMap& outFileTypes)
{
    InitializeInputFileTypes();
    outFileTypes = sInputFileTypes;
}

void QueryOutputFileTypes(ATFileTypeMap& outFileTypes)
{
    InitializeOutputFileTypes();
    outFileTypes = sOutputFileTypes;
}

void QueryAllImportExtensions(ATExtensionSet& outExtensions)
{
    outExtensions.clear();
    InitializeInputFileTypes();
    UniteExtensions(sInputFileTypes, outExtensions);
}

void QueryAllExportExtensions(ATExtensionSet& outExtensions)
{
    outExtensions.clear();
    InitializeOutputFileTypes();
    UniteExtensions(sOutputFileTypes, outExtensions);
}

void QueryFileTypeExtensions(UInt32 inFileTypeID, ATExtensionSet& outExtensions)
{
    outExtensions.clear();
    for (const OwnExtension& own : kOwnExtensions)
        if (own.mFileTypeID == inFileTypeID)
            outExtensions.insert(own.mExtension);
    if (!outExtensions.empty())
        return;

    const ArrayRef extensions = QueryPlatformExtensions(inFileTypeID);
    const CFIndex count = extensions ? CFArrayGetCount(extensions.Get()) : 0;
    const CFStringEncoding encoding =
        CFStringConvertNSStringEncodingToEncoding(kNSUTF8StringEncoding);
    for (CFIndex index = 0; index < count; ++index)
    {
        // The array does not own its elements; they come with a reference for us.
        const StringRef extension(
            static_cast<CFStringRef>(CFArrayGetValueAtIndex(extensions.Get(), index)));
        if (extension)
            outExtensions.insert(kelpcore::utility::MACtoKELP(extension.Get(), encoding));
    }
}

}  // namespace appleaudiotoolbox
