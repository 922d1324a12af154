#include "host/export/ExportNames.h"

#include "host/Failure.h"
#include "host/HostText.h"
#include "host/StoredSettings.h"

#include "appleaudiotoolbox/utility/ATFormatUtils.h"
#include "appleaudiotoolbox/utility/FileTypeCatalogue.h"

#include <AudioToolbox/AudioToolbox.h>

#include <algorithm>
#include <filesystem>

namespace host
{

namespace
{

using appleaudiotoolbox::ATFileFormat;
using appleaudiotoolbox::ATFileTypeMap;
using appleaudiotoolbox::ATFormatTypeMap;

// The type that is meant by an extension which several types have, first come first.
constexpr UInt32 kUsualTypes[] = {kAudioFileWAVEType, kAudioFileAIFFType, kAudioFileM4AType,
                                  kAudioFileMPEG4Type, kAudioFileAAC_ADTSType};

struct UsualExtension
{
    UInt32 mType;
    std::string_view mExtension;
};

// Where a type has several, the one that people use.
constexpr UsualExtension kUsualExtensions[] = {
    {kAudioFileWAVEType, "wav"},     {kAudioFileRF64Type, "wav"}, {kAudioFileBW64Type, "wav"},
    {kAudioFileAIFFType, "aiff"},    {kAudioFileNextType, "au"},  {kAudioFileMP3Type, "mp3"},
    {kAudioFileMP2Type, "mp2"},      {kAudioFileM4AType, "m4a"},  {kAudioFileMPEG4Type, "mp4"},
    {kAudioFileAAC_ADTSType, "aac"}, {kAudioFile3GPType, "3gp"},  {kAudioFile3GP2Type, "3g2"},
};

struct FormatAlias
{
    std::string_view mName;
    UInt32 mFormat;
};

// Names beside those of the platform, as MakePlain leaves them.
constexpr FormatAlias kFormatAliases[] = {
    {"pcm", kAudioFormatLinearPCM},          {"mulaw", kAudioFormatULaw},
    {"eac3", kAudioFormatEnhancedAC3},       {"adpcm", kAudioFormatMicrosoftADPCM},
    {"msadpcm", kAudioFormatMicrosoftADPCM}, {"imaadpcm", kAudioFormatDVIIntelIMA},
    {"gsm", kAudioFormatMicrosoftGSM},
};

const ATFileTypeMap& WritableTypes()
{
    static const ATFileTypeMap sTypes = []
    {
        ATFileTypeMap types;
        appleaudiotoolbox::QueryOutputFileTypes(types);
        return types;
    }();
    return sTypes;
}

const ATFormatTypeMap& FormatsOf(UInt32 inFileType)
{
    static const ATFormatTypeMap sNone;
    const auto found = WritableTypes().find(inFileType);
    return found == WritableTypes().end() ? sNone : found->second.mFormatTypeMap;
}

bool IsEncodable(UInt32 inFileType, UInt32 inFormat)
{
    const auto found = FormatsOf(inFileType).find(inFormat);
    return found != FormatsOf(inFileType).end() && !found->second.empty();
}

std::string ToLower(std::string_view inText)
{
    std::string text(inText);
    for (char& character : text)
        if (character >= 'A' && character <= 'Z')
            character = static_cast<char>(character - 'A' + 'a');
    return text;
}

// Small letters and digits; what is no ASCII stays.
std::string MakePlain(std::string_view inText)
{
    std::string text = ToLower(inText);
    std::erase_if(text,
                  [](char inCharacter)
                  {
        const bool isLetter = inCharacter >= 'a' && inCharacter <= 'z';
        const bool isDigit = inCharacter >= '0' && inCharacter <= '9';
        return !isLetter && !isDigit && (inCharacter & 0x80) == 0;
    });
    return text;
}

std::string Text(const UTF16String& inText)
{
    return FromPlugIn(inText.c_str());
}

bool HasExtension(const ATFileFormat& inType, std::string_view inExtension)
{
    return inType.mExtensionSet.count(UTF8String(inExtension.data(), inExtension.size())) > 0;
}

// 0: no type has it.
UInt32 TypeByExtension(const ATFileTypeMap& inTypes, std::string_view inExtension)
{
    for (const UInt32 usual : kUsualTypes)
        if (const auto found = inTypes.find(usual);
            found != inTypes.end() && HasExtension(found->second, inExtension))
            return usual;
    for (const auto& [typeID, type] : inTypes)
        if (HasExtension(type, inExtension))
            return typeID;
    return 0;
}

UInt32 TypeByName(const ATFileTypeMap& inTypes, std::string_view inWritten)
{
    for (const auto& entry : inTypes)
        if (inWritten == CodeText(entry.first))
            return entry.first;
    const std::string_view dotless = inWritten.starts_with('.') ? inWritten.substr(1) : inWritten;
    if (const UInt32 type = TypeByExtension(inTypes, ToLower(dotless)))
        return type;
    const std::string plain = MakePlain(inWritten);
    for (const auto& [typeID, type] : inTypes)
        if (!plain.empty() &&
            (plain == MakePlain(Text(type.mName)) || plain == MakePlain(CodeText(typeID))))
            return typeID;
    return 0;
}

// 0: a format that nothing here knows.
UInt32 FormatAmong(const ATFormatTypeMap& inFormats, std::string_view inWritten)
{
    const std::string plain = MakePlain(inWritten);
    UInt32 aliased = 0;
    for (const FormatAlias& alias : kFormatAliases)
        if (plain == alias.mName)
            aliased = alias.mFormat;
    for (const auto& [formatID, variants] : inFormats)
    {
        if (variants.empty() || plain.empty())
            continue;
        if (formatID == aliased || plain == MakePlain(CodeText(formatID)) ||
            plain == MakePlain(CodeForPeople(formatID)) || plain == MakePlain(FormatName(formatID)))
            return formatID;
    }
    return 0;
}

template <typename Find>
UInt32 WritableType(Find inFind, const std::string& inUnknown, const std::string& inOnlyRead)
{
    if (const UInt32 type = inFind(WritableTypes()))
        return type;
    ATFileTypeMap readable;
    appleaudiotoolbox::QueryInputFileTypes(readable);
    if (inFind(readable))
        throw Failure(kExitSettings, 0, inOnlyRead);
    throw Failure(kExitUsage, 0, inUnknown);
}

std::string Extensions()
{
    appleaudiotoolbox::ATExtensionSet all;
    appleaudiotoolbox::QueryAllExportExtensions(all);
    std::string text;
    for (const UTF8String& extension : all)
        text += (text.empty() ? "" : " ") + std::string(extension.data(), extension.size());
    return text;
}

}  // namespace

std::uint32_t FileTypeByName(std::string_view inWritten)
{
    const std::string written(inWritten);
    return WritableType([&](const ATFileTypeMap& inTypes) { return TypeByName(inTypes, written); },
                        "no file type has this extension, code or name: " + written +
                            " (extensions: " + Extensions() + ")",
                        "files of this type can be read, but not written: " + written);
}

std::uint32_t FileTypeOfPath(const std::string& inPath)
{
    const std::string extension = ExtensionOf(inPath);
    return WritableType(
        [&](const ATFileTypeMap& inTypes) { return TypeByExtension(inTypes, extension); },
        inPath + ": its extension tells no file type; give --type or one of: " + Extensions(),
        inPath + ": files of this type can be read, but not written");
}

std::uint32_t FormatByName(std::string_view inWritten, std::uint32_t inFileType)
{
    if (const UInt32 format = FormatAmong(FormatsOf(inFileType), inWritten))
        return format;
    const std::string written(inWritten);
    for (const auto& entry : WritableTypes())
        if (const UInt32 format = FormatAmong(entry.second.mFormatTypeMap, inWritten))
            throw Failure(kExitSettings, 0,
                          FileTypeName(inFileType) + " files cannot hold " + FormatName(format) +
                              "; possible: " + FormatNames(inFileType));
    throw Failure(kExitUsage, 0,
                  "no format has this code or name: " + written + "; " + FileTypeName(inFileType) +
                      " files can hold " + FormatNames(inFileType));
}

std::uint32_t DefaultFormat(std::uint32_t inFileType)
{
    for (const UInt32 format : {kAudioFormatLinearPCM, kAudioFormatMPEG4AAC})
        if (IsEncodable(inFileType, format))
            return format;
    for (const auto& [formatID, variants] : FormatsOf(inFileType))
        if (!variants.empty())
            return formatID;
    return 0;
}

std::string ExtensionFor(std::uint32_t inFileType, std::string_view inWritten)
{
    const auto found = WritableTypes().find(inFileType);
    if (found == WritableTypes().end() || found->second.mExtensionSet.empty())
        return {};
    const std::string_view dotless = inWritten.starts_with('.') ? inWritten.substr(1) : inWritten;
    const std::string written = ToLower(dotless);
    if (!written.empty() && HasExtension(found->second, written))
        return written;
    for (const UsualExtension& usual : kUsualExtensions)
        if (usual.mType == inFileType && HasExtension(found->second, usual.mExtension))
            return std::string(usual.mExtension);
    const UTF8String& first = *found->second.mExtensionSet.begin();
    return {first.data(), first.size()};
}

std::string ExtensionOf(const std::string& inPath)
{
    const std::string extension = std::filesystem::path(inPath).extension().string();
    return extension.empty() ? extension : ToLower(extension.substr(1));
}

bool HasExtensionOf(const std::string& inPath, std::uint32_t inFileType)
{
    const auto found = WritableTypes().find(inFileType);
    return found == WritableTypes().end() || found->second.mExtensionSet.empty() ||
           HasExtension(found->second, ExtensionOf(inPath));
}

std::string FileTypeName(std::uint32_t inFileType)
{
    const std::string name = Text(appleaudiotoolbox::GetFileTypeDescriptionString(inFileType));
    return name.empty() ? CodeForPeople(inFileType) : name;
}

std::string FormatName(std::uint32_t inFormat)
{
    return Text(appleaudiotoolbox::GetDescriptionString(inFormat));
}

std::string FormatNames(std::uint32_t inFileType)
{
    std::string text;
    for (const auto& [formatID, variants] : FormatsOf(inFileType))
        if (!variants.empty())
            text += (text.empty() ? "" : ", ") + FormatName(formatID);
    return text;
}

}  // namespace host
