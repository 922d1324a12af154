// tarvo diagnose on plug-ins that break rules or do not play along.

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
