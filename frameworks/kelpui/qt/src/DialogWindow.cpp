#include "DialogWindow.h"

#include <QEvent>
#include <QLayout>

namespace kelpui::qt
{

void DialogWindow::FitContents()
{
    if (mIsResizable)
        return;  // the layout's minimum holds, and what the user made of it
    // The window's own layout would shrink it again.
    layout()->setSizeConstraint(QLayout::SetNoConstraint);
    layout()->activate();
    mLargest = mLargest.expandedTo(sizeHint());
    setFixedSize(mLargest);
}

void DialogWindow::FocusFirstControl()
{
    for (QWidget* next = nextInFocusChain(); next != this; next = next->nextInFocusChain())
        if ((next->focusPolicy() & Qt::TabFocus) && next->isEnabledTo(this) &&
            next->isVisibleTo(this) && !next->focusProxy())
            return next->setFocus(Qt::OtherFocusReason);
}

void DialogWindow::reject()
{
    if (mCancel)
        mCancel();
    else
        QDialog::reject();
}

void DialogWindow::showEvent(QShowEvent* inEvent)
{
    QDialog::showEvent(inEvent);
    setAttribute(Qt::WA_KeyboardFocusChange);  // the mark of the focus shows before the first Tab
}

void DialogWindow::changeEvent(QEvent* inEvent)
{
    QDialog::changeEvent(inEvent);
    if (inEvent->type() == QEvent::FontChange || inEvent->type() == QEvent::StyleChange)
        mLargest = QSize();
}

// Layouts ask for their window's attention when a control has grown or the font is another one.
bool DialogWindow::event(QEvent* inEvent)
{
    const bool isHandled = QDialog::event(inEvent);
    if (inEvent->type() == QEvent::LayoutRequest)
        FitContents();
    return isHandled;
}

}  // namespace kelpui::qt
