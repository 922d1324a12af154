// tarvo formats: what can be imported and exported.

#include "host/HostText.h"
#include "host/Registration.h"
#include "host/Report.h"
#include "host/StoredSettings.h"
#include "host/commands/Commands.h"

#include "appleaudiotoolbox/utility/ATFormatUtils.h"
#include "appleaudiotoolbox/utility/ATUtils.h"
#include "appleaudiotoolbox/utility/EncodableQueries.h"
#include "appleaudiotoolbox/utility/FileTypeCatalogue.h"

#include <cstdio>
#include <memory>
#include <optional>

namespace host
{

namespace
{

using appleaudiotoolbox::ATBitrateList;
using appleaudiotoolbox::ATFileFormat;
using appleaudiotoolbox::ATFileTypeMap;
using appleaudiotoolbox::ATFormatTypeList;
using nlohmann::ordered_json;

constexpr const char* kModeNames[] = {"constant", "average", "constrained", "variable"};

struct FormatsOptions
{
    std::string mType;  // extension or code; empty: all
    std::optional<double> mRate;
    std::optional<unsigned int> mChannels;
};

// The audio that bit rates are asked for; null: the catalogue's own.
class Source
{
public:
    explicit Source(const FormatsOptions& inOptions)
    {
        if (inOptions.mRate || inOptions.mChannels)
            mFormat = appleaudiotoolbox::ConstructClientFormatFromArgs(
                inOptions.mRate.value_or(44100.0), 16, inOptions.mChannels.value_or(2));
    }

    const CAStreamBasicDescription* Get() const { return mFormat ? &*mFormat : nullptr; }

private:
    std::optional<CAStreamBasicDescription> mFormat;
};

std::string Text(const UTF16String& inText)
{
    return FromPlugIn(inText.c_str());
}

std::string FormatName(UInt32 inFormatID)
{
    return Text(appleaudiotoolbox::GetDescriptionString(inFormatID));
}

bool IsWanted(UInt32 inTypeID, const ATFileFormat& inType, const std::string& inWanted)
{
    const std::string wanted = inWanted.starts_with('.') ? inWanted.substr(1) : inWanted;
    return wanted.empty() || wanted == CodeText(inTypeID) ||
           inType.mExtensionSet.count(UTF8String(wanted.data(), wanted.size())) > 0;
}

ATFileTypeMap Wanted(ATFileTypeMap inTypes, const std::string& inWanted)
{
    std::erase_if(inTypes, [&](const auto& inEntry)
                  { return !IsWanted(inEntry.first, inEntry.second, inWanted); });
    return inTypes;
}

// JSON ------------------------------------------------------------------------------------------

ordered_json RatesObject(const ATBitrateList& inRates)
{
    ordered_json rates = ordered_json::array();
    for (const AudioValueRange& range : inRates)
    {
        if (range.mMinimum == range.mMaximum)
            rates.push_back(range.mMinimum);
        else
            rates.push_back({range.mMinimum, range.mMaximum});
    }
    return rates;
}

ordered_json ModesObject(UInt32 inTypeID, UInt32 inFormatID, const Source& inSource)
{
    ordered_json modes = ordered_json::array();
    for (const UInt32 mode : appleaudiotoolbox::GetEncodableBitrateModes(inTypeID, inFormatID))
    {
        ordered_json object = {{"mode", mode}};
        if (!inSource.Get())
            object["default"] =
                appleaudiotoolbox::GetDefaultEncodableBitrate(inTypeID, inFormatID, mode);
        object["bitrates"] = RatesObject(
            appleaudiotoolbox::GetEncodableBitrates(inTypeID, inFormatID, mode, inSource.Get()));
        modes.push_back(std::move(object));
    }
    return modes;
}

ordered_json VariantsObject(const ATFormatTypeList& inVariants)
{
    ordered_json variants = ordered_json::array();
    for (const auto& variant : inVariants)
        variants.push_back({{"name", Text(variant.mName)},
                            {"bitsPerChannel", variant.mFormatDescription.mBitsPerChannel},
                            {"formatFlags", variant.mFormatDescription.mFormatFlags}});
    return variants;
}

void PrintForPrograms(const ATFileTypeMap& inTypes, bool inExport, const Source& inSource)
{
    for (const auto& [typeID, type] : inTypes)
    {
        ordered_json object = NewObject();
        object["direction"] = inExport ? "export" : "import";
        object["fileType"] = CodeText(typeID);
        object["name"] = Text(type.mName);
        object["extensions"] = ordered_json::array();
        for (const UTF8String& extension : type.mExtensionSet)
            object["extensions"].push_back(extension.c_str());
        object["formats"] = ordered_json::array();
        for (const auto& [formatID, variants] : type.mFormatTypeMap)
        {
            ordered_json format = {{"format", CodeText(formatID)}, {"name", FormatName(formatID)}};
            if (inExport)
            {
                format["variants"] = VariantsObject(variants);
                format["modes"] = ModesObject(typeID, formatID, inSource);
            }
            object["formats"].push_back(std::move(format));
        }
        PrintObject(object);
    }
}

// Text ------------------------------------------------------------------------------------------

std::string Joined(const appleaudiotoolbox::ATExtensionSet& inExtensions)
{
    std::string text;
    for (const UTF8String& extension : inExtensions)
        text += (text.empty() ? "" : " ") + std::string(extension.data(), extension.size());
    return text;
}

std::string RatesText(const ATBitrateList& inRates)
{
    std::string text;
    char part[64];
    for (const AudioValueRange& range : inRates)
    {
        if (range.mMinimum == range.mMaximum)
            std::snprintf(part, sizeof(part), " %g", range.mMinimum / 1000.0);
        else
            std::snprintf(part, sizeof(part), " %g-%g", range.mMinimum / 1000.0,
                          range.mMaximum / 1000.0);
        text += part;
    }
    return text;
}

void PrintFormat(UInt32 inTypeID, UInt32 inFormatID, const ATFormatTypeList& inVariants,
                 const Source& inSource)
{
    std::printf("      %s  %s\n", CodeForPeople(inFormatID).c_str(),
                FormatName(inFormatID).c_str());
    if (inVariants.size() > 1)
        for (const auto& variant : inVariants)
            std::printf("            %s\n", Text(variant.mName).c_str());
    for (const UInt32 mode : appleaudiotoolbox::GetEncodableBitrateModes(inTypeID, inFormatID))
    {
        const std::string rates = RatesText(
            appleaudiotoolbox::GetEncodableBitrates(inTypeID, inFormatID, mode, inSource.Get()));
        std::printf("            %s%s%s%s\n", mode < 4 ? kModeNames[mode] : "mode",
                    rates.empty() ? "" : ":", rates.c_str(), rates.empty() ? "" : " kbit/s");
    }
}

void PrintForPeople(const ATFileTypeMap& inTypes, bool inExport, const Source& inSource)
{
    std::printf("%s\n", inExport ? "Export" : "Import");
    for (const auto& [typeID, type] : inTypes)
    {
        std::printf("  %s  %-28s %s\n", CodeForPeople(typeID).c_str(), Text(type.mName).c_str(),
                    Joined(type.mExtensionSet).c_str());
        if (inExport)
        {
            for (const auto& [formatID, variants] : type.mFormatTypeMap)
                PrintFormat(typeID, formatID, variants, inSource);
            continue;
        }
        std::printf("      ");
        for (const auto& [formatID, variants] : type.mFormatTypeMap)
            std::printf("%s ", CodeForPeople(formatID).c_str());
        std::printf("\n");
    }
}

int Formats(const PlugIn& inPlugIn, const CommonOptions& inCommon, const FormatsOptions& inOptions)
{
    Register(inPlugIn);
    ATFileTypeMap readable, writable;
    appleaudiotoolbox::QueryInputFileTypes(readable);
    appleaudiotoolbox::QueryOutputFileTypes(writable);
    readable = Wanted(std::move(readable), inOptions.mType);
    writable = Wanted(std::move(writable), inOptions.mType);
    if (readable.empty() && writable.empty())
        throw Failure(kExitUsage, 0, inOptions.mType + ": no file type has this extension or code");

    const Source source(inOptions);
    const auto print = inCommon.mJSON ? &PrintForPrograms : &PrintForPeople;
    print(readable, false, source);
    print(writable, true, source);
    return kExitDone;
}

}  // namespace

void AddFormatsCommand(CLI::App& ioProgram, const CommonOptions& inCommon, Work& outWork)
{
    CLI::App* command =
        ioProgram.add_subcommand("formats", "List what can be imported and exported");
    auto options = std::make_shared<FormatsOptions>();
    command->add_option("TYPE", options->mType, "One file type, by extension or code");
    command->add_option("--rate", options->mRate, "Bit rates for audio of this rate in Hz")
        ->check(CLI::Range(1.0, 1e6));
    command->add_option("--channels", options->mChannels, "Bit rates for this many channels")
        ->check(CLI::Range(1u, 64u));
    command->callback(
        [&inCommon, &outWork, options]
        {
        outWork = [&inCommon, options](const PlugIn& inPlugIn)
        { return Formats(inPlugIn, inCommon, *options); };
    });
}

}  // namespace host
