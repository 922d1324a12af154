// Form: the window and the widgets of a dialog's archive.
#ifndef KELPUIQT_FORM_H
#define KELPUIQT_FORM_H

#include "DialogWindow.h"

#include <kelpui/ui/UI_ArchivedDialog.h>

#include <memory>

namespace kelpui::qt
{

/// The archive of the dialog as a window that is not shown yet, its texts in the user's language.
/// Throws ui::DialogArchiveError for an archive that Qt cannot build.
std::unique_ptr<DialogWindow> LoadForm(const ui::UI_ArchivedDialog& inDialog);

/// What LoadForm throws, for whoever finds out later that a form is of no use.
[[noreturn]] void ThrowNoForm(const ui::UI_ArchivedDialog& inDialog);

}  // namespace kelpui::qt

#endif
