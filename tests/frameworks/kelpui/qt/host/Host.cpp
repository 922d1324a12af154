// A host that registers the presenter: host LIBRARY APPLICATION
//
// APPLICATION is the Qt application that the host has: none, core, widgets. Prints how it went.
#include "kelpuiqt/Register.h"

#include <kelpui/ui/DialogPresenter.h>

#include <QApplication>

#include <cstdio>
#include <cstring>
#include <memory>

#include <dlfcn.h>

namespace
{

std::unique_ptr<QCoreApplication> MakeApplication(const char* inKind, int& ioCount,
                                                  char** ioArguments)
{
    if (std::strcmp(inKind, "core") == 0)
        return std::make_unique<QCoreApplication>(ioCount, ioArguments);
    if (std::strcmp(inKind, "widgets") == 0)
        return std::make_unique<QApplication>(ioCount, ioArguments);
    return nullptr;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
        return 2;
    const auto application = MakeApplication(argv[2], argc, argv);
    void* const library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    const auto doRegister = reinterpret_cast<KelpuiQtRegisterFunction>(
        library ? dlsym(library, "KelpuiQtRegister") : nullptr);
    if (!doRegister)
        return 3;
    for (int i = 0; i < 2; ++i)
    {
        const char* const reason = doRegister();
        std::printf("%s\n", reason ? reason : "registered");
    }
    std::printf("presenter %s\n", kelpui::ui::GetDialogPresenter() ? "there" : "missing");
    std::printf("application %s\n", !QCoreApplication::instance()                       ? "missing"
                                    : !application                                      ? "made"
                                    : QCoreApplication::instance() == application.get() ? "kept"
                                                                                        : "other");
    std::printf("number %.1f\n", 0.5);
    return 0;
}
