// tarvo diagnose: runs the checks that the plug-in brings along.

#include "host/Interrupt.h"
#include "host/Registration.h"
#include "host/Report.h"
#include "host/commands/Commands.h"

#include "TarvoSDK/TarvoSDK.h"
#include "kelpunittesting/Test.h"
#include "kelpunittesting/TestRegistry.h"
#include "kelpunittesting/TestRunner.h"

#include <iostream>
#include <sstream>

namespace host
{

namespace
{

using kelpunittesting::TestRegistry;
using kelpunittesting::TestResult;
using kelpunittesting::TestRunner;

// The plug-in enters its suites in the registry, which is one for the process.
void RegisterSuites(const PlugIn& inPlugIn)
{
    (void)Register(inPlugIn);
    const std::int32_t result = inPlugIn.Call(kTarvoSelectorInitialize, nullptr, nullptr);
    if (result != kTarvoResultSuccess)
        throw Failure(kExitFailed, result,
                      "The plug-in does not register its diagnostics (result " +
                          std::to_string(result) + ")");
    // Nothing run is nothing proven.
    if (TestRegistry::GetNames().empty())
        throw Failure(kExitFailed, 0, "The plug-in has no diagnostics.");
}

void PrintForPrograms(const TestResult& inResult, const std::string& inReport)
{
    nlohmann::ordered_json object = NewObject();
    object["case"] = inResult.mPath;
    object["passed"] = inResult.mPassed;
    object["report"] = inReport;
    if (!inResult.mPassed)
        object["failure"] = {{"text", inResult.mText},
                             {"function", inResult.mLocation.mFunction},
                             {"source", inResult.mLocation.mSourcePath},
                             {"line", inResult.mLocation.mLine}};
    PrintObject(object);
}

int RunSuites(TestRunner& ioRunner)
{
    for (const std::string& name : TestRegistry::GetNames())
        ioRunner.Run(*TestRegistry::CreateTest(name));
    return ioRunner.GetFailureCount() == 0 ? kExitDone : kExitDiagnostics;
}

int RunForPeople()
{
    TestRunner runner(std::cout,
                      [](const TestResult& result)
                      {
        std::cout << result;
        CheckInterrupt();
    });
    return RunSuites(runner);
}

int RunForPrograms()
{
    std::ostringstream report;
    TestRunner runner(report,
                      [&](const TestResult& result)
                      {
        PrintForPrograms(result, report.str());
        report.str({});
        CheckInterrupt();
    });
    return RunSuites(runner);
}

int Diagnose(const PlugIn& inPlugIn, const CommonOptions& inCommon)
{
    RegisterSuites(inPlugIn);
    return inCommon.mJSON ? RunForPrograms() : RunForPeople();
}

}  // namespace

void AddDiagnoseCommand(CLI::App& ioProgram, const CommonOptions& inCommon, Work& outWork)
{
    CLI::App* command = ioProgram.add_subcommand(
        "diagnose", "Print the catalogue of formats and check it (6: it breaks a rule)");
    command->callback(
        [&inCommon, &outWork] {
        outWork = [&inCommon](const PlugIn& inPlugIn) { return Diagnose(inPlugIn, inCommon); };
    });
}

}  // namespace host
