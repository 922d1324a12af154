// tarvo diagnose on the built bundle, and on plug-ins that do not play along.

#include "tests/roads/tarvo/Program.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <sstream>

namespace
{

using nlohmann::json;
using testing_support::ProgramRun;
using testing_support::RunTarvo;

std::vector<json> Objects(const std::string& inLines)
{
    std::istringstream lines(inLines);
    std::vector<json> objects;
    for (std::string line; std::getline(lines, line);)
        objects.push_back(json::parse(line));
    return objects;
}

TEST(Diagnose, PassesOnTheBuiltBundle)
{
    const ProgramRun run = RunTarvo({"diagnose"});
    EXPECT_EQ(run.mExitCode, 0) << run.mOutput << run.mErrors;
    EXPECT_EQ(run.mErrors, "");
    EXPECT_NE(run.mOutput.find("AudioToolbox/FormatTests/QueryInputFormats: passed\n"),
              std::string::npos)
        << run.mOutput;
    EXPECT_NE(run.mOutput.find("AudioToolbox/FormatTests/QueryOuputFormats: passed\n"),
              std::string::npos)
        << run.mOutput;
}

TEST(Diagnose, PrintsBothCatalogues)
{
    const std::vector<json> objects = Objects(RunTarvo({"diagnose", "--json"}).mOutput);
    ASSERT_EQ(objects.size(), 2u);
    for (const json& object : objects)
    {
        EXPECT_EQ(object.at("version"), 1);
        EXPECT_EQ(object.at("passed"), true) << object;
        EXPECT_EQ(object.count("failure"), 0u);
    }
    EXPECT_EQ(objects[0].at("case"), "AudioToolbox/FormatTests/QueryInputFormats");
    EXPECT_EQ(objects[1].at("case"), "AudioToolbox/FormatTests/QueryOuputFormats");
    const auto input = objects[0].at("report").get<std::string>();
    const auto output = objects[1].at("report").get<std::string>();
    for (const char* line : {"'WAVE'  \t\"", "\n\t'lpcm'\n", "'adts'  \t\"", "\n\t'aac '\n"})
        EXPECT_NE(input.find(line), std::string::npos) << line << "\n" << input;
    for (const char* line : {"'WAVE'  \t\"", "\n\t'lpcm'\n", "'adts'  \t\"", "\n\t'aac '  \t\t\"",
                             "\n\t\t\tCBR:\n", "\n\t\t\tVBR\n"})
        EXPECT_NE(output.find(line), std::string::npos) << line << "\n" << output;
    EXPECT_EQ(input.find("CBR"), std::string::npos);
}

ProgramRun DiagnoseOther(const char* inWish, const std::vector<std::string>& inMore = {})
{
    std::vector<std::string> arguments = {"diagnose", "--plug-in", TEST_DIAGNOSED_BUNDLE};
    arguments.insert(arguments.end(), inMore.begin(), inMore.end());
    setenv("PLUG_IN", inWish, 1);
    const ProgramRun run = RunTarvo(arguments);
    unsetenv("PLUG_IN");
    return run;
}

TEST(Diagnose, ABreachExitsWithSixAndTheOtherChecksStillRun)
{
    const ProgramRun run = DiagnoseOther("breach");
    EXPECT_EQ(run.mExitCode, 6);
    EXPECT_EQ(run.mErrors, "");
    EXPECT_EQ(run.mOutput,
              "bad so far\n"
              "Suite/Bad: failed: rate > 0 (TestRate, Checks.cpp:12)\n"
              "good\n"
              "Suite/Good: passed\n");
}

TEST(Diagnose, TellsProgramsTheBreachAndItsPlace)
{
    const ProgramRun run = DiagnoseOther("breach", {"--json"});
    EXPECT_EQ(run.mExitCode, 6);
    const std::vector<json> objects = Objects(run.mOutput);
    ASSERT_EQ(objects.size(), 2u);
    EXPECT_EQ(objects[0], json::parse(R"({"version":1,"case":"Suite/Bad","passed":false,
                              "report":"bad so far\n",
                              "failure":{"text":"rate > 0","function":"TestRate",
                                         "source":"Checks.cpp","line":12}})"));
    EXPECT_EQ(objects[1], json::parse(R"({"version":1,"case":"Suite/Good","passed":true,
                                          "report":"good\n"})"));
}

TEST(Diagnose, FailsWhenThePlugInDoesNotPlayAlong)
{
    const struct
    {
        const char* mWish;
        int mResult;
    } rows[] = {{"no-start", -1}, {"no-diagnostics", -3}, {"nothing", 0}};
    for (const auto& row : rows)
    {
        const ProgramRun run = DiagnoseOther(row.mWish, {"--json"});
        EXPECT_EQ(run.mExitCode, 1) << row.mWish;
        EXPECT_NE(run.mErrors, "") << row.mWish;
        EXPECT_EQ(json::parse(run.mOutput).at("error").at("result"), row.mResult) << row.mWish;
    }
}

TEST(Diagnose, TellsOfAReportThatCannotBeWritten)
{
    EXPECT_EQ(RunTarvo({"diagnose"}, "/dev/full").mExitCode, 4);
}

TEST(Diagnose, TakesNoFiles)
{
    EXPECT_EQ(RunTarvo({"diagnose", "file"}).mExitCode, 2);
    EXPECT_EQ(RunTarvo({"diagnose", "--help"}).mExitCode, 0);
}

}  // namespace
