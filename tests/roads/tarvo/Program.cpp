#include "tests/roads/tarvo/Program.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

namespace testing_support
{

namespace
{

using FilePtr = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

std::string Content(std::FILE* inFile)
{
    std::string content;
    char part[4096];
    std::rewind(inFile);
    while (const std::size_t count = std::fread(part, 1, sizeof(part), inFile))
        content.append(part, count);
    return content;
}

[[noreturn]] void Become(const std::vector<std::string>& inArguments, int inOutput, int inErrors)
{
    std::vector<char*> arguments;
    for (const std::string& argument : inArguments)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    // What is passed over on purpose is not told among a program's errors.
    setenv("LSAN_OPTIONS", "print_suppressions=0", 0);
    dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
    dup2(inOutput, STDOUT_FILENO);
    dup2(inErrors, STDERR_FILENO);
    execv(arguments[0], arguments.data());
    _exit(127);
}

}  // namespace

ProgramRun RunProgram(const std::vector<std::string>& inArguments, const std::string& inOutputPath)
{
    const FilePtr output(
        inOutputPath.empty() ? std::tmpfile() : std::fopen(inOutputPath.c_str(), "w"),
        &std::fclose);
    const FilePtr errors(std::tmpfile(), &std::fclose);
    const pid_t child = fork();
    if (child == 0)
        Become(inArguments, fileno(output.get()), fileno(errors.get()));

    int status = 0;
    waitpid(child, &status, 0);
    ProgramRun run;
    run.mExitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    if (inOutputPath.empty())
        run.mOutput = Content(output.get());
    run.mErrors = Content(errors.get());
    return run;
}

ProgramRun RunTarvo(std::vector<std::string> inArguments, const std::string& inOutputPath)
{
    inArguments.insert(inArguments.begin(), TEST_TARVO);
    return RunProgram(inArguments, inOutputPath);
}

}  // namespace testing_support
