// Commands: what tarvo can be asked to do, one file each.
#ifndef HOST_COMMANDS_COMMANDS_H
#define HOST_COMMANDS_COMMANDS_H

#include "host/Failure.h"
#include "host/PlugIn.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <string>

namespace host
{

/// Options that every command takes.
struct CommonOptions
{
    std::string mBundle{};    // empty: the one beside tarvo
    std::string mLanguage{};  // empty: by the locale
    int mTraceLevel = 0;
    bool mJSON = false;
};

/// Set by the command that the user chose; returns an ExitCode. May throw Failure.
using Work = std::function<int(const PlugIn&)>;

void AddInfoCommand(CLI::App& ioProgram, const CommonOptions& inCommon, Work& outWork);
void AddDecodeCommand(CLI::App& ioProgram, const CommonOptions& inCommon, Work& outWork);
void AddConvertCommand(CLI::App& ioProgram, const CommonOptions& inCommon, Work& outWork);
void AddDiagnoseCommand(CLI::App& ioProgram, const CommonOptions& inCommon, Work& outWork);
void AddFormatsCommand(CLI::App& ioProgram, const CommonOptions& inCommon, Work& outWork);
void AddSettingsCommand(CLI::App& ioProgram, const CommonOptions& inCommon, Work& outWork);
void AddBenchReadCommand(CLI::App& ioProgram, const CommonOptions& inCommon, Work& outWork);

}  // namespace host

#endif
