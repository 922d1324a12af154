// tarvo: a host for the plug-in, on the command line.

#include "host/Interrupt.h"
#include "host/Language.h"
#include "host/Report.h"
#include "host/commands/Commands.h"

#include "kelpcore/debug/Trace.h"

#include <cstdio>
#include <string_view>

namespace
{

void AddCommonOptions(CLI::App& ioProgram, host::CommonOptions& outCommon)
{
    ioProgram.require_subcommand(1);
    ioProgram.set_help_all_flag("--help-all", "Help on every command");
    for (CLI::App* command : ioProgram.get_subcommands(nullptr))
    {
        command->add_flag("--json", outCommon.mJSON, "One JSON object a line");
        command
            ->add_option("--trace", outCommon.mTraceLevel,
                         "Diagnostic lines up to this level on standard error")
            ->check(CLI::Range(0, 9));
        command->add_option("--plug-in", outCommon.mBundle,
                            "Bundle to load instead of tarvo's own");
        command->add_option("--lang", outCommon.mLanguage,
                            "Language of the plug-in's texts (en, de, ja), else the locale's");
    }
}

// The options themselves are not to be relied on after a failing parse.
bool IsAskedForJSON(int inCount, char** inArguments)
{
    for (int i = 1; i < inCount; ++i)
    {
        const std::string_view argument = inArguments[i];
        if (argument == "--")
            return false;
        if (argument == "--json")
            return true;
    }
    return false;
}

int Run(const host::CommonOptions& inCommon, const host::Work& inWork)
{
    try
    {
        kelpcore::debug::SetTraceLevel(inCommon.mTraceLevel);
        const host::PlugIn plugIn(inCommon.mBundle);
        host::UseLanguage(plugIn.Bundle(), inCommon.mLanguage);
        const int code = inWork(plugIn);
        host::FlushOutput();
        return code;
    }
    catch (const host::Interrupted& interrupted)
    {
        return host::kExitSignalBase + interrupted.mSignal;
    }
    catch (const host::Failure& failure)
    {
        host::PrintFailure(failure, "", inCommon.mJSON);
        return failure.mExitCode;
    }
    catch (const std::exception& error)  // out of memory, above all
    {
        std::fprintf(stderr, "tarvo: %s\n", error.what());
        return host::kExitFailed;
    }
}

}  // namespace

int main(int argc, char** argv)
{
    host::WatchInterrupts();

    CLI::App program("Reads and writes audio files through the plug-in.", "tarvo");
    host::CommonOptions common;
    host::Work work;
    host::AddInfoCommand(program, common, work);
    host::AddDecodeCommand(program, common, work);
    host::AddConvertCommand(program, common, work);
    host::AddDiagnoseCommand(program, common, work);
    host::AddFormatsCommand(program, common, work);
    host::AddSettingsCommand(program, common, work);
    host::AddBenchReadCommand(program, common, work);
    AddCommonOptions(program, common);

    try
    {
        program.parse(argc, argv);
    }
    catch (const CLI::ParseError& error)
    {
        if (program.exit(error) == 0)
            return host::kExitDone;
        if (IsAskedForJSON(argc, argv))
            host::PrintObject(
                host::FailureObject(host::Failure(host::kExitUsage, 0, error.what()), ""));
        return host::kExitUsage;
    }
    return Run(common, work);
}
