// QtPresenter: shows dialogs of kelpui as windows of Qt Widgets.
#ifndef KELPUIQT_QTPRESENTER_H
#define KELPUIQT_QTPRESENTER_H

#include <kelpui/ui/DialogPresenter.h>

namespace kelpui::qt
{

/// Needs a Qt application, on whose thread dialogs run.
class QtPresenter final : public ui::DialogPresenter
{
public:
    /// Throws std::runtime_error for a form that Qt cannot build, and what the dialog's bound
    /// functions throw, which ends the dialog.
    void Present(ui::UI_ArchivedDialog& ioDialog) override;
};

}  // namespace kelpui::qt

#endif
