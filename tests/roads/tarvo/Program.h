// Program: runs a program and keeps what it said.
#ifndef TESTS_ROADS_TARVO_PROGRAM_H
#define TESTS_ROADS_TARVO_PROGRAM_H

#include <string>
#include <vector>

namespace testing_support
{

struct ProgramRun
{
    int mExitCode = -1;  // 128 and the signal's number when a signal ended it
    std::string mOutput;
    std::string mErrors;
};

/// Runs a program with standard input empty. inOutputPath: where standard output goes instead.
ProgramRun RunProgram(const std::vector<std::string>& inArguments,
                      const std::string& inOutputPath = "");

/// tarvo of this build tree.
ProgramRun RunTarvo(std::vector<std::string> inArguments, const std::string& inOutputPath = "");

}  // namespace testing_support

#endif
