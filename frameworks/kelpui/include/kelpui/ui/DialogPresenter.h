// DialogPresenter: shows a dialog to somebody.
//
// kelpui links no toolkit. A host registers a presenter before it lets a dialog open; without one a
// run fails with an error.
#ifndef KELPUI_UI_DIALOGPRESENTER_H
#define KELPUI_UI_DIALOGPRESENTER_H

#include "kelpui/Export.h"

namespace kelpui::ui
{

class UI_ArchivedDialog;

class KELPUI_EXPORT DialogPresenter
{
public:
    DialogPresenter() = default;
    virtual ~DialogPresenter();
    DialogPresenter(const DialogPresenter&) = delete;
    DialogPresenter& operator=(const DialogPresenter&) = delete;

    /// Shows the dialog until it has ended (UI_Dialog::IsRunning), or ends it. It observes the
    /// controls meanwhile, tells them what the user does, and lets go of them before it returns.
    /// Exceptions of bound functions pass through to whoever runs the dialog.
    virtual void Present(UI_ArchivedDialog& ioDialog) = 0;
};

/// Of the process. Not owned; null takes it away.
KELPUI_EXPORT void SetDialogPresenter(DialogPresenter* inPresenter);
KELPUI_EXPORT DialogPresenter* GetDialogPresenter();

}  // namespace kelpui::ui

#endif
