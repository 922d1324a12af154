// tarvo formats, on the real catalogue.

#include "tests/roads/tarvo/Program.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <sstream>
#include <vector>

namespace
{

using nlohmann::json;
using testing_support::ProgramRun;
using testing_support::RunTarvo;

std::vector<json> Lines(const std::string& inText)
{
    std::istringstream stream(inText);
    std::vector<json> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(json::parse(line));
    return lines;
}

std::vector<json> ListedObjects(std::vector<std::string> inArguments)
{
    inArguments.insert(inArguments.begin(), {"formats", "--json"});
    const ProgramRun run = RunTarvo(inArguments);
    EXPECT_EQ(run.mExitCode, 0) << run.mErrors;
    return Lines(run.mOutput);
}

const json& FormatOf(const json& inType, const std::string& inCode)
{
    static const json kNone;
    for (const json& format : inType.at("formats"))
        if (format.at("format") == inCode)
            return format;
    ADD_FAILURE() << inCode << " is not listed";
    return kNone;
}

TEST(FormatsTest, ListsEveryTypeThatIsReadInCodeOrder)
{
    std::vector<std::string> types;
    for (const json& object : ListedObjects({}))
        if (object.at("direction") == "import")
            types.push_back(object.at("fileType"));
    EXPECT_TRUE(std::is_sorted(types.begin(), types.end()));
    for (const char* type :
         {"AIFC", "AIFF", "BW64", "MPG1", "MPG2", "MPG3", "NeXT", "RF64", "W64f", "WAVE", "ac-3",
          "adts", "amrf", "caff", "ec-3", "flac", "m4af", "mp4f"})
        EXPECT_NE(std::find(types.begin(), types.end(), type), types.end()) << type;
}

TEST(FormatsTest, FindsATypeByExtensionAndByCode)
{
    for (const char* name : {"m4a", ".m4a", "m4af"})
    {
        const auto objects = ListedObjects({name});
        ASSERT_EQ(objects.size(), 2u) << name;
        EXPECT_EQ(objects[0].at("fileType"), "m4af") << name;
        EXPECT_EQ(objects[0].at("direction"), "import") << name;
        EXPECT_EQ(objects[1].at("fileType"), "m4af") << name;
        EXPECT_EQ(objects[1].at("direction"), "export") << name;
    }
}

TEST(FormatsTest, TellsVariantsModesAndBitrates)
{
    const json wave = ListedObjects({"WAVE"}).at(1);
    const json& pcm = FormatOf(wave, "lpcm");
    std::vector<int> depths;
    for (const json& variant : pcm.at("variants"))
        depths.push_back(variant.at("bitsPerChannel"));
    EXPECT_EQ(depths, (std::vector<int>{8, 16, 24, 32, 32, 64}));
    EXPECT_TRUE(pcm.at("modes").empty());

    const json adts = ListedObjects({"adts"}).at(1);
    const json& modes = FormatOf(adts, "aac ").at("modes");
    ASSERT_FALSE(modes.empty());
    EXPECT_EQ(modes[0].at("mode"), 0);
    const auto rates = modes[0].at("bitrates").get<std::vector<double>>();
    EXPECT_NE(std::find(rates.begin(), rates.end(), 128000.0), rates.end());
    EXPECT_NE(std::find(rates.begin(), rates.end(), modes[0].at("default").get<double>()),
              rates.end());
}

TEST(FormatsTest, AsksBitratesForTheGivenAudio)
{
    const json cached = ListedObjects({"MPG3"}).at(1);
    const json asked = ListedObjects({"MPG3", "--rate", "22050", "--channels", "1"}).at(1);
    const auto most = [](const json& inType)
    {
        const auto rates =
            FormatOf(inType, ".mp3").at("modes").at(0).at("bitrates").get<std::vector<double>>();
        return *std::max_element(rates.begin(), rates.end());
    };
    EXPECT_EQ(most(cached), 320000.0);
    EXPECT_EQ(most(asked), 160000.0);
}

TEST(FormatsTest, AnUnknownTypeIsWrongUse)
{
    const ProgramRun run = RunTarvo({"formats", "xyz"});
    EXPECT_EQ(run.mExitCode, 2);
    EXPECT_NE(run.mErrors.find("xyz"), std::string::npos);
}

TEST(FormatsTest, PeopleGetATable)
{
    const ProgramRun run = RunTarvo({"formats", "adts"});
    EXPECT_EQ(run.mExitCode, 0);
    EXPECT_NE(run.mOutput.find("Import\n"), std::string::npos);
    EXPECT_NE(run.mOutput.find("Export\n"), std::string::npos);
    EXPECT_NE(run.mOutput.find("constant:"), std::string::npos) << run.mOutput;
    EXPECT_NE(run.mOutput.find(" 128 "), std::string::npos) << run.mOutput;
}

}  // namespace
