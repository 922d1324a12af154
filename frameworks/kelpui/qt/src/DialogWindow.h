// DialogWindow: the window of a dialog, which asks its dialog before it closes.
#ifndef KELPUIQT_DIALOGWINDOW_H
#define KELPUIQT_DIALOGWINDOW_H

#include <QDialog>

#include <functional>

namespace kelpui::qt
{

class DialogWindow final : public QDialog
{
public:
    DialogWindow() = default;

    /// What Escape and closing the window do instead of closing it.
    void SetCancel(const std::function<void()>& inCancel) { mCancel = inCancel; }

    /// As large as the contents need. One that the user cannot resize never becomes smaller, since
    /// controls that move away under the pointer are hard to hit; a new font starts anew.
    void FitContents();
    void SetResizable(bool inIsResizable) { mIsResizable = inIsResizable; }

    /// Gives the focus to the first control that takes it, in the order of Tab.
    void FocusFirstControl();

    void reject() override;

protected:
    void showEvent(QShowEvent* inEvent) override;
    void changeEvent(QEvent* inEvent) override;
    bool event(QEvent* inEvent) override;

private:
    std::function<void()> mCancel;
    bool mIsResizable = false;
    QSize mLargest;
};

}  // namespace kelpui::qt

#endif
