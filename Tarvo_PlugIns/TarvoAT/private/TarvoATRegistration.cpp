// What the plug-in tells of itself: identity, and filters made of the catalogue.
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATInterface.h"

#include "Tarvo_PlugIns/Common/Module/private/Module.h"
#include "Tarvo_PlugIns/Common/SDKGlue/TarvoExtensionListBuilder.h"
#include "appleaudiotoolbox/utility/FileTypeCatalogue.h"

#include <kelpcore/config/Localizer.h>
#include <kelpcore/utility/StringConversion.h>

#include <AudioToolbox/AudioToolbox.h>

#include <cstdio>

namespace tarvo
{

namespace
{

using appleaudiotoolbox::ATExtensionSet;

constexpr char kPlugInGUID[] = "345FFA79-2BDA-42DD-844B-CA7D18FF7A26";
constexpr char kPlugInName[] =
    "$$$/TarvoPlugIns/TarvoAT/PlugInName=Apple Audio Toolbox Tarvo plug-in";
constexpr char kFilterName[] = "$$$/TarvoPlugIns/TarvoAT/FilterName=Apple Audio Toolbox";
constexpr char kAACFilterName[] = "$$$/TarvoPlugIns/TarvoAT/AACFilterName=AAC Audio";

// Read along with the catalogue's types, though it belongs to none of them.
constexpr char kExtraImportExtension[] = "sdir";

UTF16String Translate(const char* inLiteral)
{
    return kelpcore::config::Localizer::Get().Translate(inLiteral);
}

// The texts stay in the set.
void AppendAll(const ATExtensionSet& inExtensions, TarvoExtensionListBuilder& ioList)
{
    for (const UTF8String& extension : inExtensions)
        ioList.Append(extension.c_str());
}

void AddGeneralFilters(const UTF16String& inName, TarvoGetTarvoInfoInterface& inInfo)
{
    ATExtensionSet importExtensions;
    ATExtensionSet exportExtensions;
    appleaudiotoolbox::QueryAllImportExtensions(importExtensions);
    appleaudiotoolbox::QueryAllExportExtensions(exportExtensions);

    TarvoExtensionListBuilder importList;
    AppendAll(importExtensions, importList);
    importList.Append(kExtraImportExtension);
    TarvoExtensionListBuilder exportList;
    AppendAll(exportExtensions, exportList);

    inInfo.AddImportFilter(inName.c_str(), nullptr, importList.List(), nullptr);
    inInfo.AddExportFilter(inName.c_str(), nullptr, exportList.List(), nullptr);
}

// The file type's code in decimal, in which the host gives it back with its settings.
UTF16String FilterId(UInt32 inFileTypeID)
{
    char text[11];
    std::snprintf(text, sizeof(text), "%u", inFileTypeID);
    return kelpcore::utility::AsciiToUTF16(text);
}

void AddFileTypeFilter(UInt32 inFileTypeID, const char* inName, TarvoGetTarvoInfoInterface& inInfo)
{
    ATExtensionSet extensions;
    appleaudiotoolbox::QueryFileTypeExtensions(inFileTypeID, extensions);
    const UTF16String name = Translate(inName);
    const UTF16String filterId = FilterId(inFileTypeID);
    TarvoExtensionListBuilder list;
    AppendAll(extensions, list);
    inInfo.AddExportFilter(name.c_str(), filterId.c_str(), list.List(), nullptr);
}

}  // namespace

std::int32_t TarvoATInterface::GetTarvoInfo(TarvoGetTarvoInfoInterface& inInfo)
{
    module::Initialize();
    inInfo.SetPluginIdentity(kPlugInGUID, Translate(kPlugInName).c_str());

    // In the language of the first call, whatever comes later.
    static const UTF16String filterName = Translate(kFilterName);
    AddGeneralFilters(filterName, inInfo);

    appleaudiotoolbox::ATFileTypeMap fileTypes;
    appleaudiotoolbox::QueryOutputFileTypes(fileTypes);
    if (fileTypes.count(kAudioFileAAC_ADTSType) > 0)
        AddFileTypeFilter(kAudioFileAAC_ADTSType, kAACFilterName, inInfo);
    return kTarvoResultSuccess;
}

}  // namespace tarvo
