// DialogRun: one run of a dialog on the screen, from its form to its end.
#ifndef KELPUIQT_DIALOGRUN_H
#define KELPUIQT_DIALOGRUN_H

#include "DialogWindow.h"
#include "LabelBuddies.h"
#include "ShownControl.h"

#include <exception>
#include <memory>
#include <vector>

namespace kelpui::qt
{

class DialogRun
{
public:
    /// Throws ui::DialogArchiveError for a form that cannot show the dialog's controls.
    explicit DialogRun(ui::UI_ArchivedDialog& ioDialog);

    /// Shows the window until the dialog has ended. What bound functions throw ends it and comes
    /// out of here.
    void Show();

private:
    void ShowControls();
    void SetUpWindow();
    void SetUpButtons();
    QPushButton* WidgetOf(const ui::ButtonRef& inButton) const;
    void Cancel();
    void Run(const std::function<void()>& inAction);
    void Settle();
    void SettleSoon();

    ui::UI_ArchivedDialog& mDialog;
    const std::unique_ptr<DialogWindow> mWindow;
    std::vector<std::unique_ptr<ShownControl>> mControls;
    const LabelBuddies mBuddies;
    bool mSettlesSoon = false;
    std::exception_ptr mThrown;
};

}  // namespace kelpui::qt

#endif
