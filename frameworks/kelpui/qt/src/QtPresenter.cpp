#include "QtPresenter.h"

#include "Application.h"
#include "DialogRun.h"
#include "kelpuiqt/Register.h"

#include <QApplication>
#include <QThread>

#include <stdexcept>

namespace kelpui::qt
{

void QtPresenter::Present(ui::UI_ArchivedDialog& ioDialog)
{
    const auto* const application = qobject_cast<QApplication*>(QCoreApplication::instance());
    if (!application)
        throw std::runtime_error("There is no Qt application any more.");
    if (application->thread() != QThread::currentThread())
        throw std::runtime_error("Dialogs run on the thread of the Qt application.");
    DialogRun(ioDialog).Show();
}

}  // namespace kelpui::qt

const char* KelpuiQtRegister()
{
    // kelpui may ask for it until the process ends.
    static kelpui::qt::QtPresenter sPresenter;
    if (const char* const reason = kelpui::qt::ProvideApplication())
        return reason;
    kelpui::ui::SetDialogPresenter(&sPresenter);
    return nullptr;
}
