#include "Application.h"

#include "DesktopPalette.h"

#include <QApplication>

#include <cerrno>
#include <clocale>
#include <memory>
#include <string>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kelpui::qt
{
namespace
{

// Qt keeps the references to both as long as the application lives.
int sArgumentCount = 1;
char* sArguments[] = {program_invocation_short_name, nullptr};

// Numbers that a host prints look as before: Qt takes the user's locale over.
class NumbersLocale
{
public:
    NumbersLocale() : mName(std::setlocale(LC_NUMERIC, nullptr)) {}
    ~NumbersLocale() { std::setlocale(LC_NUMERIC, mName.c_str()); }
    NumbersLocale(const NumbersLocale&) = delete;
    NumbersLocale& operator=(const NumbersLocale&) = delete;

private:
    const std::string mName;
};

// What Qt has to say about its surroundings is nothing that the user of a host can act on.
class QuietStart
{
public:
    QuietStart()
        : mBefore(
              qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {}))
    {
    }
    ~QuietStart() { qInstallMessageHandler(mBefore); }
    QuietStart(const QuietStart&) = delete;
    QuietStart& operator=(const QuietStart&) = delete;

private:
    const QtMessageHandler mBefore;
};

void LeaveOnFatal(QtMsgType inType, const QMessageLogContext&, const QString&)
{
    if (inType == QtFatalMsg)
        _exit(1);  // before Qt aborts, which would leave a core
}

[[noreturn]] void TryInThisProcess()
{
    // The libraries below Qt print on their own.
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere >= 0)
        (void)dup2(nowhere, STDERR_FILENO);
    qInstallMessageHandler(&LeaveOnFatal);
    const QGuiApplication application(sArgumentCount, sArguments);
    _exit(QGuiApplication::primaryScreen() ? 0 : 1);
}

// Qt ends the process where it finds no display, so that another one has to try it first.
bool IsDisplayThere()
{
    const pid_t child = fork();
    if (child == 0)
        TryInThisProcess();
    int status = 0;
    while (child > 0 && waitpid(child, &status, 0) < 0)
        if (errno != EINTR)
            return false;
    return child > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

const char* ProvideApplication()
{
    if (QCoreApplication::instance())
        return qobject_cast<QApplication*>(QCoreApplication::instance())
                   ? nullptr
                   : "The program's Qt application has no widgets.";
    if (!IsDisplayThere())
        return "There is no display to show a dialog on.";

    const NumbersLocale kept;
    const QuietStart quiet;
    // Never destroyed: what Qt leaves to the end of a process does not outlive an application well.
    auto* const application = new QApplication(sArgumentCount, sArguments);
    // The end of one dialog is no reason for the next one not to run.
    application->setQuitOnLastWindowClosed(false);
    FollowDesktopPalette();
    return nullptr;
}

}  // namespace kelpui::qt
