#include "tests/roads/dialog/XServer.h"

#include <csignal>
#include <stdexcept>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace testing_support
{

namespace
{

[[noreturn]] void BecomeServer(int inDisplayPipe, pid_t inParent)
{
    // It goes with the test, whichever way that ends.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != inParent)
        _exit(1);
    const std::string descriptor = std::to_string(inDisplayPipe);
    const int nowhere = open("/dev/null", O_RDWR);
    for (const int standard : {0, 1, 2})
        dup2(nowhere, standard);
    execlp("Xvfb", "Xvfb", "-displayfd", descriptor.c_str(), "-screen", "0", "1280x960x24",
           "-nolisten", "tcp", "-noreset", static_cast<char*>(nullptr));
    _exit(127);
}

// The line that the server writes once it takes connections; empty when it ends without one.
std::string ReadLine(int inPipe)
{
    std::string line;
    for (char character = 0; read(inPipe, &character, 1) == 1 && character != '\n';)
        line += character;
    return line;
}

}  // namespace

XServer::XServer()
{
    int ends[2];
    if (pipe(ends) != 0)
        throw std::runtime_error("no pipe");
    const pid_t parent = getpid();
    mProcess = fork();
    if (mProcess == 0)
    {
        close(ends[0]);
        BecomeServer(ends[1], parent);
    }
    close(ends[1]);
    const std::string number = ReadLine(ends[0]);
    close(ends[0]);
    if (number.empty())
        throw std::runtime_error("Xvfb does not start");
    mDisplay = ":" + number;
}

XServer::~XServer()
{
    kill(mProcess, SIGTERM);
    waitpid(mProcess, nullptr, 0);
}

}  // namespace testing_support
